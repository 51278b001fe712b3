/** The options on the command line. */
#ifndef APPLETCTL_BASE_OPTIONS_H
#define APPLETCTL_BASE_OPTIONS_H

#include "applet_tools/base/BoardOptions.h"
#include "appletctl/base/applet_tools.h"

#include <any>
#include <map>
#include <string>
#include <typeindex>

namespace appletctl {

/** The options of all commands, and one struct for each command that has options of its own. */
struct Options : BoardOptions {
    bool json = false;
    bool plain = false;          /**< --plain: tables as separated cells, no colour, no drawing */
    std::string colour = "auto"; /**< --color: auto, always or never */
    bool quiet = false;          /**< -q: errors only */
    bool verbose = false;        /**< -v: notes on how the answer was found */
    std::string station{};       /**< --station: the running station to use; empty: none */
    bool trace = false;          /**< the command follows "trace" */

    /** The options of a command; the defaults if none were given. */
    template <typename Own> const Own& of() const {
        static const Own defaults{};
        const auto found = m_own.find(typeid(Own));
        return found == m_own.end() ? defaults : std::any_cast<const Own&>(found->second);
    }

    /** Storage for the options of a command; its address is stable for the lifetime of this object. */
    template <typename Own> Own& own() {
        std::any& slot = m_own[typeid(Own)];
        if (!slot.has_value()) slot = Own{};
        return std::any_cast<Own&>(slot);
    }

private:
    std::map<std::type_index, std::any> m_own;
};

} // namespace appletctl

#endif
