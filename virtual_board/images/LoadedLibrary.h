/** A library that is loaded on first use, so that the board does not depend on it. */
#ifndef VIRTUAL_BOARD_LOADED_LIBRARY_H
#define VIRTUAL_BOARD_LOADED_LIBRARY_H

#include <dlfcn.h>

namespace vboard {

/** It is never unloaded. */
class LoadedLibrary {
public:
    explicit LoadedLibrary(const char* name) : m_handle(dlopen(name, RTLD_NOW | RTLD_LOCAL)) {}

    /** Looks a function up; if it is missing, the library is not complete. */
    template <typename Function> void find(Function*& function, const char* name) {
        function = m_handle != nullptr ? reinterpret_cast<Function*>(dlsym(m_handle, name)) : nullptr;
        m_isComplete = m_isComplete && function != nullptr;
    }
    bool isComplete() const { return m_isComplete; }

private:
    void* m_handle;
    bool m_isComplete = true;
};

} // namespace vboard

#endif
