/*
 * A GenTL client in C that opens a producer by its file, as clients do, and uses all of it: lists, every
 * module's information and description, events, pictures, and closing.
 *
 *   producer_client FILE
 */
#include "producer/gentl.h"

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static void* library;
static int failures = 0;

static void check(int holds, const char* text) {
    if (holds) return;
    fprintf(stderr, "client: %s\n", text);
    ++failures;
}

/* The function of that name, with the type of its declaration. */
static void* find(const char* name) {
    void* function = dlsym(library, name);
    if (function == NULL) {
        fprintf(stderr, "client: there is no %s\n", name);
        exit(1);
    }
    return function;
}
#define CALL(name) (*(__typeof__(&name))(intptr_t)find(#name))
#define OK(call) check((call) == GC_ERR_SUCCESS, #call)

/* The description of a module; the caller frees it. */
static char* descriptionOf(PORT_HANDLE port, const char* module) {
    char text[1024], *part, *description;
    size_t size = sizeof text;
    INFO_DATATYPE type = 0;
    uint32_t count = 0;
    OK(CALL(GCGetPortInfo)(port, PORT_INFO_MODULE, &type, text, &size));
    check(strcmp(text, module) == 0, module);
    OK(CALL(GCGetNumPortURLs)(port, &count));
    check(count == 1, "one URL");
    size = sizeof text;
    OK(CALL(GCGetPortURLInfo)(port, 0, URL_INFO_URL, &type, text, &size));
    check(strncmp(text, "local:///", 9) == 0, "a local URL");
    part = strchr(text, ';');
    size_t length = 0;
    uint64_t address = 0;
    check(part != NULL, "a part of the URL");
    if (part == NULL) exit(1);
    address = strtoull(part + 1, &part, 16);
    length = strtoull(part + 1, &part, 16);
    check(strcmp(part, "?SchemaVersion=1.1.0") == 0, "the version of the schema");
    description = calloc(length + 1, 1);
    size = length;
    OK(CALL(GCReadPort)(port, address, description, &size));
    check(size == length && strncmp(description, "<?xml", 5) == 0, "a description");
    size = sizeof text;
    OK(CALL(GCGetPortInfo)(port, PORT_INFO_PORTNAME, &type, text, &size));
    part = malloc(strlen(text) + 16);
    sprintf(part, "<Port Name=\"%s\"", text);
    check(strstr(description, part) != NULL, "the port's node");
    free(part);
    return description;
}

/* Address of a feature's value in a description. */
static uint64_t addressOf(const char* description, const char* feature) {
    char node[128];
    sprintf(node, "Name=\"%s_Value\"", feature);
    const char* found = strstr(description, node);
    found = found != NULL ? strstr(found, "<Address>") : NULL;
    check(found != NULL, feature);
    return found != NULL ? strtoull(found + 9, NULL, 16) : 0;
}

static int64_t get(PORT_HANDLE port, const char* description, const char* feature) {
    int64_t value = 0;
    size_t size = sizeof value;
    OK(CALL(GCReadPort)(port, addressOf(description, feature), &value, &size));
    return value;
}

static void set(PORT_HANDLE port, const char* description, const char* feature, int64_t value) {
    size_t size = sizeof value;
    OK(CALL(GCWritePort)(port, addressOf(description, feature), &value, &size));
}

