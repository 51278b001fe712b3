/** Configuration files: sections, keys and the encoding of values. */
#ifndef FILES_FG_CONFIGFILEPARSER_H
#define FILES_FG_CONFIGFILEPARSER_H

#include "files/TextFile.h"

#include <cstdint>
#include <memory_resource>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

class Fg_Log;

/**
 * Writes and reads the values of parameters as lines of text: a header section, and a section for each port,
 * with lines "KEY=123;" and "KEY='text';". There is no escape: a text with a quote, an equals sign or a
 * semicolon does not survive. The decimal separator is that of the process locale.
 *
 * The reader is lenient: it takes the first line after the section's own line that begins with the key, even
 * if that is in a later section. It reads lines of at most 255 bytes; the rest of a longer line is read as
 * further lines. A line ends at a NUL byte. Nothing is cached: each parse call reads the file from its start,
 * except for the keys of prepareKeys().
 *
 * A parser is used for one file and by one thread at a time; several can run in parallel. The log may be null.
 */
class Fg_ConfigFileParser {
public:
    static constexpr int missing = -8000;

    /**
     * Opens the file for reading, and also for writing unless `readOnly`; reports no error. A null path opens
     * nothing.
     */
    Fg_ConfigFileParser(Fg_Log* log, const char* path, bool readOnly);
    ~Fg_ConfigFileParser();
    Fg_ConfigFileParser(const Fg_ConfigFileParser&) = delete;
    Fg_ConfigFileParser& operator=(const Fg_ConfigFileParser&) = delete;

    /** Whether the path contains ".mcf" anywhere. */
    bool checkFileType(const char* path) const;
    /**
     * Whether the path can be opened for reading. A FIFO, a socket or a terminal cannot; a directory is
     * empty.
     */
    bool checkFileExist(const char* path) const;

    /** Creates or empties the file that the write functions write to. */
    bool setSaveFile(const char* path);
    /** Closes the file. False if any of it could not be written. */
    bool finishSaveFile() { return m_file.finish(); }
    void writeConfigFileHeader();
    void writeConfigFilePortA();
    void writeConfigFilePortB();
    void writeConfigFileByPort(int port);
    /** A text, in quotes. */
    void writeConfigFile(std::string_view key, std::string_view text);
    /** A value, unchanged. */
    void writeConfigFileValue(std::string_view key, std::string_view text);
    void writeConfigFileIntKey(std::string_view key, int value);
    void writeConfigFileUInt64Key(std::string_view key, std::uint64_t value);
    void writeConfigFileInt64Key(std::string_view key, std::int64_t value);
    /** With 12 significant digits. */
    void writeConfigFileDoubleKey(std::string_view key, double value);

    /** "[Port A]" for port 0. */
    static std::string getPortString(int port);

    /* Parse a number at the beginning of a text. Without one, store 0 (64 bits: nothing). All return 0. */
    int getIntValue(const char* text, int* value) const;
    int getUInt64Value(const char* text, std::uint64_t* value) const;
    int getInt64Value(const char* text, std::int64_t* value) const;
    int getDoubleValue(const char* text, double* value) const;

    /**
     * Reads the file once for all of these keys, which contain no equals sign and must outlive the parser. Called
     * at most once.
     * Parse calls for them in this section then read no file. So the time of a load is linear in the size of
     * the file, and it needs memory for one line per key.
     */
    void prepareKeys(std::string_view section, std::span<const std::string_view> keys);

    /*
     * Texts: 0, or `missing` with "Error" in `out`. parseKeyFromLine takes the first line in the file that
     * contains the key anywhere.
     */
    int parseKeyFromLine(std::string_view key, std::string& out);
    int parseKey(std::string_view section, std::string_view key, std::string& out);

    /* Numbers: 0, or -1 with nothing stored, for a missing key and for a text with "Error" in it. */
    int parseIntKey(std::string_view section, std::string_view key, int* value);
    int parseUInt64Key(std::string_view section, std::string_view key, std::uint64_t* value);
    int parseInt64Key(std::string_view section, std::string_view key, std::int64_t* value);
    int parseDoubleKey(std::string_view section, std::string_view key, double* value);
    int parseIntKeyFromHeader(std::string_view key, int* value);

    /* The same in the section of a port; -1 for a null key. */
    int parseKeySection(int port, const char* key, std::string& out);
    int parseIntKeySection(int port, const char* key, int* value);
    int parseUInt64KeySection(int port, const char* key, std::uint64_t* value);
    int parseInt64KeySection(int port, const char* key, std::int64_t* value);
    int parseDoubleKeySection(int port, const char* key, double* value);

private:
    void func(const char* name) const;
    std::optional<std::string_view> findLine(std::string_view section, std::string_view key);
    template <typename T>
    int parseNumber(std::string_view section, std::string_view key, T* value,
                    int (Fg_ConfigFileParser::*convert)(const char*, T*) const);

    TextFile m_file;
    std::string m_line; // the last one written or found; its memory is reused
    Fg_Log* m_log;
    std::string m_preparedSection;
    std::pmr::monotonic_buffer_resource m_preparedMemory; // of the next, and of its lines
    /** The line of each prepared key, or nothing if the section lacks it. */
    std::pmr::unordered_map<std::string_view, std::optional<std::string_view>> m_preparedLines{
        &m_preparedMemory};
};

#endif
