#include "device/Libraries.h"

#include "base/Error.h"

#include <dlfcn.h>

#include <atomic>
#include <mutex>

namespace producer {

namespace {

std::atomic<std::uint64_t> loads{0};

} // namespace

std::uint64_t timesLoaded() { return loads; }

std::filesystem::path producerFile() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&producerFile), &info) == 0 || info.dli_fname == nullptr)
        return {};
    std::error_code ignored;
    return std::filesystem::absolute(info.dli_fname, ignored);
}

Libraries loadLibraries() {
    static std::mutex mutex;
    static std::weak_ptr<const applet_host::AppletHost> loaded;
    const std::lock_guard lock(mutex);
    if (Libraries libraries = loaded.lock()) return libraries;
    try {
        Libraries libraries = std::make_shared<const applet_host::AppletHost>();
        loaded = libraries;
        ++loads;
        return libraries;
    } catch (const applet_host::HostError& error) {
        throw Error(GC_ERR_IO,
                    std::string(error.what()) +
                        "; VEXO_LIBRARY_DIR can name the folder of the applet library, which has the "
                        "virtual board's in virtual-board/");
    }
}

} // namespace producer
