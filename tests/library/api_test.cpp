// The exported functions as such: forwarding, shading, widths, temporary files.

#include "support/every_call.h"
#include "support/temporary_folder.h"

#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace {

using namespace support;

using Api = AppletTest;

TEST_F(Api, ForwardersReturnTheRuntimesResultAndStoreItsLastError) {
    Grabber grabber(0);
    Fg_Struct* const fg = grabber.fg();
    // An acquisition of this many pictures starts in the runtime: the arguments arrive.
    const std::int64_t far = 5'000'000'000;
    EXPECT_EQ(applet.Fg_AcquireEx(fg, 0, far, 0, nullptr), 0);
    EXPECT_EQ(applet.Fg_getLastPicNumberEx(fg, 0, nullptr), 1);
    EXPECT_EQ(applet.Fg_getLastPicNumberBlockingEx(fg, far, 0, 1, nullptr), far);
    EXPECT_EQ(applet.Fg_getStatusEx(fg, 0, 0, 0, nullptr), far);

    board.last_error(grabber.device, -2010);
    for (const Forwarder& forwarder : forwarders()) {
        SCOPED_TRACE(forwarder.name);
        const auto answered = [&](std::int64_t answer) {
            board.answer(grabber.device, forwarder.name, answer);
            const std::int64_t result = forwarder.call(fg);
            return std::pair(result, grabber.lastError());
        };
        EXPECT_EQ(answered(-3), std::pair(std::int64_t{-3}, -2010));
        EXPECT_EQ(answered(7), std::pair(std::int64_t{7}, 0));
        if (forwarder.wide) {
            // The upper half matters, for the value and for its sign.
            EXPECT_EQ(answered(0x1'8000'0001), std::pair(std::int64_t{0x1'8000'0001}, 0));
            EXPECT_EQ(answered(-0x1'0000'0000), std::pair(std::int64_t{-0x1'0000'0000}, -2010));
        } else {
            EXPECT_EQ(answered(0x1'8000'0001), std::pair(std::int64_t{-0x7fff'ffff}, -2010));
        }
    }
}

TEST_F(Api, ParameterDefinesTheWidthButATypedGetClearsALongWordFirst) {
    Grabber grabber(0);
    constexpr auto ones = ~std::uint64_t{0};
    for (const int tag : {1, 2, 3, 4, 5, 4096}) {
        const bool cleared = tag == 3 || tag == 4;
        std::uint64_t word = ones;
        EXPECT_EQ(grabber.get(12345, &word, 0, tag), FG_ERR_INVALID_ARGUMENT);
        EXPECT_EQ(word, cleared ? 0 : ones) << "tag " << tag;
        word = ones;
        EXPECT_EQ(grabber.get(FG_WIDTH, &word, 0, tag), 0);
        EXPECT_EQ(word, cleared ? 1024 : 0xffffffff'00000400) << "tag " << tag;
    }
    // A floating point 2.0 read as a 32-bit word is 0: its bits count, not its value.
    EXPECT_EQ(grabber.set(FG_TIMEOUT, 2.0), FG_ERR_OUT_OF_RANGE);
    EXPECT_EQ(grabber.set(FG_TIMEOUT, std::uint64_t{0xffffffff'00000003}), 0);
    EXPECT_EQ(grabber.set(FG_LINEEXPOSURE, 20.0, 0, FG_PARAM_UINT32), 0);
    EXPECT_EQ(grabber.value<double>(FG_LINEEXPOSURE), 20.0);
}

TEST_F(Api, TemporaryFileNames) {
    const TemporaryFolder folder;
    const std::string wanted = folder / "coef-XXXXXX.tiff";
    for (int round = 0; round < 2; ++round) {
        std::string name = wanted;
        const int file = applet.mkstemps(name.data(), 5);
        ASSERT_GE(file, 0);
        EXPECT_EQ(fcntl(file, F_GETFL) & O_ACCMODE, O_RDWR);
        close(file);
        EXPECT_EQ(std::filesystem::status(name).permissions(), std::filesystem::perms(0600));
        name.replace(wanted.size() - 11, 6, "XXXXXX");
        EXPECT_EQ(name, wanted) << "only the six characters are filled in";
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / ""), {}), 2);

    const std::pair<std::string, int> refused[] = {
        {"abc", 0}, {"XXXXXX", 1}, {"", 0}, {"aXXXXXXb", 0}, {"aXXXXXX", -1}, {"aXXXXXX.c", 2147483647}};
    for (const auto& [pattern, suffix] : refused) {
        std::string name = pattern;
        EXPECT_EQ(applet.mkstemps(name.data(), suffix), -1) << pattern;
        EXPECT_EQ(name, pattern);
    }
    EXPECT_EQ(applet.mkstemps(nullptr, 0), -1);
    // The shortest pattern is only the six placeholders. If no attempt succeeds, the pattern is emptied.
    std::string gone = folder / "gone";
    std::filesystem::create_directory(gone);
    std::filesystem::current_path(gone);
    std::filesystem::remove(gone);
    std::string nowhere = "XXXXXX";
    EXPECT_EQ(applet.mkstemps(nowhere.data(), 0), -1);
    EXPECT_EQ(nowhere[0], '\0');
    std::filesystem::current_path("/");
}

} // namespace
