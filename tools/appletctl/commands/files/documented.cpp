#include "appletctl/commands/files/documented.h"

#include "applet_tools/applet/published_limits.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/defaults_and_roles.h"
#include "applet_tools/scratch/probe/influences.h"

#include <algorithm>

namespace appletctl {
namespace {

/** "FG_LINEEXPOSURE (limits), FG_LINETRIGGERDELAY (limits, access)". */
std::string movedText(const Influences& influences, const std::string& name) {
    Words names;
    std::map<std::string, Words> kinds;
    for (const Influence& influence : influences.all) {
        if (influence.from != name) continue;
        if (!kinds.contains(influence.to)) names.push_back(influence.to);
        kinds[influence.to].push_back(influence.what);
    }
    Words texts;
    for (const std::string& moved : names)
        texts.push_back(moved + " (" + join(kinds[moved], ", ") + ")");
    return join(texts, ", ");
}

/** "limits: 0.512 to 200 -> 0.512 to 0.512 with FG_LINEPERIODE=0.512". */
std::string moverText(const Influence& influence) {
    if (influence.before.empty() && influence.after.empty())
        return "other " + influence.what + " with " + influence.with;
    return influence.what + ": " + influence.before + " -> " + influence.after + " with " + influence.with;
}

std::string refusalText(const std::set<int>& codes) {
    Words texts;
    for (const int code : codes)
        texts.push_back(codeInWords(code));
    return join(texts, "; ");
}

} // namespace

std::vector<Documented> documentedParameters(Context& context) {
    std::vector<const Parameter*> parameters;
    for (const Parameter& parameter : context.parameters().all())
        parameters.push_back(&parameter);
    const auto defaultsAndRoles = defaultsAndRolesOf(context, parameters, FileRoles::asked);
    const Influences influences = askInfluences(context);
    std::vector<Documented> all;
    for (const Parameter* parameter : parameters) {
        const DefaultAndRole& known = defaultsAndRoles.at(parameter->name);
        const auto refused = influences.codes.find(parameter->name);
        const std::set<int> codes =
            known.isSettable && refused != influences.codes.end() ? refused->second : std::set<int>{};
        std::vector<DocumentedLine> lines = {
            {"id", numberText(parameter->id)},
            {"kind", kindName(*parameter)},
            {"unit", parameter->unit()},
            {"access", known.isSettable ? "settable" : "read-only"},
            {"default", known.start ? valueText(*parameter, *known.start) : ""},
            {"limits at the start", limitsText(*parameter)},
            {"entries", entriesText(*parameter)},
            {"configuration file", fileRoleInWords(known.fileRole)},
            {"reading", parameter->effectOfReading()},
            {"setting", parameter->effectOfWriting()},
            {"refused with", refusalText(codes), true},
            {"moves", movedText(influences, parameter->name), true},
        };
        for (const Influence& influence : influences.all)
            if (influence.to == parameter->name) lines.push_back({"moved by", moverText(influence), true});
        std::erase_if(lines, [](const DocumentedLine& line) { return line.text.empty(); });
        all.push_back({parameter, explanationOf(context.instance(), *parameter), std::move(lines), codes});
    }
    return all;
}

} // namespace appletctl
