#include "support/SharedLibrary.h"

#include "support/library_flags.h"

#include <dlfcn.h>
#include <utility>

SharedLibrary::SharedLibrary(std::string path) : m_path(std::move(path)) { load(); }

SharedLibrary::~SharedLibrary() {
    if (m_closeCallback != nullptr) m_closeCallback(this);
    if (isLoaded() && dlclose(m_handle) == 0) m_handle = nullptr;
}

void SharedLibrary::load() {
    if (isLoaded()) return;
    m_handle = dlopen(m_path.c_str(), runtimeBindFlags);
    if (isLoaded()) {
        m_lastError.clear();
        return;
    }
    const char* reason = dlerror();
    m_lastError = reason != nullptr ? reason : "";
}

void* SharedLibrary::symbol(const char* name) const { return isLoaded() ? dlsym(m_handle, name) : nullptr; }
