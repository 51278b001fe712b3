/** Failures of a call. */
#ifndef PRODUCER_BASE_ERROR_H
#define PRODUCER_BASE_ERROR_H

#include "gentl.h"

#include <stdexcept>
#include <string>

namespace producer {

/** Converted to its code by each exported function; GCGetLastError returns the text. */
class Error : public std::runtime_error {
public:
    Error(GC_ERROR code, const std::string& text) : std::runtime_error(text), m_code(code) {}

    GC_ERROR code() const { return m_code; }

private:
    GC_ERROR m_code;
};

/** Checks a pointer that must not be null. */
template <typename T> T& required(T* pointer, const char* name) {
    if (pointer == nullptr)
        throw Error(GC_ERR_INVALID_PARAMETER, std::string("the argument ") + name + " is null");
    return *pointer;
}

} // namespace producer

#endif
