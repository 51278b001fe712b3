/** Fixture for tests of parameters: one brought-up handle on a virtual board. */
#ifndef TESTS_SUPPORT_PARAMETER_TEST_H
#define TESTS_SUPPORT_PARAMETER_TEST_H

#include "applet_host/AppletHost.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

using Lines = std::vector<std::string>;

/** The loaded libraries, shared by all tests of the process. */
inline applet_host::AppletHost& appletHost() {
    static applet_host::AppletHost host;
    return host;
}

/** The accesses that a board has seen since its log was cleared. */
inline Lines logOf(LOOMdevice* device) {
    const auto& board = appletHost().board();
    Lines lines(board.log_size(device));
    for (std::size_t i = 0; i < lines.size(); ++i) {
        char text[512] = "";
        EXPECT_GT(board.log_line(device, i, text, sizeof text), 0);
        lines[i] = text;
    }
    return lines;
}

/** The lines of an expected listing in tests/data. */
inline Lines dataLines(const std::string& name) {
    std::ifstream file(std::string(TEST_DATA_DIR) + "/" + name);
    EXPECT_TRUE(file) << name;
    Lines lines;
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    return lines;
}

/** Searches a chain or the children of a group for a parameter. */
inline RegisterInfo* findRecord(RegisterInfo* first, int id) {
    for (RegisterInfo* record = first; record != nullptr; record = record->next) {
        if (record->kind != REGISTER_KIND_GROUP && record->id == id) return record;
        if (record->kind != REGISTER_KIND_GROUP) continue;
        for (int i = 0; i < record->value.group.childCount; ++i)
            if (RegisterInfo* found = findRecord(record->value.group.children[i], id)) return found;
    }
    return nullptr;
}

class ParameterTest : public testing::Test {
protected:
    explicit ParameterTest(int flags = 0) : session(appletHost(), flags) {
        EXPECT_EQ(session.error, 0);
        board.log_clear(session.device);
    }

    int set(int id, std::uint32_t value) {
        return applet.Fg_setParameterWithType(session.fg(), id, &value, 0, FG_PARAM_UINT32);
    }
    int set(int id, double value) {
        return applet.Fg_setParameterWithType(session.fg(), id, &value, 0, FG_PARAM_DOUBLE);
    }
    template <typename T> T get(int id) {
        T value{};
        const int tag = std::is_same_v<T, double> ? FG_PARAM_DOUBLE : FG_PARAM_UINT32;
        EXPECT_EQ(applet.Fg_getParameterWithType(session.fg(), id, &value, 0, tag), 0) << id;
        return value;
    }
    int lastError() { return applet.Fg_getLastErrorNumber(session.fg()); }

    Lines log() { return logOf(session.device); }
    void clearLog() { board.log_clear(session.device); }
    /** The log up to its last write: what a setter does before it refreshes published limits. */
    Lines logToLastWrite() {
        Lines lines = log();
        while (!lines.empty() && lines.back().rfind("set ", 0) != 0)
            lines.pop_back();
        return lines;
    }
    void poke(const std::string& name, std::int64_t value) {
        ASSERT_EQ(board.poke_int(session.device, name.c_str(), value), VBOARD_OK) << name;
    }
    RegisterInfo* record(int id) {
        RegisterInfo* found = findRecord(applet.Fg_getParameterInfo(session.fg(), 0), id);
        if (found == nullptr) throw std::runtime_error("no record of parameter " + std::to_string(id));
        return found;
    }
    std::uint32_t maximum(int id) { return record(id)->value.u32.maximum; }

    const applet_host::AppletFunctions& applet = appletHost().applet();
    const applet_host::BoardFunctions& board = appletHost().board();
    applet_host::Session session;
};

#endif
