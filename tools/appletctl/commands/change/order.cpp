#include "appletctl/commands/change/order.h"

#include "applet_tools/applet/assignments.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/refusal.h"
#include "appletctl/commands/jobs.h"
#include "appletctl/commands/reports.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <set>

namespace appletctl {
namespace {

using Order = std::vector<std::size_t>; // places in the list of assignments

/** Tries assignments one behind the other, goes back where none of the rest passes. Which have passed matters, not
 *  in which order, so no set of them is looked at twice. */
class OrderSearch {
public:
    OrderSearch(ScratchSession& session, const Words& words)
        : m_session(session)
        , m_words(words)
        , m_isSet(words.size())
        , m_triesLeft(mostTries) {}

    /** True when all pass in the order that is then `best`. */
    bool search() {
        if (m_order.size() > best.size()) best = m_order;
        if (m_order.size() == m_words.size()) return true;
        for (std::size_t next = 0; next < m_words.size() && m_triesLeft > 0; ++next) {
            if (m_isSet[next] || !passes(next)) continue;
            m_isSet[next] = true;
            m_order.push_back(next);
            if (m_seen.insert(m_isSet).second && search()) return true;
            m_order.pop_back();
            m_isSet[next] = false;
            replay(m_order);
        }
        return false;
    }

    /** Brings the board to the state after these. */
    void replay(const Order& order) {
        m_session.rewind();
        for (const std::size_t place : order)
            passes(place);
    }

    Order best;

private:
    static constexpr int mostTries = 2000;

    bool passes(std::size_t place) {
        --m_triesLeft;
        const Assignment assignment = parseAssignments(m_session.parameters(), {m_words[place]}).front();
        return assignment.target.parameter->writesFile() ||
               writeValue(m_session.instance(), assignment.target, assignment.value) == FG_OK;
    }

    ScratchSession& m_session;
    const Words& m_words;
    Order m_order;
    std::vector<bool> m_isSet;
    std::set<std::vector<bool>> m_seen;
    int m_triesLeft;
};

/** What one that is left over is refused with, behind all that pass. */
std::string whyStuck(ScratchSession& session, const std::string& word) {
    const Assignment assignment = parseAssignments(session.parameters(), {word}).front();
    const std::string asked = assignment.target.name() + "=" + printable(toUtf8(assignment.text.c_str()));
    Probe probe(session);
    const int code = probe.answer(assignment.target, assignment.value);
    const std::string refusal = refusalInWords(*assignment.target.parameter, assignment.value, code);
    return asked + " passes in no order: " + refusal + suggestionFor(probe, assignment).words;
}

} // namespace

json orderJob(ScratchSession& session, const json& arguments) {
    const auto words = arguments.at("assignments").get<Words>();
    OrderSearch search(session, words);
    const bool isComplete = search.search();
    Words ordered, problems;
    for (const std::size_t place : search.best)
        ordered.push_back(words[place]);
    if (!isComplete) {
        search.replay(search.best);
        session.keep();
        for (std::size_t place = 0; place < words.size(); ++place)
            if (std::ranges::find(search.best, place) == search.best.end())
                problems.push_back(whyStuck(session, words[place]));
    }
    return {{"isComplete", isComplete}, {"words", ordered}, {"problems", problems}};
}

Ordering askOrder(Context& context, const Words& assignments) {
    const json answer = context.scratch().ask("order", {{"assignments", assignments}});
    Ordering ordering{answer["isComplete"].get<bool>(), answer["words"].get<Words>(), {}};
    Report& report = ordering.report;
    report.document["order"] = ordering.words;
    if (ordering.isComplete) {
        Words cells{"order"};
        for (const std::string& word : ordering.words)
            cells.push_back(printable(toUtf8(word.c_str())));
        report.text = lineOf(cells, "order: " + printable(toUtf8(join(ordering.words, " ").c_str())));
        return ordering;
    }
    report.problems = answer["problems"].get<Words>();
    report.problems.push_back("nothing was set");
    report.document["problems"] = report.problems;
    report.exitCode = exitRefused;
    return ordering;
}

} // namespace appletctl
