#include "applet_tools/answers/loading/Finding.h"

#include "applet_tools/base/text.h"

#include <cstddef>

namespace applet_tools {
namespace {

/** In the order of the enumeration. */
constexpr const char* kindNames[] = {"file", "missing", "unknown",   "repeated", "unreadable", "refused",
                                     "kept", "cut",     "unapplied", "rounded",  "computed"};

} // namespace

const char* nameOf(FindingKind kind) { return kindNames[static_cast<std::size_t>(kind)]; }

nlohmann::ordered_json asJson(const std::vector<Finding>& findings) {
    auto rows = nlohmann::ordered_json::array();
    for (const Finding& finding : findings) {
        nlohmann::ordered_json row = {{"kind", nameOf(finding.kind)},
                                      {"name", toUtf8(finding.key)},
                                      {"isLoss", finding.isLoss},
                                      {"message", finding.message}};
        if (!finding.reached.is_null()) row["reached"] = finding.reached;
        if (!finding.followsFrom.empty()) row["followsFrom"] = finding.followsFrom;
        rows.push_back(std::move(row));
    }
    return rows;
}

} // namespace applet_tools
