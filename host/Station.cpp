#include "host/Station.h"

#include "applet_tools/base/files.h"
#include "applet_tools/base/text.h"
#include "applet_tools/jobs.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace {

const char* boardOf(const applet_tools::BoardOptions& options, const applet_tools::Instance& instance) {
    if (options.offline) return "none";
    return instance.host()->isVirtual() ? "virtual" : "system";
}

} // namespace

vexo_station::vexo_station(const applet_tools::BoardOptions& options, bool wantsAdvice)
    : live(options, applet_tools::LiveSession::Scratch::wanted, applet_tools::libraryJobs())
    , instance(live.instance())
    , table(instance, live.parameters())
    , get(instance.applet().Fg_getParameterWithType)
    , fg(instance.fg())
    , givesAdvice(wantsAdvice)
    , onlyLooks(options.look)
    , board(boardOf(options, instance)) {
    // The log is not used here and would grow to its limit.
    if (board == "virtual") instance.board().log_kinds(instance.device(), 0);
}

namespace host {

const ParameterRow& rowOf(vexo_station& station, int id) {
    if (const ParameterRow* row = station.table.find(id)) return *row;
    throw Error(VEXO_ERR_NAME, "there is no parameter with the id " + std::to_string(id));
}

void requireVirtual(const vexo_station& station) {
    if (station.board != "virtual")
        throw Error(VEXO_ERR_NOT_VIRTUAL,
                    "this station has no virtual board; only a virtual board has time, signals and pictures");
}

void requireWritable(const vexo_station& station, const char* what) {
    if (station.onlyLooks)
        throw Error(VEXO_ERR_STATE, std::string(what) + " is not possible: this station is read-only; "
                                                        "open it without VEXO_LOOK");
}

applet_tools::Words wordsOf(const char* const* texts, std::size_t count) {
    applet_tools::Words words;
    for (std::size_t i = 0; i < count; ++i) {
        if (texts[i] == nullptr)
            throw Error(VEXO_ERR_ARGUMENT, "assignment " + std::to_string(i) + " is null");
        words.emplace_back(texts[i]);
    }
    return words;
}

void requireReadable(const char* file) {
    if (const std::string why = applet_tools::whyUnreadable(file); !why.empty())
        throw Error(VEXO_ERR_FILE, applet_tools::shownFile(file) + " cannot be read: " + why);
}

char* copyOf(const std::string& text) {
    auto* const copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (copy == nullptr) throw std::bad_alloc();
    std::memcpy(copy, text.c_str(), text.size() + 1);
    return copy;
}

} // namespace host
