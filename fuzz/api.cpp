// The input is a list of calls on two handles, each with a separate board. A call is one byte for the
// function, one for the handle and the arguments of the function. After each call the invariants of its
// handle must hold, and the other handle must be unchanged.

#include "applet_host/AppletHost.h"
#include "invariants.h"
#include "support/temporary_folder.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace {

using fuzz::Input;
using fuzz::require;

constexpr std::size_t mostCalls = 40;

/** The outputs of a get: the result, a number or an element of a table, and a text. */
struct Answer {
    int result;
    std::array<std::uint64_t, 2> value{};
    std::string text;
    bool operator==(const Answer&) const = default;
};

class Calls {
public:
    Calls() {
        std::filesystem::current_path(m_folder / "");
        std::filesystem::create_directory("folder.mcf");
        std::filesystem::create_symlink("/dev/full", "full.mcf");
        support::writeFile("table.lut", "nrOfElements=2;\n[red]\n0,1;\n1,70000;\n[green]\n0,4;\n");
        for (One& one : m_both)
            one.device = m_board.open();
        One& one = m_both[0];
        open(one, 0);
        require(m_applet.Fg_saveConfig(one.fg(), "sound.mcf") == FG_OK, "a save");
        for (int i = 0; i < m_applet.Fg_getNrOfParameter(one.fg()); ++i)
            m_ids.push_back(m_applet.Fg_getParameterId(one.fg(), i));
        close(one);
    }
    ~Calls() {
        for (One& one : m_both)
            m_board.close(one.device);
    }
    Calls(const Calls&) = delete;
    Calls& operator=(const Calls&) = delete;

    void run(Input input) {
        for (One& one : m_both)
            m_board.reset(one.device);
        m_hasDocument = false;
        open(m_both[0], 1); // a start without defaults is faster
        for (std::size_t i = 0; i < mostCalls && !input.isEmpty(); ++i) {
            const auto function = functions[input.byte() % std::size(functions)];
            const std::size_t which = input.byte() % 2;
            const One& other = m_both[1 - which];
            const std::size_t seen = m_board.log_size(other.device);
            (this->*function)(m_both[which], input);
            require(m_board.log_size(other.device) == seen, "a call reaches its own board only");
        }
        for (One& one : m_both)
            if (one.handle.object != nullptr) close(one);
        for (const char* what : {"handles", "designs", "strings"})
            require(m_board.live(what) == 0, "nothing is left behind");
    }

private:
    struct One {
        LOOMdevice* device = nullptr;
        applet_host::GrabberHandle handle;
        Fg_Struct* fg() { return handle.fg(); }
    };
    using Function = void (Calls::*)(One& one, Input& input);

    /** Without an object each function must refuse; with one the last error must be the result. */
    int stored(One& one, int result) {
        const bool isOpen = one.handle.object != nullptr;
        require(m_applet.Fg_getLastErrorNumber(one.fg()) == (isOpen ? result : FG_ERR_INVALID_HANDLE),
                "the last error is the result");
        require(isOpen || result == FG_ERR_INVALID_HANDLE, "a handle without an object is refused");
        return result;
    }

    void open(One& one, int flags) {
        int error = 1;
        one.handle.object = m_applet.Std_entry(one.device, &error, flags);
        require(one.handle.object != nullptr && error == FG_OK, "an object comes up");
        m_board.attach_applet(one.device, one.fg(), m_applet.Fg_saveConfig, m_applet.Fg_loadConfig);
    }
    void close(One& one) {
        require(m_applet.Fg_FreeGrabber(one.fg()) == FG_OK && one.handle.object == nullptr, "an object goes");
    }
    void openOrClose(One& one, Input& input) {
        const int flags = input.byte() % 2 != 0;
        if (one.handle.object == nullptr)
            open(one, flags);
        else
            close(one);
    }

