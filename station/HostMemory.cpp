#include "station/HostMemory.h"

#include <algorithm>
#include <new>
#include <utility>

namespace station {

void Pixels::draw(const Record& record, Renderer& renderer) {
    const std::lock_guard lock(m_mutex);
    if (m_isDrawn) return;
    m_bytes.resize(record.bytes());
    renderer.render(record, m_bytes);
    m_isDrawn = true;
}

HostMemory::HostMemory(std::size_t frames, std::uint64_t frameBytes, Kind kind)
    : m_frames(std::max(frames, std::size_t{1}))
    , m_frameBytes(frameBytes)
    , m_kind(kind) {
    m_spare.reserve(mostSpare);
    m_renderers.reserve(mostSpare);
}

void HostMemory::remove(std::map<std::int64_t, Picture>::iterator picture) {
    const std::shared_ptr<Pixels> pixels = std::move(picture->second.pixels);
    m_pictures.erase(picture);
    const bool isUnused = pixels.use_count() == 1; // no thread renders them, and no caller holds them
    if (isUnused && m_spare.size() < mostSpare) m_spare.push_back(pixels->takeRoom());
}

void HostMemory::deliver(std::shared_ptr<const Record> record) {
    while (m_kind == Kind::ring && !m_pictures.empty() && m_pictures.size() >= m_frames)
        remove(m_pictures.begin());
    const std::int64_t picture = record->picture;
    try {
        m_pictures[picture].record = std::move(record);
    } catch (const std::bad_alloc&) { // the picture is lost, as if it had been overwritten
    }
}

void HostMemory::clear() {
    m_pictures.clear();
    m_last.reset();
    m_spare.clear();
}

std::shared_ptr<const Record> HostMemory::record(std::int64_t picture) const {
    const auto found = m_pictures.find(picture);
    return found != m_pictures.end() ? found->second.record : nullptr;
}

std::unique_ptr<Renderer> HostMemory::takeRenderer() {
    if (m_renderers.empty()) return std::make_unique<Renderer>();
    std::unique_ptr<Renderer> renderer = std::move(m_renderers.back());
    m_renderers.pop_back();
    return renderer;
}

void HostMemory::giveBack(std::unique_ptr<Renderer> renderer) {
    if (m_renderers.size() < mostSpare) m_renderers.push_back(std::move(renderer));
}

HostMemory::Result HostMemory::begin(std::int64_t picture, Drawing& drawing) {
    const auto found = m_pictures.find(picture);
    if (found == m_pictures.end()) return Result::gone;
    Picture& entry = found->second;
    if (entry.record->bytes() > m_frameBytes) return Result::tooLarge;
    if (entry.pixels == nullptr) {
        std::vector<std::uint8_t> room;
        if (!m_spare.empty()) {
            room = std::move(m_spare.back());
            m_spare.pop_back();
        }
        entry.pixels = std::make_shared<Pixels>(std::move(room));
    }
    drawing.record = entry.record;
    drawing.pixels = entry.pixels;
    drawing.renderer = takeRenderer();
    return Result::ok;
}

HostMemory::Result HostMemory::draw(Drawing& drawing) {
    try {
        drawing.pixels->draw(*drawing.record, *drawing.renderer);
        return Result::ok;
    } catch (const std::bad_alloc&) {
        return Result::noMemory;
    }
}

HostMemory::Result HostMemory::end(Drawing& drawing, std::span<const std::uint8_t>& bytes) {
    giveBack(std::move(drawing.renderer));
    const auto found = m_pictures.find(drawing.record->picture);
    if (found == m_pictures.end() || found->second.pixels != drawing.pixels) return Result::gone;
    m_last = drawing.pixels;
    bytes = m_last->bytes();
    return Result::ok;
}

HostMemory::Result HostMemory::bytes(std::int64_t picture, std::span<const std::uint8_t>& bytes) {
    Drawing drawing;
    Result result = begin(picture, drawing);
    if (result == Result::ok) result = draw(drawing);
    return result == Result::ok ? end(drawing, bytes) : result;
}

bool HostMemory::release(std::int64_t picture) {
    const auto found = m_pictures.find(picture);
    if (found == m_pictures.end()) return false;
    if (m_last == found->second.pixels) m_last.reset();
    remove(found);
    return true;
}

} // namespace station
