#include "appletctl/cli/scenario/ScenarioRunner.h"

#include "applet_tools/applet/access_log.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"

#include <algorithm>
#include <set>

namespace appletctl {
namespace {

bool isSameNumber(const std::string& a, const std::string& b) {
    const auto first = floatingNumber(a), second = floatingNumber(b);
    return first && second && *first == *second;
}

} // namespace

ScenarioRunner::ScenarioRunner(Context& context) : m_context(context) { startLog(); }

ScenarioRunner::~ScenarioRunner() {
    m_stationState.reset(); // an acquisition must end before its board is closed
    if (!m_context.isUp() || instance().device() == nullptr || !instance().host()->isVirtual()) return;
    instance().board().fail_access(instance().device(), 0, 0, VBOARD_ONCE);
    for (const std::string& name : m_failing)
        instance().board().fail_name(instance().device(), name.c_str(), 0);
    instance().board().restore_design();
}

const applet_host::BoardFunctions& ScenarioRunner::board() {
    if (instance().device() == nullptr || !instance().host()->isVirtual())
        throw UsageError("this needs the virtual board");
    return instance().board();
}

void ScenarioRunner::forgetWrites() {
    m_writes.clear();
    m_found = 0;
    startLog();
}

/** A trace of the whole run has the log, and gives its lines. */
void ScenarioRunner::startLog() {
    if (m_context.isTraced())
        m_context.takeAccesses();
    else if (instance().device() != nullptr && instance().host()->isVirtual())
        logWrites(instance());
}

void ScenarioRunner::collectWrites() {
    board();
    addWrites(m_context.isTraced() ? m_context.takeAccesses() : takeAccessLog(instance()));
}

void ScenarioRunner::addWrites(const std::vector<std::string>& accesses) {
    for (std::string& line : writesOf(accesses))
        m_writes.push_back(std::move(line));
}

bool ScenarioRunner::findWrite(const std::string& name, const std::string& value) {
    collectWrites();
    for (std::size_t i = m_found; i < m_writes.size(); ++i) {
        const LoggedAccess write = loggedAccess(m_writes[i]);
        const bool isNamed = write.parameter == name || write.parameter.ends_with("_" + name);
        if (!isNamed || write.hasFailed) continue;
        if (write.value != value && !isSameNumber(write.value, value)) continue;
        m_found = i + 1;
        return true;
    }
    return false;
}

std::vector<std::string> ScenarioRunner::writesLeft() {
    collectWrites();
    return {m_writes.begin() + static_cast<std::ptrdiff_t>(m_found), m_writes.end()};
}

std::vector<std::string> ScenarioRunner::designNames() {
    std::vector<std::string> names;
    const ParameterList design(instance(), ParameterList::Scope::design);
    for (const Parameter& parameter : design.all())
        names.push_back(parameter.name.substr(designPrefix.size()));
    return names;
}

std::string ScenarioRunner::designName(const std::string& name) {
    std::vector<std::string> found;
    for (const std::string& known : designNames()) {
        if (known == name) return name;
        if (known.ends_with("_" + name)) found.push_back(known);
    }
    if (found.size() > 1)
        throw UsageError("the names of " + numberText(found.size()) + " parameters of the design end with " +
                         inQuotes(name) + ", such as " + found[0] + " and " + found[1]);
    return found.empty() ? name : found.front();
}

std::optional<int> ScenarioRunner::kindOf(const std::string& full) {
    const ParameterList design(instance(), ParameterList::Scope::design);
    for (const Parameter& parameter : design.all())
        if (applet_tools::designName(parameter.name) == full) return parameter.kind();
    return std::nullopt;
}

void ScenarioRunner::requireKnown(const std::string& name) {
    const std::string full = designName(name);
    // This does not make any access fail.
    if (board().fail_name(instance().device(), full.c_str(), 0) != VBOARD_OK)
        refuseName(name, "parameter or register");
}

void ScenarioRunner::requireKnownEnd(const std::string& name) {
    board();
    for (const std::string& known : designNames())
        if (known.ends_with("_" + name)) return;
    requireKnown(name);
}

void ScenarioRunner::failName(const std::string& name, int code) {
    const std::string full = designName(name);
    if (board().fail_name(instance().device(), full.c_str(), code) != VBOARD_OK)
        refuseName(name, "parameter or register");
    m_failing.push_back(full);
}

void ScenarioRunner::removeFromDesign(const std::string& name) {
    if (board().lack_parameter(designName(name).c_str(), true) != VBOARD_OK) refuseName(name, "parameter");
    m_stationState.emplace();
    m_context.restart();
    startLog();
}

void ScenarioRunner::refuseName(const std::string& name, const std::string& what) {
    // A name may be given by its end, so the end of each with as many parts is a candidate.
    std::vector<std::string> candidates = designNames();
    std::set<std::string> ends;
    for (const std::string& known : candidates) {
        std::size_t begin = known.size();
        for (auto parts = std::ranges::count(name, '_') + 1; parts > 0 && begin != std::string::npos; --parts)
            begin = begin == 0 ? std::string::npos : known.rfind('_', begin - 1);
        if (begin != std::string::npos) ends.insert(known.substr(begin + 1));
    }
    candidates.insert(candidates.begin(), ends.begin(), ends.end());
    throw UsageError("the design has no " + what + " " + inQuotes(name) +
                     didYouMean(nearestWords(name, candidates)));
}

} // namespace appletctl
