/**
 * The GenTL interface, version 1.5 with the functions of 1.6, as far as this producer needs it.
 *
 * Names and numbers are those of the standard. Every function returns a GC_ERROR and is thread-safe.
 * C11 and C++20.
 */
#ifndef PRODUCER_GENTL_H
#define PRODUCER_GENTL_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

typedef int32_t GC_ERROR;
enum {
    GC_ERR_SUCCESS = 0,
    GC_ERR_ERROR = -1001,
    GC_ERR_NOT_INITIALIZED = -1002,
    GC_ERR_NOT_IMPLEMENTED = -1003,
    GC_ERR_RESOURCE_IN_USE = -1004,
    GC_ERR_ACCESS_DENIED = -1005,
    GC_ERR_INVALID_HANDLE = -1006,
    GC_ERR_INVALID_ID = -1007,
    GC_ERR_NO_DATA = -1008,
    GC_ERR_INVALID_PARAMETER = -1009,
    GC_ERR_IO = -1010,
    GC_ERR_TIMEOUT = -1011,
    GC_ERR_ABORT = -1012,
    GC_ERR_INVALID_BUFFER = -1013,
    GC_ERR_NOT_AVAILABLE = -1014,
    GC_ERR_INVALID_ADDRESS = -1015,
    GC_ERR_BUFFER_TOO_SMALL = -1016,
    GC_ERR_INVALID_INDEX = -1017,
    GC_ERR_PARSING_CHUNK_DATA = -1018,
    GC_ERR_INVALID_VALUE = -1019,
    GC_ERR_RESOURCE_EXHAUSTED = -1020,
    GC_ERR_OUT_OF_MEMORY = -1021,
    GC_ERR_BUSY = -1022,
    GC_ERR_AMBIGUOUS = -1023
};

typedef uint8_t bool8_t;
typedef void* TL_HANDLE;
typedef void* IF_HANDLE;
typedef void* DEV_HANDLE;
typedef void* DS_HANDLE;
typedef void* PORT_HANDLE;
typedef void* BUFFER_HANDLE;
typedef void* EVENT_HANDLE;
typedef void* EVENTSRC_HANDLE;

#define GENTL_INVALID_HANDLE NULL
#define GENTL_INFINITE UINT64_MAX /**< no timeout; no end of an acquisition */

/** What an info function answers. */
typedef int32_t INFO_DATATYPE;
enum {
    INFO_DATATYPE_UNKNOWN = 0,
    INFO_DATATYPE_STRING = 1, /**< including the terminating null */
    INFO_DATATYPE_STRINGLIST = 2,
    INFO_DATATYPE_INT16 = 3,
    INFO_DATATYPE_UINT16 = 4,
    INFO_DATATYPE_INT32 = 5,
    INFO_DATATYPE_UINT32 = 6,
    INFO_DATATYPE_INT64 = 7,
    INFO_DATATYPE_UINT64 = 8,
    INFO_DATATYPE_FLOAT64 = 9,
    INFO_DATATYPE_PTR = 10,
    INFO_DATATYPE_BOOL8 = 11,
    INFO_DATATYPE_SIZET = 12,
    INFO_DATATYPE_BUFFER = 13,
    INFO_DATATYPE_PTRDIFF = 14
};

enum { /* TLGetInfo, GCGetInfo */
       TL_INFO_ID = 0,
       TL_INFO_VENDOR = 1,
       TL_INFO_MODEL = 2,
       TL_INFO_VERSION = 3,
       TL_INFO_TLTYPE = 4,
       TL_INFO_NAME = 5, /**< file name of the producer */
       TL_INFO_PATHNAME = 6,
       TL_INFO_DISPLAYNAME = 7,
       TL_INFO_CHAR_ENCODING = 8, /**< int32: 0 ASCII, 1 UTF-8 */
       TL_INFO_GENTL_VER_MAJOR = 9,
       TL_INFO_GENTL_VER_MINOR = 10
};

enum { INTERFACE_INFO_ID = 0, INTERFACE_INFO_DISPLAYNAME = 1, INTERFACE_INFO_TLTYPE = 2 };

