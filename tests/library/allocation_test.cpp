// Routed access to a number does not allocate, a load allocates nothing per line, and neither a load nor a
// buffer for long texts uses more memory than needed.

#include "support/applet_fixture.h"
#include "support/counted_malloc.h"
#include "support/temporary_folder.h"

#include <fstream>
#include <malloc.h>

namespace {

using namespace support;

class Allocation : public AppletTest {
protected:
    void SetUp() override {
        if (!mallocIsCounted) GTEST_SKIP() << "the sanitizer owns malloc";
        board.log_kinds(m_grabber.device, 0); // the board's own log would count
        m_grabber.bringUp();
    }
    /** Allocations of a call; a first call outside the count makes one-time allocations. */
    template <typename Call> static long countOf(Call call) {
        call();
        const long before = allocations();
        call();
        return allocations() - before;
    }
    /** Peak growth of the process during a call, in MiB. */
    template <typename Call> static long growthDuring(Call call) {
        malloc_trim(0);
        std::ofstream("/proc/self/clear_refs") << 5; // the peak is the present size
        const long before = peakInMiB();
        call();
        return peakInMiB() - before;
    }
    /** A file of the applet: the header and these lines. */
    static std::string configuration(std::size_t lines, const std::string& line) {
        std::string text =
            "[Kamerasektion]\nHersteller=1;\nTyp='Grab_TwinLaneLineColor';\nAktivePort=0;\n[Port A]\n";
        for (std::size_t i = 0; i < lines; ++i)
            text += line;
        return text;
    }
    int load(const std::string& path) { return applet.Fg_loadConfig(m_grabber.fg(), path.c_str()); }

    const TemporaryFolder m_folder;
    const std::string m_file = m_folder / "state.mcf";
    Grabber m_grabber;

private:
    static long peakInMiB() {
        for (const std::string& line : fileLines("/proc/self/status"))
            if (line.starts_with("VmHWM:")) return std::stol(line.substr(6)) / 1024;
        return 0;
    }
};

TEST_F(Allocation, RoutedNumberAccessDoesNotAllocate) {
    std::uint32_t word = 0;
    double number = 0;
    for (const int id : {FG_WIDTH, FG_HEIGHT, FG_VANTAGEPOINT, FG_LINETRIGGERMODE, FG_EXSYNCON, FG_TIMEOUT}) {
        EXPECT_EQ(countOf([&] { m_grabber.get(id, &word); }), 0) << "get " << id;
        EXPECT_EQ(countOf([&] { EXPECT_EQ(m_grabber.set(id, word), 0); }), 0) << "set " << id;
    }
    for (const int id : {FG_LINEPERIODE, FG_LINEEXPOSURE, FG_LINETRIGGERDELAY}) {
        EXPECT_EQ(countOf([&] { m_grabber.get(id, &number, 0, FG_PARAM_DOUBLE); }), 0) << "get " << id;
        EXPECT_EQ(countOf([&] { EXPECT_EQ(m_grabber.set(id, number), 0); }), 0) << "set " << id;
    }
    // Bottom right needs reads as well.
    ASSERT_EQ(m_grabber.set(FG_VANTAGEPOINT, 3u), 0);
    EXPECT_EQ(countOf([&] { EXPECT_EQ(m_grabber.set(FG_HEIGHT, 512u), 0); }), 0);
    EXPECT_EQ(countOf([&] { m_grabber.get(FG_NR_OF_PROCESSES, &word); }), 0);
    // Returning a text allocates it: this shows that the library's allocations are counted.
    EXPECT_GE(countOf([&] {
                  alignas(8) char buffer[64] = "FG_WIDTH";
                  m_grabber.get(FG_PARAM_DESCR, buffer, 0, FG_PARAM_ALLOCATED_STRING);
              }),
              1);
}

TEST_F(Allocation, LoadOfALongerFileDoesNotAllocateMore) {
    const auto countOfALoad = [&](std::size_t lines, const std::string& line) {
        writeFile(m_file, configuration(lines, line));
        return countOf([&] { load(m_file); });
    };
    for (const char* line : {"FG_WIDTH=512;\n", "an unknown key, and a long one=1;\n"})
        EXPECT_EQ(countOfALoad(10000, line), countOfALoad(10, line)) << line;
    writeFile(m_file, configuration(200'000, std::string(159, 'k') + '\n')); // 30 MiB
    EXPECT_LT(growthDuring([&] { load(m_file); }), 4);
}

TEST_F(Allocation, BufferForLongTextsIsNotAllocatedInAdvance) {
    Grabber grabber;
    char text[64] = "?";
    const long growth = growthDuring([&] {
        EXPECT_EQ(grabber.bringUp().error, FG_OK); // reads texts of the design
        EXPECT_EQ(grabber.get(FG_DEBUGFILE, text, 0, FG_PARAM_TEXT), FG_OK);
    });
    EXPECT_STREQ(text, "");
    EXPECT_LT(growth, 8) << "the room is 16 MiB";
}

} // namespace
