// A routed access of a number allocates nothing, a load nothing for each line.

#include "support/applet_fixture.h"
#include "support/counted_malloc.h"
#include "support/temporary_folder.h"

namespace {

using namespace support;

class Allocation : public AppletTest {
protected:
    void SetUp() override {
        if (!mallocIsCounted) GTEST_SKIP() << "the sanitizer owns malloc";
        board.log_kinds(m_grabber.device, 0); // the board's own log would count
        m_grabber.bringUp();
    }
    /** Allocations of a call; the first, uncounted one settles what is made once. */
    template <typename Call> static long countOf(Call call) {
        call();
        const long before = allocations();
        call();
        return allocations() - before;
    }
    Grabber m_grabber;
};

TEST_F(Allocation, NoneInARoutedAccessOfANumber) {
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
    // A text that is handed out is one: the library's allocations are seen here.
    EXPECT_GE(countOf([&] {
                  alignas(8) char place[64] = "FG_WIDTH";
                  m_grabber.get(FG_PARAM_DESCR, place, 0, FG_PARAM_ALLOCATED_STRING);
              }),
              1);
}

TEST_F(Allocation, OfALoadDoNotGrowWithTheFile) {
    const TemporaryFolder folder;
    const std::string path = folder / "state.mcf";
    const auto countOfALoad = [&](int lines, const std::string& line) {
        std::string text =
            "[Kamerasektion]\nHersteller=1;\nTyp='Grab_TwinLaneLineColor';\nAktivePort=0;\n[Port A]\n";
        for (int i = 0; i < lines; ++i)
            text += line;
        writeFile(path, text);
        return countOf([&] { applet.Fg_loadConfig(m_grabber.fg(), path.c_str()); });
    };
    for (const char* line : {"FG_WIDTH=512;\n", "a key of nobody, and a long one=1;\n"})
        EXPECT_EQ(countOfALoad(10000, line), countOfALoad(10, line)) << line;
}

} // namespace
