#include "entry/FgLoomWrapper.h"

#include "entry/LiveObjects.h"
#include "templates/patterns/LibraryGuard.h"

#include <bit>
#include <cstring>
#include <dlfcn.h>
#include <pthread.h>

using vexo::tools::logging::Logger;
using vexo::tools::logging::Logging;

namespace {

std::atomic<LOOMdevice*> lastDevice{nullptr};
std::atomic<fpga_design*> lastDesign{nullptr};

template <typename Word> Word* exchanged(std::atomic<Word*>& word, Word* fresh) {
    if (fresh != nullptr) word.store(fresh, std::memory_order_release);
    return word.load(std::memory_order_acquire);
}

} // namespace

FgLoomWrapperPrivate::~FgLoomWrapperPrivate() {
    if (libraryHandle != nullptr) dlclose(libraryHandle);
    if (designHandle != nullptr) TslUnloadTslFile(designHandle);
}

FgLoomWrapper::FgLoomWrapper(int ports) : m_private(std::make_unique<FgLoomWrapperPrivate>(ports)) {
    LibraryInitController::init();
    LiveObjects::add(this);
}

FgLoomWrapper::~FgLoomWrapper() {
    LiveObjects::remove(this);
    m_private.reset();
    LibraryInitController::deinit();
}

Logger* FgLoomWrapper::lazyLogger(std::atomic<Logger*>& cache, const char* name) {
    Logger* known = cache.load(std::memory_order_acquire);
    if (known == nullptr) {
        known = Logging::instance()->getLogger(name);
        cache.store(known, std::memory_order_release);
    }
    return known;
}

void FgLoomWrapper::writeLine(Logger& logger, std::uint32_t level, const std::string& text) {
    logger.log(level, ("thread-id=" + std::to_string(pthread_self()) + '|' + text).c_str(), 0, 0);
}

Logger* FgLoomWrapper::logger() { return lazyLogger(m_logger, "vexo.wrapper.FgLoomWrapper"); }

void FgLoomWrapper::initHandles(LOOMdevice* device, fpga_design* design) {
    m_private->boardHandle = device;
    m_private->designHandle = design;
}

int FgLoomWrapper::end(FgLoomWrapper* wrapper) {
    // Called even without an inner handle, and before the runtime's library is closed.
    const int result = callOr(FG_OK, wrapper->wrapperFg().Fg_FreeGrabber, wrapper->grabcoreFg());
    delete wrapper;
    return result;
}

LOOMdevice* FgLoomWrapper::accessDeviceHandle(LOOMdevice* device) { return exchanged(lastDevice, device); }

fpga_design* FgLoomWrapper::accessDesignHandle(fpga_design* design) { return exchanged(lastDesign, design); }

RegisterInfo* FgLoomWrapper::Fg_getParameterInfo(int index) { return parameterInfo().getRegisterInfo(index); }

std::uint64_t FgLoomWrapper::Fg_getEventMask(const char* name) {
    if (name == nullptr) return 0;
    for (int number = 0; number < 64; ++number) {
        const TslEvent* event = TslGetEvent(designHandle(), number);
        if (event != nullptr && event->name != nullptr && std::strcmp(event->name, name) == 0)
            return std::uint64_t{1} << number;
    }
    return 0;
}

const char* FgLoomWrapper::Fg_getEventName(std::uint64_t mask) {
    if (!std::has_single_bit(mask)) return nullptr;
    const TslEvent* event = TslGetEvent(designHandle(), std::countr_zero(mask));
    return event != nullptr ? event->name : nullptr;
}
