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
 * is an error. Takes no lock and shares no state: any number of parsers can run in parallel, each in one
 * thread. Throws nothing. A file stays open until the next one is opened or the parser is destroyed.
 */
class Fg_LutFileParser {
public:
    /** Room for a line of a file and its terminating zero. */
    using LineText = std::array<char, LineReader::longestLine + 1>;

    /** Always true: any extension is accepted. */
    bool checkFileType(const char* path) const;
    /** Whether the path can be opened for reading; not a FIFO or a terminal. A directory is an empty file. */
    bool checkFileExist(const char* path) const;
    /** Creates or empties the file to write to. False, with no file open, if that fails. */
    bool setSaveFile(const char* path);
    /** Opens the file to read, for writing as well unless `readOnly`. False if that fails. */
    bool setOpenFile(const char* path, bool readOnly);

    /**
     * Writes one table, in section "[gray]" or the one given, or the three tables of the sections "[red]",
     * "[green]" and "[blue]". 0, or -1 if an argument is null, a table lacks its elements, or the file cannot
     * be opened. Write errors are not detected. The caller keeps ownership of the tables.
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
     * The elements that a table has (null or from malloc) are freed. Afterwards `lut` is null or a new array
     * that the caller frees with free(). A load of three tables ends with the first that fails: the tables
     * after that one stay unchanged. If the file cannot be opened, that is the first one.
     *
     * An integer table gets the first `id`, `nrOfElements`, `format` and `number` in the file, whichever
     * section they are in, and 0 for a missing one. A count that is too large for the file and for any usual
     * table is reduced. A knee table keeps its count. Elements that the file lacks are 0.
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
    /** Writes a line of key, separator, value and ";". The first three are cut to 256 bytes in total. */
    void writeLutFileValue(std::string_view key, std::string_view value, char separator);
    void writeIntKey(std::string_view key, int value, char separator);
    /** The value with 12 significant digits. */
    void writeDoubleKey(std::string_view key, double value, char separator);
    void writeIntInt(int index, int value, char separator);
    /** The value with 12 digits after the decimal point. */
    void writeIntDouble(int index, double value, char separator);

    /**
     * Second token, between any of the delimiters, of the first line in the file that contains the key
     * anywhere; empty if the line has only one; "Error" if there is no such line.
     */
    LineText parseKeyFromLine(std::string_view key, std::string_view delimiters);
    /** Stores that token as a number, or 0 if it is not a number. 0, or -1 if the token is "Error". */
    int parseIntKey(std::string_view key, int* value, std::string_view delimiters);
    int parseDoubleKey(std::string_view key, double* value, std::string_view delimiters);
    /**
     * Reads elements after the first line that contains the section anywhere, in ascending order: only a line
     * that contains the next index and the separator (no digit) gives an element. Ends when all elements have
     * been read, not at the next section; missing elements stay unchanged. Returns 0.
     */
    int parseIntInt(std::span<std::uint32_t> elements, char separator, std::string_view section);
    int parseIntDouble(std::span<double> elements, char separator, std::string_view section);
    /** The number at the beginning of the text, 0 if there is none; an integer is truncated to 32 bits. 0. */
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
