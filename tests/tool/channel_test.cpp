// Clients of a station's channel that send garbage, vanish or do not read: the station and its other clients do not notice.

#include "serve/StationLocation.h"
#include "serve/local_socket.h"
#include "station_channel/ChannelSocket.h"
#include "station_channel/SharedMemory.h"
#include "support/appletctl_program.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iterator>
#include <memory>
#include <thread>
#include <vector>

namespace {

using namespace station_channel;
using namespace std::chrono_literals;
using appletctl_program::run;

constexpr int patience = 60'000; // milliseconds: only what hangs takes so long

/** A client that says what a test wants it to say. */
struct Client {
    explicit Client(bool greets = true)
        : socket(serve::connectAt(serve::locationOf("line").channel, SOCK_SEQPACKET)) {
        EXPECT_TRUE(!greets || std::holds_alternative<Done>(ask(Hello())));
    }

    void tell(const Request& request, std::uint32_t number = 0) {
        socket.send(encoded(ToStation{number, request}), ChannelSocket::Wait::forRoom);
    }
    /** Passes over pictures; a refusal at the end of the connection. */
    Answer ask(const Request& request) {
        tell(request, 1);
        while (const auto packet = receive()) {
            ToClient message = answerFrom(packet->bytes);
            if (message.number == 1) return std::move(message.answer);
        }
        return Refusal{};
    }
    std::optional<Packet> receive() {
        return socket.waitReadable(patience) ? socket.receive() : std::nullopt;
    }
    bool isDropped() {
        while (socket.waitReadable(patience))
            if (!socket.receive()) return true;
        return false;
    }
    /** The numbers of the next pictures. */
    std::vector<std::uint64_t> pictures(std::uint64_t count) {
        std::vector<std::uint64_t> numbers;
        tell(Accept{m_received, count});
        while (numbers.size() < count) {
            auto packet = receive();
            if (!packet) break;
            const ToClient message = answerFrom(packet->bytes);
            const auto* picture = std::get_if<Picture>(&message.answer);
            if (picture == nullptr) continue;
            const SharedMemory memory(std::move(packet->descriptor), picture->size);
            numbers.push_back(picture->number);
            tell(Accept{++m_received, count - numbers.size()});
        }
        return numbers;
    }

    ChannelSocket socket;

private:
    std::uint64_t m_received = 0;
};

class Channel : public testing::Test {
protected:
    Channel() { setenv("XDG_RUNTIME_DIR", (m_folder / "").c_str(), 1); }
    ~Channel() override {
        run({"station", "stop", "line"});
        unsetenv("XDG_RUNTIME_DIR");
    }
    void serve(const appletctl_program::Words& words) {
        appletctl_program::Words all = {"serve",
                                        "line",
                                        "--detach",
                                        "--no-http",
                                        "FG_CAMERASIMULATOR_ENABLE=1",
                                        "FG_CAMERASIMULATOR_TRIGGER_MODE=8",
                                        "FG_WIDTH=64",
                                        "FG_HEIGHT=16"};
        all.insert(all.end(), words.begin(), words.end());
        all.insert(all.begin(), "--json");
        const auto outcome = run(all);
        ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
        process = nlohmann::json::parse(outcome.out).at("process");
    }
    /** Open files of the station. */
    std::size_t descriptors() const {
        const std::filesystem::directory_iterator files("/proc/" + std::to_string(process) + "/fd");
        return static_cast<std::size_t>(std::distance(files, std::filesystem::directory_iterator()));
    }