enum {
    DEVICE_INFO_ID = 0,
    DEVICE_INFO_VENDOR = 1,
    DEVICE_INFO_MODEL = 2,
    DEVICE_INFO_TLTYPE = 3,
    DEVICE_INFO_DISPLAYNAME = 4,
    DEVICE_INFO_ACCESS_STATUS = 5, /**< int32: DEVICE_ACCESS_STATUS_... */
    DEVICE_INFO_USER_DEFINED_NAME = 6,
    DEVICE_INFO_SERIAL_NUMBER = 7,
    DEVICE_INFO_VERSION = 8,
    DEVICE_INFO_TIMESTAMP_FREQUENCY = 9 /**< uint64: ticks per second */
};

enum {
    DEVICE_ACCESS_UNKNOWN = 0,
    DEVICE_ACCESS_NONE = 1,
    DEVICE_ACCESS_READONLY = 2,
    DEVICE_ACCESS_CONTROL = 3,
    DEVICE_ACCESS_EXCLUSIVE = 4
};

enum {
    DEVICE_ACCESS_STATUS_UNKNOWN = 0,
    DEVICE_ACCESS_STATUS_READWRITE = 1,
    DEVICE_ACCESS_STATUS_READONLY = 2,
    DEVICE_ACCESS_STATUS_NOACCESS = 3,
    DEVICE_ACCESS_STATUS_BUSY = 4,
    DEVICE_ACCESS_STATUS_OPEN_READWRITE = 5,
    DEVICE_ACCESS_STATUS_OPEN_READONLY = 6
};

enum {
    STREAM_INFO_ID = 0,
    STREAM_INFO_NUM_DELIVERED = 1,
    STREAM_INFO_NUM_UNDERRUN = 2,
    STREAM_INFO_NUM_ANNOUNCED = 3,
    STREAM_INFO_NUM_QUEUED = 4,
    STREAM_INFO_NUM_AWAIT_DELIVERY = 5,
    STREAM_INFO_NUM_STARTED = 6,
    STREAM_INFO_PAYLOAD_SIZE = 7,
    STREAM_INFO_IS_GRABBING = 8,
    STREAM_INFO_DEFINES_PAYLOADSIZE = 9,
    STREAM_INFO_TLTYPE = 10,
    STREAM_INFO_NUM_CHUNKS_MAX = 11,
    STREAM_INFO_BUF_ANNOUNCE_MIN = 12,
    STREAM_INFO_BUF_ALIGNMENT = 13
};

enum {
    BUFFER_INFO_BASE = 0,
    BUFFER_INFO_SIZE = 1,
    BUFFER_INFO_USER_PTR = 2,
    BUFFER_INFO_TIMESTAMP = 3,
    BUFFER_INFO_NEW_DATA = 4,
    BUFFER_INFO_IS_QUEUED = 5,
    BUFFER_INFO_IS_ACQUIRING = 6,
    BUFFER_INFO_IS_INCOMPLETE = 7,
    BUFFER_INFO_TLTYPE = 8,
    BUFFER_INFO_SIZE_FILLED = 9,
    BUFFER_INFO_WIDTH = 10,
    BUFFER_INFO_HEIGHT = 11,
    BUFFER_INFO_XOFFSET = 12,
    BUFFER_INFO_YOFFSET = 13,
    BUFFER_INFO_XPADDING = 14,
    BUFFER_INFO_YPADDING = 15,
    BUFFER_INFO_FRAMEID = 16,
    BUFFER_INFO_IMAGEPRESENT = 17,
    BUFFER_INFO_IMAGEOFFSET = 18,
    BUFFER_INFO_PAYLOADTYPE = 19,
    BUFFER_INFO_PIXELFORMAT = 20,
    BUFFER_INFO_PIXELFORMAT_NAMESPACE = 21,
    BUFFER_INFO_DELIVERED_IMAGEHEIGHT = 22,
    BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE = 23,
    BUFFER_INFO_CHUNKLAYOUTID = 24,
    BUFFER_INFO_FILENAME = 25,
    BUFFER_INFO_PIXEL_ENDIANNESS = 26,
    BUFFER_INFO_DATA_SIZE = 27,
    BUFFER_INFO_TIMESTAMP_NS = 28,
    BUFFER_INFO_DATA_LARGER_THAN_BUFFER = 29,
    BUFFER_INFO_CONTAINS_CHUNKDATA = 30,
    BUFFER_INFO_IS_COMPOSITE = 31
};

