#include "appletctl/base/print.h"
#include "appletctl/cli/shell/line_input.h"

#include <iostream>
#include <utility>

namespace appletctl {

LineInput::LineInput(std::string historyFile, Complete) : m_historyFile(std::move(historyFile)) {}

LineInput::~LineInput() = default;

std::optional<std::string> LineInput::read(const std::string& prompt) {
    writeOut(prompt);
    std::string line;
    if (std::getline(std::cin, line)) return line;
    return std::nullopt;
}

} // namespace appletctl
