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

    T& value() { return m_inChild != nullptr ? m_inChild->value : m_value; }
    /** Begins again, without destroying the value: in a forked child, which has none of the threads that use it. */
    void forget() { m_inChild = new InChild{T(), m_inChild}; }

private:
    struct InChild {
        T value;
        InChild* ofParent; // keeps it from being reported as a leak
    };

    union {
        T m_value;
    };
    InChild* m_inChild = nullptr;
};

} // namespace producer

#endif