enum { PAYLOAD_TYPE_UNKNOWN = 0, PAYLOAD_TYPE_IMAGE = 1 };
enum { PIXELFORMAT_NAMESPACE_PFNC_32BIT = 4 };
enum { PIXELENDIANNESS_UNKNOWN = 0, PIXELENDIANNESS_LITTLE = 1, PIXELENDIANNESS_BIG = 2 };

enum {
    PORT_INFO_ID = 0,
    PORT_INFO_VENDOR = 1,
    PORT_INFO_MODEL = 2,
    PORT_INFO_TLTYPE = 3,
    PORT_INFO_MODULE = 4,
    PORT_INFO_LITTLE_ENDIAN = 5,
    PORT_INFO_BIG_ENDIAN = 6,
    PORT_INFO_ACCESS_READ = 7,
    PORT_INFO_ACCESS_WRITE = 8,
    PORT_INFO_ACCESS_NA = 9,
    PORT_INFO_ACCESS_NI = 10,
    PORT_INFO_VERSION = 11,
    PORT_INFO_PORTNAME = 12 /**< the Port node's name in the description */
};

enum {
    URL_INFO_URL = 0,
    URL_INFO_SCHEMA_VER_MAJOR = 1,
    URL_INFO_SCHEMA_VER_MINOR = 2,
    URL_INFO_FILE_VER_MAJOR = 3,
    URL_INFO_FILE_VER_MINOR = 4,
    URL_INFO_FILE_VER_SUBMINOR = 5,
    URL_INFO_FILE_SHA1_HASH = 6,
    URL_INFO_FILE_REGISTER_ADDRESS = 7,
    URL_INFO_FILE_SIZE = 8,
    URL_INFO_SCHEME = 9,
    URL_INFO_FILENAME = 10
};
enum { URL_SCHEME_LOCAL = 0, URL_SCHEME_HTTP = 1, URL_SCHEME_FILE = 2 };

enum { ACQ_START_FLAGS_DEFAULT = 0 };
enum { ACQ_STOP_FLAGS_DEFAULT = 0, ACQ_STOP_FLAGS_KILL = 1 };

enum {
    ACQ_QUEUE_INPUT_TO_OUTPUT = 0,
    ACQ_QUEUE_OUTPUT_DISCARD = 1,
    ACQ_QUEUE_ALL_TO_INPUT = 2,
    ACQ_QUEUE_UNQUEUED_TO_INPUT = 3,
    ACQ_QUEUE_ALL_DISCARD = 4
};

enum {
    EVENT_ERROR = 0,
    EVENT_NEW_BUFFER = 1,
    EVENT_FEATURE_INVALIDATE = 2,
    EVENT_FEATURE_CHANGE = 3,
    EVENT_REMOTE_DEVICE = 4,
    EVENT_MODULE = 5
};
enum {
    EVENT_EVENT_TYPE = 0,
    EVENT_NUM_IN_QUEUE = 1,
    EVENT_NUM_FIRED = 2,
    EVENT_SIZE_MAX = 3,
    EVENT_INFO_DATA_SIZE_MAX = 4
};
enum { EVENT_DATA_ID = 0, EVENT_DATA_VALUE = 1, EVENT_DATA_NUMID = 2 };

#pragma pack(push, 1)
typedef struct PORT_REGISTER_STACK_ENTRY {
    uint64_t Address;
    void* pBuffer;
    size_t BufferSize;
} PORT_REGISTER_STACK_ENTRY;

typedef struct SINGLE_CHUNK_DATA {
    uint64_t ChunkID;
    ptrdiff_t ChunkOffset;
    size_t ChunkLength;
} SINGLE_CHUNK_DATA;

