/** The handles of the clients. */
#ifndef PRODUCER_BASE_HANDLETABLE_H
#define PRODUCER_BASE_HANDLETABLE_H

#include "base/Error.h"

#include <memory>
#include <mutex>

namespace producer {

/** Base class of objects with a handle. */
class Object {
public:
    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() = default;

    void* handle() const { return m_handle; }

private:
    friend class HandleTable;
    void* m_handle = nullptr;
};

/**
 * All live handles of the process. A handle is a number that is never reused, so closed and invalid handles are
 * detected without a memory access. Thread-safe.
 */
class HandleTable {
public:
    /** A new number for an object that has a handle table of its own. */
    static void* newHandle();
    static void add(const std::shared_ptr<Object>& object);
    /** Does nothing for an object without a handle. */
    static void remove(const Object& object);
    /** All handles become invalid; no object is destroyed. For a forked child, which must have no other thread. */
    static void forget();

    /** The object; the result keeps it alive. Throws INVALID_HANDLE. */
    template <typename T> static std::shared_ptr<T> find(void* handle, const char* what) {
        if (auto object = std::dynamic_pointer_cast<T>(lookUp(handle))) return object;
        throw Error(GC_ERR_INVALID_HANDLE,
                    std::string("the handle is not that of ") + what + " that is open");
    }

private:
    static std::shared_ptr<Object> lookUp(void* handle);
};

} // namespace producer

#endif
