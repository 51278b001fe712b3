/** Questions that the user answers on the terminal. */
#ifndef APPLETCTL_BASE_CONFIRM_H
#define APPLETCTL_BASE_CONFIRM_H

#include <string>

namespace appletctl {

/** Asks on the terminal and waits for the answer. True for yes; no is the default. */
bool isConfirmed(const std::string& question);

} // namespace appletctl

#endif
