#include "appletctl/commands/files/xml.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/Table.h"
#include "appletctl/base/output_mode.h"
#include "appletctl/base/report_text.h"
#include "appletctl/base/terminal.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/shared_options.h"

#include <CLI/CLI.hpp>

#include "vexo/fg_errors.h"

#include <unistd.h>

namespace appletctl {

std::string ownDocument(Instance& instance) {
    const auto ask = [&](char* buffer, unsigned long& size) {
        const int code = instance.applet().Fg_getParameterInfoXML(instance.fg(), 0, buffer, &size);
        if (code != FG_OK) throw Failure("the applet gives no XML document: " + codeInWords(code));
    };
    unsigned long size = 0;
    ask(nullptr, size);
    std::string document(size, '\0');
    ask(document.data(), size);
    document.resize(size - 1); // without the terminating null
    return document;
}

namespace {

/** A session publishes the design's parameters for its undo; a copy does not. */
std::string publicDocument(Context& context) {
    const bool isHidden = context.instance().isDesignHidden() && context.host().isVirtual();
    const CopyInUse copy(context, isHidden && !context.isCopy());
    return ownDocument(context.instance());
}

Report checkedDocument(Context& context, const std::string& document) {
    Report report;
    Table table;
    table.setTitles({"NODE", "PROBLEM"});
    auto& rows = report.document["findings"] = nlohmann::ordered_json::array();
    for (const XmlFinding& finding : findingsIn(readXml(document), context.parameters())) {
        table.addRow({finding.node, finding.reason});
        rows.push_back({{"node", finding.node}, {"reason", finding.reason}});
    }
    report.text =
        rows.empty() && !isPlainOutput() ? "Nothing found.\n" : table.render(Style::forStream(STDOUT_FILENO));
    if (!rows.empty()) report.exitCode = exitRefused;
    return report;
}

struct XmlOptions {
    bool isPortable = false; /**< --portable */
    bool isChecked = false;  /**< --check */
};

void addXmlOptions(CLI::App& command, Options& options) {
    addOutFile(command, options);
    auto& own = options.own<XmlOptions>();
    command.add_flag("--portable", own.isPortable, "A document for other clients, made from the same tree");
    command.add_flag("--check", own.isChecked, "Report problems that clients have with the document");
}

Report showXml(Context& context, const Words&) {
    const auto& options = context.options().of<XmlOptions>();
    const auto& outFile = context.options().of<OutFileOption>().file;
    requireFileName(outFile);
    if (outFile && options.isChecked)
        throw UsageError("give either -o, to write the document, or --check, to examine it");
    const std::string document = options.isPortable ? portableDocument(context) : publicDocument(context);
    if (options.isChecked) return checkedDocument(context, document);
    Report report;
    if (!outFile) {
        report.text = document;
        report.isVerbatim = true;
        report.document["document"] = toUtf8(document);
        return report;
    }
    writeFile(*outFile, document);
    report.document["file"] = toUtf8(*outFile);
    report.document["bytes"] = document.size();
    report.text = writtenLine(*outFile);
    return report;
}

} // namespace

extern const Command xmlCommand;
const Command xmlCommand = {
    .name = "xml",
    .help = "Show the XML document that describes the parameters",
    .examples = {{"xml -o parameters.xml", "the document of the applet"},
                 {"xml --portable -o camera.xml", "one that other clients can read"},
                 {"xml --check", "problems that clients have with it"}},
    .run = showXml,
    .scratch = Context::Scratch::withoutDesign,
    .addOptions = addXmlOptions,
    .showsValues = true,
};

} // namespace appletctl
