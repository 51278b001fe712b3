// libtslrt.so: the design loader.

#include "board.h"

#include <cstring>
#include <fstream>

#pragma GCC visibility push(default)

using namespace vboard;

namespace {

/** A design as it is at this moment; null if designs are refused. */
fpga_design* load() {
    DesignState& state = DesignState::instance();
    const std::lock_guard guard(state.mutex);
    if (state.refuseDesign) return nullptr;
    auto design = std::make_unique<fpga_design>();
    for (std::size_t i = 0; i < events.size(); ++i)
        if (!state.lackingEvent[i]) design->events.push_back(events[i]);
    for (int i = 0; i < state.extraEvents; ++i)
        design->extraNames.push_back("Extra" + std::to_string(i));
    for (const std::string& name : design->extraNames)
        design->events.push_back({1, name.c_str()});
    ++LiveCounts::instance().designs;
    return design.release();
}

bool isRegister(int reg) { return reg >= 1 && static_cast<std::size_t>(reg) <= registers.size(); }

const Register& registerAt(int reg) { return registers[static_cast<std::size_t>(reg) - 1]; }

} // namespace

fpga_design* TslLoadDesignFromBuffer(const void* image, size_t size, int) {
    return image != nullptr && size > 0 ? load() : nullptr;
}

fpga_design* TslLoadTslFileWithType(const char* name, int, int) {
    return name != nullptr && std::ifstream(name).good() ? load() : nullptr;
}

int TslUnloadTslFile(fpga_design* design) {
    if (design == nullptr) return badHandle;
    delete design;
    --LiveCounts::instance().designs;
    return accepted;
}

int TslGetNrOfRegister(fpga_design* design) {
    return design != nullptr ? static_cast<int>(registers.size()) : 0;
}

const char* TslGetRegisterName(fpga_design* design, int index) {
    return design != nullptr && isRegister(index) ? registerAt(index).name : nullptr;
}

int TslGetRegisterByName(fpga_design* design, const char* name) {
    for (int reg = 1; design != nullptr && name != nullptr && isRegister(reg); ++reg)
        if (std::strcmp(registerAt(reg).name, name) == 0) return reg;
    return 0;
}

int TslGetRegisterBitRange(fpga_design* design, int reg) {
    return design != nullptr && isRegister(reg) ? registerAt(reg).bits : 0;
}

int TslGetRegisterDirection(fpga_design* design, int reg) {
    return design != nullptr && isRegister(reg) && registerAt(reg).writable ? 1 : 0;
}

const TslEvent* TslGetEvent(fpga_design* design, int index) {
    if (design == nullptr || index < 0 || static_cast<std::size_t>(index) >= design->events.size())
        return nullptr;
    return &design->events[static_cast<std::size_t>(index)];
}

#pragma GCC visibility pop