static void takePictures(PORT_HANDLE port, const char* features, DS_HANDLE stream) {
    enum { buffers = 3, pictures = 10 };
    BUFFER_HANDLE buffer;
    EVENT_HANDLE event;
    INFO_DATATYPE type = 0;
    size_t payload = 0, size = sizeof payload;
    set(port, features, "Width", 128);
    set(port, features, "Height", 32);
    OK(CALL(DSGetInfo)(stream, STREAM_INFO_PAYLOAD_SIZE, &type, &payload, &size));
    check(payload == 128 * 32 * 3 && get(port, features, "PayloadSize") == (int64_t)payload, "the payload");
    for (int i = 0; i < buffers; ++i) {
        OK(CALL(DSAnnounceBuffer)(stream, malloc(payload), payload, NULL, &buffer));
        OK(CALL(DSQueueBuffer)(stream, buffer));
    }
    OK(CALL(GCRegisterEvent)(stream, EVENT_NEW_BUFFER, &event));
    OK(CALL(DSStartAcquisition)(stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE));
    set(port, features, "AcquisitionStart", 1);
    for (uint64_t i = 1; i <= pictures; ++i) {
        EVENT_NEW_BUFFER_DATA data = {NULL, NULL};
        uint64_t number = 0;
        size = sizeof data;
        OK(CALL(EventGetData)(event, &data, &size, 10000));
        size = sizeof number;
        OK(CALL(DSGetBufferInfo)(stream, data.BufferHandle, BUFFER_INFO_FRAMEID, &type, &number, &size));
        check(number == i, "the number of a picture");
        OK(CALL(DSQueueBuffer)(stream, data.BufferHandle));
    }
    set(port, features, "AcquisitionStop", 1);
    OK(CALL(DSStopAcquisition)(stream, ACQ_STOP_FLAGS_DEFAULT));
    OK(CALL(GCUnregisterEvent)(stream, EVENT_NEW_BUFFER));
    OK(CALL(DSFlushQueue)(stream, ACQ_QUEUE_ALL_DISCARD));
    while (CALL(DSGetBufferID)(stream, 0, &buffer) == GC_ERR_SUCCESS) {
        void* memory = NULL;
        OK(CALL(DSRevokeBuffer)(stream, buffer, &memory, NULL));
        free(memory);
    }
}

int main(int count, char** arguments) {
    TL_HANDLE tl;
    IF_HANDLE interface;
    DEV_HANDLE device;
    PORT_HANDLE remote;
    DS_HANDLE stream;
    char id[256];
    size_t size = sizeof id;
    uint32_t number = 0;
    if (count != 2) return 2;
    library = dlopen(arguments[1], RTLD_LAZY | RTLD_LOCAL);
    if (library == NULL) {
        fprintf(stderr, "client: %s\n", dlerror());
        return 1;
    }
    OK(CALL(GCInitLib)());
    OK(CALL(TLOpen)(&tl));
    OK(CALL(TLUpdateInterfaceList)(tl, NULL, 100));
    OK(CALL(TLGetNumInterfaces)(tl, &number));
    check(number == 1, "one interface");
    OK(CALL(TLGetInterfaceID)(tl, 0, id, &size));
    OK(CALL(TLOpenInterface)(tl, id, &interface));
    OK(CALL(IFUpdateDeviceList)(interface, NULL, 100));
    OK(CALL(IFGetNumDevices)(interface, &number));
    check(number == 1, "one device");
    size = sizeof id;
    OK(CALL(IFGetDeviceID)(interface, 0, id, &size));
    OK(CALL(IFOpenDevice)(interface, id, DEVICE_ACCESS_CONTROL, &device));
    OK(CALL(DevGetPort)(device, &remote));
    OK(CALL(DevGetNumDataStreams)(device, &number));
    check(number == 1, "one stream");
    size = sizeof id;
    OK(CALL(DevGetDataStreamID)(device, 0, id, &size));
    OK(CALL(DevOpenDataStream)(device, id, &stream));

    free(descriptionOf(tl, "TLSystem"));
    free(descriptionOf(interface, "TLInterface"));
    free(descriptionOf(device, "TLDevice"));
    free(descriptionOf(stream, "TLDataStream"));
    char* features = descriptionOf(remote, "Device");
    check(strstr(features, "<pMax>FG_WIDTH_Max</pMax>") != NULL, "limits that are registers");
    takePictures(remote, features, stream);
    free(features);

    OK(CALL(DSClose)(stream));
    OK(CALL(DevClose)(device));
    check(CALL(DevClose)(device) == GC_ERR_INVALID_HANDLE, "a closed device");
    OK(CALL(IFClose)(interface));
    OK(CALL(TLClose)(tl));
    OK(CALL(GCCloseLib)());
    dlclose(library);
    return failures != 0;
}
