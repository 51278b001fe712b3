#include "applet_tools/scratch/DesignSnapshot.h"

#include "applet_tools/applet/files/LutTables.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace applet_tools {
namespace {

std::string inWords(const Value& held, const char* elements) {
    return std::visit(
        [&](const auto& native) -> std::string {
            using T = std::decay_t<decltype(native)>;
            if constexpr (std::is_arithmetic_v<T>) return numberText(native);
            if constexpr (std::is_same_v<T, WholeArray>) return numberText(native.count) + elements;
            return "";
        },
        held);
}

} // namespace

DesignSnapshot::DesignSnapshot(ScratchSession& session) {
    const auto& board = session.instance().board();
    LOOMdevice* const device = session.instance().device();
    for (const std::string& name : session.designNames()) {
        double number = 0;
        std::int64_t whole = 0;
        if (board.peek_double(device, name.c_str(), &number) == VBOARD_OK && number != std::floor(number)) {
            m_numbers[name] = number;
        } else if (board.peek_int(device, name.c_str(), &whole) == VBOARD_OK) {
            m_numbers[name] = whole;
        }
    }
    m_arrays = designTables(session.instance(), session.parameters());
}

std::vector<DesignChange> DesignSnapshot::changesTo(const DesignSnapshot& later) const {
    std::vector<DesignChange> changes;
    for (const auto& [name, before] : m_numbers)
        if (const auto after = later.m_numbers.find(name);
            after != later.m_numbers.end() && after->second != before)
            changes.push_back({name, before, after->second});
    for (const auto& [name, before] : m_arrays) {
        const auto after = later.m_arrays.find(name);
        if (after == later.m_arrays.end() || after->second == before) continue;
        const std::size_t count = differences(before, after->second);
        changes.push_back({name, WholeArray{static_cast<std::uint32_t>(before.size())},
                           WholeArray{static_cast<std::uint32_t>(count)}});
    }
    return changes;
}

std::string beforeInWords(const DesignChange& change) { return inWords(change.before, " elements"); }

std::string afterInWords(const DesignChange& change) { return inWords(change.after, " others"); }

std::string inWords(const DesignChange& change) {
    return change.parameter + ": " + beforeInWords(change) + " -> " + afterInWords(change);
}

nlohmann::ordered_json asJson(const std::vector<DesignChange>& changes) {
    auto rows = nlohmann::ordered_json::array();
    for (const DesignChange& change : changes) {
        nlohmann::ordered_json row = {{"parameter", change.parameter}};
        if (const auto* elements = std::get_if<WholeArray>(&change.before)) {
            row["elements"] = elements->count;
            row["changed"] = std::get<WholeArray>(change.after).count;
        } else {
            row["before"] = numberAsJson(change.before);
            row["after"] = numberAsJson(change.after);
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

} // namespace applet_tools
