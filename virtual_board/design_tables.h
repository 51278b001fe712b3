/** What the modelled design consists of: its parameters, registers and events. */
#ifndef VIRTUAL_BOARD_DESIGN_TABLES_H
#define VIRTUAL_BOARD_DESIGN_TABLES_H

#include "vexo/design_loader.h"

#include <cstdint>
#include <span>

namespace vboard {

enum class ValueType { U32, I32, U64, I64, F64, Text, Field };

/** One design parameter with its value at power-up. */
struct DesignParameter {
    const char* name;
    ValueType type = ValueType::U32;
    bool readOnly = false;
    double number = 0;     // numbers
    const char* text = ""; // texts
};

/** One hardware register with its value at power-up. Ids count from 1 in the order of the table. */
struct Register {
    const char* name;
    int bits;
    bool writable;
    std::uint64_t value;
};

/** A parameter of the runtime itself, reached by number only. */
struct RuntimeParameter {
    int id;
    std::uint32_t value;
};

/** Elements of an array parameter. */
inline constexpr std::uint32_t fieldElements = 16384;

// In libvexo_hw.so; the other two libraries read them.
#pragma GCC visibility push(default)
extern const std::span<const DesignParameter> designParameters;
extern const std::span<const Register> registers;
extern const std::span<const RuntimeParameter> runtimeParameters;
extern const std::span<const TslEvent> events;
#pragma GCC visibility pop

} // namespace vboard

#endif
