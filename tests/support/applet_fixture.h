/** Shared by the tests through the exported functions: the loaded libraries, boards, listings, log lines. */
#ifndef TESTS_SUPPORT_APPLET_FIXTURE_H
#define TESTS_SUPPORT_APPLET_FIXTURE_H

#include "applet_host/AppletHost.h"
#include "vexo/type_tags.hpp"

#include <gtest/gtest.h>

#include <array>
#include <concepts>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace support {

using Lines = std::vector<std::string>;

/** The loaded libraries, shared by all tests of the process. */
const applet_host::AppletHost& host();
bool isLoaded(const char* library);

/** A function of the loaded design loader. */
void* loaderFunction(const char* name);
template <typename Function> Function* designLoader(const char* name) {
    return reinterpret_cast<Function*>(loaderFunction(name));
}

/** Number of live "boards", "designs", "handles" or "strings" of the virtual board. */
int live(const char* what);

/** Numbers of open files, and of all that `live` counts, to detect leaks of a call. */
std::array<long, 5> held();

/** Board or design of the last handle that was brought up. */
LOOMdevice* lastDevice();
fpga_design* lastDesign();

/** The id for direct access to a parameter of the design: a bring-up resolves its name. */
int directId(const std::string& name);

/** A register as the design loader describes it; for the last design. */
struct Register {
    std::string name;
    int id;
    int bits;
    bool writable;
};
std::vector<Register> registers();

/** The lines of a text. */
Lines linesOf(const std::string& text);
/** The lines of a file; empty if it cannot be read. */
Lines fileLines(const std::string& path);
/** An expected listing of tests/data: its lines, or each line split into words. */
Lines dataLines(const std::string& file);
std::vector<Lines> dataRows(const std::string& file);

/** Accesses, each with the name of its cause. */
using Sections = std::vector<std::pair<std::string, Lines>>;
/** Those of a start, as listed in start_up_writes.txt: the queries of the design, then a section for each
 * setter. */
Sections startUpSections();

inline Lines operator+(Lines lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

/** Calls `visit` with each record of a chain that is not a group, in the order of the tree. */
template <typename Visit> void forEachRecord(RegisterInfo* first, const Visit& visit) {
    for (RegisterInfo* record = first; record != nullptr; record = record->next) {
        if (record->kind != REGISTER_KIND_GROUP) {
            visit(*record);
            continue;
        }
        for (int i = 0; i < record->value.group.childCount; ++i)
            forEachRecord(record->value.group.children[i], visit);
    }
}

/** One board and, once brought up, one handle on it. */
class Grabber {
public:
    Grabber();
    /** Brings the handle up immediately, with the flags of Std_entry: 1 for a slave. */
    explicit Grabber(int flags) : Grabber() { bringUp(flags); }
    ~Grabber();
    Grabber(const Grabber&) = delete;
    Grabber& operator=(const Grabber&) = delete;

    /** Calls Std_entry; the code is in `error`, the object in `handle`. */
    Grabber& bringUp(int flags = 0);
    /** Calls Fg_FreeGrabber and returns its result. */
    int free();

    template <typename T> int set(int id, T value, int dma = 0, int tag = tagOf<T>) {
        return host().applet().Fg_setParameterWithType(fg(), id, &value, dma, tag);
    }
    /** Sets a parameter to a value as settable_values.txt has it. */
    int setByName(const std::string& name, const std::string& value);
    int get(int id, void* value, int dma = 0, int tag = FG_PARAM_UINT32) {
        return host().applet().Fg_getParameterWithType(fg(), id, value, dma, tag);
    }
    /** The value of a readable parameter. */
    template <typename T> T value(int id) {
        T out{};
        EXPECT_EQ(get(id, &out, 0, tagOf<T>), FG_OK) << "id " << id;
        return out;
    }
    int lastError() { return host().applet().Fg_getLastErrorNumber(fg()); }

    /** The accesses logged by the board since its log was cleared. */
    Lines log() const;
    void clearLog() { host().board().log_clear(device); }
    /** Changes a number of the design. */
    void poke(const std::string& name, std::int64_t value);
    /** Sets the widths of the memory; by default those of start_up_writes.txt. */
    Grabber& fitRam(std::int64_t address = 24, std::int64_t data = 512, std::int64_t parallelism = 32);
    /** Makes every access of a design parameter or register fail; code 0 clears that. */
    void fail(const std::string& name, int code);

    Fg_Struct* fg() { return handle.fg(); }

    LOOMdevice* const device;
    int error = 1;
    applet_host::GrabberHandle handle;
};

/** Captures the lines that the applet logs from `level` on to the standard error. Make it before the
 * observed object, while no other object exists. */
class AppletLog {
public:
    explicit AppletLog(int level);
    ~AppletLog();
    AppletLog(const AppletLog&) = delete;
    AppletLog& operator=(const AppletLog&) = delete;

    /** The lines since the last call. */
    Lines take();
    /** The line for `text` logged by this thread. */
    static std::string line(int level, const std::string& text);

private:
    int m_file;
    int m_standardError;
};

/** Restores the virtual board's design and the environment after each test. */
class AppletTest : public testing::Test {
protected:
    void TearDown() override;
    void setVariable(const char* name, const char* value);

    const applet_host::AppletFunctions& applet = host().applet();
    const applet_host::BoardFunctions& board = host().board();

private:
    Lines m_variables;
};

/** For tests of parameters: one brought-up handle. */
class ParameterTest : public AppletTest {
protected:
    explicit ParameterTest(int flags = 0) : grabber(flags) {
        EXPECT_EQ(grabber.error, FG_OK);
        clearLog();
    }

    /** A new handle on the board with its start values, as changed by `prepare`. */
    template <typename Prepare> void restart(Prepare prepare) {
        EXPECT_EQ(grabber.free(), FG_OK);
        board.reset(grabber.device);
        prepare();
        EXPECT_EQ(grabber.bringUp().error, FG_OK);
        clearLog();
    }
    /** Changes a text of the design's image path. */
    void tell(const std::string& name, const std::string& text) {
        EXPECT_EQ(board.poke_text(grabber.device, ("Device1_Process0_" + name).c_str(), text.c_str()),
                  VBOARD_OK)
            << name;
    }

    /** Changes a number of the design's image path. */
    void poke(const std::string& name, std::int64_t value) {
        grabber.poke("Device1_Process0_" + name, value);
    }

    template <typename T> int set(int id, T value) { return grabber.set(id, value); }
    /** Accepted values, in this order. */
    void setAll(std::initializer_list<std::pair<int, std::uint32_t>> values) {
        for (const auto& [id, value] : values)
            EXPECT_EQ(set(id, value), FG_OK) << id << " = " << value;
    }
    template <typename T> T get(int id) { return grabber.value<T>(id); }
    int setText(int id, const std::string& value) {
        return applet.Fg_setParameterWithType(grabber.fg(), id, value.c_str(), 0, FG_PARAM_TEXT);
    }
    /** A text parameter as the library returns it. */
    std::string text(int id);
    int lastError() { return grabber.lastError(); }
    Lines log() { return grabber.log(); }
    void clearLog() { grabber.clearLog(); }
    /** The log up to its last write, that is, without the refresh of published limits. */
    Lines logToLastWrite();
    RegisterInfo* tree() { return applet.Fg_getParameterInfo(grabber.fg(), 0); }
    /** The parameter's record in the tree. */
    RegisterInfo* record(int id);

    Grabber grabber;
};

} // namespace support

#endif
