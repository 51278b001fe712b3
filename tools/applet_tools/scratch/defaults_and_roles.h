/** What a record does not tell of its parameter: asked of the applet on a scratch board. */
#ifndef APPLET_TOOLS_SCRATCH_DEFAULTS_AND_ROLES_H
#define APPLET_TOOLS_SCRATCH_DEFAULTS_AND_ROLES_H

#include "applet_tools/applet/values.h"
#include "applet_tools/scratch/LiveSession.h"
#include "applet_tools/scratch/ScratchSession.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace applet_tools {

struct DefaultAndRole {
    std::optional<Value> start; /**< of a setting, after a bring-up; none of what cannot be read freely */
    bool isSettable = false;    /**< false for measurements and other answers: every set is refused */
    std::string fileRole;       /**< "restored", "reader": saved, but a load leaves it aside, "none"; empty if
                                     not asked for */

    /** True for a setting that holds something else than after a bring-up. */
    bool isChanged(const Value& now) const { return start && *start != now; }
};

enum class FileRoles { unasked, asked };

/** By name. File roles cost a load each. */
std::map<std::string, DefaultAndRole>
backgroundOf(LiveSession& live, const std::vector<const Parameter*>& parameters, FileRoles roles);

/** The settings that hold something else than after a bring-up, as {NAME: VALUE}; of an array only the number of its
 *  elements. */
nlohmann::ordered_json changedSettings(LiveSession& live);

/** "saved, and restored by a load". */
std::string fileRoleInWords(const std::string& role);

/** Tells {NAME: {"start": VALUE, "settable", "fileRole"}} of {"names": [NAME, ...], "roles": whether the file
 *  roles are wanted} (see DefaultAndRole). */
nlohmann::json defaultsAndRolesJob(ScratchSession& session, const nlohmann::json& arguments);

/** The values of all that has a setter, in the order of the applet's start: [{"name", "value"}, ...]. */
nlohmann::json defaultsJob(ScratchSession& session, const nlohmann::json& nothing);

/** The names of the parameters of which a read asks the board or the runtime: [NAME, ...]. */
nlohmann::json fromBoardJob(ScratchSession& session, const nlohmann::json& nothing);

} // namespace applet_tools

#endif
