#include "applet_tools/applet/Instance.h"
#include "applet_tools/base/text.h"
#include "appletctl/commands/Command.h"

#include <unistd.h>

namespace appletctl {
namespace {

enum class Answer { text, size, number };

struct Question {
    const char* key;
    const char* title;
    FgInfoCode code;
    Answer answer;
};

constexpr Question questions[] = {
    {"name", "Applet", FG_INFO_NAME, Answer::text},
    {"version", "Version", FG_INFO_VERSION, Answer::text},
    {"build", "Build", FG_INFO_BUILD, Answer::text},
    {"versionWord", "Version word", FG_INFO_VERSION_WORD, Answer::number},
    {"description", "Description", FG_INFO_DESCRIPTION, Answer::text},
    {"category", "Category", FG_INFO_CATEGORY, Answer::text},
    {"tags", "Tags", FG_INFO_TAGS, Answer::text},
    {"productGuid", "Product GUID", FG_INFO_PRODUCT_GUID, Answer::text},
    {"versionGuid", "Version GUID", FG_INFO_VERSION_GUID, Answer::text},
    {"iconBytes", "Icon, bytes", FG_INFO_ICON, Answer::size},
    {"designImageBytes", "Design image, bytes", FG_INFO_DESIGN_IMAGE, Answer::size},
    {"designType", "Design type", FG_INFO_DESIGN_TYPE, Answer::number},
    {"processes", "Processes", FG_INFO_PROCESSES, Answer::number},
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
    .help = "Show what the applet says of itself",
    .examples = {{"info", "libraries, board and applet"},
                 {"--board system --look info", "of the board of the system, without writing to it"}},
    .run = showInfo,
    .showsValues = true,
};

} // namespace appletctl
