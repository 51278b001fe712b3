/** Findings about a load of a configuration file. */
#ifndef APPLET_TOOLS_ANSWERS_LOADING_FINDING_H
#define APPLET_TOOLS_ANSWERS_LOADING_FINDING_H

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace applet_tools {

/** nameOf gives the word for documents. */
enum class FindingKind {
    file,       /**< nothing was loaded at all */
    missing,    /**< no such key in the file */
    unknown,    /**< no load reads the key */
    repeated,   /**< only the first line of the key counts */
    unreadable, /**< not a value of the parameter's kind */
    refused,    /**< by the setter */
    kept,       /**< refused by the setter, but it reads back */
    cut,        /**< the text was truncated */
    unapplied,  /**< the setter accepts the value, but a load does not pass it on */
    rounded,    /**< to a value that the hardware can use */
    computed,   /**< the present mode computes another value, and a load ignores that of the file */
};

/** "file", "missing", ... */
const char* nameOf(FindingKind kind);

/** The result for one key. */
struct Finding {
    FindingKind kind;
    std::string key; /**< empty for a finding about the whole file */
    std::string message;
    bool isLoss = true;
    nlohmann::ordered_json reached{}; /**< for a refused value: its effect on the design, as changes
                                           (see DesignSnapshot.h); else null */
    bool isExamined = true;           /**< false for a refused value with no search for the cause */
    std::string followsFrom{}; /**< for a refused value that is accepted when the value of this key is not
                                           refused */

    /** True for values that a setter refused. */
    bool isRefusal() const { return kind == FindingKind::refused || kind == FindingKind::kept; }
};

/** [{"kind", "name", "isLoss", "message", "reached", "followsFrom"}, ...], the last two only where they apply. */
nlohmann::ordered_json asJson(const std::vector<Finding>& findings);

} // namespace applet_tools

#endif
