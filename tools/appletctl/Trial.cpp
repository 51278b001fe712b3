#include "appletctl/Trial.h"

#include "appletctl/writes.h"

#include "vexo/fg_errors.h"

#include <utility>

namespace appletctl {
namespace {

/** A scratch board is a virtual one, whatever the live board is. */
Options onVirtualBoard(Options options) {
    options.board = BoardKind::virtualBoard;
    options.offline = false;
    return options;
}

std::string designName(const std::string& published) { return published.substr(designPrefix.size()); }

std::string publishedName(const std::string& name) { return std::string(designPrefix) + name; }

/** Puts an answer of the live design on the board. */
void poke(const applet_host::BoardFunctions& board, LOOMdevice* device, const std::string& name,
          const json& value) {
    if (value.is_binary()) {
        const auto& bytes = value.get_binary();
        board.poke_text(device, name.c_str(), std::string(bytes.begin(), bytes.end()).c_str());
    } else if (value.is_number_float()) {
        board.poke_double(device, name.c_str(), value.get<double>());
    } else if (value.is_number_integer()) {
        board.poke_int(device, name.c_str(), value.get<std::int64_t>());
    }
}

/** Sets the parameter if it holds something else; true if it took the value. */
bool bring(Instance& instance, const Parameter& parameter, const json& wanted) {
    const Target target = wholeOf(parameter);
    const Reading reading = readValue(instance, target);
    const Value value = fromMessage(target, wanted);
    if (reading.error == FG_OK && reading.value == value) return false;
    return writeValue(instance, target, value) == FG_OK;
}

} // namespace

Trial::Trial(const Options& options)
    : m_options(onVirtualBoard(options))
    , m_host(std::make_shared<applet_host::AppletHost>(locationsFor(m_options))) {}

void Trial::seed(json seed) {
    m_seed = std::move(seed);
    m_host->board().restore_design();
    if (const json& design = m_seed.at("design"); !design.is_null())
        for (const std::string& name : designNames())
            if (!design.contains(publishedName(name))) m_host->board().lack_parameter(name.c_str(), true);
    rewind();
}

const std::vector<std::string>& Trial::designNames() {
    if (!m_designNames.empty()) return m_designNames;
    Instance complete(m_options, m_host, DesignParameters::published);
    const ParameterList design(complete, ParameterList::Scope::design);
    for (const Parameter& parameter : design.all())
        if (parameter.effectOfReading().empty()) m_designNames.push_back(designName(parameter.name));
    return m_designNames;
}

void Trial::rewind() {
    m_parameters.reset();
    m_instance.reset();
    m_instance.emplace(m_options, m_host, DesignParameters::asSwitched,
                       [this](LOOMdevice* device) { prepareBoard(device); });
    m_parameters.emplace(*m_instance);
    setValues();
    logWrites(*m_instance);
}

void Trial::keep() { m_seed["values"] = valuesOf(*m_instance, *m_parameters); }

void Trial::prepareBoard(LOOMdevice* device) {
    m_host->board().log_kinds(device, 0);
    for (const auto& [name, value] : m_seed.at("design").items())
        poke(m_host->board(), device, designName(name), value);
}

void Trial::setValues() {
    const json& values = m_seed.at("values");
    // One value can stand in the way of another, so as long as one more is taken there is another round.
    std::vector<std::pair<const Parameter*, const json*>> wanted;
    for (const Parameter& parameter : m_parameters->all())
        if (const auto found = values.find(parameter.name);
            found != values.end() && !found->is_null() && !parameter.writesFile())
            wanted.emplace_back(&parameter, &*found);
    constexpr int mostRounds = 8;
    bool moved = true;
    for (int round = 0; moved && round < mostRounds; ++round) {
        moved = false;
        for (const auto& [parameter, value] : wanted)
            moved |= bring(*m_instance, *parameter, *value);
    }
    m_assumed.clear();
    if (m_seed.at("design").is_null()) m_assumed.emplace_back("design");
    for (const auto& [parameter, value] : wanted) {
        const Target target = wholeOf(*parameter);
        const Reading reading = readValue(*m_instance, target);
        if (reading.error != FG_OK || asMessage(reading.value) != *value)
            m_assumed.push_back(parameter->name);
    }
}

} // namespace appletctl
