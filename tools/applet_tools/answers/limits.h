/** The values that a parameter accepts now and the cause of each limit, found by trying on a scratch board. */
#ifndef APPLET_TOOLS_ANSWERS_LIMITS_H
#define APPLET_TOOLS_ANSWERS_LIMITS_H

#include "applet_tools/scratch/LiveSession.h"
#include "applet_tools/scratch/probe/limit_causes.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace applet_tools {

/** The setter's answer to an entry of an enumeration. */
struct EntryAnswer {
    Entry entry;
    int code = 0;
    /** For a refused entry: changes of other parameters that make it accepted. */
    std::vector<std::string> acceptedWith{};
};

/** The published range of a number, and its text. */
struct PublishedRange {
    std::optional<Limits> limits; /**< empty if the record has no usable limits */
    std::string words{};
};

/** The result for one parameter. Values are native: showing them needs a record. */
struct AcceptedValues {
    std::string parameter; /**< its name */
    std::string subject;   /**< "FG_WIDTH", "FG_LUT_VALUE_RED[7]" */
    /** The elements tested, for an array, which has no published grid. */
    std::optional<ElementRange> elements{};
    std::string access; /**< "rw" */
    ReadResult now{};
    bool isText = false;                /**< any text is accepted */
    std::vector<EntryAnswer> entries{}; /**< for an enumeration */
    int refusal = 0;                    /**< the refusal code if no value that was tried is accepted */
    std::optional<MeasuredRange> range{};
    std::optional<PublishedRange> published{}; /**< only if it differs from what is accepted */
    LimitCauses ofMinimum{}, ofMaximum{};      /**< causes of the two limits */
};

/** The element of a target to test. The first element of an array stands for the whole array; several
 *  elements are set together, so a value is accepted if every element accepts it. */
Subject subjectOf(const Probe& probe, const Target& target);

/** Calls the setter in the state of the probe, and restores that state. */
AcceptedValues acceptedValues(Probe& probe, const Subject& subject);

/** The results for parameters and elements, each tested once, starting from the live applet's state with
 *  these assignments applied. Throws UsageError for an unknown name, and the exceptions of startFrom. */
std::vector<AcceptedValues> askAcceptedValues(LiveSession& live, const Words& names,
                                              const Words& assignments);

/** The scratch board job that implements it: {"names": [WORD, ...], "with": [WORD, ...]}. */
json limitsJob(ScratchSession& session, const json& arguments);

/** The result as members of a document: "name", "unit", "access", the value, then "entries", or "accepted"
 *  and "error", "differs", "published", "setBy", "fixed". */
nlohmann::ordered_json asJson(const AcceptedValues& answer, const Parameter& parameter);

} // namespace applet_tools

#endif
