/** Environment variables that are switches. */
#ifndef SUPPORT_SWITCHES_H
#define SUPPORT_SWITCHES_H

#include <string>
#include <string_view>

/** A text in lower case; only the letters A to Z change. */
std::string lowerCase(std::string_view text);

/** True for "yes", "true", "on" and "1", in any mix of upper and lower case. */
bool isOn(std::string_view word);

/** True when the environment variable is set to one of these words. */
bool isSwitchedOn(const char* environmentVariable);

#endif
