// The design loader, libtslrt.so. Any image is accepted: the tables define the design.

#include "vexo/design_loader.h"

#include "vexo/fg_errors.h"
#include "virtual_board/board/Design.h"
#include "virtual_board/tables/design_tables.h"

#include <fstream>

namespace {

/** Type code of the designs that this board accepts. */
constexpr int designType = 1880;

fpga_design* load() {
    auto design = vboard::Design::load();
    return design != nullptr ? new fpga_design{std::move(design)} : nullptr;
}

const vboard::RegisterRow* registerOf(fpga_design* design, int id) {
    const int row = design != nullptr ? vboard::findRegister(id) : -1;
    return row >= 0 ? &vboard::registerRows()[static_cast<std::size_t>(row)] : nullptr;
}

} // namespace

fpga_design* TslLoadDesignFromBuffer(const void* image, size_t size, int) {
    return image != nullptr && size != 0 ? load() : nullptr;
}

fpga_design* TslLoadTslFileWithType(const char* name, int type, int) {
    if (name == nullptr || type != designType) return nullptr;
    std::ifstream file(name, std::ios::binary);
    return file.peek() != std::ifstream::traits_type::eof() ? load() : nullptr;
}

int TslUnloadTslFile(fpga_design* design) {
    if (design == nullptr) return FG_ERR_INVALID_HANDLE;
    delete design;
    return FG_OK;
}

int TslGetNrOfRegister(fpga_design* design) {
    return design != nullptr ? static_cast<int>(vboard::registerRows().size()) : 0;
}

const char* TslGetRegisterName(fpga_design* design, int index) {
    if (index < 1 || index > TslGetNrOfRegister(design)) return nullptr;
    return vboard::registerRows()[static_cast<std::size_t>(index) - 1].name;
}

int TslGetRegisterByName(fpga_design* design, const char* name) {
    const int row = design != nullptr && name != nullptr ? vboard::findRegister(name) : -1;
    return row >= 0 ? vboard::registerRows()[static_cast<std::size_t>(row)].id : 0;
}

int TslGetRegisterBitRange(fpga_design* design, int reg) {
    const auto* row = registerOf(design, reg);
    return row != nullptr ? row->bits : 0;
}

int TslGetRegisterDirection(fpga_design* design, int reg) {
    const auto* row = registerOf(design, reg);
    return row != nullptr && row->writable ? 1 : 0;
}

const TslEvent* TslGetEvent(fpga_design* design, int index) {
    return design != nullptr ? design->design->event(index) : nullptr;
}
