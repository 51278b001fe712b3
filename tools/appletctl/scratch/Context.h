/** What the commands of a run stand on. */
#ifndef APPLETCTL_SCRATCH_CONTEXT_H
#define APPLETCTL_SCRATCH_CONTEXT_H

#include "appletctl/applet/ParameterList.h"
#include "appletctl/scratch/ScratchBoard.h"

#include <functional>
#include <memory>
#include <optional>
#include <span>

namespace appletctl {

struct Command;

/** What the commands and the scratch board need of the parts of the program that are made of them. */
struct Program {
    std::span<const JobRow> jobs{};
    std::span<const Command* const> commands{};
    std::string (*helpOf)(const Command* command) = nullptr; /**< what --help says; null: of the program */
};

/** The live applet and the scratch board, each made when it is first asked for. A shell keeps one for all of its
 *  commands. */
class Context {
public:
    /** A scratch board splits the process, so it has to be wanted here, before any library is loaded. */
    enum class Scratch {
        none,
        withoutDesign, /**< does not know the answers of the live design, which shows no parameters for it */
        wanted
    };
    explicit Context(const Options& options, Scratch scratch = Scratch::none, const Program& program = {});

    const Program& program() const { return m_program; }
    const Options& options() const { return m_options; }
    /** The options of the next command. What they say of applet and board has to be what the first ones said. */
    void setOptions(const Options& options) { m_options = options; }
    Instance& instance();
    /** False before the first use, and after a restart that failed. */
    bool isUp() const { return m_instance.has_value(); }
    /** A fresh board and a new bring-up of the applet on it, from the libraries that are loaded. Parameters from
     *  before are gone. */
    void restart();
    const ParameterList& parameters();
    /** The scratch board, in the state that the live applet has now. */
    ScratchBoard& scratch();
    /** The scratch board with the live design's answers, and the values after the start. */
    ScratchBoard& scratchAtDefaults();
    /** The scratch board as the virtual board starts; the live applet is not looked at. */
    ScratchBoard& bareScratch();
    /** What of the scratch board's state was assumed, when it was last asked for. */
    const Words& assumed() const { return m_assumed; }

    /** From now on the live virtual board logs its accesses, those for a seed left out. */
    void startTrace();
    /** What was logged since it was last taken. */
    Words takeAccesses();
    /** All that was taken. */
    const Words& accesses() const { return m_accesses; }

private:
    nlohmann::json withoutTrace(const std::function<nlohmann::json()>& read);
    ScratchBoard& seeded(const nlohmann::json& seed);

    Options m_options;
    Program m_program;
    bool m_publishesDesign;
    std::unique_ptr<ScratchBoard> m_scratch; // null if not wanted
    std::shared_ptr<const applet_host::AppletHost> m_host;
    std::optional<Instance> m_instance;
    std::optional<ParameterList> m_parameters;
    Words m_assumed;
    bool m_isTraced = false;
    Words m_accesses;
};

} // namespace appletctl

#endif
