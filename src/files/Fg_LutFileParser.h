/** Lookup tables in text files. */
#ifndef FILES_FG_LUTFILEPARSER_H
#define FILES_FG_LUTFILEPARSER_H

#include "files/LineReader.h"
#include "files/TextFile.h"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

/** A table with integer elements. */
struct LookupTable_s {
    std::uint32_t* lut; ///< the elements, or null; from malloc
    std::uint32_t id;   ///< number of the table
    std::uint32_t nrOfElements;
    std::uint32_t format; ///< stored and passed on
    std::uint32_t number; ///< stored and passed on; a file takes the lowest 8 bits and gives a whole int
};

/** A table with floating point elements. */
struct KneeLookupTable_s {
    double* lut; ///< the elements, or null; from malloc
    std::uint32_t nrOfElements;
};

/**
 * Writes and reads lookup tables as lines of text: keys ("id=0;") and elements ("17,42;") below the line of
 * their section ("[red]"). The reader is lenient: only a file that cannot be opened, or lack of memory,
 * is an error. Takes no lock and shares no state: any number of parsers run in parallel, each in one
 * thread. Throws nothing. What is opened stays open until the next file or the end of the parser.
 */
class Fg_LutFileParser {
public:
    /** What a file's line can hold, ended by a zero. */
    using LineText = std::array<char, LineReader::longestLine + 1>;

    /** True: no extension is asked for. */
    bool checkFileType(const char* path) const;
    /** Whether the path can be opened for reading: no FIFO, no terminal. A directory is an empty file. */
    bool checkFileExist(const char* path) const;
    /** Creates or empties the file to write to. False, with no file open, if that fails. */
    bool setSaveFile(const char* path);
    /** Opens the file to read, for writing as well unless `readOnly`. False if that fails. */
    bool setOpenFile(const char* path, bool readOnly);

    /**
     * Writes one table, in section "[gray]" or the one given, or the three tables of the sections "[red]",
     * "[green]" and "[blue]". 0, or -1 if an argument is null, a table lacks its elements, or the file cannot
     * be opened. Write errors are not detected. The tables stay the caller's.
     */
    int saveLutToFile(const char* path, const LookupTable_s* table);
    int saveLutToFile(const char* path, const LookupTable_s* red, const LookupTable_s* green,
                      const LookupTable_s* blue);
    int saveLutToFile(const char* path, const KneeLookupTable_s* table, const char* section);
    int saveLutToFile(const char* path, const KneeLookupTable_s* red, const KneeLookupTable_s* green,
                      const KneeLookupTable_s* blue);
    /** Writes the header unchanged and `count` elements. 0, or -1 as above. */
    int saveMatrixToFile(const char* path, const char* header, const int* matrix, int count);

    /**
     * Reads the table of one section, or three different ones of "[red]", "[green]" and "[blue]". 0, or -1 if
     * an argument is null, the file cannot be opened, or there is no memory.
     *
     * The elements that a table brings (null or from malloc) are freed. Afterwards `lut` is null or a new array that
     * the caller frees with free(). A load of three tables ends with the first that fails: the tables behind that one
     * stay as they are, which for a file that cannot be opened is the first.
     *
     * An integer table gets the first `id`, `nrOfElements`, `format` and `number` in the file, whichever
     * section they are in, and 0 for what is missing. A count that no file of this size and no usual table
     * has is cut. A knee table has the count that it brings. Elements that the file lacks are 0.
     */
    int getLutFromFile(const char* path, LookupTable_s* table, const char* section);
    int getLutFromFile(const char* path, LookupTable_s* red, LookupTable_s* green, LookupTable_s* blue);
    int getLutFromFile(const char* path, KneeLookupTable_s* table, const char* section);
    int getLutFromFile(const char* path, KneeLookupTable_s* red, KneeLookupTable_s* green,
                       KneeLookupTable_s* blue);
    /** -1: matrix files are only written. */
    int getMatrixFromFile(const char* path, int* matrix, int count);

    /** Writes the text unchanged. */
    void writeLutFileHeader(std::string_view text);
    /** Writes a line of key, separator, value and ";". What is beyond 256 bytes of the three is cut. */
    void writeLutFileValue(std::string_view key, std::string_view value, char separator);
    void writeIntKey(std::string_view key, int value, char separator);
    /** The value with 12 significant digits. */
    void writeDoubleKey(std::string_view key, double value, char separator);
    void writeIntInt(int index, int value, char separator);
    /** The value with 12 digits behind the point. */
    void writeIntDouble(int index, double value, char separator);

    /**
     * Second token, between any of the delimiters, of the first line in the file that holds the key at any
     * place; empty if the line has only one; "Error" if there is no such line.
     */
    LineText parseKeyFromLine(std::string_view key, std::string_view delimiters);
    /** Stores that token as a number, 0 if it is none. 0, or -1 if the token is "Error". */
    int parseIntKey(std::string_view key, int* value, std::string_view delimiters);
    int parseDoubleKey(std::string_view key, double* value, std::string_view delimiters);
    /**
     * Reads elements, behind the first line that holds the section at any place, in ascending order: only a
     * line that holds the next index and the separator (no digit) gives an element. Ends when all elements
     * have been read, not at the next section; those that do not come stay as they are. 0.
     */
    int parseIntInt(std::span<std::uint32_t> elements, char separator, std::string_view section);
    int parseIntDouble(std::span<double> elements, char separator, std::string_view section);
    /** The number at the beginning of the text, 0 if there is none; an integer is cut to 32 bits. 0. */
    static int getIntValue(const char* text, int* value);
    static int getDoubleValue(const char* text, double* value);

private:
    template <typename Table> struct Section;

    template <typename Table>
    static std::array<Section<Table>, 3> colours(Table* red, Table* green, Table* blue);
    template <typename Table, std::size_t N>
    int save(const char* path, std::string_view comment, const std::array<Section<Table>, N>& sections);
    template <typename Table, std::size_t N>
    int load(const char* path, const std::array<Section<Table>, N>& sections);
    void writeTable(const LookupTable_s& table);
    void writeTable(const KneeLookupTable_s& table);
    LookupTable_s readKeys();

    TextFile m_file;
};

#endif
