#include "appletctl/draw/sparkline.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace appletctl {
namespace {

constexpr const char* blocks[] = {"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
constexpr const char* letters[] = {"_", ".", ":", "-", "=", "+", "*", "#"};

} // namespace

std::string sparkline(const std::deque<double>& numbers, bool unicode) {
    if (numbers.empty()) return "";
    const auto [least, most] = std::ranges::minmax(numbers);
    std::string line;
    for (const double number : numbers) {
        const double height = most > least ? (number - least) / (most - least) : 0;
        const auto level = static_cast<std::size_t>(std::lround(height * (std::size(blocks) - 1)));
        line += (unicode ? blocks : letters)[level];
    }
    return line;
}

} // namespace appletctl
