#include "applet_tools/answers/loading/lines.h"

#include "applet_tools/answers/loading/long_lines.h"
#include "applet_tools/applet/assignments.h"
#include "applet_tools/applet/files/MemoryFile.h"
#include "applet_tools/applet/hardware_values.h"
#include "applet_tools/applet/published_limits.h"
#include "applet_tools/applet/timing/simulator_rates.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>

namespace applet_tools {
namespace {

/** Why a load finds the key in the rest of a long line; empty if it does not. */
std::string restInWords(const ConfigurationFile& asked, const std::string& key) {
    const std::string other = keyWithRestFor(asked, key);
    if (other.empty()) return "";
    return "the line of " + printable(other) + " is too long for a load, which reads its end as a line of " +
           key;
}

/** A line with a parameter's value, before and after the load. */
struct ValueLine {
    const ConfigurationFile::Line& line;
    const Parameter& parameter;
    std::string asked;          // in the file
    std::string is;             // after the load
    std::optional<Value> value; // of the text in the file, exactly
    std::optional<Value> read;  // what a load reads from it

    const std::string& name() const { return parameter.name; }
    bool isNumberUnlimited() const {
        return !value && parameter.kind() == REGISTER_KIND_DOUBLE && asked == is;
    }
    bool isUnread() const { return !read || (!value && asked == is); }
    bool isKept() const {
        return value ? isSameValue(parameter, asked, is) : valueInFile(parameter, is) == read;
    }
    bool isCutAtSign() const {
        return parameter.kind() == REGISTER_KIND_STRING && asked.starts_with(is) &&
               asked.size() > is.size() &&
               std::string_view("=;'").find(asked[is.size()]) != std::string_view::npos;
    }
    /** The value in the file; with its text if a load reads another value from it or changes its sign. */
    std::string askedText() const {
        const std::string shown = fileValueWithReading(parameter, asked);
        const bool isUnlike = parameter.kind() == REGISTER_KIND_UINT && asked.starts_with('-') && value;
        return isUnlike ? shown + " (" + asked + " in the file)" : shown;
    }
    /** ", after the load it is 64". */
    std::string now() const { return ", after the load it is " + fileValueText(parameter, is); }
    /** "FG_WIDTH: the file has 20000, after the load it is 64". */
    std::string change() const { return name() + ": the file has " + askedText() + now(); }
};

/** Examines the values of a file one by one, on the board that has loaded it. */
class ValueCheck {
public:
    ValueCheck(ScratchSession& session, const LoadedFile& file) : m_session(session), m_file(file) {}

    /** The finding for a line of the file; empty if its value is set and the setter accepts it. */
    std::optional<Finding> examine(const ConfigurationFile::Line& line) {
        const ValueLine it = lookAt(line);
        if (it.isNumberUnlimited()) return unlimited(it);
        if (it.isUnread()) return std::nullopt;
        if (auto cut = cutByLength(it)) return cut;
        const bool isComputed = isIgnored(it);
        if (isComputed && it.value) return computed(it);
        const int code = isComputed ? FG_OK : writeValue(m_session.instance(), {&it.parameter}, *it.read);
        if (code != FG_OK) return refusal(it, code);
        if (!it.value) return unreadable(it);
        return it.isKept() ? rounded(it) : changed(it);
    }

private:
    ValueLine lookAt(const ConfigurationFile::Line& line) const {
        const Parameter& parameter = m_session.parameters().find(std::string(line.key));
        std::string asked(line.value);
        return {.line = line,
                .parameter = parameter,
                .asked = asked,
                .is = m_file.state.value(line.key).value_or(""),
                .value = valueInFile(parameter, asked),
                .read = valueOfLoad(parameter, asked)};
    }

    /** The text that a save would write now. */
    std::string onTrial(std::string_view key) {
        return stateOf(m_session.instance()).value(key).value_or("");
    }

