#include "appletctl/cli/shell/line_input.h"

#include <editline/readline.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <utility>

namespace appletctl {
namespace {

/** Static, since the library's callbacks are plain functions. */
LineInput::Complete completeLine;
std::vector<Candidate> candidates;

char* candidate(const char*, int number) {
    const auto index = static_cast<std::size_t>(number);
    return index < candidates.size() ? strdup(candidates[index].text.c_str()) : nullptr;
}

char** complete(const char* word, int, int end) {
    candidates = completeLine(std::string(rl_line_buffer, static_cast<std::size_t>(end)));
    if (candidates.empty()) return nullptr; // the library offers files
    rl_attempted_completion_over = 1;
    const bool goesOn = candidates.size() == 1 && candidates.front().text.ends_with('=');
    rl_completion_append_character = goesOn ? 0 : ' ';
    return rl_completion_matches(word, candidate);
}

} // namespace

LineInput::LineInput(std::string historyFile, Complete complete) : m_historyFile(std::move(historyFile)) {
    completeLine = std::move(complete);
    rl_attempted_completion_function = appletctl::complete;
    rl_basic_word_break_characters = " \t";
    using_history();
    constexpr int mostLines = 1000;
    stifle_history(mostLines);
    read_history(m_historyFile.c_str());
}

LineInput::~LineInput() {
    std::error_code ignored; // without the folder there is no history
    std::filesystem::create_directories(std::filesystem::path(m_historyFile).parent_path(), ignored);
    write_history(m_historyFile.c_str());
    completeLine = nullptr;
}

std::optional<std::string> LineInput::read(const std::string& prompt) {
    const std::unique_ptr<char, decltype(&std::free)> line(readline(prompt.c_str()), std::free);
    if (line == nullptr) return std::nullopt;
    if (*line != '\0') add_history(line.get());
    return line.get();
}

} // namespace appletctl
