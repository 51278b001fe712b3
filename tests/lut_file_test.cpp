// Lookup tables in files: what is written to the byte, and what the lenient reader makes of any file.

#include "files/Fg_LutFileParser.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using namespace std::string_literals;

constexpr std::uint32_t fromBefore = 77;

/** A record as a caller passes it in, with old elements, and what a load made of it. */
template <typename Record> struct Table : Record {
    using Element = std::remove_pointer_t<decltype(Record::lut)>;
    explicit Table(std::uint32_t count = fromBefore) : Record{} {
        this->lut = static_cast<Element*>(std::malloc(sizeof(Element)));
        this->nrOfElements = count;
    }
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;
    ~Table() { std::free(this->lut); }
    std::vector<Element> elements() const { return {this->lut, this->lut + this->nrOfElements}; }
};
using IntTable = Table<LookupTable_s>;
using KneeTable = Table<KneeLookupTable_s>;

class LutFile : public testing::Test {
protected:
    LutFile() { std::filesystem::create_directory(m_folder); }
    ~LutFile() override { std::filesystem::remove_all(m_folder); }

    const char* path() const { return m_path.c_str(); }
    void fill(const std::string& bytes) const { std::ofstream(m_path, std::ios::binary) << bytes; }
    std::string bytes() const {
        std::ifstream file(m_path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /** The elements of a file with `count` in its keys. */
    std::vector<std::uint32_t> load(int count, const std::string& lines,
                                    const char* section = "[red]") const {
        fill("nrOfElements=" + std::to_string(count) + ";\n" + lines);
        IntTable table;
        EXPECT_EQ(Fg_LutFileParser().getLutFromFile(path(), &table, section), 0);
        EXPECT_EQ(table.nrOfElements, static_cast<std::uint32_t>(count));
        return table.elements();
    }

    const std::filesystem::path m_folder =
        std::filesystem::temp_directory_path() / ("lut-file-test-" + std::to_string(getpid()));
    const std::string m_path = m_folder / "table.any";
};

TEST_F(LutFile, IsWrittenToTheByte) {
    std::uint32_t elements[] = {5, 4294967295u};
    const LookupTable_s first{elements, 7, 2, 4294967294u, 0x1FF}, second{elements + 1, 1, 1, 0, 3}, none{};
    double knees[] = {0.5, -1e9 / 3};
    const KneeLookupTable_s knee{knees, 2}, shortKnee{knees, 1};
    const int matrix[] = {-1, 2147483647};
    const std::string keys = "id=7;\nnrOfElements=2;\nformat=-2;\nnumber=255;\n0,5;\n1,-1;\n";
    Fg_LutFileParser parser;

    EXPECT_EQ(parser.saveLutToFile(path(), &first), 0);
    EXPECT_EQ(bytes(), "# Lut data file v1.1\n\n\n\n[gray]\n\n" + keys);
    EXPECT_EQ(parser.saveLutToFile(path(), &first, &second, &none), 0);
    EXPECT_EQ(bytes(), "# Lut data file v1.1\n\n[red]\n\n" + keys +
                           "\n\n[green]\n\nid=1;\nnrOfElements=1;\nformat=0;\nnumber=3;\n0,-1;\n"
                           "\n\n[blue]\n\nid=0;\nnrOfElements=0;\nformat=0;\nnumber=0;\n");
    EXPECT_EQ(parser.saveLutToFile(path(), &shortKnee, &shortKnee, &shortKnee), 0);
    EXPECT_EQ(bytes(), "# KneeLut data file v1.1\n\n[red]\n\n0,0.500000000000;\n"
                       "\n\n[green]\n\n0,0.500000000000;\n\n\n[blue]\n\n0,0.500000000000;\n");
    EXPECT_EQ(parser.saveLutToFile(path(), &knee, "any section"), 0);
    EXPECT_EQ(bytes(),
              "# KneeLut data file v1.0\n\nany section\n\n0,0.500000000000;\n1,-333333333.333333313465;\n");
    KneeTable longer(3), shorter(1);
    ASSERT_EQ(parser.getLutFromFile(path(), &longer, "any section"), 0);
    EXPECT_EQ(longer.elements(), (std::vector{0.5, -333333333.333333313465, 0.0}));
    ASSERT_EQ(parser.getLutFromFile(path(), &shorter, "any section"), 0);
    EXPECT_EQ(shorter.elements(), std::vector{0.5});
    EXPECT_EQ(parser.saveMatrixToFile(path(), "as it stands ", matrix, 2), 0);
    EXPECT_EQ(bytes(), "as it stands nrOfElements=2;\n0,-1;\n1,2147483647;\n");
    // Each line is there before the next is written.
    ASSERT_TRUE(parser.setSaveFile(path()));
    parser.writeDoubleKey("gain", 3999.9999999999995, '=');
    EXPECT_EQ(bytes(), "gain=4000;\n");
    parser.writeLutFileValue(std::string(200, 'k'), std::string(200, 'v'), '=');
    EXPECT_EQ(bytes().substr(11), std::string(200, 'k') + "=" + std::string(55, 'v') + ";\n");
}

TEST_F(LutFile, GivesElementsByTheReadersRules) {
    using Elements = std::vector<std::uint32_t>;
    const struct {
        const char* what;
        int count;
        std::string lines;
        Elements expected;
    } cases[] = {
        {"plain, without a last line end", 3, "[red]\n0,10;\n1,11;\n2,12", {10, 11, 12}},
        {"lines of other systems", 2, "[red]\r\n0,10\r\n1,11\r\n", {10, 11}},
        {"blanks", 2, "[red]\n0, 10;\n 1,\t11;\n", {10, 11}},
        {"an element in front of its section", 1, "0,9;\n[red]\n0,10;\n", {10}},
        {"an element in the section's own line", 1, "x[red]y0,10;\n", {10}},
        {"a gap, and what its index stands in", 3, "[red]\n0,10;\n2,12;\n21,13;\n3,14;\n", {10, 13, 0}},
        {"an index behind another number", 1, "[red]\n5,10,7;\n", {10}},
        {"descending", 2, "[red]\n1,11;\n0,10;\n", {10, 0}},
        {"the rest from the next section", 3, "[red]\n0,10;\n[green]\n0,20;\n1,21;\n2,22;\n", {10, 21, 22}},
        {"too many", 1, "[red]\n0,10;\n1,11;\n", {10}},
        {"no such section", 2, "[green]\n0,10;\n1,11;\n", {0, 0}},
        {"a line end as the value", 2, "[red]\n0,\n0,10;\n1,,,11\n", {0, 11}},
        {"no second token", 2, "[red]\n0,\0\n0,10;\n1,,"s, {10, 0}},
        {"no number", 3, "[red]\n0,x;\n1,-2;\n2,+3;\n", {0, 4294967294u, 3}},
        {"too large", 2, "[red]\n0,4294967298;\n1,99999999999999999999;\n", {2, 4294967295u}},
        {"the text before a NUL byte", 2, "[red]\0 0,9;\n0,10\0001;\n1,11;\n"s, {10, 11}},
        {"a number cut by the longest line", 2, "[red]\n0," + std::string(252, '0') + "12\n1,7\n", {1, 7}},
    };
    for (const auto& row : cases)
        EXPECT_EQ(load(row.count, row.lines), row.expected) << row.what;
}

TEST_F(LutFile, GivesTheFirstKeysWhateverTheyStandIn) {
    const struct {
        const char* file;
        std::uintmax_t size;             // of the file
        std::vector<std::uint32_t> keys; // id, nrOfElements, format, number
    } cases[] = {
        {"", 0, {0, 0, 0, 0}},
        {"# not valid\n[green]\nnrOfElements='2';\nformat=4294967297\nnumber=300;\n[red]\nid=5;\nformat=9;\n",
         200,
         {0, 2, 1, 300}},
        {"id\nid=1;\nmy number of things=-1;\nformat=Error;\nnrOfElements=\n", 200, {0, 0, 0, 4294967295u}},
        {"nrOfElements=-1;\n", 200, {0, 1 << 20, 0, 0}},
        {"nrOfElements=1073741824;\n", 6000000, {0, 2000000, 0, 0}}, // as many as it could hold
    };
    for (const auto& row : cases) {
        fill(row.file);
        std::filesystem::resize_file(m_path, row.size);
        IntTable table;
        ASSERT_EQ(Fg_LutFileParser().getLutFromFile(path(), &table, "[red]"), 0);
        EXPECT_EQ((std::vector{table.id, table.nrOfElements, table.format, table.number}), row.keys)
            << row.file;
        EXPECT_EQ(table.elements(), std::vector<std::uint32_t>(row.keys[1])) << row.file;
    }
    fill("a='Error'\nb=0.5x\n");
    Fg_LutFileParser parser;
    ASSERT_TRUE(parser.setOpenFile(path(), false));
    int number = 1;
    double fraction = 0;
    EXPECT_EQ(parser.parseIntKey("a", &number, "='"), -1);
    EXPECT_EQ(parser.parseDoubleKey("b", &fraction, "="), 0);
    EXPECT_EQ(fraction, 0.5);
    EXPECT_STREQ(parser.parseKeyFromLine("c", "=").data(), "Error");
}

TEST_F(LutFile, GivesWhatItHasToAnyKindOfTable) {
    fill("[red]\n0,10;\n1,1.5;\n[green]\n0,20;\n[blue]\n0,-0.25;\n");
    Fg_LutFileParser parser;
    KneeTable red(2), green(2), blue(1);
    ASSERT_EQ(parser.getLutFromFile(path(), &red, &green, &blue), 0);
    EXPECT_EQ(red.elements(), (std::vector{10.0, 1.5}));
    EXPECT_EQ(green.elements(), (std::vector{20.0, 0.0}));
    EXPECT_EQ(blue.elements(), std::vector{-0.25});

    ASSERT_TRUE(parser.setOpenFile(path(), true));
    std::vector<std::uint32_t> words(3, 7);
    std::vector<double> fractions(3, 7);
    EXPECT_EQ(parser.parseIntInt(words, ',', "[red]"), 0);
    EXPECT_EQ(words, (std::vector<std::uint32_t>{10, 1, 7}));
    EXPECT_EQ(parser.parseIntDouble(fractions, ',', "[red]"), 0);
    EXPECT_EQ(fractions, (std::vector{10.0, 1.5, 7.0}));
    int matrix = 7;
    EXPECT_EQ(parser.getMatrixFromFile(path(), &matrix, 1), -1);
    EXPECT_EQ(matrix, 7);
    EXPECT_TRUE(parser.checkFileType("of any name"));
}

TEST_F(LutFile, IsRefusedOnlyForArgumentsThatLackSomething) {
    IntTable table, other, third;
    std::uint32_t* const green = other.lut;
    EXPECT_EQ(Fg_LutFileParser().getLutFromFile(nullptr, &table, &other, &third), -1);
    EXPECT_EQ(table.lut, nullptr) << "the first table ends the load";
    EXPECT_EQ(other.lut, green);
    EXPECT_NE(third.lut, nullptr);
    EXPECT_EQ(Fg_LutFileParser().saveLutToFile(nullptr, &table), -1);
    EXPECT_EQ(Fg_LutFileParser().saveMatrixToFile(nullptr, "", nullptr, 0), -1);
    EXPECT_FALSE(Fg_LutFileParser().checkFileExist(nullptr));
    EXPECT_FALSE(Fg_LutFileParser().setSaveFile(m_folder.c_str()));

    fill("kept");
    const LookupTable_s withoutElements{nullptr, 0, 1, 0, 0};
    EXPECT_EQ(Fg_LutFileParser().saveLutToFile(path(), &withoutElements), -1);
    EXPECT_EQ(Fg_LutFileParser().saveLutToFile(path(), &table, nullptr, &table), -1);
    EXPECT_EQ(Fg_LutFileParser().getLutFromFile(path(), &table, nullptr), -1);
    EXPECT_EQ(bytes(), "kept");
}

} // namespace
