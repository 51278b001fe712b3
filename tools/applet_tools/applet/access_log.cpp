#include "applet_tools/applet/access_log.h"

#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"

#include <optional>
#include <sstream>

namespace applet_tools {
namespace {

std::string logLine(Instance& instance, std::size_t index) {
    std::string line(256, '\0');
    int length = VBOARD_TOO_SMALL;
    while ((length = instance.board().log_line(instance.device(), index, line.data(), line.size())) ==
           VBOARD_TOO_SMALL)
        line.resize(line.size() * 2);
    line.resize(length < 0 ? 0 : static_cast<std::size_t>(length));
    return printable(line);
}

void logKinds(Instance& instance, unsigned kinds) {
    instance.board().log_kinds(instance.device(), kinds);
    instance.board().log_clear(instance.device());
}

using nlohmann::ordered_json;

/** A number field of that type in the log. */
ordered_json numberOf(const std::string& type, const std::string& word) {
    if (type == "f64")
        if (const auto number = floatingNumber(word)) return *number;
    if (const auto number = wholeNumber<std::int64_t>(word)) return *number;
    if (const auto number = wholeNumber<std::uint64_t>(word)) return *number;
    return word; // not a finite number
}

ordered_json accessAsJson(std::string line) {
    ordered_json access;
    const auto takeWord = [&] {
        const std::size_t end = line.find(' ');
        std::string word = line.substr(0, end);
        line.erase(0, end == std::string::npos ? end : end + 1);
        return word;
    };
    access["access"] = takeWord();
    access["parameter"] = takeWord();
    const std::string type = takeWord();
    access["type"] = type;
    std::optional<int> error;
    // A text may contain anything, and a failed read does not log it.
    if (const std::size_t mark = line.rfind("= ");
        mark == 0 || (mark != std::string::npos && line[mark - 1] == ' ')) {
        error = wholeNumber<int>(std::string_view(line).substr(mark + 2));
        if (error) line.erase(mark == 0 ? 0 : mark - 1);
    }
    if (const std::size_t plus = line.find('+'); type == "field" && plus != std::string::npos) {
        access["first"] = numberOf(type, line.substr(0, plus));
        access["count"] = numberOf(type, line.substr(plus + 1));
    } else if (type == "text") {
        access["value"] = line;
    } else if (!line.empty()) {
        access["value"] = numberOf(type, line);
    }
    if (error) access["error"] = *error;
    return access;
}

} // namespace

ordered_json accessesAsJson(const std::vector<std::string>& lines) {
    ordered_json accesses = ordered_json::array();
    for (const std::string& line : lines)
        accesses.push_back(accessAsJson(line));
    return accesses;
}

std::string loggedLine(const ordered_json& access) {
    const auto word = [&](const char* member) -> std::string {
        const auto found = access.find(member);
        if (found == access.end()) return "";
        if (found->is_number_float()) return exactText(found->get<double>());
        return found->is_string() ? found->get<std::string>() : found->dump();
    };
    std::string line = word("access") + " " + word("parameter") + " " + word("type");
    if (access.contains("value")) line += " " + word("value");
    if (access.contains("first")) line += " " + word("first") + "+" + word("count");
    return access.contains("error") ? line + " = " + word("error") : line;
}

void logWrites(Instance& instance) { logKinds(instance, VBOARD_SET | VBOARD_REGISTER_WRITE); }

void logAccesses(Instance& instance) {
    logKinds(instance, VBOARD_SET | VBOARD_GET | VBOARD_REGISTER_WRITE | VBOARD_REGISTER_READ);
}

std::vector<std::string> takeAccessLog(Instance& instance) {
    std::vector<std::string> lines;
    const std::size_t count = instance.board().log_size(instance.device());
    for (std::size_t i = 0; i < count; ++i)
        lines.push_back(logLine(instance, i));
    instance.board().log_clear(instance.device());
    return lines;
}

std::vector<std::string> writesOf(const std::vector<std::string>& accesses) {
    std::vector<std::string> writes;
    for (const std::string& line : accesses)
        if (line.starts_with("set ") || line.starts_with("write ")) writes.push_back(line);
    return writes;
}

LoggedAccess loggedAccess(const std::string& line) {
    LoggedAccess found;
    std::string mark;
    std::istringstream(line) >> found.access >> found.parameter >> found.type >> found.value >> mark;
    found.hasFailed = mark == "=";
    return found;
}

} // namespace applet_tools
