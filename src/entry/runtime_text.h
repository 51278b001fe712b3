/** Texts that the runtime writes into a place whose size it is not told. */
#ifndef ENTRY_RUNTIME_TEXT_H
#define ENTRY_RUNTIME_TEXT_H

#include <array>
#include <string>

/** Room for far more than any text of a design. */
inline constexpr std::size_t runtimeTextRoom = 8192;

/** What the names of the design's parameters of process 0 begin with. */
inline constexpr char process0[] = "Device1_Process0_";

/** Value of the digit at a place of a text; of what is none, and behind the end, what its code gives. */
inline int digitAt(const std::string& text, std::size_t place) {
    return (place < text.size() ? text[place] : '\0') - '0';
}

/** The text that `read` writes into a zeroed buffer. */
template <typename Read> std::string readRuntimeText(Read read) {
    std::array<char, runtimeTextRoom> text{};
    read(text.data());
    text.back() = '\0';
    return text.data();
}

#endif
