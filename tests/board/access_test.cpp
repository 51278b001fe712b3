// Accesses to parameters and registers: values, refusals, the log, faults.

#include "support/board_session.h"
#include "vexo/fg_errors.h"

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace {

using board_session::Lines;
using board_session::red;
using board_session::VirtualBoard;
using board_session::width;

const std::string period = "Device1_Process0_Trigger_Trigger_ExsyncPeriod";
const std::string temperature = "Device1_Process0_BoardStatus_FpgaTemperature";

TEST_F(VirtualBoard, NumbersAreAccessedWithEveryTagAndLogged) {
    EXPECT_EQ(set(width, FG_PARAM_INT64, std::int64_t{2048}), 0);
    EXPECT_EQ(set(period, FG_PARAM_UINT32, 150u), 0);
    EXPECT_EQ(set(period, FG_PARAM_DOUBLE, 0.1 + 0.2), 0);
    EXPECT_EQ(set("Device2_LinkMonitor_Skew", FG_PARAM_DOUBLE, -1e300), 0);
    std::array<std::uint32_t, 2> guarded{0, 77};
    EXPECT_EQ(get(width, FG_PARAM_UINT32, guarded), 0);
    EXPECT_EQ(guarded, (std::array<std::uint32_t, 2>{2048, 77}));
    double asDouble = 0;
    EXPECT_EQ(get(width, FG_PARAM_DOUBLE, asDouble), 0);
    EXPECT_EQ(asDouble, 2048.0);
    std::int64_t skew = 0;
    EXPECT_EQ(get("Device2_LinkMonitor_Skew", FG_PARAM_INT64, skew), 0);
    EXPECT_EQ(skew, INT64_MIN);
    EXPECT_EQ(set("Device2_LinkMonitor_Skew", FG_PARAM_DOUBLE, std::numeric_limits<double>::quiet_NaN()), 0);
    EXPECT_EQ(get("Device2_LinkMonitor_Skew", FG_PARAM_INT64, skew), 0);
    EXPECT_EQ(skew, 0);
    EXPECT_EQ(log(),
              (Lines{"set " + width + " i64 2048", "set " + period + " u32 150",
                     "set " + period + " f64 0.30000000000000004", "set Device2_LinkMonitor_Skew f64 -1e+300",
                     "get " + width + " u32 2048", "get " + width + " f64 2048",
                     "get Device2_LinkMonitor_Skew i64 -9223372036854775808",
                     "set Device2_LinkMonitor_Skew f64 nan", "get Device2_LinkMonitor_Skew i64 0"}));
}

TEST_F(VirtualBoard, RefusesWrongIdsTypesAndHandles) {
    double number = 1;
    EXPECT_EQ(set(temperature, FG_PARAM_DOUBLE, number), FG_ERR_NOT_AVAILABLE);
    EXPECT_EQ(set(width, 77, number), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(get(red, FG_PARAM_UINT32, number), FG_ERR_INVALID_ARGUMENT);
    const auto setTyped = RUNTIME(setParameterWithType);
    const auto getTyped = RUNTIME(getParameterWithType);
    EXPECT_EQ(setTyped(fg, id(width), nullptr, 0, FG_PARAM_UINT32), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(getTyped(fg, id(width), &number, 1, FG_PARAM_UINT32), FG_ERR_INVALID_ARGUMENT);
    for (const int unknown : {0, -1, 10000, 20000, INT32_MIN, INT32_MAX})
        EXPECT_EQ(getTyped(fg, unknown, &number, 0, FG_PARAM_DOUBLE), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(setTyped(nullptr, id(width), &number, 0, FG_PARAM_UINT32), FG_ERR_INVALID_HANDLE);
    EXPECT_EQ(number, 1.0);
    EXPECT_EQ(id("Device1_Process0_Nothing"), 0);
    EXPECT_EQ(id("FG_NR_OF_DMAS"), 0);
    EXPECT_EQ(log().front(), "set " + temperature + " f64 1 = -12");
    EXPECT_EQ(log().back(), "get #2147483647 f64 = -2070");
    EXPECT_EQ(RUNTIME(getLastErrorNumber)(fg), FG_ERR_INVALID_ARGUMENT);
}

TEST_F(VirtualBoard, CallsTheObserverBeforeEachAccess) {
    static LOOMdevice* watched;
    watched = device;
    std::vector<std::size_t> sizes;
    const auto watch = [](void* seen) { // the board is not locked meanwhile
        static_cast<std::vector<std::size_t>*>(seen)->push_back(BOARD(vboard_log_size)(watched));
    };
    BOARD(vboard_on_access)(device, watch, &sizes);
    std::uint64_t word = 0;
    const auto accessAll = [&] {
        set(width, FG_PARAM_UINT32, 7u);
        get(width, FG_PARAM_UINT64, word);
        BOARD(VexoRegisterWrite)(device, 0, 1);
        BOARD(VexoRegisterRead)(device, 0, &word);
    };
    accessAll();
    EXPECT_EQ(sizes, (std::vector<std::size_t>{0, 1, 2, 3})); // resolving a name is not logged
    BOARD(vboard_on_access)(device, nullptr, nullptr);
    accessAll();
    BOARD(vboard_on_access)(device, watch, &sizes);
    BOARD(vboard_reset)(device);
    accessAll();
    EXPECT_EQ(sizes.size(), 4u);
}

TEST_F(VirtualBoard, StoresFieldsAndReturnsTexts) {
    std::uint32_t run[] = {7, 8, 9};
    const FieldParameterAccess some{FG_PARAM_UINT32, 16381, 3, run};
    EXPECT_EQ(set(red, FG_PARAM_FIELD_ACCESS, some), 0);
    EXPECT_EQ(set(red, FG_PARAM_FIELD_ACCESS, FieldParameterAccess{FG_PARAM_UINT32, 16382, 3, run}),
              FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(set(red, FG_PARAM_FIELD_ACCESS, FieldParameterAccess{FG_PARAM_UINT32, ~0u, 2, run}),
              FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(set(red, FG_PARAM_FIELD_INT, FieldParameterInt_s{5, 16380}), 0);
    double wide[4] = {};
    FieldParameterAccess all{FG_PARAM_DOUBLE, 16380, 4, wide};
    EXPECT_EQ(get(red, FG_PARAM_FIELD_ACCESS, all), 0);
    EXPECT_EQ((std::vector<double>(wide, wide + 4)), (std::vector<double>{5, 7, 8, 9}));
    FieldParameterInt_s element{0, 16382};
    EXPECT_EQ(get(red, FG_PARAM_FIELD_INT, element), 0);
    EXPECT_EQ(element.value, 8u);
    EXPECT_EQ(log()[0], "set " + red + " field 16381+3");
    EXPECT_EQ(log()[3], "set " + red + " field 16380+1");

    const std::string uid = "Device1_Process0_AppletProperties_AppletUid";
    BOARD(vboard_poke_text)(device, uid.c_str(), "ABC");
    std::array<char, 6> buffer{'x', 'x', 'x', 'x', 'x', 'x'};
    EXPECT_EQ(get(uid, FG_PARAM_TEXT, buffer), 0);
    EXPECT_EQ(std::string(buffer.data(), 6), std::string("ABC\0xx", 6));
    char* text = nullptr;
    EXPECT_EQ(get(uid, FG_PARAM_ALLOCATED_STRING, text), 0);
    EXPECT_STREQ(text, "ABC");
    EXPECT_EQ(BOARD(vboard_live)("strings"), 1);
    EXPECT_EQ(log().back(), "get " + uid + " text ABC");
    const auto freeText = RUNTIME(freeParameterStringWithType);
    EXPECT_EQ(freeText(fg, id(uid), text, 0, FG_PARAM_TEXT), FG_ERR_STRING_TAG);
    EXPECT_EQ(freeText(fg, id(uid), text, 0, FG_PARAM_ALLOCATED_STRING), 0);
    EXPECT_EQ(freeText(fg, id(uid), text, 0, FG_PARAM_ALLOCATED_STRING), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(get(uid, FG_PARAM_ALLOCATED_STRING, text), 0); // freed with the handle
    BOARD(vboard_poke_text)(device, uid.c_str(), "A\rB\nC");
    EXPECT_EQ(get(uid, FG_PARAM_TEXT, buffer), 0);
    EXPECT_EQ(log().back(), "get " + uid + " text A?B?C");
}

TEST_F(VirtualBoard, ResetEndsFaultsAndRestoresValues) {
    std::uint32_t value = 99;
    BOARD(vboard_fail_access)(device, 1, -7, VBOARD_FROM_THEN_ON);
    EXPECT_EQ(get(width, FG_PARAM_UINT32, value), -7);
    EXPECT_EQ(value, 99u);
    EXPECT_EQ(BOARD(VexoRegisterWrite)(device, LOADER(TslGetRegisterByName)(design, "Control"), 1), -7);
    EXPECT_EQ(BOARD(vboard_access_count)(device), 2u);
    char tight[8];
    EXPECT_EQ(BOARD(vboard_log_line)(device, 0, tight, sizeof tight), VBOARD_TOO_SMALL);
    std::string line = log()[0]; // without room for its end
    EXPECT_EQ(BOARD(vboard_log_line)(device, 0, line.data(), line.size()), VBOARD_TOO_SMALL);
    EXPECT_EQ(BOARD(vboard_log_line)(device, 2, tight, sizeof tight), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_fail_name)(device, "Nothing", -8), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_hide_entry)("Fg_Nothing", true), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_answer)(device, "Fg_InitHandle", 1), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_lack_parameter)("Nothing", true), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_alias_parameter)("Nothing", "Nothing"), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_alias_parameter)(width.c_str(), width.c_str()), VBOARD_UNKNOWN) << "taken";

    BOARD(vboard_log_kinds)(device, VBOARD_RESOLVE | VBOARD_CALL);
    BOARD(vboard_reset)(device);
    const int found = id(width);
    EXPECT_EQ(get(width, FG_PARAM_UINT32, value), 0);
    EXPECT_EQ(value, 1024u);
    EXPECT_EQ(RUNTIME(saveConfig)(fg, "file"), FG_ERR_NOT_SUPPORTED);
    const std::string resolved = "resolve " + width + " = " + std::to_string(found);
    EXPECT_EQ(log(), (Lines{resolved, resolved, "call Fg_saveConfig = -2130"}));
}

TEST_F(VirtualBoard, RegistersHaveTheirWidthAndDirection) {
    const int count = LOADER(TslGetNrOfRegister)(design);
    for (int i = 1; i <= count; ++i) {
        const int reg = LOADER(TslGetRegisterByName)(design, LOADER(TslGetRegisterName)(design, i));
        const bool writable = LOADER(TslGetRegisterDirection)(design, reg) != 0;
        std::uint64_t before = 0, after = 0;
        EXPECT_EQ(BOARD(VexoRegisterRead)(device, reg, &before), 0);
        EXPECT_EQ(BOARD(VexoRegisterWrite)(device, reg, ~before), writable ? 0 : FG_ERR_NOT_AVAILABLE);
        EXPECT_EQ(BOARD(VexoRegisterRead)(device, reg, &after), 0);
        const std::uint64_t all = ~std::uint64_t{0} >> (64 - LOADER(TslGetRegisterBitRange)(design, reg));
        EXPECT_EQ(after, writable ? ~before & all : before) << i;
    }
    EXPECT_EQ(LOADER(TslGetRegisterName)(design, 0), nullptr);
    EXPECT_EQ(LOADER(TslGetRegisterName)(design, count + 1), nullptr);
}

TEST_F(VirtualBoard, ChangesAValueAfterAReadAndStaysInUseAfterItsClose) {
    const std::string overflow = "Device1_Process0_OverflowOccurred_Status"; // reading clears it
    LOOMdevice* closed = BOARD(vboard_open)();
    Fg_Struct* last = RUNTIME(InitHandleSlaveAware)("any.tsl", closed, design, 0);
    BOARD(vboard_poke_int)(closed, overflow.c_str(), 1);
    EXPECT_EQ(BOARD(vboard_poke_after_read)(closed, overflow.c_str(), 3), VBOARD_OK);
    EXPECT_EQ(BOARD(vboard_poke_after_read)(closed, red.c_str(), 3), VBOARD_UNKNOWN);
    BOARD(vboard_close)(closed);
    EXPECT_EQ(BOARD(vboard_live)("boards"), 2);
    for (const std::uint32_t expected : {1u, 3u, 0u}) {
        std::uint32_t value = 9;
        RUNTIME(getParameterWithType)(last, id(overflow), &value, 0, FG_PARAM_UINT32);
        EXPECT_EQ(value, expected);
    }
    RUNTIME(FreeGrabber)(last);
    EXPECT_EQ(BOARD(vboard_live)("boards"), 1);
}

} // namespace
