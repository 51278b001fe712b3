/** Why a parameter is read-only or refuses a value, and what would free it: single changes of others, tried on a
 *  scratch board. */
#ifndef APPLET_TOOLS_ANSWERS_WHY_H
#define APPLET_TOOLS_ANSWERS_WHY_H

#include "applet_tools/scratch/refusal.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace applet_tools {

/** What the setter makes of an assignment. */
struct RefusalAnswer {
    std::string parameter; /**< its name */
    std::string subject;   /**< "FG_WIDTH=20000" */
    nlohmann::ordered_json document;
    int code = 0;
    std::string refusal{};  /**< in words; empty if it is accepted */
    RefusalCauses causes{}; /**< of a refusal */
    /** Of what is accepted and read-only now: changes that make it writable. */
    std::optional<std::vector<std::string>> writableWith{};
    std::string missingFile{}; /**< as of AccessAnswer, once it is set */
};

/** Asks the setter, in the state of the probe. Records of parameters from before may be gone afterwards. */
RefusalAnswer whyRefused(Probe& probe, const Assignment& assignment);

/** Whether a parameter can be written, and what decides that. */
struct AccessAnswer {
    std::string parameter; /**< its name */
    std::string subject;   /**< "FG_LUT_VALUE_RED[3]" */
    std::string access;    /**< "ro", "rw", "rw+" */
    bool isWritable = false;
    bool hasSetter = true; /**< false for what can never be set */
    ReadResult now{};
    /** Changes that make it read-only, or writable if it is read-only. */
    std::vector<std::string> changedWith{};
    /** Its text, a file that cannot be read: as long as it cannot, those changes are refused. */
    std::string missingFile{};
};

/** Looks at the access, in the state of the probe. Records of parameters from before may be gone afterwards. */
AccessAnswer whyReadOnly(Probe& probe, const Target& target);

/** The answer as members of a document; `target` is its subject. */
nlohmann::ordered_json asJson(const AccessAnswer& answer, const Target& target);

using WhyAnswer = std::variant<RefusalAnswer, AccessAnswer>;

/** The answers to assignments and names of parameters, from the state of the live applet after the assignments of
 *  `with`. Where the change that makes a text writable is refused because the text names a missing file, the answer
 *  names both. Throws UsageError for an unknown word, and what startFrom throws. */
std::vector<WhyAnswer> askWhy(LiveSession& live, const Words& words, const Words& with);

/** The job of a scratch board behind it: {"words": [WORD, ...], "with": [WORD, ...]}. */
json whyJob(ScratchSession& session, const json& arguments);

} // namespace applet_tools

#endif
