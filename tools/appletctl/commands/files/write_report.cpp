// Collects the information that support needs in one text or document.

#include "applet_tools/base/errors.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/output_mode.h"
#include "appletctl/base/report_text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/shared_options.h"

#include <sys/utsname.h>

#include <cstdlib>
#include <ctime>
#include <optional>

namespace appletctl {
namespace {

/** Environment variables that the applet, the dynamic loader and number formats depend on. */
constexpr const char* variables[] = {
    "APPLET_UNDER_TEST",
    "LD_LIBRARY_PATH",
    "LD_PRELOAD",
    "__VEXO_FORCE_EXTERNAL_TSL",
    "VEXO_ENABLE_DRA",
    "VEXO_ENABLE_DLOOMA",
    "NORVANE_FG_SDK_DIR",
    "VBOARD_STATION",
    "LANG",
    "LC_ALL",
    "LC_NUMERIC",
};

nlohmann::ordered_json environment() {
    nlohmann::ordered_json values;
    for (const char* variable : variables) {
        const char* const value = std::getenv(variable);
        values[variable] = value != nullptr ? nlohmann::ordered_json(toUtf8(value)) : nullptr;
    }
    return values;
}

nlohmann::ordered_json systemInfo() {
    utsname name{};
    uname(&name);
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    gmtime_r(&now, &utc);
    char time[32];
    std::strftime(time, sizeof time, "%Y-%m-%dT%H:%M:%SZ", &utc);
    return {{"program", APPLETCTL_VERSION},
            {"time", time},
            {"system", std::string(name.sysname) + " " + name.release + " " + name.machine}};
}

std::string linesOf(const nlohmann::ordered_json& document, const char* part) {
    std::string text;
    for (const auto& [key, value] : document.at(part).items()) {
        const std::string shown = value.is_null() ? "not set" : printable(value.get<std::string>());
        text += lineOf({part, key, shown}, "  " + key + ": " + shown);
    }
    return text;
}

struct Section {
    const char* key;
    const char* title;
};

constexpr Section sections[] = {
    {"info", "The applet and its libraries"},
    {"lint", "Suspicious settings"},
    {"list", "Parameters, with what differs from the default"},
    {"route", "Routes"},
    {"timing", "Timing"},
};

/** A part that fails is included in the report, with its message. */
Report partOf(Context& context, const Section& section) {
    try {
        return runCommandNamed(context, section.key, {});
    } catch (const Failure& failure) {
        return failureReport("failure", failure.what(), exitRefused);
    }
}

Report writeReport(Context& context, const Words& assignments) {
    const std::optional<std::string>& file = context.options().of<OutFileOption>().file;
    requireFileName(file);
    Report done = runCommandNamed(context, "set", assignments);
    if (done.exitCode != exitDone) return done;
    Report report;
    std::optional<OutputForFile> layout;
    if (file) layout.emplace();
    auto& document = report.document;
    document["about"] = systemInfo();
    document["environment"] = environment();
    std::string text = forPerson("Report of appletctl\n") + linesOf(document, "about") +
                       forPerson("\nEnvironment\n") + linesOf(document, "environment");
    if (!assignments.empty()) text += forPerson("\nAssignments\n") + done.text;
    for (const Section& section : sections) {
        const Report part = partOf(context, section);
        document[section.key] = part.document;
        text += forPerson(std::string("\n") + section.title + "\n\n") + part.text;
        for (const std::string& problem : part.problems)
            text += lineOf({section.key, "problem", problem}, problem);
    }
    if (!file) {
        report.text = text;
        return report;
    }
    writeFile(*file, context.options().json ? documentText(report, "report", 2) : text);
    report.document = {{"file", toUtf8(*file)}};
    report.text = writtenLine(*file);
    return report;
}

} // namespace

extern const Command reportCommand;
const Command reportCommand = {
    .name = "report",
    .help = "Write everything that support needs into one file",
    .argument = "NAME=VALUE",
    .argumentHelp = "Assignments to execute first",
    .examples = {{"report -o report.txt", "for a question to the support"}},
    .most = -1,
    .run = writeReport,
    .scratch = Context::Scratch::wanted,
    .addOptions = addOutFile,
    .sets = Command::Sets::assignments,
    .showsValues = true,
};

} // namespace appletctl
