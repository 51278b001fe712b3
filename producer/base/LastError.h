/** The last failure of each thread. */
#ifndef PRODUCER_BASE_LASTERROR_H
#define PRODUCER_BASE_LASTERROR_H

#include "gentl.h"

#include <string_view>

namespace producer {

/** Stores a failure of this thread. Does not allocate, so that it works when memory is exhausted; longer
 *  texts are truncated. */
void rememberError(GC_ERROR code, std::string_view text) noexcept;
GC_ERROR lastErrorCode();
/** "No Error" before the first failure. */
const char* lastErrorText();

} // namespace producer

#endif