    int chooseId(Input& input) {
        const unsigned choice = input.byte();
        return choice < m_ids.size() ? m_ids[choice] : input.integer();
    }
    /** Mostly a file that can be read but not written. */
    const char* choosePath(Input& input) {
        static constexpr const char* paths[] = {"sound.mcf", "table.lut", "folder.mcf", "none/a.mcf",
                                                "none.mcf",  "a.mcf.bak", "",           "full.mcf"};
        return paths[input.byte() % std::size(paths)];
    }
    static bool isWritten(int id) { return id == FG_LUT_SAVE_FILE || id == FG_DEBUGSAVECONFIG; }

    /** The kind of a parameter's record; without an object, or for one without a record, that of numbers. */
    int kindOf(One& one, int id) const {
        const RegisterInfo* record = find(m_applet.Fg_getParameterInfo(one.fg(), 0), id);
        return record != nullptr ? record->kind : REGISTER_KIND_UINT;
    }

    Answer get(One& one, int id) {
        Answer answer{};
        answer.result =
            m_applet.Fg_getParameterWithType(one.fg(), id, answer.value.data(), 0, FG_PARAM_ALLOCATED_STRING);
        stored(one, answer.result);
        if (answer.result != FG_OK || kindOf(one, id) != REGISTER_KIND_STRING) return answer;
        char* text = reinterpret_cast<char*>(answer.value[0]);
        answer.text = text;
        answer.value = {};
        require(m_applet.Fg_freeParameterStringWithType(one.fg(), id, text, 0, FG_PARAM_ALLOCATED_STRING) ==
                    FG_OK,
                "a text is taken back");
        require(m_applet.Fg_freeParameterStringWithType(one.fg(), id, text, 0, FG_PARAM_ALLOCATED_STRING) !=
                    FG_OK,
                "a text is taken back once");
        return answer;
    }
    void get(One& one, Input& input) {
        const int id = chooseId(input);
        require(get(one, id) == get(one, id), "a get changes nothing");
    }

    int setBytes(One& one, int id, const void* value, Input& input) {
        static constexpr FgParamTypes tags[] = {FG_PARAM_INT32, FG_PARAM_DOUBLE, FG_PARAM_TEXT,
                                                FG_PARAM_FIELD_INT};
        const unsigned choice = input.byte();
        const FgParamTypes tag = tags[choice % 4];
        return stored(one, m_applet.Fg_setParameterWithType(one.fg(), id, value, choice == 255, tag));
    }
    int setRun(One& one, int id, Input& input) {
        std::array<std::uint64_t, 64> elements;
        elements.fill(input.word());
        FieldParameterAccess run{static_cast<int>(input.byte()), static_cast<std::uint32_t>(input.word()),
                                 input.byte() % 64, elements.data()};
        const int result = m_applet.Fg_setParameterWithType(one.fg(), id, &run, 0, FG_PARAM_FIELD_ACCESS);
        stored(one, m_applet.Fg_getParameterWithType(one.fg(), id, &run, 0, FG_PARAM_FIELD_ACCESS));
        return result;
    }
    /** Whether a value is among the published limits or entries. */
    bool isAllowed(One& one, int id, const void* value) {
        const RegisterInfo* record = find(m_applet.Fg_getParameterInfo(one.fg(), 0), id);
        if (record == nullptr || id == FG_YOFFSET) return true; // accepts one line more than it publishes
        if (record->kind == REGISTER_KIND_UINT) return isInside<std::uint32_t>(record->value.u32, value);
        if (record->kind == REGISTER_KIND_DOUBLE) return isInside<double>(record->value.f64, value);
        if (record->kind != REGISTER_KIND_ENUM) return true;
        std::int32_t entry = 0;
        std::memcpy(&entry, value, sizeof entry);
        const auto& entries = record->value.enumeration;
        return std::find(entries.values, entries.values + entries.entryCount, entry) !=
               entries.values + entries.entryCount;
    }
    template <typename T, typename Limits> static bool isInside(const Limits& limits, const void* value) {
        T number{};
        std::memcpy(&number, value, sizeof number);
        // Some limits are empty, and some are empty at first. NaN is not outside of any limits.
        return limits.minimum >= limits.maximum || !(number < limits.minimum || number > limits.maximum);
    }
    static const RegisterInfo* find(const RegisterInfo* record, int id) {
        for (; record != nullptr; record = record->next) {
            if (record->kind != REGISTER_KIND_GROUP && record->id == id) return record;
            for (int i = 0; record->kind == REGISTER_KIND_GROUP && i < record->value.group.childCount; ++i)
                if (const RegisterInfo* found = find(record->value.group.children[i], id)) return found;
        }
        return nullptr;
    }

