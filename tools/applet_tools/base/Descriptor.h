/** An owned file descriptor. */
#ifndef APPLET_TOOLS_BASE_DESCRIPTOR_H
#define APPLET_TOOLS_BASE_DESCRIPTOR_H

#include <unistd.h>

#include <utility>

namespace applet_tools {

class Descriptor {
public:
    Descriptor() = default;
    /** Closes the descriptor in the destructor; -1 for none. */
    explicit Descriptor(int number) : m_number(number) {}
    Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(m_number, other.m_number);
        return *this;
    }
    ~Descriptor() {
        if (m_number >= 0) close(m_number);
    }

    int number() const { return m_number; }
    explicit operator bool() const { return m_number >= 0; }

private:
    int m_number = -1;
};

} // namespace applet_tools

#endif
