/** The data stream module: buffers, and the pictures written to them. */
#ifndef PRODUCER_MODULES_STREAM_H
#define PRODUCER_MODULES_STREAM_H

#include "modules/LocalDevice.h"
#include "modules/Module.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>

namespace producer {

/**
 * States of a buffer: announced; queued in the input pool; being filled; in the output queue, which is also the
 * queue of the new buffer event; owned by the client once it is fetched. The functions of the buffers are
 * thread-safe, and return INVALID_HANDLE once the stream is closed.
 *
 * A call that moves a buffer that is being filled waits until it is full, which takes milliseconds.
 */
class Stream final : public Module, PictureSink {
public:
    Stream(std::shared_ptr<LocalDevice> parent, std::shared_ptr<OpenDevice> device, const std::string& id);
    ~Stream() override;

    LocalDevice& device() const { return *m_parent; }

    /** Uses the client's memory, or allocates memory if that is null. */
    void* announce(void* memory, std::size_t size, void* user);
    struct Revoked {
        void* memory; /**< null if the stream had allocated it */
        void* user;
    };
    /** Throws BUSY while the buffer is queued or being filled. */
    Revoked revoke(void* buffer);
    /** Throws RESOURCE_IN_USE if it is queued already. */
    void queue(void* buffer);
    void flush(std::int32_t operation);
    /** Throws INVALID_INDEX. */
    void* bufferAt(std::uint32_t index);
    Answer bufferInfo(void* buffer, std::int32_t command);
    /** Throws INVALID_HANDLE. */
    void requireBuffer(void* buffer);

    void start(std::int32_t flags, std::uint64_t count);
    void stop(std::int32_t flags);
    Answer info(std::int32_t command);

    /** Waits until no picture is being written. Takes the lock of the modules itself; does nothing the second time. */
    void close() override;

private:
    struct Buffer {
        std::unique_ptr<std::uint8_t[]> own; // null for memory of the client
        std::span<std::uint8_t> memory;
        void* user = nullptr;
        bool isInput = false;
        bool hasPicture = false;
        bool isNew = false; // since it was queued
        Picture picture{};
    };
    using Buffers = std::map<void*, Buffer>; // in the order of their announcement
    using Lock = std::unique_lock<std::mutex>;

    // PictureSink
    std::size_t room() override;
    std::optional<std::span<std::uint8_t>> begin() override;
    void end(const Picture& picture) override;
    void lose(const std::string& reason) override;

    std::vector<Feature> makeFeatures() override;
    Lock lockOpen();
    Buffer& at(void* buffer);
    bool isInOutput(void* buffer) const;
    void waitForFilled(Lock& lock);
    void toInput(Buffers::value_type& buffer);
    void toOutput(const Buffers::value_type& buffer);
    /** Empties the input queue; its buffers are then in no queue. */
    std::deque<Buffers::value_type*> takeInput();
    void unqueuedToInput();
    void flushQueues(std::int32_t operation);
    std::uint64_t number(std::int32_t command);
    Answer pictureInfo(const Buffer& buffer, std::int32_t command) const;

    const std::shared_ptr<LocalDevice> m_parent;
    const std::shared_ptr<OpenDevice> m_device;
    const std::shared_ptr<EventQueue> m_output;

    std::mutex m_mutex; // guards the members below
    std::condition_variable m_isFull;
    bool m_isClosed = false;
    Buffers m_buffers;
    std::deque<Buffers::value_type*> m_input;
    Buffers::value_type* m_filling = nullptr;
    bool m_isStarted = false;
    std::uint64_t m_left = 0; // buffers until the end of the acquisition; GENTL_INFINITE: it has none
    std::uint64_t m_delivered = 0;
    std::uint64_t m_lost = 0;
};

} // namespace producer

#endif
