/** What the commands of a run stand on. */
#ifndef APPLETCTL_CONTEXT_H
#define APPLETCTL_CONTEXT_H

#include "appletctl/ParameterList.h"
#include "appletctl/ScratchBoard.h"

#include <memory>
#include <optional>

namespace appletctl {

/** The live applet and the scratch board, each made when it is first asked for. A shell keeps one for all of its
 *  commands. */
class Context {
public:
    /** A scratch board splits the process, so it has to be wanted here, before any library is loaded. */
    enum class Scratch { none, wanted };
    explicit Context(const Options& options, Scratch scratch = Scratch::none);

    const Options& options() const { return m_options; }
    Instance& instance();
    const ParameterList& parameters();
    /** The scratch board, in the state that the live applet has now. */
    ScratchBoard& scratch();

private:
    Options m_options;
    std::unique_ptr<ScratchBoard> m_scratch; // null if not wanted
    std::optional<Instance> m_instance;
    std::optional<ParameterList> m_parameters;
};

} // namespace appletctl

#endif
