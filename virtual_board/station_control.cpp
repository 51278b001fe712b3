// The control functions of the station.

#include "virtual_board.h"

#include "Board.h"
#include "BoardStation.h"

#include <algorithm>
#include <vector>

using namespace vboard;

namespace {

int known(bool isKnown) { return isKnown ? VBOARD_OK : VBOARD_UNKNOWN; }

int connect(LOOMdevice* board, unsigned input, const station::Wave& wave,
            std::size_t second = station::inputCount) {
    if (board == nullptr) return VBOARD_UNKNOWN;
    const MutexLock lock(board->mutex());
    return known(board->station().station().connect(input, wave, second));
}

} // namespace

uint64_t vboard_now(LOOMdevice* board) {
    if (board == nullptr) return 0;
    const MutexLock lock(board->mutex());
    return board->station().station().now();
}

uint64_t vboard_advance(LOOMdevice* board, uint64_t ticks) {
    if (board == nullptr) return 0;
    const MutexLock lock(board->mutex());
    const std::uint64_t now = board->station().advance(ticks);
    board->publishAcquisition();
    return now;
}

int vboard_wave_level(LOOMdevice* board, unsigned input, bool level) {
    return connect(board, input, station::Wave::constant(level));
}

int vboard_wave_square(LOOMdevice* board, unsigned input, uint64_t rise, uint64_t period, uint64_t high) {
    return connect(board, input, station::Wave::square(rise, period, high));
}

int vboard_wave_edges(LOOMdevice* board, unsigned input, bool level, const vboard_edge* edges, size_t count) {
    std::vector<station::Edge> copied;
    for (std::size_t i = 0; edges != nullptr && i < count; ++i)
        copied.push_back({edges[i].tick, edges[i].level});
    return connect(board, input, station::Wave::edges(level, copied));
}

int vboard_wave_encoder(LOOMdevice* board, unsigned inputA, unsigned inputB, const vboard_speed* pieces,
                        size_t count) {
    if (board == nullptr || inputB >= station::inputCount || inputA == inputB) return VBOARD_UNKNOWN;
    std::vector<station::SpeedPiece> copied;
    for (std::size_t i = 0; pieces != nullptr && i < count; ++i)
        copied.push_back({pieces[i].ticks, pieces[i].from, pieces[i].to});
    const MutexLock lock(board->mutex());
    station::Station& station = board->station().station();
    return known(station.connect(inputA, station::Wave::encoder(station.from(), std::move(copied)), inputB));
}

void vboard_dma_rate(LOOMdevice* board, uint64_t bytesPerSecond) {
    if (board == nullptr) return;
    const MutexLock lock(board->mutex());
    board->station().station().setDmaRate(bytesPerSecond);
}

vboard_frames* vboard_memory(LOOMdevice* board, size_t frames, uint64_t bytes, int kind) {
    if (board == nullptr || frames == 0) return nullptr;
    using Kind = station::HostMemory::Kind;
    const Kind its = kind == VBOARD_BLOCKING ? Kind::blocking : Kind::ring;
    auto* memory = new vboard_frames{*board, std::make_shared<station::HostMemory>(frames, bytes, its)};
    board->hold();
    const MutexLock lock(board->mutex());
    board->addMemory(*memory);
    return memory;
}

void vboard_memory_free(vboard_frames* memory) {
    if (memory == nullptr) return;
    Board& board = memory->board;
    {
        const MutexLock lock(board.mutex());
        board.removeMemory(*memory);
        delete memory;
    }
    board.release();
}

int64_t vboard_wait(LOOMdevice* board, int64_t picture, uint64_t ticks) {
    if (board == nullptr) return VBOARD_UNKNOWN;
    const MutexLock lock(board->mutex());
    const std::int64_t result = board->station().waitForPicture(picture, ticks);
    board->publishAcquisition();
    return result;
}

int vboard_frame(vboard_frames* memory, int64_t picture, vboard_record* record) {
    if (memory == nullptr || record == nullptr) return VBOARD_UNKNOWN;
    const MutexLock lock(memory->board.mutex());
    std::span<const std::uint8_t> bytes;
    switch (memory->memory->bytes(picture, bytes)) {
    case station::HostMemory::Result::ok:
        break;
    case station::HostMemory::Result::tooLarge:
        return VBOARD_TOO_SMALL;
    case station::HostMemory::Result::gone:
    case station::HostMemory::Result::noMemory:
        return VBOARD_GONE;
    }
    const auto found = memory->memory->record(picture);
    *record = {.data = bytes.data(),
               .size = bytes.size(),
               .picture = picture,
               .lost_before = found->lostBefore,
               .trigger = found->trigger,
               .encoder = found->encoder,
               .first_line = found->firstLine,
               .last_line = found->lastLine,
               .arrival = found->arrival,
               .width = found->settings->xLength,
               .lines = found->lines,
               .bits = found->settings->colours.outBits,
               .bytes_per_line = static_cast<std::uint32_t>(found->layout.bytesPerLine),
               .is_short = found->isShort,
               .is_narrow = found->isNarrow};
    return VBOARD_OK;
}

int vboard_release(vboard_frames* memory, int64_t picture) {
    if (memory == nullptr) return VBOARD_UNKNOWN;
    const MutexLock lock(memory->board.mutex());
    if (!memory->memory->release(picture)) return VBOARD_GONE;
    memory->board.station().station().resume();
    return VBOARD_OK;
}

int vboard_next_event(LOOMdevice* board, vboard_event* event) {
    if (board == nullptr || event == nullptr) return VBOARD_UNKNOWN;
    const MutexLock lock(board->mutex());
    const auto next = board->station().station().nextEvent();
    if (!next) return VBOARD_GONE;
    *event = {next->tick, station::nameOf(next->event)};
    return VBOARD_OK;
}

int64_t vboard_signals(LOOMdevice* board, unsigned select, uint64_t from, uint64_t to, vboard_edge* edges,
                       size_t size, bool* level) {
    if (board == nullptr || select >= station::signalCount) return VBOARD_UNKNOWN;
    const MutexLock lock(board->mutex());
    const station::Trace trace =
        board->station().station().trace(static_cast<std::uint8_t>(select), from, to);
    if (level != nullptr) *level = trace.level;
    for (std::size_t i = 0; edges != nullptr && i < std::min(size, trace.edges.size()); ++i)
        edges[i] = {trace.edges[i].tick, trace.edges[i].level};
    if (!trace.complete) return VBOARD_GONE;
    return static_cast<std::int64_t>(trace.edges.size());
}

int vboard_inject(LOOMdevice* board, int point, uint32_t width, uint32_t height, const uint16_t* components) {
    if (board == nullptr || components == nullptr || point < VBOARD_CAMERA || point > VBOARD_OUTPUT)
        return VBOARD_UNKNOWN;
    station::Raster raster{static_cast<station::Raster::Point>(point), width, height};
    if (!raster.hasSoundSize()) return VBOARD_UNKNOWN;
    raster.components.assign(components, components + std::size_t{3} * width * height);
    const MutexLock lock(board->mutex());
    return known(board->station().station().inject(std::make_shared<station::Raster>(std::move(raster))));
}
