/* A host in C. */
#include "host_session.h"

int main(void) { return hostSession() != 0; }
