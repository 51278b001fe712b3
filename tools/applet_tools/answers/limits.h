/** What is accepted of a parameter now, and what sets each limit: asked of its setter on a scratch board. */
#ifndef APPLET_TOOLS_ANSWERS_LIMITS_H
#define APPLET_TOOLS_ANSWERS_LIMITS_H

#include "applet_tools/scratch/LiveSession.h"
#include "applet_tools/scratch/limit_causes.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace applet_tools {

/** What the setter answers to an entry of an enumeration. */
struct EntryAnswer {
    Entry entry;
    int code = 0;
    std::vector<std::string>
        acceptedWith{}; /**< of a refused one: changes of others with which it is accepted */
};

/** What the published record says of a number, and how a person reads it. */
struct PublishedRange {
    std::optional<Limits> limits; /**< none where the record has none that say anything */
    std::string words{};
};

/** The answer for one parameter. Its values are native ones: a record is needed to show them. */
struct AcceptedValues {
    std::string parameter; /**< its name */
    std::string subject;   /**< "FG_WIDTH", "FG_LUT_VALUE_RED[7]" */
    std::optional<ElementRange>
        elements{};     /**< of an array, which has no published grid: those that were asked */
    std::string access; /**< "rw" */
    ReadResult now{};
    bool isText = false;                /**< any text is accepted */
    std::vector<EntryAnswer> entries{}; /**< of an enumeration */
    int refusal = 0;                    /**< the code where nothing that was tried is accepted */
    std::optional<MeasuredRange> range{};
    std::optional<PublishedRange> published{}; /**< where it differs from what is accepted */
    LimitCauses ofMinimum{}, ofMaximum{};      /**< of the range */
};

/** What a target of the command line is about. The first element of an array represents all of it; several
 *  elements are asked for together, so what is accepted is accepted by each. */
Subject subjectOf(const Probe& probe, const Target& target);

/** Asks the setter, in the state of the probe, to which the board is brought back. */
AcceptedValues acceptedValues(Probe& probe, const Subject& subject);

/** The answers for parameters and elements, each once, from the state of the live applet after these assignments.
 *  Throws UsageError for an unknown name, and what startFrom throws. */
std::vector<AcceptedValues> askAcceptedValues(LiveSession& live, const Words& names,
                                              const Words& assignments);

/** The job of a scratch board behind it: {"names": [WORD, ...], "with": [WORD, ...]}. */
json limitsJob(ScratchSession& session, const json& arguments);

/** The answer as members of a document: "name", "unit", "access", the value, then "entries", or "accepted" and
 *  "error", "differs", "published", "setBy", "fixed". */
nlohmann::ordered_json asJson(const AcceptedValues& answer, const Parameter& parameter);

} // namespace applet_tools

#endif
