/** A call that fails. */
#ifndef PRODUCER_BASE_ERROR_H
#define PRODUCER_BASE_ERROR_H

#include "gentl.h"

#include <stdexcept>
#include <string>

namespace producer {

/** Leaves an exported function as its code; the text is what GCGetLastError gives. */
class Error : public std::runtime_error {
public:
    Error(GC_ERROR code, const std::string& text) : std::runtime_error(text), m_code(code) {}

    GC_ERROR code() const { return m_code; }

private:
    GC_ERROR m_code;
};

/** Checks a pointer that the caller must give. */
template <typename T> T& required(T* place, const char* name) {
    if (place == nullptr)
        throw Error(GC_ERR_INVALID_PARAMETER, std::string("the argument ") + name + " is null");
    return *place;
}

} // namespace producer

#endif
