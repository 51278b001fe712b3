#include "applet_tools/scratch/LiveSession.h"

#include "applet_tools/applet/access_log.h"
#include "applet_tools/base/Stopwatch.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/BoardState.h"
#include "applet_tools/scratch/ScratchSession.h"
#include "applet_tools/station/StationFile.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace applet_tools {

LiveSession::LiveSession(const BoardOptions& options, Scratch scratch, std::span<const JobRow> jobs,
                         ObserveWork observe)
    : m_options(options)
    , m_publishesDesign(scratch == Scratch::wanted)
    , m_scratch(scratch != Scratch::none ? std::make_unique<ScratchBoard>(options, jobs, std::move(observe))
                                         : nullptr) {}

LiveSession::~LiveSession() = default;

const applet_host::AppletHost& LiveSession::host() {
    if (!m_host) m_host = std::make_shared<applet_host::AppletHost>(locationsFor(m_options));
    return *m_host;
}

Instance& LiveSession::instance() {
    if (m_copy) return m_copy->instance();
    if (m_instance) return *m_instance;
    const Stopwatch watch;
    const bool takesStation = m_options.isVirtual() && m_options.takesStationOfEnvironment;
    const auto station = takesStation ? stationOfEnvironment() : std::nullopt;
    host();
    Instance& made = m_instance.emplace(
        m_options, m_host, m_publishesDesign ? DesignParameters::published : DesignParameters::asSwitched);
    const char* const kind = m_host->isVirtual() ? "virtual board" : "board of the system";
    m_notes.push_back(std::string(m_options.offline ? "instance without a board" : kind) +
                      ": brought up in " + watch.text() + ", by " + shownFile(m_host->files().back()));
    if (station && m_options.look) // nothing is set
        connectStation(made.board(), made.device(), *station);
    else if (station)
        setUpStation(made, parameters(), *station);
    return made;
}

void LiveSession::restart() {
    m_parameters.reset();
    m_instance.reset();
    instance();
}

const ParameterList& LiveSession::parameters() {
    if (m_copy) return m_copy->parameters();
    if (!m_parameters) m_parameters.emplace(instance());
    return *m_parameters;
}

void LiveSession::enterCopy() {
    auto copy = std::make_unique<ScratchSession>(m_options);
    const json state = withoutTrace([&] { return boardStateOf(instance(), parameters()); });
    copy->startFrom(state);
    m_copyDesign = state["design"];
    if (LOOMdevice* const device = instance().device())
        instance().board().surround(copy->instance().device(), device);
    m_copy = std::move(copy);
}

void LiveSession::leaveCopy() { m_copy.reset(); }

ScratchBoard& LiveSession::scratch() {
    json state = withoutTrace([&] { return boardStateOf(instance(), parameters()); });
    if (m_copy) state["design"] = m_copyDesign; // a copy does not publish it
    state["notMeasured"] = notMeasured();
    return scratchFrom(state);
}

ScratchBoard& LiveSession::scratchAtDefaults() {
    const json design = withoutTrace([&] { return designOf(instance()); });
    return scratchFrom({{"design", design}, {"values", json::object()}});
}

ScratchBoard& LiveSession::bareScratch() {
    return scratchFrom({{"design", nullptr}, {"values", json::object()}});
}

ReadResult LiveSession::read(const Target& target) {
    ReadResult reading = readValue(instance(), target);
    reading.isMeasured = !notMeasured().contains(target.parameter->name);
    return reading;
}

const std::set<std::string>& LiveSession::notMeasured() {
    if (!m_notMeasured) {
        m_notMeasured.emplace();
        if (m_options.offline && m_scratch) bareScratch().ask("fromBoard", nullptr).get_to(*m_notMeasured);
    }
    return *m_notMeasured;
}

Words LiveSession::takeNotes() {
    Words notes = std::exchange(m_notes, {});
    if (m_scratch) std::ranges::move(m_scratch->takeNotes(), std::back_inserter(notes));
    return notes;
}

json LiveSession::withoutTrace(const std::function<json()>& read) {
    if (m_isTraced) takeAccesses();
    json result = read();
    if (m_isTraced) logAccesses(instance());
    return result;
}

void LiveSession::startTrace() {
    m_isTraced = true;
    logAccesses(instance());
}

Words LiveSession::takeAccesses() {
    Words lines = takeAccessLog(instance());
    m_accesses.insert(m_accesses.end(), lines.begin(), lines.end());
    return lines;
}

Words LiveSession::stopTrace() {
    m_isTraced = false;
    if (!isUp()) return std::exchange(m_accesses, {});
    takeAccesses();
    instance().board().log_kinds(instance().device(), 0);
    return std::exchange(m_accesses, {});
}

ScratchBoard& LiveSession::scratchFrom(const json& state) {
    const json answer = m_scratch->startFrom(state);
    m_assumed = answer["assumed"].get<Words>();
    m_assumedMeasurements = answer["measurements"].get<Words>();
    return *m_scratch;
}

} // namespace applet_tools