/** The data of a new buffer event. */
typedef struct EVENT_NEW_BUFFER_DATA {
    BUFFER_HANDLE BufferHandle;
    void* pUserPointer;
} EVENT_NEW_BUFFER_DATA;
#pragma pack(pop)

/* The library and the transport layer. */
GC_ERROR GCInitLib(void);
GC_ERROR GCCloseLib(void);
GC_ERROR GCGetInfo(int32_t command, INFO_DATATYPE* type, void* buffer, size_t* size);
GC_ERROR GCGetLastError(GC_ERROR* code, char* text, size_t* size);
GC_ERROR TLOpen(TL_HANDLE* tl);
GC_ERROR TLClose(TL_HANDLE tl);
GC_ERROR TLGetInfo(TL_HANDLE tl, int32_t command, INFO_DATATYPE* type, void* buffer, size_t* size);
GC_ERROR TLGetNumInterfaces(TL_HANDLE tl, uint32_t* count);
GC_ERROR TLGetInterfaceID(TL_HANDLE tl, uint32_t index, char* id, size_t* size);
GC_ERROR TLGetInterfaceInfo(TL_HANDLE tl, const char* id, int32_t command, INFO_DATATYPE* type, void* buffer,
                            size_t* size);
GC_ERROR TLOpenInterface(TL_HANDLE tl, const char* id, IF_HANDLE* interface);
GC_ERROR TLUpdateInterfaceList(TL_HANDLE tl, bool8_t* changed, uint64_t milliseconds);

/* Interfaces. */
GC_ERROR IFClose(IF_HANDLE interface);
GC_ERROR IFGetInfo(IF_HANDLE interface, int32_t command, INFO_DATATYPE* type, void* buffer, size_t* size);
GC_ERROR IFGetNumDevices(IF_HANDLE interface, uint32_t* count);
GC_ERROR IFGetDeviceID(IF_HANDLE interface, uint32_t index, char* id, size_t* size);
GC_ERROR IFUpdateDeviceList(IF_HANDLE interface, bool8_t* changed, uint64_t milliseconds);
GC_ERROR IFGetDeviceInfo(IF_HANDLE interface, const char* id, int32_t command, INFO_DATATYPE* type,
                         void* buffer, size_t* size);
GC_ERROR IFOpenDevice(IF_HANDLE interface, const char* id, int32_t flags, DEV_HANDLE* device);
GC_ERROR IFGetParentTL(IF_HANDLE interface, TL_HANDLE* tl);

/* Devices. */
GC_ERROR DevGetPort(DEV_HANDLE device, PORT_HANDLE* remote);
GC_ERROR DevGetNumDataStreams(DEV_HANDLE device, uint32_t* count);
GC_ERROR DevGetDataStreamID(DEV_HANDLE device, uint32_t index, char* id, size_t* size);
GC_ERROR DevOpenDataStream(DEV_HANDLE device, const char* id, DS_HANDLE* stream);
GC_ERROR DevGetInfo(DEV_HANDLE device, int32_t command, INFO_DATATYPE* type, void* buffer, size_t* size);
GC_ERROR DevClose(DEV_HANDLE device);
GC_ERROR DevGetParentIF(DEV_HANDLE device, IF_HANDLE* interface);

/* Data streams and buffers. */
GC_ERROR DSAnnounceBuffer(DS_HANDLE stream, void* memory, size_t size, void* user, BUFFER_HANDLE* buffer);
GC_ERROR DSAllocAndAnnounceBuffer(DS_HANDLE stream, size_t size, void* user, BUFFER_HANDLE* buffer);
GC_ERROR DSQueueBuffer(DS_HANDLE stream, BUFFER_HANDLE buffer);
GC_ERROR DSFlushQueue(DS_HANDLE stream, int32_t operation);
GC_ERROR DSRevokeBuffer(DS_HANDLE stream, BUFFER_HANDLE buffer, void** memory, void** user);
GC_ERROR DSStartAcquisition(DS_HANDLE stream, int32_t flags, uint64_t count);
GC_ERROR DSStopAcquisition(DS_HANDLE stream, int32_t flags);
GC_ERROR DSGetInfo(DS_HANDLE stream, int32_t command, INFO_DATATYPE* type, void* buffer, size_t* size);
GC_ERROR DSGetBufferID(DS_HANDLE stream, uint32_t index, BUFFER_HANDLE* buffer);
GC_ERROR DSGetBufferInfo(DS_HANDLE stream, BUFFER_HANDLE buffer, int32_t command, INFO_DATATYPE* type,
                         void* destination, size_t* size);
