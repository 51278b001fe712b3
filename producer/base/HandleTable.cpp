#include "base/HandleTable.h"

#include "base/NeverDestroyed.h"

#include <atomic>
#include <cstdint>
#include <map>

namespace producer {
namespace {

struct Table {
    std::mutex mutex;
    std::map<void*, std::shared_ptr<Object>> objects;
};

NeverDestroyed<Table>& storedTable() {
    static NeverDestroyed<Table> one;
    return one;
}

Table& table() { return storedTable().value(); }

} // namespace

void* HandleTable::newHandle() {
    static std::atomic<std::uintptr_t> next{0x1000};
    // A handle is a number, not an address. NOLINTNEXTLINE(performance-no-int-to-ptr)
    return reinterpret_cast<void*>(next.fetch_add(0x10));
}

void HandleTable::add(const std::shared_ptr<Object>& object) {
    object->m_handle = newHandle();
    const std::lock_guard lock(table().mutex);
    table().objects.emplace(object->m_handle, object);
}

void HandleTable::remove(const Object& object) {
    std::shared_ptr<Object> removed; // released after the lock
    const std::lock_guard lock(table().mutex);
    const auto found = table().objects.find(object.m_handle);
    if (found == table().objects.end()) return;
    removed = std::move(found->second);
    table().objects.erase(found);
}

void HandleTable::forget() { storedTable().forget(); }

std::shared_ptr<Object> HandleTable::lookUp(void* handle) {
    const std::lock_guard lock(table().mutex);
    const auto found = table().objects.find(handle);
    return found != table().objects.end() ? found->second : nullptr;
}

} // namespace producer
