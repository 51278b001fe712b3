/** Station files. */
#ifndef HOST_SET_UP_H
#define HOST_SET_UP_H

#include "applet_tools/base/errors.h"
#include "applet_tools/station/StationFile.h"
#include "host/Station.h"

#include <string>

namespace host {

/** Returns the result of the work; the message of a failure starts with the subject, if it is not empty. */
template <typename Work> auto about(const std::string& subject, const Work& work) {
    if (subject.empty()) return work();
    try {
        return work();
    } catch (const Error& error) {
        throw Error(error.code, subject + ": " + error.what(), error.members);
    } catch (const applet_tools::UnknownName& error) {
        throw applet_tools::UnknownName(subject + ": " + error.what(), error.nearest);
    } catch (const applet_tools::UsageError& error) {
        throw applet_tools::UsageError(subject + ": " + error.what());
    }
}

/** Throws Error if the file cannot be read or has a wrong field. */
applet_tools::StationFile readStation(const std::string& file);

/** Connects the virtual board and sets the parameters. Throws Error, with the name of the file. */
void setUp(vexo_station& station, const applet_tools::StationFile& file);

} // namespace host

#endif
