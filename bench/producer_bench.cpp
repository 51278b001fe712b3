// Cost of a picture of the producer, 2048 x 1024 in BGR8, beside the board alone in the same run: the simulation of its lines, and
// the renderer. First from a queued buffer to its event, which has two changes of thread; then of a row of pictures with
// several buffers, as clients take them. Last the delay of events behind the clock.
//   producer_bench [INTERFACE]    such as station-main, for a station that appletctl serves with --clock stepped --allow-set

#include "applet_host/AppletHost.h"
#include "support/producer_session.h"

#include "vexo/fg_parameters.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using support::ok;
using support::ProducerSession;

constexpr std::uint32_t width = 2048, height = 1024;
constexpr std::size_t pictureBytes = std::size_t{3} * width * height;
constexpr int rounds = 60;
constexpr int rowBuffers = 4, rowPictures = 16;
constexpr std::uint64_t second = 125'000'000; // ticks

double milliseconds() {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

struct Times {
    std::vector<double> all;
    void add(double time) { all.push_back(time); }
    double least() const { return *std::ranges::min_element(all); }
    double median() {
        std::ranges::nth_element(all, all.begin() + static_cast<std::ptrdiff_t>(all.size() / 2));
        return all[all.size() / 2];
    }
};

/** The board without the producer, with the same settings. */
class Board {
public:
    Board() : m_session(m_host), m_bytes(pictureBytes) {
        set("FG_CAMERASIMULATOR_ENABLE", FG_CAMERASIMULATOR);
        set("FG_CAMERASIMULATOR_TRIGGER_MODE", RISING_EDGE_TRIGGERS_LINE);
        set("FG_WIDTH", width);
        set("FG_HEIGHT", height);
        m_host.board().log_kinds(m_session.device, 0);
        // The encoder and the light barrier of the producer's boards.
        const vboard_speed speed{1, 20'000, 20'000};
        m_host.board().wave_encoder(m_session.device, 1, 2, &speed, 1);
        m_host.board().wave_square(m_session.device, 0, second / 10, second / 2, second / 4);
        m_memory = m_host.board().memory(m_session.device, 1, pictureBytes, VBOARD_BLOCKING);
        m_host.applet().Fg_AcquireEx(m_session.fg(), 0, 0, 0, m_memory);
    }
    ~Board() { m_host.board().memory_free(m_memory); }
    Board(const Board&) = delete;
    Board& operator=(const Board&) = delete;

    void measure(Times& whole, Times& rendering) {
        const double start = milliseconds();
        const auto& board = m_host.board();
        ++m_picture;
        if (board.wait(m_session.device, m_picture, 10 * second) != m_picture)
            throw std::runtime_error("no picture came");
        const double arrival = milliseconds();
        vboard_record record{};
        board.frame_into(m_memory, m_picture, m_bytes.data(), m_bytes.size(), &record);
        board.release(m_memory, m_picture);
        whole.add(milliseconds() - start);
        rendering.add(milliseconds() - arrival);
    }

private:
    void set(const char* name, std::int32_t value) {
        const int id = m_host.applet().Fg_getParameterIdByName(m_session.fg(), name);
        m_host.applet().Fg_setParameterWithType(m_session.fg(), id, &value, 0, FG_PARAM_INT32);
    }

    applet_host::AppletHost m_host;
    applet_host::Session m_session;
    vboard_frames* m_memory = nullptr;
    std::int64_t m_picture = 0;
    std::vector<std::uint8_t> m_bytes;
};

BUFFER_HANDLE announced(ProducerSession& session, std::vector<std::uint8_t>& memory) {
    BUFFER_HANDLE buffer{};
    ok(DSAnnounceBuffer(session.stream, memory.data(), memory.size(), nullptr, &buffer));
    return buffer;
}

/** A row of pictures. All buffers are queued before, and none is after it. */
void takeRow(ProducerSession& session, const std::vector<BUFFER_HANDLE>& buffers) {
    for (const BUFFER_HANDLE buffer : buffers)
        ok(DSQueueBuffer(session.stream, buffer));
    for (int i = 0; i < rowPictures; ++i) {
        const BUFFER_HANDLE buffer = session.fetch();
        if (buffer == nullptr) throw std::runtime_error("no picture came");
        if (i < rowPictures - rowBuffers) ok(DSQueueBuffer(session.stream, buffer));
    }
}

void print(const char* what, Times& times) {
    std::printf("%-44s least %7.3f ms, median %7.3f ms\n", what, times.least(), times.median());
}

void printRatio(const char* what, Times& times, Times& base) {
    std::printf("%-44s least %7.3f    , median %7.3f\n", what, times.least() / base.least(),
                times.median() / base.median());
}

void comparePictures(const std::string& id) {
    setenv("VBOARD_CLOCK", "stepped", 1);
    ProducerSession session(id);
    ok(session.set("Width", width));
    ok(session.set("Height", height));
    std::vector<std::vector<std::uint8_t>> memory(rowBuffers, std::vector<std::uint8_t>(pictureBytes));
    std::vector<BUFFER_HANDLE> buffers;
    for (auto& bytes : memory)
        buffers.push_back(announced(session, bytes));
    session.start();
    Board board;
    Times single, row, whole, rendering;
    for (int i = 0; i < rounds; ++i) {
        double start = milliseconds();
        ok(DSQueueBuffer(session.stream, buffers[0]));
        if (session.fetch() == nullptr) throw std::runtime_error("no picture came");
        single.add(milliseconds() - start);
        board.measure(whole, rendering);
        start = milliseconds();
        takeRow(session, buffers);
        row.add((milliseconds() - start) / rowPictures);
    }
    print("picture of the producer, to its event", single);
    print("picture of the producer, in a row", row);
    print("picture of the board, simulated and rendered", whole);
    print("of which the renderer", rendering);
    printRatio("producer, to its event / board", single, whole);
    printRatio("producer, in a row / board", row, whole);
}

/** Small pictures come at fixed times of the station; how much later than the earliest one is each event? */
void measureDelay(const std::string& id) {
    setenv("VBOARD_CLOCK", "wall", 1);
    ProducerSession session(id);
    ok(session.set("Width", 64));
    ok(session.set("Height", 16));
    session.queueBuffers(16);
    session.start();
    Times delay;
    constexpr int count = 1000;
    for (int i = 0; i < count; ++i) {
        const BUFFER_HANDLE buffer = session.fetch();
        const double now = milliseconds();
        if (buffer == nullptr) throw std::runtime_error("no picture came");
        delay.add(now - static_cast<double>(session.bufferNumber(buffer, BUFFER_INFO_TIMESTAMP_NS)) / 1e6);
        ok(DSQueueBuffer(session.stream, buffer));
    }
    const double least = delay.least();
    const double median = delay.median();
    std::ranges::sort(delay.all);
    std::printf("%-44s median %6.3f ms, 99 %% %7.3f ms\n", "delay of an event behind the earliest",
                median - least, delay.all[count * 99 / 100] - least);
}

} // namespace

int main(int count, char** words) {
    try {
        const std::string id = count > 1 ? words[1] : support::interfaceId;
        comparePictures(id);
        if (id == support::interfaceId) measureDelay(id);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "producer_bench: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
