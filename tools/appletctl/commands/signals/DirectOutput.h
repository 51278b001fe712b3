/** The standard output for bytes that a program reads. */
#ifndef APPLETCTL_COMMANDS_SIGNALS_DIRECTOUTPUT_H
#define APPLETCTL_COMMANDS_SIGNALS_DIRECTOUTPUT_H

#include <string>

namespace appletctl {

class DirectOutput {
public:
    /** Writes at once, so that nothing accumulates. False if this or an earlier write has failed. */
    bool write(const std::string& bytes);
    /** errno of the write that failed, 0 if none has; EPIPE: nothing reads it. */
    int error() const { return m_error; }

private:
    int m_error = 0;
};

} // namespace appletctl

#endif
