#include "appletctl/Context.h"

#include "appletctl/Seed.h"

namespace appletctl {

Context::Context(const Options& options, Scratch scratch)
    : m_options(options)
    , m_scratch(scratch == Scratch::wanted ? std::make_unique<ScratchBoard>(options) : nullptr) {}

Instance& Context::instance() {
    if (!m_instance)
        m_instance.emplace(m_options, m_scratch ? DesignParameters::published : DesignParameters::asSwitched);
    return *m_instance;
}

const ParameterList& Context::parameters() {
    if (!m_parameters) m_parameters.emplace(instance());
    return *m_parameters;
}

ScratchBoard& Context::scratch() {
    m_scratch->seed(seedOf(instance(), parameters()));
    return *m_scratch;
}

} // namespace appletctl
