/** The registry of live objects: distinguishes a valid handle from a stale or foreign one. */
#ifndef ENTRY_LIVEOBJECTS_H
#define ENTRY_LIVEOBJECTS_H

#include <array>
#include <atomic>
#include <cstddef>

class FgLoomWrapper;

/**
 * A table of addresses, read without a lock at each call and never dereferenced. Thread-safe.
 *
 * It has more entries than a machine has room for boards. When it is full, validation is disabled: every
 * address passes until the objects without an entry are destroyed.
 */
class LiveObjects {
public:
    static void add(const FgLoomWrapper* object);
    static void remove(const FgLoomWrapper* object);

    static bool has(const FgLoomWrapper* object) {
        if (object == nullptr) return false;
        const std::size_t used = s_used.load(std::memory_order_acquire);
        for (std::size_t i = 0; i < used; ++i)
            if (s_objects[i].load(std::memory_order_relaxed) == object) return true;
        return s_unlisted.load(std::memory_order_relaxed) > 0;
    }

private:
    static constinit std::array<std::atomic<const FgLoomWrapper*>, 64> s_objects;
    static constinit std::atomic<std::size_t> s_used;     // entries ever used
    static constinit std::atomic<std::size_t> s_unlisted; // objects without an entry
};

#endif
