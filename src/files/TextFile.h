/** Text files named by a caller: opened without blocking, written line by line. */
#ifndef FILES_TEXTFILE_H
#define FILES_TEXTFILE_H

#include <cstdint>
#include <string_view>

/** Owns an open file, or none. Takes no lock: one thread at a time uses it. Throws nothing. */
class TextFile {
public:
    enum class Mode {
        Read,   ///< of an existing file
        Update, ///< reading and writing of an existing file
        Write   ///< creates the file or empties it
    };

    TextFile() = default;
    TextFile(const TextFile&) = delete;
    TextFile& operator=(const TextFile&) = delete;
    ~TextFile() { close(); }

    /**
     * Opens a file and closes the one open so far. False, with no file open, for a null path or a file that
     * cannot be opened, such as a FIFO without a reader. A file that cannot seek, such as a FIFO or a
     * terminal, can only be written to: for reading it counts as missing.
     */
    bool open(const char* path, Mode mode);
    bool isOpen() const { return m_descriptor >= 0; }
    /** The descriptor, still owned by this object; -1 if none is open. */
    int descriptor() const { return m_descriptor; }
    /** Number of bytes to read: 0 for a directory or a device, which read as an empty file. */
    std::uint64_t size() const;
    /**
     * Passes the text to the system before it returns, and waits for a slow reader of a FIFO. A failure is
     * only remembered for finish(): a FIFO closed by its reader raises no signal.
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
