#include "appletctl/numbers.h"

namespace appletctl {

std::string numberText(double number) {
    char text[32];
    const auto [end, error] = std::to_chars(text, text + sizeof text, number);
    return error == std::errc{} ? std::string(text, end) : "?";
}

} // namespace appletctl
