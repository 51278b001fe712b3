/** Lines of a text file. */
#ifndef FILES_LINEREADER_H
#define FILES_LINEREADER_H

#include "files/TextFile.h"

#include <cstddef>
#include <string_view>
#include <sys/types.h>

/**
 * Returns the lines of a file, from its first byte on, as reads into a buffer of 256 bytes give them: a
 * line has at most 255 bytes, and the rest of a longer one is returned as further lines. Anything but a
 * regular file is empty. Reads in blocks, so that the memory needed does not grow with the file; does not
 * move the file's position. The file must stay open while the reader is used. Throws nothing.
 */
class LineReader {
public:
    static constexpr std::size_t longestLine = 255;

    explicit LineReader(const TextFile& file);

    /**
     * The next line, with its line end if it has one; a NUL byte ends the text, and the rest of its line is
     * dropped. `line` is valid until the next call. False at the end of the file, or if it cannot be read.
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
