/** A library that is loaded on first use, so that the board does not depend on it. */
#ifndef VIRTUAL_BOARD_LOADED_LIBRARY_H
#define VIRTUAL_BOARD_LOADED_LIBRARY_H

#include <dlfcn.h>

namespace vboard {

/** Base of a record of the library's functions, each a member that find() initializes. It is never unloaded. */
class LoadedLibrary {
public:
    /** False if the library, or one of the functions, is missing. */
    bool isComplete() const { return m_isComplete; }

protected:
    /** Converts to a pointer to a function of any type. */
    struct Symbol {
        void* address;
        template <typename Function> operator Function*() const {
            return reinterpret_cast<Function*>(address);
        }
    };

    explicit LoadedLibrary(const char* name) : m_handle(dlopen(name, RTLD_NOW | RTLD_LOCAL)) {}

    Symbol find(const char* name) {
        void* const address = m_handle != nullptr ? dlsym(m_handle, name) : nullptr;
        m_isComplete = m_isComplete && address != nullptr;
        return {address};
    }

private:
    void* m_handle;
    bool m_isComplete = true;
};

} // namespace vboard

#endif
