#include "files/LineReader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unistd.h>

// A file without a size is not read, since a device may be endless.
LineReader::LineReader(const TextFile& file) : m_descriptor(file.size() != 0 ? file.descriptor() : -1) {}

bool LineReader::next(std::string_view& line) {
    std::size_t length = wholeLine();
    while (length == 0 && fill())
        length = wholeLine();
    if (length == 0) length = m_end - m_begin; // the last line has no line end
    line = {m_block + m_begin, length};
    m_begin += length;
    if (m_holdsNul) line = line.substr(0, line.find('\0'));
    return length != 0;
}

/** Length of the next line; 0 unless all of it is in the block. */
std::size_t LineReader::wholeLine() const {
    const std::size_t available = std::min(m_end - m_begin, longestLine);
    const std::size_t lineEnd = std::string_view(m_block + m_begin, available).find('\n');
    if (lineEnd != std::string_view::npos) return lineEnd + 1;
    return available == longestLine ? longestLine : 0;
}

/** Reads more data after the rest of the block; false at the end of the file. */
bool LineReader::fill() {
    std::memmove(m_block, m_block + m_begin, m_end - m_begin);
    m_end -= m_begin;
    m_begin = 0;
    ssize_t count = 0;
    do
        count = pread(m_descriptor, m_block + m_end, sizeof m_block - m_end, m_position);
    while (count < 0 && errno == EINTR);
    if (count <= 0) return false;
    m_position += count;
    m_end += static_cast<std::size_t>(count);
    m_holdsNul = std::memchr(m_block, '\0', m_end) != nullptr; // once for the block, not for each line
    return true;
}
