/** The last failure of each thread. */
#ifndef PRODUCER_BASE_LASTERROR_H
#define PRODUCER_BASE_LASTERROR_H

#include "gentl.h"

#include <string_view>

namespace producer {

/** Remembers a failure of this thread. Allocates nothing, so that it works where memory has run out; a longer text is
 *  cut. */
void rememberError(GC_ERROR code, std::string_view text) noexcept;
GC_ERROR lastErrorCode();
/** "No Error" before the first failure. */
const char* lastErrorText();

} // namespace producer

#endif
