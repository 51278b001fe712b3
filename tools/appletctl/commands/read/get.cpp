#include "applet_tools/base/errors.h"
#include "applet_tools/scratch/BoardState.h"
#include "appletctl/base/report_text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/lines.h"

#include <CLI/CLI.hpp>

namespace appletctl {
namespace {

/** "FG_WIDTH = 1024 pixel"; one line for each element. */
std::string valueLines(const Target& target, const Value& value) {
    const auto* elements = std::get_if<Elements>(&value);
    if (elements == nullptr) return valueLine(target, value);
    std::string lines;
    for (std::uint32_t index = target.elements->first; const std::uint32_t element : *elements) {
        lines += valueLine({target.parameter, ElementRange{index, index}}, element);
        ++index;
    }
    return lines;
}

/** The bare value, one element per line. */
std::string rawLines(const Value& value) {
    return std::visit(
        [](const auto& native) {
            using T = std::decay_t<decltype(native)>;
            std::string lines;
            if constexpr (std::is_same_v<T, Elements>)
                for (const std::uint32_t element : native)
                    lines += numberText(element) + '\n';
            else if constexpr (std::is_same_v<T, std::string>)
                lines = native + '\n';
            else if constexpr (!std::is_same_v<T, WholeArray>)
                lines = exactText(native) + '\n';
            return lines;
        },
        value);
}

struct GetOptions {
    bool areGroups = false; /**< -g: the names are groups */
    bool isRaw = false;     /**< --raw: bare values */
};

void addGetOptions(CLI::App& command, Options& options) {
    auto& own = options.own<GetOptions>();
    command.add_flag("-g,--group", own.areGroups, "The names are groups: all their parameters");
    command.add_flag("--raw", own.isRaw, "Bare values, one a line; numbers for enumerations");
}

Report getParameters(Context& context, const Words& names) {
    const auto& options = context.options().of<GetOptions>();
    const ParameterList& parameters = context.parameters();
    Report report;
    report.document["parameters"] = nlohmann::ordered_json::array();
    const auto targets =
        options.areGroups ? targetsOfGroups(parameters, names) : findTargets(parameters, names);
    for (Target target : targets) {
        if (options.isRaw && !target.elements) target = wholeOf(*target.parameter);
        const ReadResult reading = context.read(target);
        report.document["parameters"].push_back(readingAsJson(target, reading));
        if (!reading.isMeasured) {
            report.text += options.isRaw ? "-\n"
                                         : lineOf({target.name(), "-", target.parameter->unit()},
                                                  target.name() + " = " + notMeasuredText);
        } else if (reading.error == FG_OK) {
            report.text += options.isRaw ? rawLines(reading.value) : valueLines(target, reading.value);
        } else {
            report.problems.push_back(target.name() + " cannot be read: " + codeInWords(reading.error));
            report.exitCode = exitRefused;
        }
    }
    report.isVerbatim = options.isRaw;
    return report;
}

} // namespace

extern const Command getCommand;
const Command getCommand = {
    .name = "get",
    .help = "Read parameters",
    .argument = "NAME",
    .argumentHelp = "Parameters, in upper or lower case, with or without FG_",
    .examples = {{"get width FG_HEIGHT", "two values"},
                 {"get -g roi", "a whole group"},
                 {"get --raw 'lut_value_red[0..3]'", "bare numbers of elements"}},
    .fewest = 1,
    .most = -1,
    .run = getParameters,
    .addOptions = addGetOptions,
    .showsValues = true,
};

} // namespace appletctl
