#include "appletctl/Instance.h"
#include "appletctl/commands.h"
#include "appletctl/info_codes.h"
#include "appletctl/text.h"

#include <unistd.h>

namespace appletctl {
namespace {

enum class Answer { text, size, number };

struct Question {
    InfoCode code;
    const char* key;
    const char* title;
    Answer answer;
};

constexpr Question questions[] = {
    {infoName, "name", "Applet", Answer::text},
    {infoVersion, "version", "Version", Answer::text},
    {infoBuild, "build", "Build", Answer::text},
    {infoVersionWord, "versionWord", "Version word", Answer::number},
    {infoDescription, "description", "Description", Answer::text},
    {infoCategory, "category", "Category", Answer::text},
    {infoTags, "tags", "Tags", Answer::text},
    {infoProductGuid, "productGuid", "Product GUID", Answer::text},
    {infoVersionGuid, "versionGuid", "Version GUID", Answer::text},
    {infoIcon, "iconBytes", "Icon, bytes", Answer::size},
    {infoDesignImage, "designImageBytes", "Design image, bytes", Answer::size},
    {infoDesignType, "designType", "Design type", Answer::number},
    {infoProcesses, "processes", "Processes", Answer::number},
};

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

} // namespace

Report showInfo(const Options& options, const Words&) {
    const applet_host::Locations where = locationsFor(options);
    const applet_host::AppletHost host(where);
    Report report;
    Table table;
    const auto add = [&](const char* key, const char* title, const nlohmann::ordered_json& answer) {
        report.document[key] = answer;
        table.addRow({title, answer.is_string() ? printable(answer.get<std::string>()) : answer.dump()});
    };
    for (const Question& question : questions)
        add(question.key, question.title, ask(host.applet(), question));
    add("library", "Library", toUtf8(std::filesystem::absolute(where.applet).c_str()));
    add("board", "Board libraries", toUtf8(std::filesystem::absolute(where.virtualBoard).c_str()));
    report.text = table.render(Style::forStream(STDOUT_FILENO));
    return report;
}

} // namespace appletctl
