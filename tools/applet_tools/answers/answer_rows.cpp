#include "applet_tools/answers/answer_rows.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"

#include "vexo/fg_errors.h"

namespace applet_tools {
namespace {

template <typename Number> std::string rangeInWords(const Number& minimum, const Number& maximum) {
    return numberText(minimum) + " to " + numberText(maximum);
}

/** An end of a range, rounded inwards, so that the displayed number is accepted. */
std::string endInWords(const Parameter& parameter, const Value& limit, End end) {
    const auto* number = std::get_if<double>(&limit);
    if (number == nullptr) return valueText(parameter, limit);
    return numberText(end == End::maximum ? roundedDown(*number) : roundedUp(*number));
}

std::string inWords(const Parameter& parameter, const MeasuredRange& range) {
    std::string text = endInWords(parameter, range.minimum, End::minimum) + " to " +
                       endInWords(parameter, range.maximum, End::maximum);
    if (range.step > 1) text += " in steps of " + numberText(range.step);
    if (!parameter.unit().empty()) text += " " + parameter.unit();
    if (range.step > 0 || range.minimum == range.maximum) return text;
    return text + (std::holds_alternative<double>(range.minimum) ? ", any value in between"
                                                                 : ", not every value in between");
}

std::string nothingInWords(int code) {
    return code == FG_ERR_NOT_AVAILABLE
               ? "nothing: it is always read-only, since it is measured, or fixed by the design"
               : "nothing that was tried: " + codeInWords(code);
}

void addEntries(Rows& rows, const std::vector<EntryAnswer>& entries) {
    for (const auto& [entry, code, acceptedWith] : entries) {
        std::string words = "accepted";
        if (code != FG_OK) words = "refused: " + codeInWords(code);
        if (!acceptedWith.empty()) words += "; accepted with " + join(acceptedWith, " or ");
        rows.push_back({entryName(entry) + " (" + numberText(entry.value) + ")", words});
    }
}

void addPublished(Rows& rows, const PublishedRange& published) {
    rows.push_back({"published", published.limits ? published.words : "no limits that say anything"});
}

void addCauses(Rows& rows, const Parameter& parameter, const LimitCauses& causes, End end) {
    const char* title = nameOf(end);
    for (const Widening& widening : causes.parameters)
        rows.push_back({title, "set by " + widening.parameter + ": " +
                                   endInWords(parameter, widening.limit, end) + " with " + widening.with});
    for (const DesignCause& cause : causes.design)
        rows.push_back({title, "set by " + inWords(cause)});
}

void addFixed(Rows& rows, const LimitCauses& ofMinimum, const LimitCauses& ofMaximum) {
    if (isUnmoved(ofMinimum) && isUnmoved(ofMaximum)) {
        rows.push_back({"both limits", neitherWidened});
        return;
    }
    const std::string minimum = fixedInWords(ofMinimum, End::minimum),
                      maximum = fixedInWords(ofMaximum, End::maximum);
    if (!minimum.empty() && minimum == maximum) {
        rows.push_back({"both limits", minimum});
        return;
    }
    if (!minimum.empty()) rows.push_back({"minimum", minimum});
    if (!maximum.empty()) rows.push_back({"maximum", maximum});
}

void addRange(Rows& rows, const Parameter& parameter, const AcceptedValues& answer) {
    rows.push_back({"accepted", inWords(parameter, *answer.range)});
    if (answer.published) addPublished(rows, *answer.published);
    addCauses(rows, parameter, answer.ofMinimum, End::minimum);
    addCauses(rows, parameter, answer.ofMaximum, End::maximum);
    addFixed(rows, answer.ofMinimum, answer.ofMaximum);
}

} // namespace

Rows rowsOf(const AcceptedValues& answer, const Parameter& parameter) {
    Rows rows;
    rows.push_back({"now", shownReading(parameter, answer.now) + ", " + answer.access});
    if (const std::uint32_t count = elementCount(parameter); count > 0)
        rows.push_back({"elements", rangeInWords(0u, count - 1)});
    if (parameter.kind() == REGISTER_KIND_ENUM) {
        addEntries(rows, answer.entries);
    } else if (answer.isText) {
        rows.push_back({"accepted",
                        "any text without a line break; a parameter that names a file is refused where "
                        "the file cannot be opened"});
    } else if (answer.range) {
        addRange(rows, parameter, answer);
    } else {
        rows.push_back({"accepted", nothingInWords(answer.refusal)});
        if (answer.published) addPublished(rows, *answer.published);
    }
    return rows;
}

namespace {

void addWays(Rows& rows, const char* title, const std::vector<std::string>& ways) {
    for (const std::string& way : ways)
        rows.push_back({title, way});
    if (ways.empty()) rows.push_back({title, "no change of another parameter that was tried"});
}

/** A precondition of the changes. */
void addMissingFile(Rows& rows, const std::string& file) {
    if (!file.empty())
        rows.push_back(
            {"missing", shownFile(file) +
                            " is not a file that can be opened for reading; until it is one, what makes "
                            "the parameter writable is refused"});
}

} // namespace

Rows rowsOf(const RefusalAnswer& answer, const Parameter& parameter) {
    Rows rows;
    if (answer.code == FG_OK) {
        const bool isIdle = answer.writableWith && answer.moves.empty();
        rows.push_back({"accepted", isIdle ? "now, but without effect as long as the parameter is read-only"
                                    : answer.writableWith ? "now, although the parameter is read-only"
                                                          : "now"});
        for (const std::string& moved : answer.moves)
            rows.push_back({"moves", moved});
        if (answer.writableWith) addWays(rows, "writable with", *answer.writableWith);
        addMissingFile(rows, answer.missingFile);
        return rows;
    }
    rows.push_back({"refused", answer.refusal});
    const RefusalCauses& causes = answer.causes;
    if (!causes.limit.empty()) rows.push_back({"limit", causes.limit});
    if (causes.isTried) addWays(rows, "accepted with", waysInWords(causes.ways));
    if (causes.nearest) rows.push_back({"nearest", exactValueWithUnit(parameter, *causes.nearest)});
    return rows;
}

namespace {

std::string accessInWords(const AccessAnswer& answer) {
    if (answer.isWritable)
        return answer.access == "rw+" ? "writable, also while an acquisition runs"
                                      : "writable; declared as not to be changed while an acquisition "
                                        "runs, which the applet does not check";
    return answer.hasSetter ? "now; a value can still be set: it is stored, and 'set' says what it moves"
                            : "always: it is measured, or fixed by the design";
}

} // namespace

Rows rowsOf(const AccessAnswer& answer, const Parameter& parameter) {
    Rows rows;
    if (answer.now.error == FG_OK) rows.push_back({"now", shownReading(parameter, answer.now)});
    rows.push_back({answer.access, accessInWords(answer)});
    if (answer.hasSetter)
        addWays(rows, answer.isWritable ? "read-only with" : "writable with", answer.changedWith);
    addMissingFile(rows, answer.missingFile);
    return rows;
}

} // namespace applet_tools
