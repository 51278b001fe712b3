#include "applet_tools/scratch/probe/limit_causes.h"

#include "applet_tools/applet/access_log.h"
#include "applet_tools/base/numbers.h"

#include <algorithm>

namespace applet_tools {
namespace {

bool isWider(const Value& a, const Value& b, End end) {
    return end == End::maximum ? rankOf(a) > rankOf(b) : rankOf(a) < rankOf(b);
}

/** For each parameter that sets this end of the range, the change that moves the end farthest out. */
std::vector<Widening> wideningsOf(Probe& probe, const Subject& subject, const MeasuredRange& range,
                                  const Value& beyond, End end) {
    std::vector<Widening> widenings;
    for (std::size_t index = 0; index < probe.count(); ++index) {
        if (index == subject.index) continue;
        struct Widest {
            Change change;
            Value limit;
        };
        std::optional<Widest> best;
        for (const Value& value : probe.otherValues(index)) {
            probe.tryChange({index, value}, [&] {
                if (!isInside(probe, subject.in(probe), beyond)) return;
                const auto wider = measuredRange(probe, subject.in(probe));
                if (wider && isWider(endOf(*wider, end), best ? best->limit : endOf(range, end), end))
                    best = Widest{{index, value}, endOf(*wider, end)};
            });
        }
        probe.restore();
        if (best) widenings.push_back({probe.at(index).name, probe.words(best->change), best->limit});
    }
    return widenings;
}

/** The numbers of the design that the setter reads for the accepted number. */
std::vector<DesignCause> designRead(Probe& probe, const Subject& subject, const Value& accepted) {
    Instance& instance = probe.session().instance();
    logAccesses(instance);
    isInside(probe, subject.in(probe), accepted);
    std::vector<DesignCause> read;
    for (const std::string& line : takeAccessLog(instance)) {
        const LoggedAccess access = loggedAccess(line);
        const bool isKnown = std::ranges::find(read, access.parameter, &DesignCause::parameter) != read.end();
        if (access.access == "get" && !access.parameter.starts_with('#') && !isKnown)
            read.push_back({access.parameter, access.value});
    }
    instance.board().log_kinds(instance.device(), 0);
    return read;
}

/** The design's numbers that set the end: with a larger one the setter accepts a number beyond it. */
std::vector<DesignCause> designCausesOf(Probe& probe, const Subject& subject, const MeasuredRange& range,
                                        const Value& beyond, End end) {
    std::vector<DesignCause> causes;
    for (const DesignCause& read : designRead(probe, subject, endOf(range, end))) {
        const auto held = wholeNumber<std::int64_t>(read.value);
        if (!held) continue;
        const auto put = [&](std::int64_t value) {
            Instance& instance = probe.session().instance();
            return instance.board().poke_int(instance.device(), read.parameter.c_str(), value) == VBOARD_OK;
        };
        if (!put(*held + 1)) continue;
        if (isInside(probe, subject.in(probe), beyond)) causes.push_back(read);
        put(*held);
        probe.restore();
    }
    return causes;
}

} // namespace

LimitCauses causesOf(Probe& probe, const Subject& subject, const MeasuredRange& range, End end) {
    const auto beyond = firstBeyond(range, end);
    if (!beyond) return {.parameters = {}, .design = {}, .isEndOfType = true};
    return {.parameters = wideningsOf(probe, subject, range, *beyond, end),
            .design = designCausesOf(probe, subject, range, *beyond, end)};
}

std::string shortWords(const DesignCause& cause) {
    const bool isMemory = cause.parameter.find("DRAM") != std::string::npos;
    return isMemory ? "the memory of the board" : "the design";
}

std::string inWords(const DesignCause& cause) {
    return shortWords(cause) + " (" + cause.parameter + " is " + cause.value + ")";
}

bool isUnmoved(const LimitCauses& causes) {
    return !causes.isEndOfType && causes.parameters.empty() && causes.design.empty();
}

std::string fixedInWords(const LimitCauses& causes, End end) {
    if (causes.isEndOfType) return "fixed: the parameter's type ends there";
    if (!isUnmoved(causes)) return "";
    return end == End::maximum ? "no other parameter and no value of the design that was tried raises it"
                               : "no other parameter and no value of the design that was tried lowers it";
}

nlohmann::ordered_json asJson(const LimitCauses& causes, End end) {
    auto rows = nlohmann::ordered_json::array();
    for (const Widening& widening : causes.parameters)
        rows.push_back({{"limit", nameOf(end)},
                        {"parameter", widening.parameter},
                        {"with", widening.with},
                        {"becomes", numberAsJson(widening.limit)}});
    for (const DesignCause& cause : causes.design)
        rows.push_back({{"limit", nameOf(end)}, {"design", cause.parameter}, {"value", cause.value}});
    return rows;
}

const char* nameOf(End end) { return end == End::maximum ? "maximum" : "minimum"; }

} // namespace applet_tools
