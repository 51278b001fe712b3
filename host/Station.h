/** An open station. */
#ifndef HOST_STATION_H
#define HOST_STATION_H

#include "applet_tools/scratch/LiveSession.h"
#include "host/Acquisition.h"
#include "host/LastError.h"
#include "host/ParameterTable.h"
#include "host/vexo.h"

#include <memory>
#include <mutex>
#include <string>

/** Texts and records that callers get are valid until the station is closed. */
struct vexo_station {
    vexo_station(const applet_tools::BoardOptions& options, bool wantsAdvice);

    using Get = int (*)(Fg_Struct* fg, int id, void* value, int dma, FgParamTypes type);

    std::mutex mutex; /**< held while `live` is used, except its libraries */
    applet_tools::LiveSession live;
    applet_tools::Instance& instance;
    const host::ParameterTable table;
    const Get get; /**< of the applet */
    Fg_Struct* const fg;
    const bool givesAdvice;
    const bool onlyLooks;    /**< read-only: nothing is written to the board */
    const std::string board; /**< "virtual", "system", "none" */

    std::mutex acquiring; /**< guards the member below */
    std::shared_ptr<host::Acquisition> acquisition;
};

namespace host {

/** The row of a parameter. Throws Error for an unknown id. */
const ParameterRow& rowOf(vexo_station& station, int id);

/** Throws Error unless the board is virtual. */
void requireVirtual(const vexo_station& station);

/** Throws Error if the station is read-only; `what` names the operation that would write to the board. */
void requireWritable(const vexo_station& station, const char* what);

/** Returns the session for a question. Discards the notes of the previous one, which would accumulate otherwise. */
inline applet_tools::LiveSession& asking(vexo_station& station) {
    station.live.takeNotes();
    return station.live;
}

/** Executes the work with the station and returns its code. A null station is an error. */
template <typename Work> int onStation(vexo_station* station, const Work& work) noexcept {
    if (station == nullptr) return failNull("the station");
    return guarded([&] {
        work(*station);
        return VEXO_OK;
    });
}

/** The same while the station is locked. */
template <typename Work> int onLocked(vexo_station* station, const Work& work) noexcept {
    return onStation(station, [&](vexo_station& own) {
        const std::lock_guard lock(own.mutex);
        work(own);
    });
}

/** The same for a parameter; a negative id is the code of a failed search, which has been recorded. */
template <typename Work> int onParameter(vexo_station* station, int id, const Work& work) noexcept {
    if (station != nullptr && id < 0) return id;
    return onLocked(station, [&](vexo_station& own) { work(own, rowOf(own, id)); });
}

/** Copies the texts of a caller's list. Throws Error for a null text. */
applet_tools::Words wordsOf(const char* const* texts, std::size_t count);

/** Throws Error if the file cannot be read. */
void requireReadable(const char* file);

/** Copies the text to memory that the caller frees. */
char* copyOf(const std::string& text);

} // namespace host

#endif