    /** True for a rate that the present mode computes from other parameters, so that the file's value is
     *  ignored. */
    bool isIgnored(const ValueLine& it) {
        if (!isComputedNow(it.parameter)) return false;
        const MemoryFile other;
        other.write(m_file.asked.textWith(it.line, it.name() + "=-12345.678;\n"));
        const std::string before = onTrial(it.line.key);
        loadConfiguration(m_session.instance(), other.configurationPath());
        const bool isUnmoved = onTrial(it.line.key) == before;
        loadConfiguration(m_session.instance(), m_file.path);
        return isUnmoved;
    }

    /** For a value that changes because a load reads only the beginning of a long line as one line. */
    std::optional<Finding> cutByLength(const ValueLine& it) const {
        if (it.isKept() || it.isCutAtSign()) return std::nullopt;
        if (isLong(it.line))
            return Finding{FindingKind::cut, it.name(), it.name() + ": " + lengthInWords(it)};
        const std::string rest = restInWords(m_file.asked, it.name());
        if (rest.empty()) return std::nullopt;
        return Finding{FindingKind::cut, it.name(), it.change() + ": " + rest};
    }

    static std::string lengthInWords(const ValueLine& it) {
        const std::string most = numberText(ConfigurationFile::longestLine);
        if (it.parameter.kind() != REGISTER_KIND_STRING)
            return "a load reads " + most + " bytes of a line, and this one has " +
                   numberText(it.line.text.size()) + it.now();
        return "the file has a text of " + numberText(it.asked.size()) +
               " bytes, after the load it has the first " + numberText(it.is.size()) + ": a load reads " +
               most + " bytes of a line";
    }

    /** For a rate that the present mode computes. */
    std::optional<Finding> computed(const ValueLine& it) const {
        if (it.isKept() ||
            isNextCycle(m_session.parameters(), it.name(), ratesIn(m_file.asked), ratesIn(m_file.state)))
            return std::nullopt;
        return Finding{FindingKind::computed, it.name(),
                       it.change() + ": it follows from other parameters in this mode, so a load ignores it",
                       false};
    }

    static Finding unlimited(const ValueLine& it) {
        return {FindingKind::unreadable, it.name(),
                it.name() + ": the file has " + fileValueText(it.parameter, it.asked) +
                    ", which is not a number; no limit stops it, so the board receives it"};
    }

    static Finding refusal(const ValueLine& it, int code) {
        const std::string why = refusalInWords(it.parameter, *it.read, code);
        if (!it.isKept()) return {FindingKind::refused, it.name(), it.change() + ": refused: " + why};
        return {FindingKind::kept, it.name(), it.name() + ": " + it.askedText() + " was refused: " + why};
    }

    static Finding unreadable(const ValueLine& it) {
        return {FindingKind::unreadable, it.name(),
                it.name() + ": the file has " + fileValueText(it.parameter, it.asked) + it.now() + ": " +
                    readingInWords(it.parameter, it.asked)};
    }

    /** For a value that reads back as it is in the file. */
    static std::optional<Finding> rounded(const ValueLine& it) {
        if (!nearestStep(it.parameter, *it.value)) return std::nullopt;
        return Finding{FindingKind::rounded, it.name(),
                       it.name() + ": the file has " + it.askedText() +
                           requestedAndActual(it.parameter, *it.value, *it.value),
                       false};
    }

    /** For a value that the setter accepts and that reads back as another one. */
    std::optional<Finding> changed(const ValueLine& it) {
        if (const auto taken = valueInFile(it.parameter, it.is);
            taken && areNeighbours(it.parameter, *it.value, *taken))
            return std::nullopt;
        if (isSameValue(it.parameter, onTrial(it.line.key), it.is)) {
            const std::string why = countingOf(it.parameter);
            return Finding{FindingKind::rounded, it.name(),
                           it.change() + (why.empty() ? ", as close as the setter comes to it" : ": " + why),
                           false};
        }
        if (it.isCutAtSign())
            return Finding{FindingKind::cut, it.name(),
                           it.change() + ": a load ends a text at its first = ; or '"};
        return Finding{FindingKind::unapplied, it.name(),
                       it.change() + ": a load does not apply it, so set " + it.name() + "=" +
                           exactValueText(it.parameter, *it.value) + " afterwards"};
    }

