#include "applet_tools/scratch/ScratchSession.h"

#include "applet_tools/applet/access_log.h"
#include "applet_tools/applet/hardware_values.h"

#include "vexo/fg_errors.h"

#include <set>
#include <utility>

namespace applet_tools {
namespace {

/** A scratch board is virtual, whatever the live board is. */
BoardOptions onVirtualBoard(BoardOptions options) {
    options.board = BoardKind::virtualBoard;
    options.offline = false;
    options.look = false;
    return options;
}

std::string publishedName(const std::string& name) { return std::string(designPrefix) + name; }

/** Stores a value of the live design on the board. */
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

} // namespace

ScratchSession::ScratchSession(const BoardOptions& options)
    : m_options(onVirtualBoard(options))
    , m_host(std::make_shared<applet_host::AppletHost>(locationsFor(m_options))) {}

void ScratchSession::startFrom(json state) {
    m_start = std::move(state);
    m_defaults = nullptr;
    m_host->board().restore_design();
    if (const json& design = m_start.at("design"); !design.is_null())
        for (const std::string& name : designNames())
            if (!design.contains(publishedName(name))) m_host->board().lack_parameter(name.c_str(), true);
    rewind();
}

const std::vector<std::string>& ScratchSession::designNames() {
    if (!m_designNames.empty()) return m_designNames;
    Instance complete(m_options, m_host, DesignParameters::published);
    const ParameterList design(complete, ParameterList::Scope::design);
    for (const Parameter& parameter : design.all())
        if (parameter.effectOfReading().empty()) m_designNames.push_back(designName(parameter.name));
    return m_designNames;
}

void ScratchSession::rewind() {
    m_parameters.reset();
    m_instance.reset();
    m_instance.emplace(m_options, m_host, DesignParameters::asSwitched,
                       [this](LOOMdevice* device) { prepareBoard(device); });
    m_parameters.emplace(*m_instance);
    setValues();
    logWrites(*m_instance);
}

void ScratchSession::keep() {
    m_start["values"] = valuesOf(*m_instance, *m_parameters);
    m_start["loads"] = loadsOf(*m_instance);
    m_start.erase("notMeasured");
}

const json& ScratchSession::defaults() {
    if (!m_defaults.is_null()) return m_defaults;
    Instance fresh(m_options, m_host, DesignParameters::asSwitched,
                   [this](LOOMdevice* device) { prepareBoard(device); });
    m_defaults = valuesOf(fresh, ParameterList(fresh));
    return m_defaults;
}

void ScratchSession::prepareBoard(LOOMdevice* device) {
    m_host->board().log_kinds(device, 0);
    for (const auto& [name, value] : m_start.at("design").items())
        poke(m_host->board(), device, designName(name), value);
}

void ScratchSession::setValues() {
    const Wanted live = wantedFrom(*m_parameters, m_start.at("values"));
    Wanted wanted = live;
    const auto notMeasured = m_start.value("notMeasured", std::set<std::string>());
    std::erase_if(wanted, [&](const auto& value) { return notMeasured.contains(value.first->name); });
    if (const auto loads = m_start.find("loads"); loads != m_start.end())
        loadAgain(*m_instance, wanted, *loads);
    setAll(*m_instance, wanted);
    storeByLoad(*m_instance, wanted);
    m_assumed.clear();
    m_assumedMeasurements.clear();
    if (m_start.at("design").is_null()) m_assumed.emplace_back("design");
    for (const auto& [parameter, value] : live)
        if (!holds(*m_instance, *parameter, *value))
            (hasSetter(*parameter) ? m_assumed : m_assumedMeasurements).push_back(parameter->name);
}

/** A parameter without a setter is measured, or fixed by the design. */
bool ScratchSession::hasSetter(const Parameter& parameter) {
    if (elementCount(parameter) > 0 || !parameter.effectOfWriting().empty()) return true;
    const ReadResult now = readValue(*m_instance, {&parameter});
    return writeValue(*m_instance, {&parameter}, requestFor(parameter, now.value)) != FG_ERR_NOT_AVAILABLE;
}

} // namespace applet_tools
