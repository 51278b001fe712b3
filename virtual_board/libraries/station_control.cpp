// The control functions of the station.

#include "virtual_board/virtual_board.h"

#include "virtual_board/libraries/StationCall.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

using namespace vboard;

namespace {

static_assert(VBOARD_KEPT_EDGES == station::History::capacity);
static_assert(VBOARD_FASTEST_ENCODER == station::Wave::fastestEncoder);
static_assert(VBOARD_LONGEST_PIECE == station::Wave::longestPiece);
static_assert(VBOARD_INPUTS == station::inputCount);
static_assert(VBOARD_TICKS_PER_SECOND == station::ticksPerSecond);

/** Connects the wave that `make` returns. */
template <typename Make> int connect(LOOMdevice* board, unsigned input, Make make) {
    return perform(board, [&](station::Station& station) { return known(station.connect(input, make())); });
}

vboard_record recordOf(const station::Record& record, std::span<const std::uint8_t> bytes) {
    return {.data = bytes.data(),
            .size = bytes.size(),
            .picture = record.picture,
            .lost_before = record.lostBefore,
            .trigger = record.trigger,
            .encoder = record.encoder,
            .first_line = record.firstLine,
            .last_line = record.lastLine,
            .arrival = record.arrival,
            .width = record.settings->xLength,
            .lines = record.lines,
            .bits = record.settings->colours.outBits,
            .bytes_per_line = static_cast<std::uint32_t>(record.layout.bytesPerLine),
            .is_short = record.isShort,
            .is_narrow = record.isNarrow};
}

int codeOf(station::HostMemory::Result result) {
    constexpr int codes[] = {VBOARD_OK, VBOARD_GONE, VBOARD_TOO_SMALL, VBOARD_NO_MEMORY};
    return codes[static_cast<std::size_t>(result)];
}

} // namespace

int vboard_clock(LOOMdevice* board, double factor) {
    const bool isSound =
        factor == 0 || (factor >= VBOARD_SLOWEST_CLOCK && factor <= VBOARD_FASTEST_CLOCK); // NaN is neither
    if (board == nullptr || !isSound) return VBOARD_UNKNOWN;
    return guarded(int{VBOARD_NO_MEMORY}, [&] {
        const StationLock lock(*board);
        board->station().setClock(factor);
        return int{VBOARD_OK};
    });
}

uint64_t vboard_now(LOOMdevice* board) {
    if (board == nullptr) return 0;
    return guarded(std::uint64_t{0}, [&] {
        const StationLock lock(*board);
        return board->station().station().now();
    });
}

uint64_t vboard_advance(LOOMdevice* board, uint64_t ticks) {
    if (board == nullptr) return 0;
    const std::uint64_t now = guarded(std::uint64_t{0}, [&] {
        const MutexLock lock(board->mutex());
        const std::uint64_t after = board->station().advance(ticks);
        board->publishAcquisition();
        return after;
    });
    return now > 0 ? now : vboard_now(board); // out of memory: the time that was reached
}

int vboard_wave_level(LOOMdevice* board, unsigned input, bool level) {
    return connect(board, input, [=] { return station::Wave::constant(level); });
}

int vboard_wave_square(LOOMdevice* board, unsigned input, uint64_t rise, uint64_t period, uint64_t high) {
    return connect(board, input, [=] { return station::Wave::square(rise, period, high); });
}

int vboard_wave_edges(LOOMdevice* board, unsigned input, bool level, const vboard_edge* edges, size_t count) {
    if (edges == nullptr && count > 0) return VBOARD_UNKNOWN;
    return connect(board, input, [=] {
        std::vector<station::Edge> copied;
        for (std::size_t i = 0; i < count; ++i)
            copied.push_back({edges[i].tick, edges[i].level});
        return station::Wave::edges(level, copied);
    });
}

int vboard_has_wave(LOOMdevice* board, unsigned input) {
    return perform(board, [=](station::Station& station) { return station.hasWave(input) ? 1 : 0; });
}

