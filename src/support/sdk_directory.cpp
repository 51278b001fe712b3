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
#include <unistd.h>

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

constexpr std::size_t pathRoom = 1024;

/** The working directory when this library was loaded; empty if it is unknown. A host may change it later. */
struct LoadDirectory {
    char path[pathRoom];
    LoadDirectory() {
        if (getcwd(path, sizeof path) == nullptr || path[0] != '/') path[0] = '\0';
    }
};
const LoadDirectory loadDirectory;

/** Copies a path, a relative one as it was meant when this library was loaded. False if there is no room. */
bool copyAbsolute(char* buffer, std::size_t size, const char* path) {
    const bool isWhole = path[0] == '/' || path[0] == '\0' || loadDirectory.path[0] == '\0';
    const int length = isWhole ? std::snprintf(buffer, size, "%s", path)
                               : std::snprintf(buffer, size, "%s/%s", loadDirectory.path, path);
    return length > 0 && static_cast<std::size_t>(length) < size;
}

bool findOwnPath(const void* address, char* path, std::size_t size) {
    Dl_info info{};
    if (dladdr(address, &info) == 0 || info.dli_fname == nullptr || info.dli_fname[0] == '\0') return false;
    return copyAbsolute(path, size, info.dli_fname);
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
    copyAbsolute(buffer, size, value);
    std::size_t length = std::strlen(buffer);
    while (length > 1 && buffer[length - 1] == '/')
        buffer[--length] = '\0';
}

const char* sdkDirectory() {
    static constinit SpinVariable lock{0};
    static constinit bool resolved = false;
    static constinit char directory[pathRoom] = {};

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
