#include "support/sdk_directory.h"

#include "templates/platform/SpinLockVariableGuard.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <iterator>
#include <string>
#include <strings.h>

using vexo::templates::platform::SpinLockVariableGuard;
using vexo::templates::platform::SpinVariable;

namespace {

constexpr const char* sdkFolders[] = {"bin", "dll", "Hardware Applets", "lib", "lib64"};

bool isSdkFolder(const char* name) {
    return std::any_of(std::begin(sdkFolders), std::end(sdkFolders),
                       [name](const char* folder) { return strcasecmp(name, folder) == 0; });
}

/** Ends the path behind the last character in front of the run of '/' that `slash` closes; the root stays. */
void cutBefore(char* path, char* slash) {
    while (slash > path && *slash == '/')
        --slash;
    slash[1] = '\0';
}

bool findOwnPath(const void* address, char* path, std::size_t size) {
    Dl_info info{};
    if (dladdr(address, &info) == 0 || info.dli_fname == nullptr) return false;
    const std::size_t length = std::strlen(info.dli_fname);
    if (length == 0 || length >= size) return false;
    std::memcpy(path, info.dli_fname, length + 1);
    return true;
}

} // namespace

bool climbToSdkDirectory(char* path) {
    char* slash = std::strrchr(path, '/');
    while (slash != nullptr && slash != path) {
        cutBefore(path, slash);
        slash = std::strrchr(path, '/');
        if (slash != nullptr && isSdkFolder(slash + 1)) {
            cutBefore(path, slash);
            return true;
        }
    }
    return false;
}

void copyDirectory(char* buffer, std::size_t size, const char* value) {
    std::snprintf(buffer, size, "%s", value);
    std::size_t length = std::strlen(buffer);
    while (length > 1 && buffer[length - 1] == '/')
        buffer[--length] = '\0';
}

const char* sdkDirectory() {
    static constinit SpinVariable lock{0};
    static constinit bool resolved = false;
    static constinit char directory[1024] = {};

    const SpinLockVariableGuard guard(&lock, nullptr);
    if (resolved) return directory;
    if (!findOwnPath(directory, directory, sizeof directory) || !climbToSdkDirectory(directory)) {
        const char* value = std::getenv("NORVANE_FG_SDK_DIR");
        if (value == nullptr) return nullptr;
        copyDirectory(directory, sizeof directory, value);
    }
    resolved = true;
    return directory;
}

std::unique_ptr<SharedLibrary> openSdkLibrary(const char* name, const char* directory) {
    if (directory == nullptr) directory = sdkDirectory();
    if (directory == nullptr) return nullptr;
    auto library = std::make_unique<SharedLibrary>(std::string(directory) + "/lib64/lib" + name + ".so");
    return library->isLoaded() ? std::move(library) : nullptr;
}
