/** The owner of a library that is opened at run time. */
#ifndef SUPPORT_SHAREDLIBRARY_H
#define SUPPORT_SHAREDLIBRARY_H

#include <string>

/** Opens a library and closes it in the destructor. Takes no lock. */
class SharedLibrary {
public:
    using CloseCallback = void (*)(SharedLibrary*);

    /** Opens the library at `path`; isLoaded() gives the result. */
    explicit SharedLibrary(std::string path);
    SharedLibrary(const SharedLibrary&) = delete;
    SharedLibrary& operator=(const SharedLibrary&) = delete;
    /** Calls the close callback, if any, while the library is still open. */
    ~SharedLibrary();

    /** Opens the library unless it is open. */
    void load();
    bool isLoaded() const { return m_handle != nullptr; }
    /** Address of an exported symbol; null if there is none or the library is not open. */
    void* symbol(const char* name) const;
    /** Why the library could not be opened; empty once it is. */
    const std::string& lastError() const { return m_lastError; }
    void setCloseCallback(CloseCallback callback) { m_closeCallback = callback; }
    /** Releases ownership: the library stays open until the process ends. */
    void leaveOpen() { m_handle = nullptr; }

private:
    void* m_handle = nullptr;
    std::string m_path;
    std::string m_lastError;
    CloseCallback m_closeCallback = nullptr;
};

#endif
