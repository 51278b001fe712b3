// Lookup tables in files, byte by byte, and the arguments of a load. The fuzz target lut compares the lenient
// reader with the C library for arbitrary files.

#include "files/Fg_LutFileParser.h"

#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

namespace {

constexpr std::uint32_t fromBefore = 77;

/** A record from a caller, with old elements, and its contents after a load. */
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
    const char* path() const { return m_path.c_str(); }
    void fill(const std::string& bytes) const { support::writeFile(m_path, bytes); }
    std::string bytes() const { return support::fileBytes(m_path); }

    const support::TemporaryFolder folder;
    const std::string m_path = folder / "table.any";
};

TEST_F(LutFile, IsWrittenByteForByte) {
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
    // Each line is written before the next one.
    ASSERT_TRUE(parser.setSaveFile(path()));
    parser.writeDoubleKey("gain", 3999.9999999999995, '=');
    EXPECT_EQ(bytes(), "gain=4000;\n");
    parser.writeLutFileValue(std::string(200, 'k'), std::string(200, 'v'), '=');
    EXPECT_EQ(bytes().substr(11), std::string(200, 'k') + "=" + std::string(55, 'v') + ";\n");
}

TEST_F(LutFile, ElementCountIsLimitedByTheFileSize) {
    for (const auto& [count, size, expected] :
         {std::tuple{"-1", 20u, 1u << 20}, {"1073741824", 6000000u, 2000000u}}) {
        fill(std::string("nrOfElements=") + count + ";\n");
        std::filesystem::resize_file(m_path, size);
        IntTable table;
        ASSERT_EQ(Fg_LutFileParser().getLutFromFile(path(), &table, "[red]"), 0);
        EXPECT_EQ(table.elements(), std::vector<std::uint32_t>(expected));
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

TEST_F(LutFile, FillsAnyKindOfTable) {
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

TEST_F(LutFile, IsRefusedOnlyForMissingArguments) {
    IntTable table, other, third;
    std::uint32_t* const green = other.lut;
    EXPECT_EQ(Fg_LutFileParser().getLutFromFile(nullptr, &table, &other, &third), -1);
    EXPECT_EQ(table.lut, nullptr) << "the first table ends the load";
    EXPECT_EQ(other.lut, green);
    EXPECT_NE(third.lut, nullptr);
    EXPECT_EQ(Fg_LutFileParser().saveLutToFile(nullptr, &table), -1);
    EXPECT_EQ(Fg_LutFileParser().saveMatrixToFile(nullptr, "", nullptr, 0), -1);
    EXPECT_FALSE(Fg_LutFileParser().checkFileExist(nullptr));
    EXPECT_FALSE(Fg_LutFileParser().setSaveFile((folder / "").c_str()));

    fill("kept");
    const LookupTable_s withoutElements{nullptr, 0, 1, 0, 0};
    EXPECT_EQ(Fg_LutFileParser().saveLutToFile(path(), &withoutElements), -1);
    EXPECT_EQ(Fg_LutFileParser().saveLutToFile(path(), &table, nullptr, &table), -1);
    EXPECT_EQ(Fg_LutFileParser().getLutFromFile(path(), &table, nullptr), -1);
    EXPECT_EQ(bytes(), "kept");
}

} // namespace