    void set(One& one, Input& input) {
        const int id = chooseId(input);
        const Answer old = get(one, id);
        int result = FG_OK;
        if (kindOf(one, id) == REGISTER_KIND_STRING) {
            const bool isPath = isWritten(id) || input.byte() % 2 != 0;
            const std::string text = isPath ? choosePath(input) : input.text();
            if (id == FG_LUT_SAVE_FILE && text != "none/a.mcf") return; // writing a whole table is slow
            result = setBytes(one, id, text.c_str(), input);
        } else if (kindOf(one, id) == REGISTER_KIND_UINT_FIELD && input.byte() % 2 != 0) {
            result = setRun(one, id, input);
        } else {
            const std::uint64_t value[2] = {chooseNumber(one, id, input), 0};
            const bool allowed = isAllowed(one, id, value);
            result = setBytes(one, id, value, input);
            require(result != FG_OK || allowed, "what is taken is inside the limits", id);
        }
        if (result != FG_OK) require(get(one, id) == old, "what is refused leaves the old value", id);
    }
    /** Any number, a small one, or one at the published limits. */
    std::uint64_t chooseNumber(One& one, int id, Input& input) {
        const unsigned choice = input.byte();
        if (choice % 4 == 0) return input.word();
        if (choice % 4 == 1) return input.byte();
        const RegisterInfo* record = find(m_applet.Fg_getParameterInfo(one.fg(), 0), id);
        if (record == nullptr) return choice;
        std::uint64_t number = 0;
        if (record->kind == REGISTER_KIND_UINT) {
            const auto& limits = record->value.u32;
            return (choice % 4 == 2 ? limits.maximum : limits.minimum) + (choice / 4) % 4 * limits.increment;
        }
        if (record->kind == REGISTER_KIND_DOUBLE) {
            const double value = choice % 4 == 2 ? record->value.f64.maximum : choice / 4.0;
            std::memcpy(&number, &value, sizeof number);
        }
        if (record->kind == REGISTER_KIND_ENUM)
            number = static_cast<std::uint32_t>(
                record->value.enumeration
                    .values[choice / 4 % static_cast<unsigned>(record->value.enumeration.entryCount)]);
        return number;
    }

