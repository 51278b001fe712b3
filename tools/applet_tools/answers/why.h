/** Why a parameter is read-only or refuses a value, and which single changes of other parameters would help,
 *  found by trying on a scratch board. */
#ifndef APPLET_TOOLS_ANSWERS_WHY_H
#define APPLET_TOOLS_ANSWERS_WHY_H

#include "applet_tools/scratch/probe/refusal.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace applet_tools {

/** The setter's answer to an assignment. */
struct RefusalAnswer {
    std::string parameter; /**< its name */
    std::string subject;   /**< "FG_WIDTH=20000" */
    nlohmann::ordered_json document;
    int code = 0;
    std::string refusal{};  /**< message; empty if the value is accepted */
    RefusalCauses causes{}; /**< causes of the refusal */
    /** For a value that is accepted but read-only now: changes that make it writable. */
    std::optional<std::vector<std::string>> writableWith{};
    std::string missingFile{}; /**< as in AccessAnswer, after the set */
    Words moves{}; /**< what such a value moves nevertheless: "FG_CAMERASIMULATOR_LINERATE (10 -> 50)" */
};

/** Calls the setter in the state of the probe. Existing parameter records may be invalid afterwards. */
RefusalAnswer whyRefused(Probe& probe, const Assignment& assignment);

/** Whether a parameter can be written, and the reason. */
struct AccessAnswer {
    std::string parameter; /**< its name */
    std::string subject;   /**< "FG_LUT_VALUE_RED[3]" */
    std::string access;    /**< "ro", "rw", "rw+" */
    bool isWritable = false;
    bool hasSetter = true; /**< false for a parameter that can never be set */
    ReadResult now{};
    /** Changes that make it read-only, or writable if it is read-only. */
    std::vector<std::string> changedWith{};
    /** Its text, if that names an unreadable file: until it can be read, those changes are refused. */
    std::string missingFile{};
};

/** Examines the access in the state of the probe. Existing parameter records may be invalid afterwards. */
AccessAnswer whyReadOnly(Probe& probe, const Target& target);

/** The answer as members of a document; `target` is its subject. */
nlohmann::ordered_json asJson(const AccessAnswer& answer, const Target& target);

using WhyAnswer = std::variant<RefusalAnswer, AccessAnswer>;

/** The answers for assignments and parameter names, from the live applet's state with the assignments `with`
 *  applied. If the change that makes a text writable is refused because the text names a missing file, the
 *  answer names both. Throws UsageError for an unknown word, and the exceptions of startFrom. */
std::vector<WhyAnswer> askWhy(LiveSession& live, const Words& words, const Words& with);

/** The scratch board job that implements it: {"words": [WORD, ...], "with": [WORD, ...]}. */
json whyJob(ScratchSession& session, const json& arguments);

} // namespace applet_tools

#endif
