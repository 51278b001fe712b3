/** What the command line says besides the words of a command. */
#ifndef APPLETCTL_BASE_OPTIONS_H
#define APPLETCTL_BASE_OPTIONS_H

#include "applet_tools/base/BoardOptions.h"
#include "appletctl/base/applet_tools.h"

#include <any>
#include <map>
#include <string>
#include <typeindex>

namespace appletctl {

/** The options of all commands, and one struct of options for each command that has its own. */
struct Options : BoardOptions {
    bool json = false;
    bool plain = false;          /**< --plain: tables as lines of cells, no colour, no drawing */
    std::string colour = "auto"; /**< --color: auto, always or never */
    bool quiet = false;          /**< -q: errors only */
    bool verbose = false;        /**< -v: notes on what was done to answer */
    std::string station{};       /**< --station: the running station that is to carry it out; empty: none */
    bool trace = false;          /**< the command follows "trace" */

    /** The options of a command; its defaults if none were given. */
    template <typename Own> const Own& of() const {
        static const Own defaults{};
        const auto found = m_own.find(typeid(Own));
        return found == m_own.end() ? defaults : std::any_cast<const Own&>(found->second);
    }

    /** A place for the options of a command, which stays where it is as long as this object lives. */
    template <typename Own> Own& own() {
        std::any& place = m_own[typeid(Own)];
        if (!place.has_value()) place = Own{};
        return std::any_cast<Own&>(place);
    }

private:
    std::map<std::type_index, std::any> m_own;
};

} // namespace appletctl

#endif
