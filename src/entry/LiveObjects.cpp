#include "entry/LiveObjects.h"

constinit std::array<std::atomic<const FgLoomWrapper*>, 64> LiveObjects::s_objects{};
constinit std::atomic<std::size_t> LiveObjects::s_used{0};
constinit std::atomic<std::size_t> LiveObjects::s_unlisted{0};

void LiveObjects::add(const FgLoomWrapper* object) {
    for (std::size_t i = 0; i < s_objects.size(); ++i) {
        const FgLoomWrapper* free = nullptr;
        if (!s_objects[i].compare_exchange_strong(free, object, std::memory_order_acq_rel)) continue;
        std::size_t used = s_used.load(std::memory_order_relaxed);
        while (used < i + 1 && !s_used.compare_exchange_weak(used, i + 1, std::memory_order_acq_rel)) {
        }
        return;
    }
    ++s_unlisted;
}

void LiveObjects::remove(const FgLoomWrapper* object) {
    for (std::atomic<const FgLoomWrapper*>& slot : s_objects) {
        const FgLoomWrapper* mine = object;
        if (slot.compare_exchange_strong(mine, nullptr, std::memory_order_acq_rel)) return;
    }
    --s_unlisted;
}
