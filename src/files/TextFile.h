/** The text files that a caller names: opened without waiting, written line by line. */
#ifndef FILES_TEXTFILE_H
#define FILES_TEXTFILE_H

#include <cstdint>
#include <string_view>

/** Owns an open file, or none. Takes no lock: one thread at a time uses it. Throws nothing. */
class TextFile {
public:
    enum class Mode {
        Read,   ///< of what exists
        Update, ///< reading and writing of what exists
        Write   ///< creates the file or empties it
    };

    TextFile() = default;
    TextFile(const TextFile&) = delete;
    TextFile& operator=(const TextFile&) = delete;
    ~TextFile() { close(); }

    /**
     * Opens a file in place of the one open so far, which is closed. False, with no file open, for a null
     * path, for what cannot be opened, which is also a FIFO without a reader. What cannot seek, such as a FIFO or a
     * terminal, is only written to: for reading it counts as missing.
     */
    bool open(const char* path, Mode mode);
    bool isOpen() const { return m_descriptor >= 0; }
    /** The descriptor, which stays the file's own; -1 if none is open. */
    int descriptor() const { return m_descriptor; }
    /** How many bytes there are to read: none in a directory or a device, which read as an empty file. */
    std::uint64_t size() const;
    /**
     * Hands the text to the system before it returns; a slow reader of a FIFO is waited for. A failure is remembered,
     * and nothing else comes of it: a reader that has gone sends no signal.
     */
    void write(std::string_view text);
    /** Closes the file. False if a write to it has failed, which some file systems report only now. */
    bool finish();

private:
    void writeAll(std::string_view text);
    void close();

    int m_descriptor = -1;
    bool m_failed = false;
    bool m_isSeekable = true;
};

#endif
