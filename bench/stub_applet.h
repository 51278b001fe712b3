/** The applet library on platform libraries that do nothing. */
#ifndef BENCH_STUB_APPLET_H
#define BENCH_STUB_APPLET_H

#include "vexo/fg_api.h"
#include "vexo/grabber_runtime.h"

#include <filesystem>

/** Folder of the build's libraries. */
std::filesystem::path libraryFolder();

/** The measured functions, and the two functions of the runtime that the minimum call uses. */
struct StubApplet {
    decltype(&::Std_entry) Std_entry;
    decltype(&::Fg_setParameterWithType) set;
    decltype(&::Fg_getParameterWithType) get;
    decltype(&::Fg_getParameterId) idAt;
    decltype(&::Fg_getParameterIdByName) idByName;
    decltype(&::Fg_saveConfig) save;
    decltype(&::Fg_loadConfig) load;
    decltype(&::Fg_getParameterInfoXML) document;
    decltype(&::Fg_FreeGrabber) free;
    grabcore_setParameterWithType* runtimeSet;
    grabcore_getParameterWithType* runtimeGet;
    grabcore_getParameterIdByName* runtimeIdByName;

    /** Loaded once; ends the program with a message if that fails. */
    static const StubApplet& instance();
};

inline const StubApplet& applet() { return StubApplet::instance(); }

/** A brought-up handle. */
class StubHandle {
public:
    explicit StubHandle(int flags = 0)
        : m_object(StubApplet::instance().Std_entry(nullptr, nullptr, flags)) {}
    ~StubHandle() { StubApplet::instance().free(fg()); }
    StubHandle(const StubHandle&) = delete;
    StubHandle& operator=(const StubHandle&) = delete;
    Fg_Struct* fg() { return reinterpret_cast<Fg_Struct*>(&m_object); }

private:
    void* m_object;
};

#endif
