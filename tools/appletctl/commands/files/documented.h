/** What the documentation says of each parameter, and the page made of it. */
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
    bool isAboutOthers = false; /**< a search for the other parameter does not find this one */
};

struct Documented {
    const Parameter* parameter;
    std::string explanation;
    std::vector<DocumentedLine> lines; /**< without empty ones */
    std::set<int> codes;               /**< with which values were refused */
};

/** All parameters in the order of the tree. */
std::vector<Documented> documentedParameters(Context& context);

/** An HTML page that needs nothing else: contents, links, a search. */
std::string documentationPage(const std::vector<Documented>& rows);

} // namespace appletctl

#endif
