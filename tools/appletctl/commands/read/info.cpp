#include "applet_tools/applet/Instance.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/Table.h"
#include "appletctl/base/terminal.h"
#include "appletctl/commands/Command.h"

#include <unistd.h>

namespace appletctl {
namespace {

enum class Answer { text, size, number };

struct Question {
    FgInfoCode code;
    const char* key;
    const char* title;
    Answer answer;
};

constexpr Question questions[] = {
    {FG_INFO_NAME, "name", "Applet", Answer::text},
    {FG_INFO_VERSION, "version", "Version", Answer::text},
    {FG_INFO_BUILD, "build", "Build", Answer::text},
    {FG_INFO_VERSION_WORD, "versionWord", "Version word", Answer::number},
    {FG_INFO_DESCRIPTION, "description", "Description", Answer::text},
    {FG_INFO_CATEGORY, "category", "Category", Answer::text},
    {FG_INFO_TAGS, "tags", "Tags", Answer::text},
    {FG_INFO_PRODUCT_GUID, "productGuid", "Product GUID", Answer::text},
    {FG_INFO_VERSION_GUID, "versionGuid", "Version GUID", Answer::text},
    {FG_INFO_ICON, "iconBytes", "Icon, bytes", Answer::size},
    {FG_INFO_DESIGN_IMAGE, "designImageBytes", "Design image, bytes", Answer::size},
    {FG_INFO_DESIGN_TYPE, "designType", "Design type", Answer::number},
    {FG_INFO_PROCESSES, "processes", "Processes", Answer::number},
};

struct Library {
    const char* key;
    const char* title;
};

/** In the order of AppletHost::files. */
constexpr Library libraries[] = {{"boardLibrary", "Board access"},
                                 {"designLoader", "Design loader"},
                                 {"runtime", "Runtime"},
                                 {"library", "Library"}};

nlohmann::ordered_json ask(const applet_host::AppletFunctions& applet, const Question& question) {
    const char* text = nullptr;
    std::uint64_t size = 0;
    const void* data = nullptr;
    switch (question.answer) {
    case Answer::text:
        applet.Info(question.code, 0, 0, nullptr, &text);
        return toUtf8(text);
    case Answer::size:
        applet.Info(question.code, 0, 0, &size, &data);
        return size;
    case Answer::number:
        break;
    }
    return applet.Info(question.code, 0, 0, nullptr, nullptr);
}

Report showInfo(Context& context, const Words&) {
    const applet_host::AppletHost host(locationsFor(context.options()));
    Report report;
    Table table;
    const auto add = [&](const char* key, const char* title, const nlohmann::ordered_json& answer) {
        report.document[key] = answer;
        table.addRow({title, answer.is_string() ? printable(answer.get<std::string>()) : answer.dump()});
    };
    for (const Question& question : questions)
        add(question.key, question.title, ask(host.applet(), question));
    add("board", "Board", host.isVirtual() ? "virtual" : "system");
    const std::vector<std::filesystem::path> files = host.files();
    for (std::size_t i = 0; i < files.size(); ++i)
        add(libraries[i].key, libraries[i].title, toUtf8(files[i].c_str()));
    report.text = table.render(Style::forStream(STDOUT_FILENO));
    return report;
}

} // namespace

extern const Command infoCommand;
const Command infoCommand = {
    .name = "info",
    .help = "Show the identity of the applet, and the libraries in use",
    .examples = {{"info", "libraries, board and applet"},
                 {"--board system info", "with the libraries of the system"}},
    .run = showInfo,
    .showsValues = true,
    .withoutBoard = "",
};

} // namespace appletctl