int vboard_wave_encoder(LOOMdevice* board, unsigned inputA, unsigned inputB, const vboard_speed* pieces,
                        size_t count) {
    if (inputB >= station::inputCount || inputA == inputB) return VBOARD_UNKNOWN;
    if (pieces == nullptr && count > 0) return VBOARD_UNKNOWN;
    return perform(board, [&](station::Station& station) {
        std::vector<station::SpeedPiece> copied;
        for (std::size_t i = 0; i < count; ++i)
            copied.push_back({pieces[i].ticks, pieces[i].from, pieces[i].to});
        if (!station::Wave::areWithin(copied, station::Wave::fastestEncoder)) return int{VBOARD_UNKNOWN};
        return known(station.connect(inputA, station::Wave::encoder(station.from(), copied), inputB));
    });
}

void vboard_dma_rate(LOOMdevice* board, uint64_t bytesPerSecond) {
    perform(board, [=](station::Station& station) {
        station.setDmaRate(bytesPerSecond);
        return VBOARD_OK;
    });
}

vboard_frames* vboard_memory(LOOMdevice* board, size_t frames, uint64_t bytes, int kind) {
    vboard_frames* const none = nullptr;
    if (board == nullptr || frames == 0) return none;
    return guarded(none, [&] {
        using Kind = station::HostMemory::Kind;
        const Kind memoryKind = kind == VBOARD_BLOCKING ? Kind::blocking : Kind::ring;
        std::unique_ptr<vboard_frames> memory(
            new vboard_frames{*board, std::make_shared<station::HostMemory>(frames, bytes, memoryKind)});
        const MutexLock lock(board->mutex());
        board->addMemory(*memory);
        board->hold();
        return memory.release();
    });
}

int vboard_memory_frames(vboard_frames* memory, size_t frames) {
    if (memory == nullptr) return VBOARD_UNKNOWN;
    return guarded(int{VBOARD_NO_MEMORY}, [&] {
        const StationLock lock(memory->board);
        memory->memory->setFrames(frames);
        memory->board.station().station().resume();
        return int{VBOARD_OK};
    });
}

void vboard_memory_free(vboard_frames* memory) {
    if (memory == nullptr) return;
    Board& board = memory->board;
    {
        const MutexLock lock(board.mutex());
        guarded([&]() REQUIRES(board.mutex()) { board.removeMemory(*memory); });
        delete memory;
    }
    board.release();
}

int64_t vboard_wait(LOOMdevice* board, int64_t picture, uint64_t ticks) {
    if (board == nullptr) return VBOARD_UNKNOWN;
    return guarded(std::int64_t{VBOARD_NO_MEMORY}, [&] {
        const MutexLock lock(board->mutex());
        board->followClock();
        return board->waitInStation(picture, ticks);
    });
}

int vboard_frame(vboard_frames* memory, int64_t picture, vboard_record* record) {
    if (memory == nullptr || record == nullptr) return VBOARD_UNKNOWN;
    using Memory = station::HostMemory;
    return guarded(int{VBOARD_NO_MEMORY}, [&] {
        Memory::Drawing drawing;
        Memory::Result result = Memory::Result::gone;
        {
            const StationLock lock(memory->board);
            result = memory->memory->begin(picture, drawing);
        }
        if (result == Memory::Result::ok) result = Memory::draw(drawing); // without the lock
        const MutexLock lock(memory->board.mutex());
        std::span<const std::uint8_t> bytes;
        if (result == Memory::Result::ok) result = memory->memory->end(drawing, bytes);
        if (result == Memory::Result::ok) *record = recordOf(*drawing.record, bytes);
        drawing = {};
        return codeOf(result);
    });
}

