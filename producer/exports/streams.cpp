// Exported: data streams and their buffers.

#include "exports/call.h"
#include "modules/Stream.h"

using namespace producer;

namespace {

std::shared_ptr<Stream> streamOf(void* handle) { return HandleTable::find<Stream>(handle, "a data stream"); }

[[noreturn]] void refuseParts() {
    throw Error(GC_ERR_NO_DATA, "a buffer has one image, and neither chunks nor parts");
}

/** Commands of version 1.6 that are not implemented. */
GC_ERROR notImplemented() {
    return call([] { throw Error(GC_ERR_NOT_IMPLEMENTED, "the producer has version 1.5 of the interface"); });
}

} // namespace

GC_ERROR DSAnnounceBuffer(DS_HANDLE stream, void* memory, size_t size, void* user, BUFFER_HANDLE* buffer) {
    return call([=] {
        const auto streamModule = streamOf(stream);
        required(static_cast<char*>(memory), "memory");
        void*& handle = required(buffer, "buffer");
        handle = streamModule->announce(memory, size, user);
    });
}

GC_ERROR DSAllocAndAnnounceBuffer(DS_HANDLE stream, size_t size, void* user, BUFFER_HANDLE* buffer) {
    return call([=] {
        const auto streamModule = streamOf(stream);
        void*& handle = required(buffer, "buffer");
        handle = streamModule->announce(nullptr, size, user);
    });
}

GC_ERROR DSQueueBuffer(DS_HANDLE stream, BUFFER_HANDLE buffer) {
    return call([=] { streamOf(stream)->queue(buffer); });
}

GC_ERROR DSFlushQueue(DS_HANDLE stream, int32_t operation) {
    return call([=] { streamOf(stream)->flush(operation); });
}

GC_ERROR DSRevokeBuffer(DS_HANDLE stream, BUFFER_HANDLE buffer, void** memory, void** user) {
    return call([=] {
        const Stream::Revoked revoked = streamOf(stream)->revoke(buffer);
        if (memory != nullptr) *memory = revoked.memory;
        if (user != nullptr) *user = revoked.user;
    });
}

GC_ERROR DSStartAcquisition(DS_HANDLE stream, int32_t flags, uint64_t count) {
    return call([=] { streamOf(stream)->start(flags, count); });
}

GC_ERROR DSStopAcquisition(DS_HANDLE stream, int32_t flags) {
    return call([=] { streamOf(stream)->stop(flags); });
}

GC_ERROR DSGetInfo(DS_HANDLE stream, int32_t command, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return call([=] { InfoOutput{type, buffer, size}.put(streamOf(stream)->info(command)); });
}

GC_ERROR DSGetBufferID(DS_HANDLE stream, uint32_t index, BUFFER_HANDLE* buffer) {
    return call([=] {
        const auto streamModule = streamOf(stream);
        void*& handle = required(buffer, "buffer");
        handle = streamModule->bufferAt(index);
    });
}

GC_ERROR DSGetBufferInfo(DS_HANDLE stream, BUFFER_HANDLE buffer, int32_t command, INFO_DATATYPE* type,
                         void* destination, size_t* size) {
    return call([=] {
        InfoOutput{type, destination, size}.put(streamOf(stream)->bufferInfo(buffer, command));
    });
}

GC_ERROR DSGetBufferChunkData(DS_HANDLE stream, BUFFER_HANDLE buffer, SINGLE_CHUNK_DATA*, size_t* count) {
    return call([=] {
        streamOf(stream)->requireBuffer(buffer);
        required(count, "count");
        refuseParts();
    });
}

GC_ERROR DSGetNumBufferParts(DS_HANDLE stream, BUFFER_HANDLE buffer, uint32_t* count) {
    return call([=] {
        streamOf(stream)->requireBuffer(buffer);
        required(count, "count");
        refuseParts();
    });
}

GC_ERROR DSGetBufferPartInfo(DS_HANDLE stream, BUFFER_HANDLE buffer, uint32_t, int32_t, INFO_DATATYPE* type,
                             void*, size_t* size) {
    return call([=] {
        streamOf(stream)->requireBuffer(buffer);
        InfoOutput{type, nullptr, size}.check();
        refuseParts();
    });
}

GC_ERROR DSClose(DS_HANDLE stream) {
    return call([=] { streamOf(stream)->close(); });
}

GC_ERROR DSGetParentDev(DS_HANDLE stream, DEV_HANDLE* device) {
    return callAlone([=] {
        const auto streamModule = streamOf(stream);
        required(device, "device") = streamModule->device().handle();
    });
}

GC_ERROR DSAnnounceCompositeBuffer(DS_HANDLE, size_t, void**, size_t*, void*, BUFFER_HANDLE*) {
    return notImplemented();
}
GC_ERROR DSGetBufferInfoStacked(DS_HANDLE, BUFFER_HANDLE, void*, size_t) { return notImplemented(); }
GC_ERROR DSGetBufferPartInfoStacked(DS_HANDLE, BUFFER_HANDLE, void*, size_t) { return notImplemented(); }
GC_ERROR DSGetNumFlows(DS_HANDLE, uint32_t*) { return notImplemented(); }
GC_ERROR DSGetFlowInfo(DS_HANDLE, uint32_t, int32_t, INFO_DATATYPE*, void*, size_t*) {
    return notImplemented();
}
GC_ERROR DSGetNumBufferSegments(DS_HANDLE, BUFFER_HANDLE, uint32_t*) { return notImplemented(); }
GC_ERROR DSGetBufferSegmentInfo(DS_HANDLE, BUFFER_HANDLE, uint32_t, int32_t, INFO_DATATYPE*, void*, size_t*) {
    return notImplemented();
}
