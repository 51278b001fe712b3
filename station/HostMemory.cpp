#include "station/HostMemory.h"

#include <algorithm>
#include <new>
#include <utility>

namespace station {

HostMemory::HostMemory(std::size_t frames, std::uint64_t frameBytes, Kind kind)
    : m_frames(std::max(frames, std::size_t{1}))
    , m_frameBytes(frameBytes)
    , m_kind(kind) {}

void HostMemory::remove(std::map<std::int64_t, Picture>::iterator picture) {
    if (!picture->second.bytes.empty() && m_spare.size() < 2)
        m_spare.push_back(std::move(picture->second.bytes));
    m_pictures.erase(picture);
}

void HostMemory::deliver(std::shared_ptr<const Record> record) {
    while (m_kind == Kind::ring && !m_pictures.empty() && m_pictures.size() >= m_frames)
        remove(m_pictures.begin());
    const std::int64_t picture = record->picture;
    m_pictures[picture].record = std::move(record);
}

void HostMemory::clear() {
    m_pictures.clear();
    m_spare.clear();
}

std::shared_ptr<const Record> HostMemory::record(std::int64_t picture) const {
    const auto found = m_pictures.find(picture);
    return found != m_pictures.end() ? found->second.record : nullptr;
}

HostMemory::Result HostMemory::bytes(std::int64_t picture, std::span<const std::uint8_t>& bytes) {
    const auto found = m_pictures.find(picture);
    if (found == m_pictures.end()) return Result::gone;
    Picture& place = found->second;
    const std::uint64_t size = place.record->bytes();
    if (size > m_frameBytes) return Result::tooLarge;
    if (place.bytes.size() < size) {
        if (!m_spare.empty()) {
            place.bytes = std::move(m_spare.back());
            m_spare.pop_back();
        }
        try {
            place.bytes.resize(size);
        } catch (const std::bad_alloc&) {
            return Result::noMemory;
        }
        m_renderer.render(*place.record, place.bytes);
    }
    bytes = std::span(place.bytes).first(size);
    return Result::ok;
}

bool HostMemory::release(std::int64_t picture) {
    const auto found = m_pictures.find(picture);
    if (found == m_pictures.end()) return false;
    remove(found);
    return true;
}

} // namespace station
