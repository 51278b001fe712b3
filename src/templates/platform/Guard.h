/** Common base of all scoped guards of a lock. */
#ifndef TEMPLATES_PLATFORM_GUARD_H
#define TEMPLATES_PLATFORM_GUARD_H

namespace vexo::templates::patterns {

template <typename Lock> class Guard;

/** Remembers a lock for a scope. Derived guards take it and, while `m_active`, release it. */
template <typename Lock> class Guard<Lock*> {
public:
    explicit Guard(Lock* lock) : m_lock(lock) {}
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;
    virtual ~Guard() = default;

protected:
    Lock* m_lock;
    bool m_active = true;
};

} // namespace vexo::templates::patterns

#endif
