// A step becomes the document of a station file, so that both have the same limits and the same messages.

#include "applet_tools/station/station_words.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace applet_tools {
namespace {

using StepDocument = nlohmann::ordered_json;

StepDocument numberOf(const std::string& word) {
    if (const auto number = wholeNumber<std::int64_t>(word)) return *number;
    throw UsageError(inQuotedWord(word) + " is not a number");
}

std::pair<std::string, std::string> twoParts(const std::string& word, const char* form) {
    const std::size_t comma = word.find(',');
    if (comma == std::string::npos) throw UsageError(inQuotedWord(word) + " is not of the form " + form);
    return {word.substr(0, comma), word.substr(comma + 1)};
}

/** The words after the first one, in groups that begin with a name. */
class Groups {
public:
    explicit Groups(const Words& words) : m_words(words) {}
    bool isEmpty() const { return m_index >= m_words.size(); }
    /** The next name, with its own words after it. */
    std::string name(const Words& names) {
        std::string word = m_words[m_index++];
        for (const std::string& name : names)
            if (name == word) return word;
        throw UsageError(inQuotedWord(word) + " is not one of " + join(names, ", ") +
                         didYouMean(nearestWords(word, names)));
    }
    std::string next(const std::string& after) {
        if (isEmpty()) throw UsageError("a value is missing after " + inQuotedWord(after));
        return m_words[m_index++];
    }

private:
    const Words& m_words;
    std::size_t m_index = 1;
};

StationFile stationOf(StepDocument fields) {
    fields["station"] = 1;
    return parseStation(fields.dump(-1, ' ', false, StepDocument::error_handler_t::replace), "");
}

/** Parses "0..500/20ms" in mm/s. */
StepDocument beltPiece(const std::string& word) {
    const std::size_t slash = word.find('/');
    const std::string speeds = word.substr(0, slash);
    const std::size_t dots = speeds.find("..");
    StepDocument piece;
    if (dots == std::string::npos) {
        piece["speed"] = speeds + "mm/s";
    } else {
        piece["from"] = speeds.substr(0, dots) + "mm/s";
        piece["to"] = speeds.substr(dots + 2) + "mm/s";
    }
    if (slash != std::string::npos) piece["for"] = word.substr(slash + 1);
    return piece;
}

} // namespace

StationCamera cameraFromWords(const Words& words) {
    StepDocument camera{{"width", numberOf(words[0])}};
    for (Groups groups(words); !groups.isEmpty();) {
        const std::string name = groups.name({"exposure", "rate"});
        const std::string value = groups.next(name);
        if (name == "rate")
            camera["lineRate"] = numberOf(value);
        else
            camera["exposure"] = value;
    }
    return *stationOf({{"camera", camera}}).camera;
}

StationBelt beltFromWords(const Words& words) {
    StepDocument belt{{"profile", StepDocument::array()}};
    std::string rest = words[0];
    for (std::size_t comma = 0; comma != std::string::npos; rest.erase(0, comma + 1)) {
        comma = rest.find(',');
        belt["profile"].push_back(beltPiece(rest.substr(0, comma)));
        if (comma == std::string::npos) break;
    }
    for (Groups groups(words); !groups.isEmpty();) {
        const std::string name = groups.name({"encoder", "barrier"});
        const std::string input = groups.next(name);
        const std::string length = groups.next(input);
        if (name == "barrier") {
            belt["barrier"] = {{"input", input}, {"ahead", length}};
            continue;
        }
        const auto [a, b] = twoParts(input, "INPUT,INPUT");
        belt["encoder"] = {{"a", a}, {"b", b}, {"step", length}};
    }
    return *stationOf({{"belt", belt}}).belt;
}

StationScene sceneFromWords(const Words& words) {
    StepDocument fields{{"scene", {{"image", words[0]}}}};
    for (Groups groups(words); !groups.isEmpty();) {
        const std::string name = groups.name({"pixel", "object"});
        const std::string value = groups.next(name);
        if (name == "pixel") {
            fields["scene"]["pixel"] = value;
            continue;
        }
        const auto [position, length] = twoParts(value, "PLACE,LENGTH");
        fields["objects"].push_back({{"place", position}, {"length", length}});
    }
    return *stationOf(fields).scene;
}

} // namespace applet_tools
