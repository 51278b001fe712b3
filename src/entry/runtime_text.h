/** Texts that the runtime writes into a place whose size it is not told. */
#ifndef ENTRY_RUNTIME_TEXT_H
#define ENTRY_RUNTIME_TEXT_H

#include <array>
#include <string>

/** Room for far more than any text of a design. */
inline constexpr std::size_t runtimeTextRoom = 8192;

/** The text that `read` writes into a zeroed buffer. */
template <typename Read> std::string readRuntimeText(Read read) {
    std::array<char, runtimeTextRoom> text{};
    read(text.data());
    text.back() = '\0';
    return text.data();
}

#endif
