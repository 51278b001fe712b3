/** Tries values on a scratch board and puts everything back. */
#ifndef APPLET_TOOLS_SCRATCH_PROBE_H
#define APPLET_TOOLS_SCRATCH_PROBE_H

#include "applet_tools/applet/ParameterState.h"
#include "applet_tools/scratch/ScratchSession.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace applet_tools {

/** Numbers and entries in their order as ranks: the next number has the next rank. */
std::uint64_t rankOf(const Value& number);
/** The number of that rank, of the same type as `like`. */
Value numberAt(std::uint64_t rank, const Value& like);
/** True for numbers and entries. */
bool isNumber(const Value& value);

/** A change of one parameter. */
struct Change {
    std::size_t place;
    Value value;
};

/** Changes that are made one after the other, for each way. */
using Ways = std::vector<std::vector<Change>>;

/** A condition, and the place of the parameter that may not be changed for it. */
struct Wish {
    std::size_t excluded;
    std::function<bool()> isTrue;
};

/** What it tries is put back (see restore). A parameter is named by its place in the list, since the way back may
 *  lead over a new instance with new records. */
class Probe {
public:
    explicit Probe(ScratchSession& session);

    ScratchSession& session() { return m_session; }
    std::size_t count() const { return m_session.parameters().all().size(); }
    const Parameter& at(std::size_t place) const { return m_session.parameters().all()[place]; }
    std::size_t placeOf(const Parameter& parameter) const;

    /** In the state of the probe. */
    const ParameterState& facts(std::size_t place) const { return m_facts[place]; }
    /** At this moment. */
    ParameterState currentState(std::size_t place) const;

    /** What the setter answers to the value. */
    int answer(const Target& target, const Value& value);
    int answer(const Change& change) { return answer({&at(change.place)}, change.value); }
    /** Looks at the board with this value set; false, without a look, if the setter refuses it. */
    bool tryChange(const Change& change, const std::function<void()>& look);

    /** A few other values of a parameter: all entries; the limits of a number and values near the present one;
     *  none for texts and arrays. */
    std::vector<Value> otherValues(std::size_t place) const;
    /** Back to the state of the probe. To be called where all values of a parameter were looked at: the old value
     *  brings back the parameter itself, but what it had moved may stay moved. Inside a look nothing happens. */
    void restore();

    /** For each parameter, the one of the wish left out: the entries, or the number nearest to the present one, that
     *  make it come true as a single change. */
    std::vector<Change> changesFor(const Wish& wish) { return changesFor(std::vector{wish}).front(); }

    /** Single changes with which each wish comes true; where there is none, pairs of which the first makes the
     *  second parameter writable. A change is tried once for all of them: the way back may take long. */
    std::vector<Ways> waysTo(const std::vector<Wish>& wishes);
    Ways waysTo(const Wish& wish) { return waysTo(std::vector{wish}).front(); }

    /** "FG_XOFFSET=64", as `set` takes it. */
    std::string words(const Change& change) const;
    /** "FG_LINETRIGGERMODE=ASYNC_TRIGGER FG_SHAFTENCODERON=FG_ON" for each way. */
    std::vector<std::string> words(const Ways& ways) const;

private:
    /** The present state is the one of the probe. */
    void begin();
    bool isBack() const;
    /** Loads what was loaded, and sets what has moved to what it was; false if that does not bring back all. A fresh start takes much longer. */
    bool setBack();
    void loadBack();
    int write(const Target& target, const Value& value);
    std::vector<std::vector<Change>> changesFor(const std::vector<Wish>& wishes);
    /** The wishes of `asked`, by their numbers, that come true with the change. */
    std::vector<std::size_t> trueWith(const Change& change, const std::vector<Wish>& wishes,
                                      const std::vector<std::size_t>& asked);
    std::vector<Ways> pairsFor(const std::vector<Wish>& wishes);
    bool holdsWith(const Change& change, const std::function<bool()>& condition);
    Value nearest(const Change& found, const std::function<bool()>& condition);

    ScratchSession& m_session;
    std::vector<ParameterState> m_facts;
    std::set<std::string, std::less<>>
        m_storedOtherwise;    // after a load: what a set of the value read would store anew
    int m_depth = 0;          // of looks within looks
    bool m_isTouched = false; // something was written since the last way back
};

} // namespace applet_tools

#endif
