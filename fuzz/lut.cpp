// The input is a lookup table file. The reader must find the same as a simple reader with the C library's
// functions, and tables that are written to a file must read back the same.

#include "files/Fg_LutFileParser.h"
#include "invariants.h"
#include "support/temporary_folder.h"

#include <algorithm>
#include <cstring>

namespace {

using Lines = std::vector<std::string>;

constexpr const char* sections[] = {"[red]", "[green]", "[blue]"};
constexpr std::uint32_t largestUsualTable = 1 << 20;
constexpr std::uint32_t smallTable = 64;

/** Three tables that free the elements of a read. */
template <typename Table> struct Tables {
    Table of[3]{};

    Tables() = default;
    Tables(const Tables&) = delete;
    Tables& operator=(const Tables&) = delete;
    ~Tables() {
        for (Table& table : of)
            std::free(table.lut);
    }
    void read(const char* path) {
        fuzz::require(Fg_LutFileParser().getLutFromFile(path, &of[0], &of[1], &of[2]) == 0,
                      "any file is read");
    }
};

std::uint32_t plainKey(const Lines& lines, const char* key) {
    return static_cast<std::uint32_t>(std::atoi(fuzz::plainKey(lines, key).value_or("").c_str()));
}

std::uint32_t plainNumber(const char* text, std::uint32_t) {
    return static_cast<std::uint32_t>(std::atoi(text));
}
double plainNumber(const char* text, double) { return std::atof(text); }

/** All elements of the file, up to `count`. */
template <typename Element>
std::vector<Element> plainElements(const Lines& lines, const char* section, std::size_t count) {
    std::vector<Element> elements;
    bool isInside = false;
    for (std::string line : lines) {
        isInside = isInside || std::strstr(line.c_str(), section) != nullptr;
        const std::string wanted = std::to_string(elements.size()) + ',';
        if (elements.size() == count || !isInside || std::strstr(line.c_str(), wanted.c_str()) == nullptr)
            continue;
        std::strtok(line.data(), ",");
        if (const char* token = std::strtok(nullptr, ",")) elements.push_back(plainNumber(token, Element{}));
    }
    return elements;
}

template <typename Table> void checkElements(const Table& table, const Lines& lines, const char* section) {
    using Element = std::remove_pointer_t<decltype(Table::lut)>;
    const std::vector<Element> plain = plainElements<Element>(lines, section, table.nrOfElements);
    fuzz::require(plain.empty() || std::memcmp(plain.data(), table.lut, plain.size() * sizeof(Element)) == 0,
                  "the elements of the file");
    const std::size_t end = std::min<std::size_t>(table.nrOfElements, plain.size() + smallTable);
    const bool restIsZero =
        std::all_of(table.lut + plain.size(), table.lut + end, [](Element element) { return element == 0; });
    fuzz::require(restIsZero, "what the file lacks is zero");
}

void checkRoundTrip(const Tables<LookupTable_s>& tables, const char* path) {
    const LookupTable_s* of = tables.of;
    fuzz::require(Fg_LutFileParser().saveLutToFile(path, &of[0], &of[1], &of[2]) == 0, "a save");
    Tables<LookupTable_s> again;
    again.read(path);
    for (std::size_t i = 0; i < 3; ++i) {
        const LookupTable_s &table = again.of[i], &old = of[i];
        fuzz::require(table.id == old.id && table.nrOfElements == old.nrOfElements &&
                          table.format == old.format && table.number == (old.number & 0xFF),
                      "keys come back, of the number 8 bits");
        fuzz::require(std::equal(table.lut, table.lut + table.nrOfElements, old.lut), "elements come back");
    }
}

void checkKnees(const char* path, const Lines& lines) {
    Tables<KneeLookupTable_s> knees;
    for (KneeLookupTable_s& knee : knees.of)
        knee.nrOfElements = smallTable;
    knees.read(path);
    for (std::size_t i = 0; i < 3; ++i)
        checkElements(knees.of[i], lines, sections[i]);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const support::TemporaryFolder folder;
    static fuzz::InputFile input(folder / "input.lut");
    static const std::string written = folder / "written.lut";

    const Lines lines = fuzz::linesOf(data, size);
    const std::uint32_t count = std::min(plainKey(lines, "nrOfElements"), largestUsualTable);
    // A large table takes as long as many small ones and finds little more.
    if (count > 20000 && size % 32 != 0) return 0;

    input.fill(data, size);
    Tables<LookupTable_s> tables;
    tables.read(input.path());
    for (std::size_t i = 0; i < 3; ++i) {
        const LookupTable_s& table = tables.of[i];
        fuzz::require(table.nrOfElements == count && table.id == plainKey(lines, "id") &&
                          table.format == plainKey(lines, "format") &&
                          table.number == plainKey(lines, "number"),
                      "the first keys of the file");
        checkElements(table, lines, sections[i]);
    }
    // The rest is slowest, and fewer inputs are enough for it.
    if (size % 8 == 0 && count <= smallTable) checkRoundTrip(tables, written.c_str());
    if (size % 8 == 1) checkKnees(input.path(), lines);
    return 0;
}
