/** Parses the words of a scenario's step. All throw UsageError for invalid words. */
#ifndef APPLETCTL_CLI_SCENARIO_STEP_WORDS_H
#define APPLETCTL_CLI_SCENARIO_STEP_WORDS_H

#include "applet_tools/applet/Condition.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"
#include "applet_tools/base/words.h"
#include "appletctl/base/applet_tools.h"

#include <string>

namespace appletctl {

const Relation& relationFrom(const std::string& word);

double numberFrom(const std::string& word);

template <typename Integer> Integer wholeFrom(const std::string& word) {
    if (const auto number = wholeNumber<Integer>(word)) return *number;
    throw UsageError(inQuotedWord(word) + " is not a whole number in the range of this value");
}

void checkOneOf(const std::string& word, const Words& possible);

} // namespace appletctl

#endif
