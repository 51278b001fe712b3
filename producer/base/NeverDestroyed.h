/** Static objects that other threads may still use while the process exits. */
#ifndef PRODUCER_BASE_NEVERDESTROYED_H
#define PRODUCER_BASE_NEVERDESTROYED_H

namespace producer {

/** Its value is never destroyed. It is part of the library's memory, so an unloaded library leaves nothing. */
template <typename T> class NeverDestroyed {
public:
    NeverDestroyed() : m_value() {}
    ~NeverDestroyed() {} // NOLINT(modernize-use-equals-default): a union's default would be deleted
    NeverDestroyed(const NeverDestroyed&) = delete;
    NeverDestroyed& operator=(const NeverDestroyed&) = delete;

    T& value() { return m_value; }

private:
    union {
        T m_value;
    };
};

} // namespace producer

#endif
