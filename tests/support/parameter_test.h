/** Fixture for tests of parameters: one brought-up handle on a virtual board. */
#ifndef TESTS_SUPPORT_PARAMETER_TEST_H
#define TESTS_SUPPORT_PARAMETER_TEST_H

#include "support/applet_fixture.h"

#include <stdexcept>

namespace support {

/** Searches a chain of records and the groups in it for a parameter. */
inline RegisterInfo* findRecord(RegisterInfo* first, int id) {
    for (RegisterInfo* record = first; record != nullptr; record = record->next) {
        if (record->kind != REGISTER_KIND_GROUP) {
            if (record->id == id) return record;
            continue;
        }
        for (int i = 0; i < record->value.group.childCount; ++i)
            if (RegisterInfo* found = findRecord(record->value.group.children[i], id)) return found;
    }
    return nullptr;
}

class ParameterTest : public AppletTest {
protected:
    explicit ParameterTest(int flags = 0) {
        EXPECT_EQ(grabber.bringUp(flags).error, FG_OK);
        clearLog();
    }

    template <typename T> int set(int id, T value) { return grabber.set(id, value); }
    template <typename T> T get(int id) { return grabber.value<T>(id); }
    int lastError() { return grabber.lastError(); }

    Lines log() { return grabber.log(); }
    void clearLog() { grabber.clearLog(); }
    /** The log up to its last write: what a setter does before it refreshes published limits. */
    Lines logToLastWrite() {
        Lines lines = log();
        while (!lines.empty() && !lines.back().starts_with("set "))
            lines.pop_back();
        return lines;
    }
    void poke(const std::string& name, std::int64_t value) {
        EXPECT_EQ(board.poke_int(grabber.device, name.c_str(), value), VBOARD_OK) << name;
    }
    /** Makes every access of a design parameter fail; code 0 lets it work again. */
    void fail(const std::string& name, int code) {
        EXPECT_EQ(board.fail_name(grabber.device, name.c_str(), code), VBOARD_OK) << name;
    }
    RegisterInfo* tree() { return applet.Fg_getParameterInfo(grabber.fg(), 0); }
    RegisterInfo* record(int id) {
        RegisterInfo* found = findRecord(tree(), id);
        if (found == nullptr) throw std::runtime_error("no record of parameter " + std::to_string(id));
        return found;
    }

    Grabber grabber;
};

} // namespace support

#endif
