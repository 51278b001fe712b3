/** The documentation of each parameter, and the page made from it. */
#ifndef APPLETCTL_COMMANDS_FILES_DOCUMENTED_H
#define APPLETCTL_COMMANDS_FILES_DOCUMENTED_H

#include "appletctl/commands/Context.h"

#include <set>
#include <string>
#include <vector>

namespace appletctl {

struct DocumentedLine {
    const char* title;
    std::string text;
    bool isAboutOthers = false; /**< a search for the other parameter must not match this one */
};

struct Documented {
    const Parameter* parameter;
    std::string explanation;
    std::vector<DocumentedLine> lines; /**< without empty ones */
    std::set<int> codes;               /**< of refused values */
};

/** All parameters in the order of the tree. */
std::vector<Documented> documentedParameters(Context& context);

/** A self-contained HTML page: contents, links, a search field. */
std::string documentationPage(const std::vector<Documented>& rows);

} // namespace appletctl

#endif
