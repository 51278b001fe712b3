/** What the terminal of a stream can show, within the user's choices: width, colour, characters. */
#ifndef APPLETCTL_BASE_TERMINAL_H
#define APPLETCTL_BASE_TERMINAL_H

#include <cstddef>
#include <string>

namespace appletctl {

/** True on a terminal that supports control sequences, unless the user wants plain output. */
bool isCapableTerminal(int fileDescriptor);

/** True for interactive use: both outputs are terminals, and neither --json, --plain nor -q is given. */
bool isProgressWanted();

/** Columns of a line of the standard output; no limit with --plain or in the scope of a file's layout. */
std::size_t outputWidth();

/** Emphasis for a terminal; plain text if colour is off. */
class Style {
public:
    /** Colour for the stream with this file descriptor: as --color says, or else only on a terminal and never
     *  with NO_COLOR. */
    static Style forStream(int fileDescriptor);

    std::string heading(const std::string& text) const { return painted("1", text); }
    std::string faint(const std::string& text) const { return painted("2", text); }
    std::string alarm(const std::string& text) const { return painted("1;31", text); }
    bool hasColour() const { return m_colour; }

private:
    std::string painted(const char* attributes, const std::string& text) const;

    bool m_colour = false;
};

/** Number of colours for a picture on this stream. */
enum class ColourDepth { none, of256, of24Bits };
/** None if Style has no colour, outside a UTF-8 locale, or on a terminal with fewer than 256 colours (by TERM
 *  and COLORTERM). */
ColourDepth colourDepth(int fileDescriptor);

/** True when box drawing and braille characters can be shown: on a terminal of a UTF-8 locale. */
bool canDrawUnicode(int fileDescriptor);

} // namespace appletctl

#endif
