#include "applet_tools/answers/order.h"

#include "applet_tools/applet/assignments.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/message_rows.h"
#include "applet_tools/scratch/probe/refusal.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <set>

namespace applet_tools {
namespace {

using Order = std::vector<std::size_t>; // indices into the list of assignments

/** Tries assignments in sequence and backtracks when none of the rest is accepted. The result depends on
 *  which were accepted, not on their order, so each set of them is examined once. */
class OrderSearch {
public:
    OrderSearch(ScratchSession& session, const Words& words)
        : m_session(session)
        , m_words(words)
        , m_isSet(words.size())
        , m_triesLeft(mostTries) {}

    /** True if all are accepted in the order that is then `best`. */
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

    /** Restores the board to the state after these assignments. */
    void replay(const Order& order) {
        m_session.rewind();
        for (const std::size_t index : order)
            passes(index);
    }

    Order best;

private:
    static constexpr int mostTries = 2000;

    bool passes(std::size_t index) {
        --m_triesLeft;
        const Assignment assignment = parseAssignments(m_session.parameters(), {m_words[index]}).front();
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

/** The refusal of a remaining assignment, tried after all that are accepted. */
std::string whyStuck(ScratchSession& session, const std::string& word) {
    const Assignment assignment = parseAssignments(session.parameters(), {word}).front();
    const std::string asked = assignment.target.name() + "=" + printable(assignment.text);
    Probe probe(session);
    const int code = probe.answer(assignment.target, assignment.value);
    const std::string refusal = refusalInWords(*assignment.target.parameter, assignment.value, code);
    return asked + " passes in no order: " + refusal + suggestionFor(probe, assignment).words();
}

} // namespace

Ordering findOrder(ScratchSession& session, const Words& assignments) {
    OrderSearch search(session, assignments);
    Ordering ordering{search.search(), {}, {}};
    for (const std::size_t index : search.best)
        ordering.words.push_back(assignments[index]);
    if (ordering.isComplete) return ordering;
    search.replay(search.best);
    session.keep();
    for (std::size_t index = 0; index < assignments.size(); ++index)
        if (std::ranges::find(search.best, index) == search.best.end())
            ordering.problems.push_back(whyStuck(session, assignments[index]));
    return ordering;
}

template <> struct MessageRows<Ordering> {
    static constexpr auto rows = std::tuple(&Ordering::isComplete, &Ordering::words, &Ordering::problems);
};

json orderJob(ScratchSession& session, const json& arguments) {
    return toMessage(findOrder(session, arguments.at("assignments").get<Words>()));
}

Ordering askOrder(LiveSession& live, const Words& assignments) {
    return recordFrom<Ordering>(live.scratch().ask("order", {{"assignments", assignments}}));
}

} // namespace applet_tools
