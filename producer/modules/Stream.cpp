#include "modules/Stream.h"

#include "base/Error.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

namespace producer {
namespace {

constexpr const char* streamInformation = "StreamInformation";
constexpr const char* control = "BufferHandlingControl";
constexpr std::uint64_t fewestBuffers = 1;
constexpr std::size_t mostBytes = std::size_t{1} << 46; // of a buffer

std::string newBufferEvent(void* handle, void* user) {
    const EVENT_NEW_BUFFER_DATA data{handle, user};
    return {reinterpret_cast<const char*>(&data), sizeof data};
}

bool isOf(const std::string& event, void* handle) {
    return std::memcmp(event.data(), &handle, sizeof handle) == 0;
}

} // namespace

Stream::Stream(std::shared_ptr<LocalDevice> parent, std::shared_ptr<OpenDevice> device, const std::string& id)
    : Module("TLDataStream", "TLDataStream", id)
    , m_parent(std::move(parent))
    , m_device(std::move(device))
    , m_output(std::make_shared<EventQueue>(EVENT_NEW_BUFFER, sizeof(EVENT_NEW_BUFFER_DATA), true)) {
    offerEvent(m_output);
    m_device->acquisition().attach(this);
}

Stream::~Stream() = default;

Stream::Lock Stream::lockOpen() {
    Lock lock(m_mutex);
    if (m_isClosed) throw Error(GC_ERR_INVALID_HANDLE, "the stream was closed");
    return lock;
}

Stream::Buffer& Stream::at(void* buffer) {
    const auto found = m_buffers.find(buffer);
    if (found != m_buffers.end()) return found->second;
    throw Error(GC_ERR_INVALID_HANDLE, "the handle is not that of a buffer that is announced to this stream");
}

void Stream::requireBuffer(void* buffer) {
    const Lock lock = lockOpen();
    at(buffer);
}

bool Stream::isInOutput(void* buffer) const {
    return m_output->has([buffer](const std::string& event) { return isOf(event, buffer); });
}

void Stream::waitForFilled(Lock& lock) {
    m_isFull.wait(lock, [this] { return m_filling == nullptr; });
    if (m_isClosed) throw Error(GC_ERR_INVALID_HANDLE, "the stream was closed");
}

void* Stream::announce(void* memory, std::size_t size, void* user) {
    if (size == 0) throw Error(GC_ERR_INVALID_PARAMETER, "a buffer has at least one byte");
    if (size > mostBytes) throw Error(GC_ERR_OUT_OF_MEMORY, "no machine has so much memory");
    Buffer buffer;
    buffer.user = user;
    if (memory == nullptr) buffer.own = std::make_unique_for_overwrite<std::uint8_t[]>(size);
    buffer.memory = {memory == nullptr ? buffer.own.get() : static_cast<std::uint8_t*>(memory), size};
    const Lock lock = lockOpen();
    const auto isSame = [&](const auto& other) { return other.second.memory.data() == buffer.memory.data(); };
    if (std::ranges::any_of(m_buffers, isSame))
        throw Error(GC_ERR_RESOURCE_IN_USE, "the memory is announced to this stream already");
    void* const handle = HandleTable::newHandle();
    m_buffers.emplace(handle, std::move(buffer));
    return handle;
}

Stream::Revoked Stream::revoke(void* handle) {
    const Lock lock = lockOpen();
    const Buffer& buffer = at(handle);
    const bool isFilling = m_filling != nullptr && m_filling->first == handle;
    if (buffer.isInput || isFilling || isInOutput(handle))
        throw Error(GC_ERR_BUSY, "the buffer is queued: fetch it or flush the queues first");
    const Revoked revoked{buffer.own != nullptr ? nullptr : buffer.memory.data(), buffer.user};
    m_buffers.erase(handle);
    return revoked;
}

void Stream::toInput(Buffers::value_type& buffer) {
    buffer.second.isInput = true;
    buffer.second.isNew = false;
    m_input.push_back(&buffer);
}

void Stream::toOutput(const Buffers::value_type& buffer) {
    m_output->push(newBufferEvent(buffer.first, buffer.second.user));
}

void Stream::queue(void* handle) {
    {
        const Lock lock = lockOpen();
        const Buffer& buffer = at(handle);
        const bool isFilling = m_filling != nullptr && m_filling->first == handle;
        if (buffer.isInput || isFilling || isInOutput(handle))
            throw Error(GC_ERR_RESOURCE_IN_USE, "the buffer is queued already");
        toInput(*m_buffers.find(handle));
    }
    m_device->acquisition().wake();
}

std::deque<Stream::Buffers::value_type*> Stream::takeInput() {
    for (Buffers::value_type* buffer : m_input)
        buffer->second.isInput = false;
    return std::exchange(m_input, {});
}

void Stream::unqueuedToInput() {
    for (Buffers::value_type& buffer : m_buffers)
        if (!buffer.second.isInput && !isInOutput(buffer.first)) toInput(buffer);
}

void Stream::flushQueues(std::int32_t operation) {
    switch (operation) {
    case ACQ_QUEUE_INPUT_TO_OUTPUT:
        for (const Buffers::value_type* buffer : takeInput())
            toOutput(*buffer);
        break;
    case ACQ_QUEUE_OUTPUT_DISCARD:
        m_output->flush();
        break;
    case ACQ_QUEUE_ALL_TO_INPUT: // in the order of their announcement
        m_output->flush();
        takeInput();
        unqueuedToInput();
        break;
    case ACQ_QUEUE_UNQUEUED_TO_INPUT:
        unqueuedToInput();
        break;
    case ACQ_QUEUE_ALL_DISCARD:
        m_output->flush();
        takeInput();
        break;
    default:
        throw Error(GC_ERR_INVALID_PARAMETER, "there is no flush of number " + std::to_string(operation));
    }
}

void Stream::flush(std::int32_t operation) {
    {
        Lock lock = lockOpen();
        waitForFilled(lock);
        flushQueues(operation);
    }
    m_device->acquisition().wake();
}

void* Stream::bufferAt(std::uint32_t index) {
    const Lock lock = lockOpen();
    if (index < m_buffers.size()) return std::next(m_buffers.begin(), index)->first;
    throw Error(GC_ERR_INVALID_INDEX, "there is no buffer " + std::to_string(index) + ": " +
                                          std::to_string(m_buffers.size()) + " are announced");
}

void Stream::start(std::int32_t flags, std::uint64_t count) {
    if (flags != ACQ_START_FLAGS_DEFAULT || count == 0)
        throw Error(GC_ERR_INVALID_PARAMETER,
                    "an acquisition is started with the flags 0, for at least one buffer");
    {
        const Lock lock = lockOpen();
        if (m_isStarted) throw Error(GC_ERR_RESOURCE_IN_USE, "the stream is started already");
        m_isStarted = true;
        m_left = count;
        m_delivered = m_lost = 0;
    }
    m_device->acquisition().wake();
}

void Stream::stop(std::int32_t flags) {
    if (flags != ACQ_STOP_FLAGS_DEFAULT && flags != ACQ_STOP_FLAGS_KILL)
        throw Error(GC_ERR_INVALID_PARAMETER, "an acquisition is stopped with the flags 0 or 1");
    Lock lock = lockOpen();
    if (!m_isStarted) throw Error(GC_ERR_RESOURCE_IN_USE, "the stream is not started");
    m_isStarted = false;
    waitForFilled(lock);
}

std::size_t Stream::room() {
    const Lock lock(m_mutex);
    return m_isStarted ? std::min<std::uint64_t>(m_input.size(), m_left) : 0;
}

std::optional<std::span<std::uint8_t>> Stream::begin() {
    const Lock lock(m_mutex);
    if (!m_isStarted || m_left == 0 || m_input.empty()) return {};
    m_filling = m_input.front();
    m_input.pop_front();
    m_filling->second.isInput = false;
    return m_filling->second.memory;
}

void Stream::end(const Picture& picture) {
    const Lock lock(m_mutex);
    Buffers::value_type& filled = *std::exchange(m_filling, nullptr);
    filled.second.picture = picture;
    filled.second.hasPicture = filled.second.isNew = true;
    if (m_left != GENTL_INFINITE) --m_left;
    ++m_delivered;
    m_lost += picture.lostBefore;
    m_isFull.notify_all();
    toOutput(filled);
}

void Stream::lose(const std::string& reason) { m_output->end(reason); }

std::uint64_t Stream::number(std::int32_t command) {
    const Lock lock = lockOpen();
    switch (command) {
    case STREAM_INFO_NUM_DELIVERED:
        return m_delivered;
    case STREAM_INFO_NUM_UNDERRUN:
        return m_lost;
    case STREAM_INFO_NUM_ANNOUNCED:
        return m_buffers.size();
    case STREAM_INFO_NUM_QUEUED:
        return m_input.size();
    case STREAM_INFO_NUM_AWAIT_DELIVERY:
        return m_output->size();
    case STREAM_INFO_NUM_STARTED:
        return m_delivered + (m_filling != nullptr ? 1 : 0);
    default: // STREAM_INFO_IS_GRABBING
        return m_isStarted && m_left > 0 ? 1 : 0;
    }
}

Answer Stream::info(std::int32_t command) {
    switch (command) {
    case STREAM_INFO_ID:
        return Answer::text(id());
    case STREAM_INFO_NUM_DELIVERED:
    case STREAM_INFO_NUM_UNDERRUN:
    case STREAM_INFO_NUM_STARTED:
        return Answer::uint64(number(command));
    case STREAM_INFO_NUM_ANNOUNCED:
    case STREAM_INFO_NUM_QUEUED:
    case STREAM_INFO_NUM_AWAIT_DELIVERY:
        return Answer::size(number(command));
    case STREAM_INFO_PAYLOAD_SIZE:
        return Answer::size(m_device->acquisition().geometry().bytes());
    case STREAM_INFO_IS_GRABBING:
        return Answer::flag(number(command) != 0);
    case STREAM_INFO_DEFINES_PAYLOADSIZE:
        return Answer::flag(true);
    case STREAM_INFO_TLTYPE:
        return Answer::text(transportType);
    case STREAM_INFO_NUM_CHUNKS_MAX:
        return Answer::size(0);
    case STREAM_INFO_BUF_ANNOUNCE_MIN:
        return Answer::size(fewestBuffers);
    case STREAM_INFO_BUF_ALIGNMENT:
        return Answer::size(1);
    default:
        refuseCommand("a stream", command);
    }
}

Answer Stream::bufferInfo(void* handle, std::int32_t command) {
    const Lock lock = lockOpen();
    const Buffer& buffer = at(handle);
    const bool isFilling = m_filling != nullptr && m_filling->first == handle;
    switch (command) {
    case BUFFER_INFO_BASE:
        return Answer::pointer(buffer.memory.data());
    case BUFFER_INFO_SIZE:
        return Answer::size(buffer.memory.size());
    case BUFFER_INFO_USER_PTR:
        return Answer::pointer(buffer.user);
    case BUFFER_INFO_NEW_DATA:
        return Answer::flag(buffer.isNew);
    case BUFFER_INFO_IS_QUEUED:
        return Answer::flag(buffer.isInput || isFilling || isInOutput(handle));
    case BUFFER_INFO_IS_ACQUIRING:
        return Answer::flag(isFilling);
    case BUFFER_INFO_TLTYPE:
        return Answer::text(transportType);
    case BUFFER_INFO_IMAGEPRESENT:
        return Answer::flag(buffer.hasPicture);
    case BUFFER_INFO_PAYLOADTYPE:
        return Answer::size(buffer.hasPicture ? PAYLOAD_TYPE_IMAGE : PAYLOAD_TYPE_UNKNOWN);
    case BUFFER_INFO_IS_INCOMPLETE:
    case BUFFER_INFO_DATA_LARGER_THAN_BUFFER:
        return Answer::flag(buffer.hasPicture && buffer.picture.isCut);
    case BUFFER_INFO_CONTAINS_CHUNKDATA:
    case BUFFER_INFO_IS_COMPOSITE:
        return Answer::flag(false);
    case BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE:
    case BUFFER_INFO_CHUNKLAYOUTID:
    case BUFFER_INFO_FILENAME:
        refuseForNow("a buffer has an image, and neither chunks nor a file");
    default:
        return pictureInfo(buffer, command);
    }
}

Answer Stream::pictureInfo(const Buffer& buffer, std::int32_t command) const {
    if (command < 0 || command > BUFFER_INFO_IS_COMPOSITE) refuseCommand("a buffer", command);
    if (!buffer.hasPicture) refuseForNow("the buffer has had no picture yet");
    const Picture& picture = buffer.picture;
    const Geometry& geometry = picture.geometry;
    switch (command) {
    case BUFFER_INFO_TIMESTAMP:
    case BUFFER_INFO_TIMESTAMP_NS:
        return Answer::uint64(picture.nanoseconds);
    case BUFFER_INFO_SIZE_FILLED:
    case BUFFER_INFO_DATA_SIZE:
        return Answer::size(picture.written);
    case BUFFER_INFO_WIDTH:
        return Answer::size(geometry.width);
    case BUFFER_INFO_HEIGHT:
        return Answer::size(geometry.height);
    case BUFFER_INFO_XOFFSET:
        return Answer::size(geometry.x);
    case BUFFER_INFO_YOFFSET:
        return Answer::size(geometry.y);
    case BUFFER_INFO_FRAMEID:
        return Answer::uint64(picture.number);
    case BUFFER_INFO_PIXELFORMAT:
        return Answer::uint64(geometry.format->code);
    case BUFFER_INFO_PIXELFORMAT_NAMESPACE:
        return Answer::uint64(PIXELFORMAT_NAMESPACE_PFNC_32BIT);
    case BUFFER_INFO_DELIVERED_IMAGEHEIGHT:
        return Answer::size(picture.lines);
    case BUFFER_INFO_PIXEL_ENDIANNESS:
        return Answer::int32(PIXELENDIANNESS_LITTLE);
    default: // paddings and the offset of the image
        return Answer::size(0);
    }
}

void Stream::close() {
    m_device->acquisition().attach(nullptr);
    {
        const Lock lock(m_mutex);
        if (std::exchange(m_isClosed, true)) return;
        m_isStarted = false;
        m_input.clear();
        m_buffers.clear();
        m_isFull.notify_all();
    }
    m_output->flush();
    const std::lock_guard lock(lockOfModules());
    Module::close();
    m_parent->forget(*this);
}

std::vector<Feature> Stream::makeFeatures() {
    const auto count = [this](const char* name, std::int32_t command) {
        return numberFeature(streamInformation, name, [this, command] { return number(command); });
    };
    Feature isGrabbing{
        .name = "StreamIsGrabbing", .category = streamInformation, .kind = Feature::Kind::boolean};
    isGrabbing.get = [this] { return static_cast<std::int64_t>(number(STREAM_INFO_IS_GRABBING)); };
    return {textFeature(streamInformation, "StreamID", id()),
            wordFeature(streamInformation, "StreamType", transportType),
            count("StreamAnnouncedBufferCount", STREAM_INFO_NUM_ANNOUNCED),
            count("StreamDeliveredFrameCount", STREAM_INFO_NUM_DELIVERED),
            count("StreamLostFrameCount", STREAM_INFO_NUM_UNDERRUN),
            count("StreamInputBufferCount", STREAM_INFO_NUM_QUEUED),
            count("StreamOutputBufferCount", STREAM_INFO_NUM_AWAIT_DELIVERY),
            isGrabbing,
            numberFeature(control, "StreamAnnounceBufferMinimum", [] { return fewestBuffers; }),
            wordFeature(control, "StreamAcquisitionModeSelector", "Default"),
            wordFeature(control, "StreamBufferHandlingMode", "Default")};
}

} // namespace producer
