#include "support/sdk_directory.h"

#include "templates/platform/SpinLockVariableGuard.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <iterator>
#include <string>
#include <string_view>
#include <strings.h>
#include <unistd.h>

using vexo::templates::platform::SpinLockVariableGuard;
using vexo::templates::platform::SpinVariable;

namespace {

constexpr const char* sdkFolders[] = {"bin", "dll", "Hardware Applets", "lib", "lib64"};

bool isSdkFolder(std::string_view name) {
    return std::any_of(std::begin(sdkFolders), std::end(sdkFolders), [name](std::string_view folder) {
        return name.size() == folder.size() && strncasecmp(name.data(), folder.data(), name.size()) == 0;
    });
}

/** The path before the run of '/' that ends at `slash`; the root is kept. */
std::string_view before(std::string_view path, std::size_t slash) {
    const std::size_t last = path.find_last_not_of('/', slash);
    return path.substr(0, last != std::string_view::npos ? last + 1 : 1);
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

/** Copies a path; a relative one is resolved against the LoadDirectory. False if there is no room. */
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

std::string_view sdkDirectoryAbove(std::string_view path) {
    std::size_t slash = path.rfind('/');
    while (slash != std::string_view::npos && slash != 0) {
        path = before(path, slash);
        slash = path.rfind('/');
        if (slash != std::string_view::npos && isSdkFolder(path.substr(slash + 1)))
            return before(path, slash);
    }
    return {};
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
    const bool isKnown = findOwnPath(directory, directory, sizeof directory);
    const std::string_view found = isKnown ? sdkDirectoryAbove(directory) : std::string_view();
    if (!found.empty()) {
        directory[found.size()] = '\0';
    } else {
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
