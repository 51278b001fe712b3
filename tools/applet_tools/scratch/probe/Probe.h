/** Tries values on a scratch board and restores the state. */
#ifndef APPLET_TOOLS_SCRATCH_PROBE_PROBE_H
#define APPLET_TOOLS_SCRATCH_PROBE_PROBE_H

#include "applet_tools/applet/ParameterState.h"
#include "applet_tools/base/words.h"
#include "applet_tools/scratch/ScratchSession.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace applet_tools {

/** The position of numbers and entries in their order: consecutive numbers have consecutive ranks. */
std::uint64_t rankOf(const Value& number);
/** The number with that rank, of the same type as `like`. */
Value numberAt(std::uint64_t rank, const Value& like);

/** A change of one parameter. */
struct Change {
    std::size_t index;
    Value value;
};

/** Each element is a way: a sequence of changes. */
using Ways = std::vector<std::vector<Change>>;

/** "FG_LINETRIGGERMODE=ASYNC_TRIGGER FG_SHAFTENCODERON=FG_ON" for the assignments of each way. */
Words waysInWords(const std::vector<Words>& ways);

/** A condition, and the index of a parameter that must not be changed to meet it. */
struct Wish {
    std::size_t excluded;
    std::function<bool()> isTrue;
};

/** Restores everything it tries (see restore). Parameters are identified by their index in the list, since a
 *  restore may create a new instance with new records. */
class Probe {
public:
    explicit Probe(ScratchSession& session);

    ScratchSession& session() const { return m_session; }
    std::size_t count() const { return m_session.parameters().all().size(); }
    const Parameter& at(std::size_t index) const { return m_session.parameters().all()[index]; }
    std::size_t indexOf(const Parameter& parameter) const;

    /** In the state of the probe. */
    const std::vector<ParameterState>& states() const { return m_states; }
    const ParameterState& state(std::size_t index) const { return m_states[index]; }
    /** At present, including changes being tried. */
    ParameterState currentState(std::size_t index) const;

    /** The setter's answer to the value. */
    int answer(const Target& target, const Value& value);
    int answer(const Change& change) { return answer({&at(change.index)}, change.value); }
    /** The setter's answers to several values of a parameter, the fastest way: the present one is set last, so that
     *  none of the others needs to be taken back. */
    std::vector<int> answers(std::size_t index, const std::vector<Value>& values);
    /** Calls `look` with this value set; false, without a call, if the setter refuses it. */
    bool tryChange(const Change& change, const std::function<void()>& look);

    /** A few other values of a parameter: all entries; the limits of a number and values near the present one;
     *  none for texts and arrays. */
    std::vector<Value> otherValues(std::size_t index) const;
    /** Restores the state of the probe. Call it after trying all values of a parameter: setting the old value
     *  restores the parameter itself, but maybe not what it had moved. Does nothing inside a look. */
    void restore();

    /** For each parameter except that of the wish: the entries, or the nearest number, that fulfil the wish as a
     *  single change. */
    std::vector<Change> changesFor(const Wish& wish) { return changesFor(std::vector{wish}).front(); }

    /** Single changes that fulfil each wish; if there are none, pairs of changes of which the first makes the
     *  second parameter writable. Each change is tried once for all wishes, since restoring may be slow. */
    std::vector<Ways> waysTo(const std::vector<Wish>& wishes);
    Ways waysTo(const Wish& wish) { return waysTo(std::vector{wish}).front(); }

    /** "FG_XOFFSET=64", a word for `set`. */
    std::string words(const Change& change) const;
    /** {"FG_LINETRIGGERMODE=ASYNC_TRIGGER", "FG_SHAFTENCODERON=FG_ON"} for each way. */
    std::vector<Words> assignments(const Ways& ways) const;
    /** The same as lines. */
    Words words(const Ways& ways) const { return waysInWords(assignments(ways)); }

private:
    /** Makes the present state the state of the probe. */
    void begin();
    bool isBack() const;
    /** Repeats the loads and resets changed values; false if values still differ. A fresh start is much slower. */
    bool setBack();
    void loadBack();
    Value valueOf(const Target& target) const;
    int write(const Target& target, const Value& value);
    /** Sets a value that was read before. */
    void putBack(const Target& target, const Value& value);
    std::vector<std::vector<Change>> changesFor(const std::vector<Wish>& wishes);
    /** The wishes in `asked`, by index, that the change fulfils. */
    std::vector<std::size_t> trueWith(const Change& change, const std::vector<Wish>& wishes,
                                      const std::vector<std::size_t>& asked);
    /** True for a parameter that is writable at present, but not in the state of the probe. */
    bool isFreed(std::size_t index) const;
    /** For each wish: a change of an enumeration, then one of a parameter that it makes writable. */
    std::vector<Ways> pairsFor(const std::vector<Wish>& wishes);
    /** Tries the second changes while the first one is set. */
    void addPairsAfter(const Change& first, const std::vector<Wish>& wishes, std::vector<Ways>& pairs);
    bool holdsWith(const Change& change, const std::function<bool()>& condition);
    Value nearest(const Change& found, const std::function<bool()>& condition);

    ScratchSession& m_session;
    std::vector<ParameterState> m_states;
    std::set<std::string, std::less<>>
        m_storedOtherwise;    // after a load: parameters with a stored value that differs from their reading
    int m_depth = 0;          // nesting of looks
    bool m_isTouched = false; // something was written since the last restore
};

} // namespace applet_tools

#endif