    void names(One& one, Input& input) {
        const std::string name = input.text();
        const int index = input.integer();
        const char* given = m_applet.Fg_getParameterName(one.fg(), index);
        if (given != nullptr && index < static_cast<int>(m_ids.size()))
            require(m_applet.Fg_getParameterIdByName(one.fg(), given) ==
                        m_applet.Fg_getParameterId(one.fg(), index),
                    "name and index lead to one id");
        m_applet.Fg_getParameterIdByName(one.fg(), name.c_str());
        const std::uint64_t mask = m_applet.Fg_getEventMask(one.fg(), name.c_str());
        const char* event = m_applet.Fg_getEventName(one.fg(), mask);
        require(mask == 0 || (event != nullptr && name == event), "an event's name comes back");
        m_applet.Fg_getEventName(one.fg(), input.word());
    }
    void save(One& one, Input& input) { file(one, m_applet.Fg_saveConfig, input, FG_ERR_SAVE_CONFIG); }
    void load(One& one, Input& input) { file(one, m_applet.Fg_loadConfig, input, FG_ERR_LOAD_CONFIG); }
    void file(One& one, int (*function)(Fg_Struct*, const char*), Input& input, int lastError) {
        const unsigned choice = input.byte();
        // Its own state, which a load does not change.
        const char* path = function == m_applet.Fg_loadConfig && choice % 2 == 0 ? "sound.mcf"
                           : choice % 16 == 1                                    ? nullptr
                                                                                 : "state.mcf";
        if (choice % 4 == 3) path = function == m_applet.Fg_loadConfig ? choosePath(input) : "full.mcf";
        const int result = function(one.fg(), path);
        stored(one, result == FG_ERR_FILE_TYPE ? lastError : result);
    }
    void document(One& one, Input& input) {
        if (std::exchange(m_hasDocument, true)) return; // slower than all other calls
        unsigned long size = 0;
        if (stored(one, m_applet.Fg_getParameterInfoXML(one.fg(), 0, nullptr, &size)) != FG_OK) return;
        std::vector<char> text(size);
        unsigned long less = size - 1 - input.byte();
        require(stored(one, m_applet.Fg_getParameterInfoXML(one.fg(), 0, text.data(), &less)) ==
                    FG_ERR_BUFFER,
                "a document needs its room");
        require(stored(one, m_applet.Fg_getParameterInfoXML(one.fg(), 0, text.data(), &size)) == FG_OK &&
                    std::strlen(text.data()) + 1 == size && size == text.size(),
                "a document has the reported size");
    }
    void ask(One&, Input& input) {
        static constexpr int codes[] = {848,  1041, 1042, 1043, 1044, 2048, 2176, 2304, 4096, 4112, 4128,
                                        4144, 4160, 4176, 4192, 4208, 4352, 4608, 4624, 4656, 5120};
        const unsigned choice = input.byte();
        std::string text = input.text();
        text.resize(std::max<std::size_t>(text.size(), 16));
        std::uint64_t out[8] = {};
        const int code = choice < 200 ? codes[choice % std::size(codes)] : input.integer();
        if (code >= FG_INFO_CREATE_OFFLINE && code <= FG_INFO_DESTROY_OFFLINE) return offline();
        const bool hasIn = choice % 3 != 0, hasOut = choice % 5 != 0;
        m_applet.Info(code, input.integer(), static_cast<int>(input.byte()), hasIn ? text.data() : nullptr,
                      hasOut ? out : nullptr);
    }
    void offline() {
        applet_host::GrabberHandle offline;
        RegisterInfo* tree = nullptr;
        require(m_applet.Info(FG_INFO_CREATE_OFFLINE, 0, 0, nullptr, &offline.object) == FG_OK,
                "an offline object");
        require(m_applet.Info(FG_INFO_OFFLINE_TREE, 0, 0, offline.object, &tree) == FG_OK && tree != nullptr,
                "its tree");
        require(m_applet.Info(FG_INFO_DESTROY_OFFLINE, 0, 0, offline.object, nullptr) == FG_OK, "its end");
    }
    void forward(One& one, Input& input) {
        stored(one, m_applet.Fg_AcquireEx(one.fg(), input.integer(), input.integer(), 0, nullptr));
        stored(one, m_applet.Fg_stopAcquireEx(one.fg(), input.integer(), nullptr, 0));
        stored(one, m_applet.Fg_FreeShading(one.fg(), nullptr));
    }
    void raiseEvent(One& one, Input& input) { m_board.raise_event(one.device, input.text().c_str()); }

    static constexpr Function functions[] = {
        &Calls::set,     &Calls::set,        &Calls::set,        &Calls::set,      &Calls::get,
        &Calls::names,   &Calls::save,       &Calls::load,       &Calls::document, &Calls::ask,
        &Calls::forward, &Calls::raiseEvent, &Calls::openOrClose};

    const support::TemporaryFolder m_folder;
    const applet_host::AppletHost m_host;
    const applet_host::AppletFunctions& m_applet = m_host.applet();
    const applet_host::BoardFunctions& m_board = m_host.board();
    One m_both[2];
    std::vector<int> m_ids;
    bool m_hasDocument = false; // of this input
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Calls calls;
    calls.run({data, size});
    return 0;
}
