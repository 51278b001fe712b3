/** Properties of parameters that are not in their records, measured on a scratch board. */
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
    std::optional<Value> start; /**< value of a setting after a bring-up; empty if a read has side effects */
    bool isSettable = false;    /**< false for measurements and other values for which every set is refused */
    std::string fileRole;       /**< "restored", "reader" (saved, but ignored by a load), "none"; empty if
                                     not requested */
};

enum class FileRoles { unasked, asked };

/** By name. Each file role takes a load. */
std::map<std::string, DefaultAndRole>
defaultsAndRolesOf(LiveSession& live, const std::vector<const Parameter*>& parameters, FileRoles roles);

/** True for a setting that differs from its value after a bring-up. False for a simulator rate that the present mode
 *  computes, or that a load has moved by one of its clock cycles. */
bool isChanged(LiveSession& live, const Parameter& parameter, const DefaultAndRole& known, const Value& now);

/** The settings that differ from their value after a bring-up, as {NAME: VALUE}; for an array only its number
 *  of elements. */
nlohmann::ordered_json changedSettings(LiveSession& live);

/** "saved, and read by a load". */
std::string fileRoleInWords(const std::string& role);

/** Job: {"names": [NAME, ...], "roles": whether file roles are wanted} gives
 *  {NAME: {"start": VALUE, "settable", "fileRole"}} (see DefaultAndRole). */
nlohmann::json defaultsAndRolesJob(ScratchSession& session, const nlohmann::json& arguments);

/** The values of all parameters with a setter, in the applet's start order: [{"name", "value"}, ...]. */
nlohmann::json defaultsJob(ScratchSession& session, const nlohmann::json& nothing);

/** The names of the parameters with a read that accesses the board or the runtime: [NAME, ...]. */
nlohmann::json fromBoardJob(ScratchSession& session, const nlohmann::json& nothing);

} // namespace applet_tools

#endif
