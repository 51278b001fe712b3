/** The holder of a wrapper's last error number. */
#ifndef SUPPORT_FG_ERROR_H
#define SUPPORT_FG_ERROR_H

#include "vexo/fg_errors.h"

#include <atomic>
#include <cstdint>

/** Holds one number; any thread may read it while another stores. */
class Fg_Error {
public:
    /** Stores the code and returns it. */
    int setErr(int code) {
        // Success follows success: other threads keep their copy of the unchanged word.
        if (getErrorNumberBuffer() != code) m_error.store(code, std::memory_order_relaxed);
        return code;
    }
    /** There is no second level of errors: stores nothing. */
    int setErrLevel2(int /*code*/, const char* /*text*/) { return FG_ERR_NOT_SUPPORTED; }
    int getErrorNumberBuffer() const { return m_error.load(std::memory_order_relaxed); }

private:
    std::atomic<std::int32_t> m_error{0};
};

#endif
