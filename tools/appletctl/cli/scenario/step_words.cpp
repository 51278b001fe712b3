#include "appletctl/cli/scenario/step_words.h"

#include <algorithm>

namespace appletctl {

const Relation& relationFrom(const std::string& word) {
    const Relation* relation = relationAt(word);
    if (relation != nullptr && relation->symbol == word) return *relation;
    throw UsageError(inQuotedWord(word) + " is not one of " + relationsInWords());
}

double numberFrom(const std::string& word) {
    if (const auto number = floatingNumber(word)) return *number;
    throw UsageError(inQuotedWord(word) + " is not a number");
}

void checkOneOf(const std::string& word, const Words& possible) {
    if (std::ranges::find(possible, word) == possible.end())
        throw UsageError(inQuotedWord(word) + " is not one of " + join(possible, ", ") +
                         didYouMean(nearestWords(word, possible)));
}

} // namespace appletctl
