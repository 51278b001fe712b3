// Parts of the HTTP interface that need no station.

#include "applet_tools/pictures/region.h"
#include "serve/http/protocol/Guard.h"
#include "serve/http/protocol/Query.h"
#include "serve/http/state/EventHub.h"
#include "serve/live/CommandThread.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

using applet_tools::OwnedPicture;
using applet_tools::PictureRegion;

/** Grey pixels with these values, line by line. */
OwnedPicture greyPicture(std::uint32_t width, std::uint32_t bits, const std::vector<std::uint16_t>& values) {
    OwnedPicture picture{width, static_cast<std::uint32_t>(values.size()) / width, bits};
    for (const std::uint16_t value : values)
        for (int colour = 0; colour < 3; ++colour) {
            picture.bytes.push_back(static_cast<std::uint8_t>(value & 0xff));
            if (bits > 8) picture.bytes.push_back(static_cast<std::uint8_t>(value >> 8));
        }
    return picture;
}

std::vector<int> greys(const OwnedPicture& picture) {
    std::vector<int> values;
    for (std::uint32_t y = 0; y < picture.lines; ++y)
        for (std::uint32_t x = 0; x < picture.width; ++x)
            values.push_back(pixelAt(picture.view(), x, y).green);
    return values;
}

TEST(Region, IsReducedToTheMeansOfBoxes) {
    const OwnedPicture picture = greyPicture(4, 8, {0, 10, 20, 30, 2, 12, 22, 32, 100, 100, 200, 255});
    struct Row {
        PictureRegion region;
        std::uint32_t width, lines;
        std::vector<int> expected;
    };
    const Row rows[] = {{{0, 0, 4, 3}, 4, 3, {0, 10, 20, 30, 2, 12, 22, 32, 100, 100, 200, 255}},
                        {{1, 1, 2, 2}, 2, 2, {12, 22, 100, 200}},
                        {{0, 0, 4, 2}, 2, 1, {6, 26}},
                        {{0, 0, 4, 3}, 1, 2, {15, 90}}, // one line, then two
                        {{1, 0, 3, 1}, 2, 1, {10, 25}}};
    for (const Row& row : rows)
        EXPECT_EQ(greys(scaledDown(picture.view(), row.region, row.width, row.lines)), row.expected);
    const OwnedPicture wide = greyPicture(2, 16, {0xffff, 0x0001});
    EXPECT_EQ(greys(scaledDown(wide.view(), {0, 0, 2, 1}, 1, 1)), std::vector<int>{0x8000});
    EXPECT_FALSE(isWithin({1, 0, 0xffffffff, 1}, picture.view()));
    EXPECT_FALSE(isWithin({0, 0, 4, 0}, picture.view()));
}

TEST(Guard, AcceptsOnlyItsOwnNames) {
    struct Row {
        const char *host, *origin;
        bool isLocal, isRemote; /**< whether it is served on the loopback, and with --listen */
    };
    const Row rows[] = {{"127.0.0.1:8042", "", true, true},
                        {"LOCALHOST", "http://localhost", true, true},
                        {"[::1]:80", "http://[::1]:80", true, true},
                        {"[::1]:80", "https://[::1]:80", false, false},
                        {"localhost:1", "http://localhost:2", false, false},
                        {"127.0.0.1.evil.example", "", false, false},
                        {"127.evil", "", false, false},
                        {"localhost.evil.example:80", "", false, false},
                        {"localhost:80@evil", "", false, false},
                        {"[::1", "", false, false},
                        {"", "", false, false},
                        {"10.0.0.5:8042", "", false, true},
                        {"Desk:8042", "http://desk:8042", false, true},
                        {"desk.example", "", false, false}};
    const serve::Guard local("token", false, {"desk"}), remote("token", true, {"DESK"});
    for (const Row& row : rows) {
        serve::HttpRequest request;
        request.host = row.host;
        request.origin = row.origin;
        EXPECT_EQ(local.isFromHere(request), row.isLocal) << row.host;
        EXPECT_EQ(remote.isFromHere(request), row.isRemote) << row.host;
    }
    EXPECT_NE(serve::randomToken(), serve::randomToken());
}

TEST(CommandThread, ExecutesOnlyReadsDuringPauses) {
    using namespace std::chrono_literals;
    std::atomic<int> woken = 0;
    serve::CommandThread commands([&] { ++woken; });
    commands.setCommand("grab 1000");
    std::string busy;
    std::thread setter([&] {
        try {
            commands.run(serve::Work::changes, [] {});
        } catch (const serve::Busy& error) {
            busy = error.what();
        }
    });
    int read = 0;
    std::thread reader([&] { read = commands.run(serve::Work::reads, [] { return 7; }); });
    while (woken < 2)
        std::this_thread::sleep_for(1ms);
    commands.runPending(true);
    reader.join();
    EXPECT_EQ(read, 7);
    setter.join();
    EXPECT_NE(busy.find("'grab 1000'"), std::string::npos) << busy;
    bool isDone = false;
    commands.post(serve::Work::changes, [&] { isDone = true; });
    commands.runPending(false);
    EXPECT_TRUE(isDone); // and the one that gave up is gone
    commands.close();
    EXPECT_THROW(commands.run(serve::Work::reads, [] {}), serve::Busy);
}

TEST(EventHub, SlowListenersMissTheOldestEvents) {
    serve::EventHub hub;
    const serve::EventHub::Listener listener(hub);
    std::uint64_t position = hub.end();
    for (int i = 0; i < 5000; ++i)
        hub.publish("count", i);
    const auto messages = hub.wait(position, {});
    ASSERT_LT(messages.size(), 5000U);
    EXPECT_EQ(*messages.back(), "event: count\ndata: 4999\n\n");
    EXPECT_TRUE(hub.wait(position, {}).empty());
}

} // namespace
