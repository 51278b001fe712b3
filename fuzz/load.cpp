// The input is a configuration file that is loaded on the virtual board while one of its accesses fails:
//   bytes 0 and 1   number of the access, 0 for none
//   byte 2 bit 0: all later ones fail too; bit 1: the rest is the whole file, else it is lines that come
//                   before the keys of a sound file and override them
// Whatever the result, the object still works, and loading a sound file gives its usual state.

#include "applet_host/AppletHost.h"
#include "invariants.h"
#include "support/temporary_folder.h"

#include <chrono>
#include <future>

namespace {

using fuzz::require;

constexpr int injected = -4711;

class Loader {
public:
    Loader() {
        std::filesystem::current_path(m_folder / ""); // a file may name a lookup table
        support::writeFile("a.lut",
                           "nrOfElements=3;\n[red]\n0,1;\n1,2;\n2,3;\n[green]\n0,4;\n[blue]\n0,65536;\n");
        require(m_session.error == FG_OK, "the object comes up");
        // Computing tables from the formula, five times per load, would take most of the time.
        const std::uint32_t fromFile = LUT_TYPE_CUSTOM;
        require(m_applet.Fg_setParameterWithType(m_session.fg(), FG_LUT_TYPE, &fromFile, 0,
                                                 FG_PARAM_UINT32) == FG_OK,
                "a set");
        require(m_applet.Fg_saveConfig(m_session.fg(), "sound.mcf") == FG_OK, "a save");
        m_sound = support::fileBytes("sound.mcf");
        m_soundKeys = m_sound.find("[Port A]\n") + 9;
        loadSoundFile();
        m_answers = answers();
        m_state = savedState();
    }

    void run(unsigned failingAccess, bool fromThenOn, bool isWholeFile, const std::string& text) {
        const std::string file =
            isWholeFile ? text : m_sound.substr(0, m_soundKeys) + text + '\n' + m_sound.substr(m_soundKeys);
        m_input.fill(file.data(), file.size());
        m_board.log_clear(m_session.device);
        m_board.fail_access(m_session.device, failingAccess, injected,
                            fromThenOn ? VBOARD_FROM_THEN_ON : VBOARD_ONCE);
        const int result = m_applet.Fg_loadConfig(m_session.fg(), m_input.path());
        m_board.fail_access(m_session.device, 0, 0, VBOARD_ONCE);
        require(result == FG_OK || result == FG_ERR_LOAD_CONFIG, "a load's codes");
        require(m_applet.Fg_getLastErrorNumber(m_session.fg()) == result, "the last error is the result");
        answers();
        requireFreeLock();
        loadSoundFile();
        require(answers() == m_answers, "every getter answers again");
        require(savedState() == m_state, "a sound file brings its state");
    }

private:
    void loadSoundFile() {
        require(m_applet.Fg_loadConfig(m_session.fg(), "sound.mcf") == FG_OK, "a load of a sound file");
    }
    std::string savedState() {
        require(m_applet.Fg_saveConfig(m_session.fg(), "state.mcf") == FG_OK, "a save");
        return support::fileBytes("state.mcf");
    }
    /** The results of all gets. */
    std::vector<int> answers() {
        std::vector<int> results;
        for (int i = 0; i < m_applet.Fg_getNrOfParameter(m_session.fg()); ++i) {
            const int id = m_applet.Fg_getParameterId(m_session.fg(), i);
            std::uint64_t value[2] =
                {}; // a number, an element of a table, or a text, which the object keeps track of
            results.push_back(get(id, value, FG_PARAM_ALLOCATED_STRING));
            require(m_applet.Fg_getLastErrorNumber(m_session.fg()) == results.back(),
                    "the last error is the result");
            m_applet.Fg_freeParameterStringWithType(m_session.fg(), id, reinterpret_cast<void*>(value[0]), 0,
                                                    FG_PARAM_ALLOCATED_STRING);
        }
        return results;
    }
    int get(int id, void* destination, FgParamTypes type) {
        return m_applet.Fg_getParameterWithType(m_session.fg(), id, destination, 0, type);
    }
    void requireFreeLock() {
        const auto other = std::async(std::launch::async, [this] {
            std::uint32_t value = 0;
            return get(FG_WIDTH, &value, FG_PARAM_UINT32);
        });
        require(other.wait_for(std::chrono::seconds(20)) == std::future_status::ready, "the lock is free");
    }

    const support::TemporaryFolder m_folder;
    const applet_host::AppletHost m_host;
    const applet_host::AppletFunctions& m_applet = m_host.applet();
    const applet_host::BoardFunctions& m_board = m_host.board();
    applet_host::Session m_session{m_host};
    fuzz::InputFile m_input{m_folder / "input.mcf"};
    std::string m_sound;
    std::size_t m_soundKeys = 0;
    std::vector<int> m_answers;
    std::string m_state;
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Loader loader;
    if (size < 3) return 0;
    const unsigned access = data[0] + 256u * data[1];
    loader.run(access, data[2] & 1, data[2] & 2, {reinterpret_cast<const char*>(data) + 3, size - 3});
    return 0;
}