    pid_t process = 0;

private:
    support::TemporaryFolder m_folder;
};

TEST_F(Channel, WhatIsNoRequestEndsTheConnection) {
    serve({"--clock", "stepped"});
    Client good;
    const Bytes hello = encoded(ToStation{1, Hello()});
    struct Row {
        const char* what;
        bool greets;
        Bytes bytes;
    };
    const Row rows[] = {
        {"another version", false, encoded(ToStation{1, Hello{protocolVersion + 1}})},
        {"no greeting", false, encoded(ToStation{1, ReadTime()})},
        {"an unknown request", true, {1, 0, 0, 0, 200}},
        {"half a greeting", false, {hello.begin(), hello.end() - 1}},
        {"more than a greeting", false, Bytes(hello.size() + 1, 0)},
        {"a text that is longer than the message", true, {1, 0, 0, 0, 2, 255, 255, 255, 255, 'F'}},
        {"a message that is too long", true, Bytes(mostBytes + 1, 1)},
    };
    for (const Row& row : rows) {
        Client bad(row.greets);
        EXPECT_TRUE(bad.socket.send(row.bytes, ChannelSocket::Wait::forRoom)) << row.what;
        EXPECT_TRUE(bad.isDropped()) << row.what;
    }
    for (const Request& request : {Request(ReadValue{"FG_NONE"}), Request(ReadState{std::string(1000, 'F')}),
                                   Request(WriteValue{"FG_WIDTH", std::int64_t{8}})})
        EXPECT_TRUE(std::holds_alternative<Refusal>(good.ask(request)));
    EXPECT_EQ(std::get<applet_host::Value>(good.ask(ReadValue{"FG_WIDTH"})),
              applet_host::Value(std::int64_t{64}));
}

TEST_F(Channel, ValuesOfTheWrongKindAreRefused) {
    serve({"--clock", "stepped", "--allow-set"});
    Client client;
    using applet_host::Value;
    const std::pair<const char*, Value> rows[] = {{"FG_WIDTH", std::string("64")},
                                                  {"FG_WIDTH", 64.0},
                                                  {"FG_WIDTH", std::int64_t{-1}},
                                                  {"FG_LINEEXPOSURE", std::int64_t{20}},
                                                  {"FG_DEBUGFILE", 1.0},
                                                  {"FG_LUT_VALUE_RED", std::vector<std::uint32_t>(3)},
                                                  {"FG_LUT_SAVE_FILE", std::string("file")}};
    for (const auto& [parameter, value] : rows)
        EXPECT_TRUE(std::holds_alternative<Refusal>(client.ask(WriteValue{parameter, value}))) << parameter;
    EXPECT_TRUE(std::holds_alternative<Done>(client.ask(WriteValue{"FG_WIDTH", std::int64_t{128}})));
}

TEST_F(Channel, ClientsThatVanishOrDoNotReadAreNotNoticed) {
    serve({"--factor", "0.1"}); // a picture in 32 ms
    Client good;
    good.ask(Start());
    EXPECT_EQ(good.pictures(3).size(), 3U);
    Client deaf; // wants all pictures and events, and reads nothing
    deaf.tell(Start(), 2);
    deaf.tell(Accept{0, 1'000'000});
    deaf.tell(WantEvents{~std::uint64_t{0}});
    const auto vanish = [] {
        Client client;
        client.tell(Start(), 2);
        client.tell(Accept{0, 1'000'000});
        client.tell(ReadValue{"FG_LUT_VALUE_RED"}, 3);
    };
    for (int i = 0; i < 20; ++i) // more than can be connected at a time
        vanish();
    EXPECT_EQ(good.pictures(5).size(), 5U);
    const std::size_t before = descriptors();
    for (int i = 0; i < 20; ++i) {
        vanish();
        good.pictures(1);
    }
    // A connection is closed soon after its client is gone; kept pictures have a file each, up to a number.
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(patience);
    while (descriptors() > before + 32 && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(10ms);
    EXPECT_LE(descriptors(), before + 32);
    const auto numbers = good.pictures(5);
    EXPECT_TRUE(std::ranges::is_sorted(numbers) && numbers.size() == 5);
    EXPECT_EQ(run({"--station", "line", "get", "FG_WIDTH"}).exitCode, 0);
}

TEST_F(Channel, OneClientMoreThanAStationServesIsToldSo) {
    serve({"--clock", "stepped"});
    constexpr int most = 16;
    std::vector<std::unique_ptr<Client>> clients;
    for (int i = 0; i < most; ++i)
        clients.push_back(std::make_unique<Client>());
    Client late(false);
    const Answer answer = late.ask(Hello());
    const auto* const refusal = std::get_if<Refusal>(&answer);
    ASSERT_NE(refusal, nullptr);
    EXPECT_EQ(refusal->reason, Reason::busy);
    EXPECT_NE(refusal->text.find("16 clients"), std::string::npos) << refusal->text;
    clients.pop_back();
    EXPECT_TRUE(std::holds_alternative<Time>(Client().ask(ReadTime())));
}

TEST_F(Channel, ClientsOfOneStationGetThePicturesThatTheyAccept) {
    serve({"--clock", "stepped"});
    Client first, second;
    EXPECT_EQ(std::get<Started>(first.ask(Start())).picture, 0U);
    EXPECT_EQ(first.pictures(3), (std::vector<std::uint64_t>{1, 2, 3}));
    EXPECT_EQ(std::get<Started>(second.ask(Start())).picture, 3U);
    EXPECT_EQ(second.pictures(2), (std::vector<std::uint64_t>{4, 5}));
    first.tell(Stop());
    EXPECT_TRUE(std::holds_alternative<Started>(first.ask(Start())));
    EXPECT_EQ(second.pictures(2), (std::vector<std::uint64_t>{6, 7}));
    EXPECT_EQ(second.pictures(500).size(), 500U); // as fast as they come
}

} // namespace
