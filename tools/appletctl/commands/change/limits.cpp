// The accepted values and the parameter that sets each limit, measured on the scratch board.

#include "applet_tools/answers/limits.h"
#include "applet_tools/base/text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/lines.h"
#include "appletctl/commands/reports.h"
#include "appletctl/commands/shared_options.h"

#include "vexo/fg_errors.h"

#include <unistd.h>

namespace appletctl {
namespace {

using nlohmann::ordered_json;

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
    return range.step == 0 && range.minimum != range.maximum ? text + ", any value in between" : text;
}

std::string refusalInWords(int code) {
    return code == FG_ERR_NOT_AVAILABLE
               ? "nothing: it is always read-only, since it is measured, or fixed by the design"
               : "nothing that was tried: " + codeInWords(code);
}

void addEntries(Table& table, const std::vector<EntryAnswer>& entries) {
    for (const auto& [entry, code, acceptedWith] : entries) {
        std::string words = "accepted";
        if (code != FG_OK) words = "refused: " + codeInWords(code);
        if (!acceptedWith.empty()) words += "; accepted with " + join(acceptedWith, " or ");
        table.addRow({entryName(entry) + " (" + numberText(entry.value) + ")", words});
    }
}

void addPublished(Table& table, const PublishedRange& published) {
    table.addRow({"published", published.limits ? published.words : "no limits that say anything"});
}

void addCauses(Table& table, const Parameter& parameter, const LimitCauses& causes, End end) {
    const char* title = nameOf(end);
    for (const Widening& widening : causes.parameters)
        table.addRow({title, "set by " + widening.parameter + ": " +
                                 endInWords(parameter, widening.limit, end) + " with " + widening.with});
    for (const DesignCause& cause : causes.design)
        table.addRow({title, "set by " + inWords(cause)});
}

void addFixed(Table& table, const LimitCauses& ofMinimum, const LimitCauses& ofMaximum) {
    if (isUnmoved(ofMinimum) && isUnmoved(ofMaximum)) {
        table.addRow({"both limits", neitherWidened});
        return;
    }
    const std::string minimum = fixedInWords(ofMinimum, End::minimum),
                      maximum = fixedInWords(ofMaximum, End::maximum);
    if (!minimum.empty() && minimum == maximum) {
        table.addRow({"both limits", minimum});
        return;
    }
    if (!minimum.empty()) table.addRow({"minimum", minimum});
    if (!maximum.empty()) table.addRow({"maximum", maximum});
}

void addRange(Table& table, const Parameter& parameter, const AcceptedValues& answer) {
    table.addRow({"accepted", inWords(parameter, *answer.range)});
    if (answer.published) addPublished(table, *answer.published);
    addCauses(table, parameter, answer.ofMinimum, End::minimum);
    addCauses(table, parameter, answer.ofMaximum, End::maximum);
    addFixed(table, answer.ofMinimum, answer.ofMaximum);
}

Table tableOf(const AcceptedValues& answer, const Parameter& parameter) {
    Table table;
    table.addSubject(answer.subject);
    table.addRow({"now", shownReading(parameter, answer.now) + ", " + answer.access});
    if (const std::uint32_t count = elementCount(parameter); count > 0)
        table.addRow({"elements", rangeInWords(0u, count - 1)});
    if (parameter.kind() == REGISTER_KIND_ENUM) {
        addEntries(table, answer.entries);
    } else if (answer.isText) {
        table.addRow({"accepted",
                      "any text without a line break; a parameter that names a file is refused where "
                      "the file cannot be opened"});
    } else if (answer.range) {
        addRange(table, parameter, answer);
    } else {
        table.addRow({"accepted", refusalInWords(answer.refusal)});
        if (answer.published) addPublished(table, *answer.published);
    }
    return table;
}

Report showLimits(Context& context, const Words& names) {
    const Words& with = context.options().of<WithOption>().assignments;
    Report report;
    auto& rows = report.document["parameters"] = ordered_json::array();
    for (const AcceptedValues& answer : askAcceptedValues(context, names, with)) {
        const Parameter& parameter = context.parameters().find(answer.parameter);
        report.text += (report.text.empty() ? "" : "\n") +
                       tableOf(answer, parameter).render(Style::forStream(STDOUT_FILENO));
        rows.push_back(asJson(answer, parameter));
    }
    addAssumed(report, context, names, with);
    return report;
}

} // namespace

extern const Command limitsCommand;
const Command limitsCommand = {
    .name = "limits",
    .help = "Show what is accepted now, and which parameter sets each limit",
    .argument = "NAME",
    .argumentHelp = "Parameters, or elements of one",
    .examples = {{"limits FG_WIDTH", "what is accepted, and what sets it"},
                 {"limits FG_WIDTH --with FG_XOFFSET=1024", "the same with another offset"}},
    .fewest = 1,
    .most = -1,
    .run = showLimits,
    .scratch = Context::Scratch::wanted,
    .showsValues = true,
    .takesWithToScratch = true,
};

} // namespace appletctl
