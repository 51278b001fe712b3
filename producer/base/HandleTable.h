/** The handles that a client has. */
#ifndef PRODUCER_BASE_HANDLETABLE_H
#define PRODUCER_BASE_HANDLETABLE_H

#include "base/Error.h"

#include <memory>
#include <mutex>
#include <unordered_map>

namespace producer {

/** What a handle can lead to. */
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
 * All live handles of the process. A handle is a number that is given out once and never again, so one that was
 * closed, or that never was one, is recognised and not followed. Any thread may call any function.
 */
class HandleTable {
public:
    /** A number for something that keeps its own table of handles. */
    static void* newHandle();
    static void add(const std::shared_ptr<Object>& object);
    /** Does nothing for an object without a handle. */
    static void remove(const Object& object);

    /** The object, which then lives at least as long as the result. Throws INVALID_HANDLE. */
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