    ScratchSession& m_session;
    const LoadedFile& m_file;
};

/** "; did you mean FG_WIDTH?" for an unknown key; empty if no known key is similar. */
std::string nearestKey(const ParameterList& parameters, const std::string& key) {
    const std::size_t begin = key.find_first_not_of(" \t");
    if (begin == std::string::npos) return "";
    const std::string word = key.substr(begin, key.find_last_not_of(" \t") + 1 - begin);
    try {
        return didYouMean({parameters.find(word).name}) +
               " A load takes it in capitals and without blanks only";
    } catch (const UnknownName& error) {
        return didYouMean(error.nearest);
    } catch (const UsageError&) { // several have that label
        return "";
    }
}

Finding unknownKey(const ParameterList& parameters, std::string_view key) {
    constexpr std::size_t mostBytes = 100;
    const std::string name = shortened(toUtf8(key), mostBytes);
    const std::string shown =
        name.find_first_of(" \t") != std::string::npos ? inQuotes(name) : printable(name);
    const bool isParameter =
        std::ranges::find(parameters.all(), key, &Parameter::name) != parameters.all().end();
    if (isParameter) return {FindingKind::unknown, name, shown + " was ignored: no load reads it"};
    return {FindingKind::unknown, name, shown + " is unknown and was ignored" + nearestKey(parameters, name)};
}

Finding moreUnknownKeys(std::size_t count) {
    return {FindingKind::unknown, "", numberText(count) + " more keys that no load reads were ignored"};
}

Finding repeatedKey(const ConfigurationFile::Line& line) {
    const std::string key(line.key);
    return {FindingKind::repeated, key,
            key + " is in the file " + numberText(line.count) + " times: only the first line counts"};
}

} // namespace

std::string headerTrouble(const ConfigurationFile& asked, FileKeys& keys) {
    const auto type = asked.header().value("Typ");
    const auto ours = keys.defaults().header().value("Typ");
    if (type && ours && *type != *ours)
        return "it is a file of the applet " + quotedText(*type) + ", not of " + inQuotes(*ours);
    std::vector<std::string> missing;
    for (const auto& line : keys.defaults().header())
        if (!asked.header().find(line.key) && keys.isReadByLoad(line.key)) missing.emplace_back(line.key);
    return missing.empty() ? "" : "its header lacks " + join(missing, ", ");
}

std::vector<Finding> missingKeys(const LoadedFile& file, FileKeys& keys, const ParameterList& parameters) {
    std::vector<Finding> findings;
    for (const auto& line : keys.defaults().values()) {
        if (file.asked.values().find(line.key) || !keys.isReadByLoad(line.key)) continue;
        const std::string key(line.key);
        const std::string is = fileValueText(parameters.find(key), file.state.value(key).value_or(""));
        const std::string rest = restInWords(file.asked, key);
        if (rest.empty())
            findings.push_back({FindingKind::missing, key, key + " is missing: it stays as it was, " + is});
        else
            findings.push_back({FindingKind::cut, key, key + ": after the load it is " + is + ": " + rest});
    }
    return findings;
}

std::vector<Finding> examineLines(ScratchSession& session, FileKeys& keys, const ConfigurationFile& whole,
                                  const LoadedFile& file) {
    constexpr std::size_t mostUnknown = 20;
    std::vector<Finding> findings;
    std::size_t unknown = 0, done = 0;
    ValueCheck check(session, file);
    for (const auto& line : whole.values()) {
        session.reportProgress(done++, whole.values().size());
        if (!keys.defaults().values().find(line.key)) {
            if (++unknown <= mostUnknown) findings.push_back(unknownKey(session.parameters(), line.key));
            continue;
        }
        if (line.count > 1) findings.push_back(repeatedKey(line));
        const auto read = file.asked.values().find(line.key);
        const std::optional<Finding> finding = read ? check.examine(*read) : std::nullopt;
        if (finding && keys.isReadByLoad(line.key)) findings.push_back(*finding);
    }
    if (unknown > mostUnknown) findings.push_back(moreUnknownKeys(unknown - mostUnknown));
    return findings;
}

} // namespace applet_tools
