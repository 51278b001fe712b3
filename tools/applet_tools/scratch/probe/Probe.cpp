#include "applet_tools/scratch/probe/Probe.h"

#include "applet_tools/applet/Effort.h"
#include "applet_tools/applet/files/ConfigurationFile.h"
#include "applet_tools/applet/files/MemoryFile.h"
#include "applet_tools/applet/hardware_values.h"
#include "applet_tools/base/text.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

namespace applet_tools {
namespace {

/** Calls `use` with the native number, or `otherwise` for texts and arrays. */
template <typename Result, typename Use> Result withNumber(const Value& value, Result otherwise, Use use) {
    return std::visit(
        [&](const auto& native) -> Result {
            if constexpr (std::is_arithmetic_v<std::decay_t<decltype(native)>>)
                return use(native);
            else
                return otherwise;
        },
        value);
}

constexpr std::uint64_t signBit = std::uint64_t{1} << 63;

/** Consecutive numbers of a grid differ by one step. Numbers of a floating-point grid are rounded to what a user
 *  would type. */
struct Grid {
    Value origin;
    double increment;

    /** A number far outside the grid, infinite or NaN gets the outermost step or 0, so that sums and
     *  differences of steps do not overflow. */
    std::int64_t stepOf(const Value& value) const {
        constexpr double outermost = 1e18;
        return withNumber<std::int64_t>(value, 0, [&](auto number) -> std::int64_t {
            const double step = (static_cast<double>(number) - first()) / increment;
            return std::isnan(step) ? 0 : std::llround(std::clamp(step, -outermost, outermost));
        });
    }
    Value at(std::int64_t step) const {
        const double number = first() + static_cast<double>(step) * increment;
        return withNumber<Value>(origin, origin, [&](auto like) -> Value {
            using T = decltype(like);
            if constexpr (std::is_floating_point_v<T>)
                return std::round(number * 1e9) / 1e9;
            else
                return static_cast<T>(number);
        });
    }
    double first() const {
        return withNumber<double>(origin, 0, [](auto number) { return static_cast<double>(number); });
    }
};

/** Empty if the published steps are not usable. */
std::optional<Grid> gridOf(const std::optional<Limits>& limits) {
    if (!limits) return std::nullopt;
    const bool isWhole = !std::holds_alternative<double>(limits->minimum);
    const double increment =
        withNumber<double>(limits->increment, 0, [](auto number) { return static_cast<double>(number); });
    if (isWhole) return Grid{limits->minimum, std::max(1.0, increment)};
    if (increment < 1e-9) return std::nullopt;
    return Grid{limits->minimum, increment};
}

/** The parameters with another value in the last loaded file than in a read: a load stores values that no getter
 *  shows. */
std::set<std::string, std::less<>> storedOtherwise(ScratchSession& session) {
    std::set<std::string, std::less<>> names;
    for (const std::string& text : session.instance().loads().texts) {
        const ConfigurationFile file(text);
        for (const auto& line : file.values()) {
            const auto parameter = std::ranges::find(session.parameters().all(), line.key, &Parameter::name);
            if (parameter == session.parameters().all().end()) continue;
            const auto stored = valueOfLoad(*parameter, std::string(line.value));
            if (!stored || readValue(session.instance(), {&*parameter}).value != *stored)
                names.emplace(line.key);
        }
    }
    return names;
}

bool mayChange(const Wish& wish, const Change& change) { return wish.excluded != change.index; }

bool isExcludedByAll(const std::vector<Wish>& wishes, std::size_t index) {
    return std::ranges::all_of(wishes, [&](const Wish& wish) { return wish.excluded == index; });
}

/** Counts a look while it lasts. */
class Nesting {
public:
    explicit Nesting(int& depth) : m_depth(depth) { ++m_depth; }
    ~Nesting() { --m_depth; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

private:
    int& m_depth;
};

} // namespace

std::uint64_t rankOf(const Value& number) {
    return withNumber<std::uint64_t>(number, 0, [](auto native) -> std::uint64_t {
        using T = decltype(native);
        if constexpr (std::is_floating_point_v<T>) {
            const auto bits = std::bit_cast<std::uint64_t>(native);
            return (bits & signBit) != 0 ? ~bits : bits | signBit;
        } else if constexpr (std::is_signed_v<T>) {
            return static_cast<std::uint64_t>(static_cast<std::int64_t>(native)) ^ signBit;
        } else {
            return native;
        }
    });
}

Value numberAt(std::uint64_t rank, const Value& like) {
    return withNumber<Value>(like, like, [&](auto native) -> Value {
        using T = decltype(native);
        if constexpr (std::is_floating_point_v<T>)
            return std::bit_cast<double>((rank & signBit) != 0 ? rank ^ signBit : ~rank);
        else if constexpr (std::is_signed_v<T>)
            return static_cast<T>(static_cast<std::int64_t>(rank ^ signBit));
        else
            return static_cast<T>(rank);
    });
}

Words waysInWords(const std::vector<Words>& ways) {
    Words lines;
    for (const Words& way : ways)
        lines.push_back(join(way, " "));
    return lines;
}

Probe::Probe(ScratchSession& session) : m_session(session) { begin(); }

void Probe::begin() {
    // The writes of a probe do not belong to a trace.
    m_session.instance().board().log_kinds(m_session.instance().device(), 0);
    m_isTouched = false;
    m_states = statesOf(m_session.instance(), m_session.parameters());
    m_storedOtherwise = storedOtherwise(m_session);
}

std::size_t Probe::indexOf(const Parameter& parameter) const {
    return static_cast<std::size_t>(&parameter - m_session.parameters().all().data());
}

ParameterState Probe::currentState(std::size_t index) const {
    return applet_tools::currentState(m_session.instance(), at(index));
}

Value Probe::valueOf(const Target& target) const { return readValue(m_session.instance(), target).value; }

void Probe::putBack(const Target& target, const Value& value) {
    writeValue(m_session.instance(), target, requestFor(*target.parameter, value));
}

int Probe::write(const Target& target, const Value& value) {
    const int code = writeValue(m_session.instance(), target, value);
    if (code != FG_ERR_NOT_AVAILABLE) m_isTouched = true; // other refusals may have changed something
    return code;
}

int Probe::answer(const Target& target, const Value& value) {
    const Value before = valueOf(target);
    const int code = write(target, value);
    if (code == FG_OK) putBack(target, before);
    return code;
}

std::vector<int> Probe::answers(std::size_t index, const std::vector<Value>& values) {
    if (values.empty()) return {};
    const Target target{&at(index)};
    const auto present = std::ranges::find(values, readValue(m_session.instance(), target).value);
    // If the present value is among them, it is set last: then an accepted one need not be taken back at once.
    std::vector<int> codes;
    codes.reserve(values.size());
    for (const Value& value : values) {
        if (present == values.end()) {
            codes.push_back(answer(target, value));
            continue;
        }
        codes.push_back(value == *present ? FG_OK : write(target, value));
        if (codes.back() != FG_OK) write(target, *present); // a refused one may have moved others
    }
    if (present != values.end())
        codes[static_cast<std::size_t>(present - values.begin())] = write(target, *present);
    return codes;
}

bool Probe::tryChange(const Change& change, const std::function<void()>& look) {
    const Target target{&at(change.index)};
    const Value before = valueOf(target);
    const bool isAccepted = write(target, change.value) == FG_OK;
    if (isAccepted) {
        const Nesting nesting(m_depth);
        look();
    }
    if (isAccepted) putBack(target, before);
    if (valueOf(target) != before) restore(); // a refused value may have been stored, too
    return isAccepted;
}

void Probe::restore() {
    if (m_depth > 0 || !m_isTouched) return;
    m_isTouched = false;
    if (isBack() || setBack()) return;
    m_session.rewind();
    begin();
}

bool Probe::isBack() const {
    for (std::size_t index = 0; index < count(); ++index)
        // Texts are not tried, and reading one is slow. One that moves with a number is restored with it.
        if (at(index).kind() != REGISTER_KIND_STRING && currentState(index) != m_states[index]) return false;
    return true;
}

/** A load accepts values that a set would refuse. */
void Probe::loadBack() {
    Instance& instance = m_session.instance();
    for (const std::string& text : instance.loads().texts) {
        const MemoryFile file;
        file.write(text);
        ++effort().loads;
        // Not a load of its own, which would replace the recorded loads.
        instance.applet().Fg_loadConfig(instance.fg(), file.configurationPath().c_str());
    }
}

bool Probe::setBack() {
    loadBack();
    constexpr int mostRounds = 3; // one value can block another
    for (int round = 0; round < mostRounds; ++round) {
        if (isBack()) return true;
        bool isTaken = false;
        for (std::size_t index = 0; index < count(); ++index) {
            const ParameterState& was = m_states[index];
            if (at(index).kind() == REGISTER_KIND_STRING || was.error != FG_OK || !isNumber(was.value))
                continue;
            if (currentState(index).value == was.value) continue;
            if (m_storedOtherwise.contains(at(index).name) || !at(index).effectOfWriting().empty())
                return false;
            isTaken |=
                writeValue(m_session.instance(), {&at(index)}, requestFor(at(index), was.value)) == FG_OK;
        }
        if (!isTaken) return false;
    }
    return isBack();
}

std::vector<Value> Probe::otherValues(std::size_t index) const {
    std::vector<Value> values;
    const ParameterState& now = state(index);
    if (at(index).record == nullptr || now.error != FG_OK || !isNumber(now.value)) return values;
    const auto add = [&](const Value& value) {
        if (value != now.value && std::ranges::find(values, value) == values.end()) values.push_back(value);
    };
    for (const Entry& entry : entriesOf(at(index)))
        if (const auto* held = std::get_if<std::int32_t>(&now.value); held == nullptr || *held != entry.value)
            values.emplace_back(entry.value);
    if (!now.limits || now.limits->minimum.index() != now.value.index()) return values;
    add(now.limits->minimum);
    add(now.limits->maximum);
    if (const auto grid = gridOf(now.limits)) {
        const std::int64_t step = grid->stepOf(now.value), last = grid->stepOf(now.limits->maximum);
        for (const std::int64_t near : {step / 2, step * 2})
            if (near > 0 && near < last) add(grid->at(near));
    }
    return values;
}

bool Probe::holdsWith(const Change& change, const std::function<bool()>& condition) {
    bool holds = false;
    tryChange(change, [&] { holds = condition(); });
    return holds;
}

Value Probe::nearest(const Change& found, const std::function<bool()>& condition) {
    const auto grid = gridOf(state(found.index).limits);
    if (!grid) return found.value;
    std::int64_t refused = grid->stepOf(state(found.index).value), held = grid->stepOf(found.value);
    while (std::abs(held - refused) > 1) {
        const std::int64_t middle = refused + (held - refused) / 2;
        (holdsWith({found.index, grid->at(middle)}, condition) ? held : refused) = middle;
    }
    const Value value = grid->at(held);
    return holdsWith({found.index, value}, condition) ? value : found.value;
}

std::vector<std::vector<Change>> Probe::changesFor(const std::vector<Wish>& wishes) {
    std::vector<std::vector<Change>> changes(wishes.size());
    for (std::size_t index = 0; index < count(); ++index) {
        const bool isEnumeration = at(index).kind() == REGISTER_KIND_ENUM;
        std::vector<std::size_t> open; // indices of the wishes for which values of this parameter are tried
        for (std::size_t i = 0; i < wishes.size(); ++i)
            if (wishes[i].excluded != index) open.push_back(i);
        if (open.empty()) continue;
        for (const Value& value : otherValues(index)) {
            for (const std::size_t i : trueWith({index, value}, wishes, open)) {
                changes[i].push_back(
                    {index, isEnumeration ? value : nearest({index, value}, wishes[i].isTrue)});
                if (!isEnumeration) std::erase(open, i);
            }
            if (open.empty()) break;
        }
        restore();
    }
    return changes;
}

std::vector<std::size_t> Probe::trueWith(const Change& change, const std::vector<Wish>& wishes,
                                         const std::vector<std::size_t>& asked) {
    std::vector<std::size_t> found;
    tryChange(change, [&] {
        for (const std::size_t i : asked)
            if (wishes[i].isTrue()) found.push_back(i);
    });
    return found;
}

bool Probe::isFreed(std::size_t index) const {
    const RegisterInfo* const record = at(index).record;
    return record != nullptr && ((record->access & ~state(index).access) & REGISTER_ACCESS_WRITE) != 0;
}

void Probe::addPairsAfter(const Change& first, const std::vector<Wish>& wishes, std::vector<Ways>& pairs) {
    const auto trySecond = [&](const Change& second) {
        tryChange(second, [&] {
            for (std::size_t i = 0; i < wishes.size(); ++i)
                if (mayChange(wishes[i], first) && mayChange(wishes[i], second) && wishes[i].isTrue())
                    pairs[i].push_back({first, second});
        });
    };
    for (std::size_t index = 0; index < count(); ++index) {
        if (isExcludedByAll(wishes, index) || !isFreed(index)) continue;
        for (const Value& value : otherValues(index))
            trySecond({index, value});
    }
}

std::vector<Ways> Probe::pairsFor(const std::vector<Wish>& wishes) {
    std::vector<Ways> pairs(wishes.size());
    for (std::size_t index = 0; index < count(); ++index) {
        if (isExcludedByAll(wishes, index) || at(index).kind() != REGISTER_KIND_ENUM) continue;
        for (const Value& value : otherValues(index)) {
            const Change first{index, value};
            tryChange(first, [&] { addPairsAfter(first, wishes, pairs); });
        }
        restore();
    }
    return pairs;
}

std::vector<Ways> Probe::waysTo(const std::vector<Wish>& wishes) {
    std::vector<Ways> ways(wishes.size());
    const std::vector<std::vector<Change>> changes = changesFor(wishes);
    std::vector<Wish> left;
    std::vector<Ways*> waysOfLeft;
    for (std::size_t i = 0; i < wishes.size(); ++i) {
        for (const Change& change : changes[i])
            ways[i].push_back({change});
        if (!changes[i].empty()) continue;
        left.push_back(wishes[i]);
        waysOfLeft.push_back(&ways[i]);
    }
    if (left.empty()) return ways;
    std::vector<Ways> pairs = pairsFor(left);
    for (std::size_t i = 0; i < left.size(); ++i)
        *waysOfLeft[i] = std::move(pairs[i]);
    return ways;
}

std::vector<Words> Probe::assignments(const Ways& ways) const {
    std::vector<Words> lists;
    for (const std::vector<Change>& way : ways) {
        Words& list = lists.emplace_back();
        for (const Change& change : way)
            list.push_back(words(change));
    }
    return lists;
}

std::string Probe::words(const Change& change) const {
    return at(change.index).name + "=" + exactValueText(at(change.index), change.value);
}

} // namespace applet_tools