int vboard_frame_into(vboard_frames* memory, int64_t picture, void* destination, uint64_t size,
                      vboard_record* record) {
    if (memory == nullptr || destination == nullptr || record == nullptr) return VBOARD_UNKNOWN;
    return guarded(int{VBOARD_NO_MEMORY}, [&] {
        std::shared_ptr<const station::Record> found;
        std::unique_ptr<station::Renderer> renderer;
        {
            const StationLock lock(memory->board);
            found = memory->memory->record(picture);
            if (found == nullptr) return int{VBOARD_GONE};
            renderer = memory->memory->takeRenderer();
        }
        const std::span<std::uint8_t> bytes(static_cast<std::uint8_t*>(destination),
                                            static_cast<std::size_t>(found->bytes()));
        *record = recordOf(*found, bytes);
        const bool fits = bytes.size() <= size;
        if (fits) renderer->render(*found, bytes); // without the lock
        const MutexLock lock(memory->board.mutex());
        memory->memory->giveBack(std::move(renderer));
        return fits ? int{VBOARD_OK} : int{VBOARD_TOO_SMALL};
    });
}

int vboard_release(vboard_frames* memory, int64_t picture) {
    if (memory == nullptr) return VBOARD_UNKNOWN;
    return guarded(int{VBOARD_NO_MEMORY}, [&] {
        const StationLock lock(memory->board);
        if (!memory->memory->release(picture)) return int{VBOARD_GONE};
        memory->board.station().station().resume();
        return int{VBOARD_OK};
    });
}

int vboard_next_event(LOOMdevice* board, vboard_event* event) {
    if (event == nullptr) return VBOARD_UNKNOWN;
    const int taken = vboard_next_events(board, event, 1);
    return taken == 1 ? VBOARD_OK : taken == 0 ? VBOARD_GONE : taken;
}

int vboard_next_events(LOOMdevice* board, vboard_event* events, size_t size) {
    if (events == nullptr) return VBOARD_UNKNOWN;
    return perform(board, [=](station::Station& station) {
        int taken = 0;
        while (std::cmp_less(taken, size)) {
            const auto next = station.nextEvent();
            if (!next) break;
            events[taken++] = {next->tick, station::nameOf(next->event)};
        }
        return taken;
    });
}

int64_t vboard_signals(LOOMdevice* board, unsigned select, uint64_t from, uint64_t to, vboard_edge* edges,
                       size_t size, bool* level) {
    if (select >= station::signalCount) return VBOARD_UNKNOWN;
    return perform(board, [=](station::Station& station) {
        const station::Trace trace = station.trace(static_cast<std::uint8_t>(select), from, to);
        if (level != nullptr) *level = trace.level;
        for (std::size_t i = 0; edges != nullptr && i < std::min(size, trace.edges.size()); ++i)
            edges[i] = {trace.edges[i].tick, trace.edges[i].level};
        return trace.complete ? static_cast<int>(trace.edges.size()) : int{VBOARD_GONE};
    });
}

int vboard_inject(LOOMdevice* board, int point, uint32_t width, uint32_t height, const uint16_t* components) {
    if (components == nullptr || point < VBOARD_CAMERA || point > VBOARD_OUTPUT) return VBOARD_UNKNOWN;
    const auto make = [=] {
        auto raster = std::make_shared<station::Raster>();
        raster->point = static_cast<station::Raster::Point>(point);
        raster->width = width;
        raster->height = height;
        if (station::ImageSize::isSound(width, height))
            raster->components.assign(components, components + std::size_t{3} * width * height);
        return raster;
    };
    return guarded(int{VBOARD_NO_MEMORY}, [&] {
        const std::shared_ptr<const station::Raster> raster = make();
        return perform(board, [&](station::Station& station) { return known(station.inject(raster)); });
    });
}

int vboard_insert_trouble(LOOMdevice* board, char* text, size_t size) {
    if (board == nullptr || text == nullptr) return VBOARD_UNKNOWN;
    return guarded(int{VBOARD_NO_MEMORY}, [&] {
        const StationLock lock(*board);
        const std::string trouble = board->insertTrouble();
        if (trouble.size() >= size) return int{VBOARD_TOO_SMALL};
        trouble.copy(text, trouble.size());
        text[trouble.size()] = '\0';
        return static_cast<int>(trouble.size());
    });
}
