#include "support/switches.h"

#include <algorithm>
#include <cstdlib>

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return lower;
}

bool isOn(std::string_view word) {
    const std::string lower = lowerCase(word);
    return lower == "yes" || lower == "true" || lower == "on" || lower == "1";
}

bool isSwitchedOn(const char* environmentVariable) {
    const char* value = std::getenv(environmentVariable);
    return value != nullptr && isOn(value);
}
