#include "appletctl/scratch/Context.h"

#include "appletctl/applet/access_log.h"
#include "appletctl/scratch/BoardState.h"

namespace appletctl {

Context::Context(const Options& options, Scratch scratch, const Program& program)
    : m_options(options)
    , m_program(program)
    , m_publishesDesign(scratch == Scratch::wanted)
    , m_scratch(scratch != Scratch::none ? std::make_unique<ScratchBoard>(options, program.jobs) : nullptr) {}

Instance& Context::instance() {
    if (m_instance) return *m_instance;
    if (!m_host) m_host = std::make_shared<applet_host::AppletHost>(locationsFor(m_options));
    return m_instance.emplace(m_options, m_host,
                              m_publishesDesign ? DesignParameters::published : DesignParameters::asSwitched);
}

void Context::restart() {
    m_parameters.reset();
    m_instance.reset();
    instance();
}

const ParameterList& Context::parameters() {
    if (!m_parameters) m_parameters.emplace(instance());
    return *m_parameters;
}

ScratchBoard& Context::scratch() {
    return seeded(withoutTrace([&] { return boardStateOf(instance(), parameters()); }));
}

ScratchBoard& Context::scratchAtDefaults() {
    const json design = withoutTrace([&] { return designOf(instance()); });
    return seeded({{"design", design}, {"values", json::object()}});
}

ScratchBoard& Context::bareScratch() { return seeded({{"design", nullptr}, {"values", json::object()}}); }

json Context::withoutTrace(const std::function<json()>& read) {
    if (m_isTraced) takeAccesses();
    const json result = read();
    if (m_isTraced) logAccesses(instance());
    return result;
}

void Context::startTrace() {
    m_isTraced = true;
    logAccesses(instance());
}

Words Context::takeAccesses() {
    const Words lines = takeWrites(instance());
    m_accesses.insert(m_accesses.end(), lines.begin(), lines.end());
    return lines;
}

ScratchBoard& Context::seeded(const json& seed) {
    m_assumed = m_scratch->seed(seed).get<Words>();
    return *m_scratch;
}

} // namespace appletctl
