// A C++ host with its own exceptions and streams; also built with a C++ runtime of its own.
#include "host_session.h"

#include <exception>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>

static_assert(std::is_standard_layout_v<RegisterInfo>);
static_assert(std::is_same_v<decltype(&Fg_getEventName), const char* (*)(Fg_Struct*, uint64_t)>);

namespace {

/** A handle that is freed while the host's exception unwinds; the library throws and catches exceptions
 *  meanwhile. */
class PassedHandle {
public:
    explicit PassedHandle(LOOMdevice* device) : m_object(Std_entry(device, &m_error, 0)) {}
    ~PassedHandle() {
        const uint32_t odd = 2047;
        check(std::uncaught_exceptions() == 1, "no exception on its way");
        check(Fg_setParameterWithType(fg(), FG_WIDTH, &odd, 0, FG_PARAM_UINT32) == FG_ERR_GRANULARITY,
              "odd width");
        check(Fg_FreeGrabber(fg()) == FG_OK, "not freed");
    }
    PassedHandle(const PassedHandle&) = delete;
    PassedHandle& operator=(const PassedHandle&) = delete;

    Fg_Struct* fg() { return reinterpret_cast<Fg_Struct*>(&m_object); }

private:
    int m_error = 1;
    void* m_object;
};

void failingWork(LOOMdevice* device) {
    PassedHandle handle(device);
    double exposure = 0;
    Fg_getParameterWithType(handle.fg(), FG_LINEEXPOSURE, &exposure, 0, FG_PARAM_DOUBLE);
    std::ostringstream text;
    text << "exposure " << exposure;
    throw std::runtime_error(text.str());
}

} // namespace

int main() {
    hostSession();
    LOOMdevice* device = vboard_open();
    std::string caught;
    try {
        failingWork(device);
    } catch (const std::exception& failure) {
        caught = failure.what();
    }
    check(caught == "exposure 19", "the host's exception did not arrive");
    vboard_close(device);
    return hostSession() != 0;
}
