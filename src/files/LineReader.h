/** Lines of a text file. */
#ifndef FILES_LINEREADER_H
#define FILES_LINEREADER_H

#include "files/TextFile.h"

#include <cstddef>
#include <string_view>
#include <sys/types.h>

/**
 * Hands out a file's lines, from its first byte on, as reading them into a buffer of 256 bytes gives them: a
 * line has 255 bytes at most, and what a longer one has beyond them comes as further lines. Anything but a
 * regular file is empty. Reads in blocks, so that the memory needed does not grow with the file; does not
 * move the file's position. The file stays open as long as the reader is used. Throws nothing.
 */
class LineReader {
public:
    static constexpr std::size_t longestLine = 255;

    explicit LineReader(const TextFile& file);

    /**
     * The next line, with its line end if it has one; a NUL byte ends the text, and the rest of its line is
     * lost. `line` is valid up to the next call. False at the end of the file, or where it cannot be read.
     */
    bool next(std::string_view& line);

private:
    std::size_t wholeLine() const;
    bool fill();

    int m_descriptor;
    off_t m_position = 0;
    bool m_holdsNul = false;
    std::size_t m_begin = 0, m_end = 0; // the part of the block that was not returned yet
    char m_block[16384];
};

#endif
