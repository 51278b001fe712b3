#include "appletctl/Instance.h"
#include "appletctl/commands.h"
#include "appletctl/text.h"

namespace appletctl {
namespace {

std::string documentOf(Instance& instance) {
    const auto ask = [&](char* place, unsigned long& size) {
        const int code = instance.applet().Fg_getParameterInfoXML(instance.fg(), 0, place, &size);
        if (code != FG_OK) throw Failure("the applet gives no XML document: " + codeInWords(code));
    };
    unsigned long size = 0;
    ask(nullptr, size);
    std::string document(size, '\0');
    ask(document.data(), size);
    document.resize(size - 1); // without its zero
    return document;
}

} // namespace

Report showXml(Context& context, const Words&) {
    if (context.options().xmlFile.has_value() && context.options().xmlFile->empty())
        throw UsageError("the name of the file is empty");
    Instance& instance = context.instance();
    Report report;
    report.text = documentOf(instance);
    if (!context.options().xmlFile.has_value()) {
        report.document["document"] = toUtf8(report.text.c_str());
        return report;
    }
    writeFile(*context.options().xmlFile, report.text);
    report.document["file"] = toUtf8(context.options().xmlFile->c_str());
    report.document["bytes"] = report.text.size();
    report.text = inQuotes(toUtf8(context.options().xmlFile->c_str())) + " written\n";
    return report;
}

} // namespace appletctl
