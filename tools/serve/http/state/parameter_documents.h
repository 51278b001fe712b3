/** Parameters of a station as JSON. For the command thread. */
#ifndef SERVE_HTTP_STATE_PARAMETER_DOCUMENTS_H
#define SERVE_HTTP_STATE_PARAMETER_DOCUMENTS_H

#include "applet_tools/applet/ParameterState.h"
#include "applet_tools/scratch/LiveSession.h"
#include "applet_tools/scratch/defaults_and_roles.h"
#include "serve/http/protocol/HttpError.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace serve {

class ParameterDocuments {
public:
    explicit ParameterDocuments(applet_tools::LiveSession& live) : m_live(live) {}

    /** Returns the target that a word names, such as "FG_WIDTH" or "FG_LUT_VALUE_RED[0..9]". Throws HttpError with
     *  the closest names. */
    applet_tools::Target targetOf(const std::string& word);

    /** Describes a parameter for a client. */
    Json documentOf(const applet_tools::Target& target);
    /** True if a setting differs from its value after a start. */
    bool isChanged(const applet_tools::Target& target);

    /** The states of all parameters, in the order of the list. */
    std::vector<applet_tools::ParameterState> states();
    struct Changes {
        Json values = Json::array();       /**< [{"name", "before", "after", "shown"}, ...] */
        std::vector<std::string> limits{}; /**< names of parameters with other limits, entries or access */
        std::vector<applet_tools::ParameterState> now{};
    };
    /** Returns the differences from the present states, and those states. Without `withMeasured`, values that the board
     *  measures are left out. */
    Changes changesSince(const std::vector<applet_tools::ParameterState>& before, bool withMeasured);

private:
    /** The value comes from the board, and is neither a setting nor follows from one. */
    bool isMeasured(const applet_tools::Parameter& parameter, std::uint32_t access);
    const applet_tools::DefaultAndRole& knownOf(const applet_tools::Parameter& parameter);

    applet_tools::LiveSession& m_live;
    std::map<std::string, applet_tools::DefaultAndRole> m_known; // made on first use
    std::optional<std::set<std::string>> m_measured;             // the same
};

/** A value as JSON: a number, a text, or an array of numbers; null for an array as a whole. */
Json asJson(const applet_tools::Value& value);
/** Settings that help, as a request for /api/settings with their text: {"text": "FG_A=1", "settings": [...]}. */
Json remedyOf(const applet_tools::Words& assignments);

} // namespace serve

#endif
