// Configuration files and the XML document.

#include "applet_tools/base/files.h"
#include "applet_tools/answers/loading/loading.h"
#include "applet_tools/applet/files/ConfigurationFile.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "host/Station.h"

#include "vexo/fg_errors.h"

#include <cstring>

using namespace host;

namespace {

void requireBoard(const vexo_station& station, const char* what) {
    if (station.board == "none")
        throw Error(VEXO_ERR_STATE,
                    std::string("a station without a board cannot ") + what + " a configuration file");
}

/** The error message of a failed load, with its losses if the scratch board can be asked. */
std::string failedLoadInWords(vexo_station& station, const std::string& file, int code) {
    constexpr std::size_t most = 3;
    const std::string shown = applet_tools::shownFile(file);
    std::string words = "the load of " + shown + " answered " + applet_tools::codeInWords(code);
    if (!station.givesAdvice) return words;
    try {
        std::size_t count = 0;
        for (const applet_tools::Finding& finding : askCheck(asking(station).scratch(), file).findings) {
            if (finding.kind == applet_tools::FindingKind::file)
                return shown + ": " + finding.message; // the code is part of it
            if (finding.isLoss && ++count <= most) words += "; " + finding.message;
        }
        if (count > most) words += "; and " + std::to_string(count - most) + " more";
    } catch (const std::exception&) {
        return words;
    }
    return words;
}

std::string documentOf(vexo_station& station) {
    const auto& applet = station.instance.applet();
    std::string document;
    for (int code = FG_ERR_BUFFER; code == FG_ERR_BUFFER;) {
        unsigned long size = 0;
        applet.Fg_getParameterInfoXML(station.fg, 0, nullptr, &size);
        document.resize(size);
        code = applet.Fg_getParameterInfoXML(station.fg, 0, document.data(), &size);
        if (code != FG_OK && code != FG_ERR_BUFFER)
            throw Error(code, "the applet makes no document: " + applet_tools::codeInWords(code));
    }
    document.resize(std::strlen(document.c_str()));
    return document;
}

} // namespace

int vexo_save(vexo_station* station, const char* file) {
    if (file == nullptr) return failNull("the name of the file");
    return onLocked(station, [&](vexo_station& own) {
        requireBoard(own, "save");
        const std::string name = file;
        if (name.find(".mcf") == std::string::npos)
            throw Error(VEXO_ERR_ARGUMENT, applet_tools::shownFile(name) +
                                               " has no .mcf in its name, and no load takes such a file");
        const applet_tools::ConfigurationFile state = stateOf(own.instance);
        try {
            applet_tools::writeFile(name, state.text());
        } catch (const applet_tools::Failure& failure) {
            throw Error(VEXO_ERR_FILE, failure.what());
        }
    });
}

int vexo_load(vexo_station* station, const char* file) {
    if (file == nullptr) return failNull("the name of the file");
    return onLocked(station, [&](vexo_station& own) {
        requireBoard(own, "load");
        requireWritable(own, "a load");
        requireReadable(file);
        const int code = loadConfiguration(own.instance, file);
        if (code != FG_OK) throw Error(code, failedLoadInWords(own, file, code));
    });
}

int vexo_document(vexo_station* station, char** xml) {
    if (xml == nullptr) return failNull("the pointer for the document");
    return onLocked(station, [&](vexo_station& own) { *xml = copyOf(documentOf(own)); });
}