GC_ERROR DSGetBufferChunkData(DS_HANDLE stream, BUFFER_HANDLE buffer, SINGLE_CHUNK_DATA* chunks,
                              size_t* count);
GC_ERROR DSGetNumBufferParts(DS_HANDLE stream, BUFFER_HANDLE buffer, uint32_t* count);
GC_ERROR DSGetBufferPartInfo(DS_HANDLE stream, BUFFER_HANDLE buffer, uint32_t part, int32_t command,
                             INFO_DATATYPE* type, void* destination, size_t* size);
GC_ERROR DSClose(DS_HANDLE stream);
GC_ERROR DSGetParentDev(DS_HANDLE stream, DEV_HANDLE* device);

/* Ports. */
GC_ERROR GCGetNumPortURLs(PORT_HANDLE port, uint32_t* count);
GC_ERROR GCGetPortURL(PORT_HANDLE port, char* url, size_t* size);
GC_ERROR GCGetPortURLInfo(PORT_HANDLE port, uint32_t index, int32_t command, INFO_DATATYPE* type,
                          void* buffer, size_t* size);
GC_ERROR GCGetPortInfo(PORT_HANDLE port, int32_t command, INFO_DATATYPE* type, void* buffer, size_t* size);
GC_ERROR GCReadPort(PORT_HANDLE port, uint64_t address, void* buffer, size_t* size);
GC_ERROR GCWritePort(PORT_HANDLE port, uint64_t address, const void* buffer, size_t* size);
GC_ERROR GCReadPortStacked(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries, size_t* count);
GC_ERROR GCWritePortStacked(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries, size_t* count);

/* Events. */
GC_ERROR GCRegisterEvent(EVENTSRC_HANDLE source, int32_t kind, EVENT_HANDLE* event);
GC_ERROR GCUnregisterEvent(EVENTSRC_HANDLE source, int32_t kind);
GC_ERROR EventGetData(EVENT_HANDLE event, void* buffer, size_t* size, uint64_t milliseconds);
GC_ERROR EventGetDataInfo(EVENT_HANDLE event, const void* data, size_t dataSize, int32_t command,
                          INFO_DATATYPE* type, void* buffer, size_t* size);
GC_ERROR EventGetInfo(EVENT_HANDLE event, int32_t command, INFO_DATATYPE* type, void* buffer, size_t* size);
GC_ERROR EventFlush(EVENT_HANDLE event);
GC_ERROR EventKill(EVENT_HANDLE event);

/* Of version 1.6; this producer answers GC_ERR_NOT_IMPLEMENTED. */
GC_ERROR DSAnnounceCompositeBuffer(DS_HANDLE stream, size_t segments, void** addresses, size_t* sizes,
                                   void* user, BUFFER_HANDLE* buffer);
GC_ERROR DSGetBufferInfoStacked(DS_HANDLE stream, BUFFER_HANDLE buffer, void* infos, size_t count);
GC_ERROR DSGetBufferPartInfoStacked(DS_HANDLE stream, BUFFER_HANDLE buffer, void* infos, size_t count);
GC_ERROR DSGetNumFlows(DS_HANDLE stream, uint32_t* count);
GC_ERROR DSGetFlowInfo(DS_HANDLE stream, uint32_t flow, int32_t command, INFO_DATATYPE* type, void* buffer,
                       size_t* size);
GC_ERROR DSGetNumBufferSegments(DS_HANDLE stream, BUFFER_HANDLE buffer, uint32_t* count);
GC_ERROR DSGetBufferSegmentInfo(DS_HANDLE stream, BUFFER_HANDLE buffer, uint32_t segment, int32_t command,
                                INFO_DATATYPE* type, void* destination, size_t* size);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif
#endif
