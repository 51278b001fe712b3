/** A tentative assignment. */
#ifndef ENTRY_REPLACEMENT_H
#define ENTRY_REPLACEMENT_H

#include <utility>

/** Stores a new value in a member; the destructor restores the old value unless keep() was called. */
template <typename T> class Replacement {
public:
    Replacement(T& member, T value) : m_member(member), m_old(std::exchange(member, std::move(value))) {}
    ~Replacement() {
        if (!m_kept) m_member = std::move(m_old);
    }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    const T& old() const { return m_old; }
    void keep() { m_kept = true; }

private:
    T& m_member;
    T m_old;
    bool m_kept = false;
};

#endif
