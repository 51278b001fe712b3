#include "stub_applet.h"

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <thread>

namespace {

void* opened(const std::filesystem::path& library) {
    void* handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle != nullptr) return handle;
    std::fprintf(stderr, "cannot open %s: %s\n", library.c_str(), dlerror());
    std::exit(1);
}

template <typename Function> void find(void* library, const char* name, Function*& function) {
    function = reinterpret_cast<Function*>(dlsym(library, name));
}

} // namespace

std::filesystem::path libraryFolder() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path() / "lib";
}

const StubApplet& StubApplet::instance() {
    static const StubApplet applet = [] {
        std::thread([] {}).join(); // hosts have threads, and without any the C library's mutexes are cheaper
        const std::filesystem::path folder = libraryFolder();
        opened(folder / "stub/libvexo_hw.so");
        opened(folder / "stub/libtslrt.so");
        void* runtime = opened(folder / "stub/libgrabcore5.so");
        void* library = opened(folder / "libGrab_TwinLaneLineColor.so");
        StubApplet found{};
        find(library, "Std_entry", found.Std_entry);
        find(library, "Fg_setParameterWithType", found.set);
        find(library, "Fg_getParameterWithType", found.get);
        find(library, "Fg_getParameterId", found.idAt);
        find(library, "Fg_getParameterIdByName", found.idByName);
        find(library, "Fg_saveConfig", found.save);
        find(library, "Fg_loadConfig", found.load);
        find(library, "Fg_getParameterInfoXML", found.document);
        find(library, "Fg_FreeGrabber", found.free);
        find(runtime, "Fg_setParameterWithType", found.runtimeSet);
        find(runtime, "Fg_getParameterWithType", found.runtimeGet);
        find(runtime, "Fg_getParameterIdByName", found.runtimeIdByName);
        return found;
    }();
    return applet;
}
