// The stateless query function: information about this applet that needs no object.

#include "catalogue/enumerations.h"
#include "entry/FgLoomWrapperImpl.h"
#include "entry/LiveObjects.h"
#include "entry/api/design_source.h"
#include "entry/api/embedded_data.h"
#include "trigger/internal_events.h"
#include "vexo/fg_api.h"

#include <cstring>
#include <memory>

namespace {

/** A query with a constant number as its answer. */
struct NumberAnswer {
    int code;
    int answer;
};

constexpr NumberAnswer numberAnswers[] = {
    {FG_INFO_848, 1},
    {FG_INFO_1040, 0},
    {FG_INFO_1045, 1},
    {FG_INFO_1792, 1},
    {FG_INFO_1872, 1},
    {FG_INFO_1888, 1},
    {FG_INFO_VERSION_WORD, FgLoomWrapperImpl::appletVersion() << 16 | FgLoomWrapperImpl::appletRevision()},
    {FG_INFO_2064, 1},
    {FG_INFO_2160, 0},
    {FG_INFO_DESIGN_TYPE, designTypeCode},
    {FG_INFO_2192, 0},
    {FG_INFO_2560, 0},
    {FG_INFO_2816, 0},
    {FG_INFO_3072, 0},
    {FG_INFO_3328, 0},
    {FG_INFO_PROCESSES, 1},
};

/** A query about a process and, for some, about an index: only number 0 exists. */
struct ProcessAnswer {
    int code;
    bool heedsIndex;
    int answer;
};

constexpr ProcessAnswer processAnswers[] = {
    {FG_INFO_PROCESS_4624, false, 1}, {FG_INFO_PROCESS_4640, false, 1}, {FG_INFO_PROCESS_4656, true, 0},
    {FG_INFO_PROCESS_4672, true, 0},  {FG_INFO_PROCESS_4688, false, 1}, {FG_INFO_PROCESS_4704, false, 10},
};

/** A query with a text as its answer. */
struct TextAnswer {
    int code;
    const char* text;
};

constexpr TextAnswer textAnswers[] = {
    {FG_INFO_PRODUCT_GUID, "7c1d2e40-5ab3-4f86-9d21-3e8b6a0f4c11"},
    {FG_INFO_VERSION_GUID, "b26e91f3-08c4-47de-a1f7-6d05c93e2a58"},
    {FG_INFO_DESCRIPTION,
     "Capture Kit with support of TurboBurst technology, 16 bit image processing (per color component), "
     "white balancing and lookup table(up to 14 Bit) for one CameraLinkHS RGB line scan camera with 2 "
     "ports (20 Gbps)."},
    {FG_INFO_CATEGORY, "CaptureKits:Line"},
    {FG_INFO_TAGS,
     "class=standard,family=acquisition,type=single,sensortype=line,color=rgb,interface=clhs,lag=2"},
    {FG_INFO_NAME, "Grab_TwinLaneLineColor"},
    {FG_INFO_VERSION, "2.2.4.0"},
    {FG_INFO_BUILD, "2.2.4.0.20221221.064316"},
};

template <typename Rows> const auto* rowOf(const Rows& rows, int code) {
    for (const auto& row : rows)
        if (row.code == code) return &row;
    return static_cast<decltype(&rows[0])>(nullptr);
}

/** Stores a word at the caller's address, unless that is null. */
template <typename Word> void store(void* destination, Word word) {
    // NOLINTNEXTLINE(bugprone-sizeof-expression): some words are pointers
    if (destination != nullptr) std::memcpy(destination, &word, sizeof word);
}

int giveBlock(const unsigned char* block, std::size_t size, void* in, void* out) {
    store(in, static_cast<std::uint64_t>(size));
    store(out, block);
    return FG_OK;
}

int enumerationValue(const char* name) {
    if (name == nullptr) return FG_ERR_INVALID_ARGUMENT;
    for (const catalogue::EnumTable table : catalogue::allEnumerations)
        for (const catalogue::EnumEntry& entry : table)
            if (std::strcmp(entry.symbolicName, name) == 0) return entry.value;
    return FG_ERR_INVALID_ARGUMENT;
}

int createOffline(void* out) {
    if (out == nullptr) return FG_ERR_INVALID_ARGUMENT;
    store(out, static_cast<FgLoomWrapper*>(std::make_unique<FgLoomWrapperImpl>(1, true).release()));
    return FG_OK;
}

int offlineTree(int tree, void* instance, void* out) {
    // A negative tree index is not an error: callers get a null root.
    auto* wrapper = static_cast<FgLoomWrapper*>(instance);
    if (tree > 0 || out == nullptr || !LiveObjects::has(wrapper)) return FG_ERR_INVALID_ARGUMENT;
    store(out, wrapper->Fg_getParameterInfo(tree));
    return FG_OK;
}

int destroyOffline(void* instance) {
    auto* wrapper = static_cast<FgLoomWrapper*>(instance);
    if (!LiveObjects::has(wrapper)) return FG_ERR_INVALID_ARGUMENT;
    delete wrapper;
    return FG_OK;
}

/** `version` is that of the caller's record: 1 adds the description, 2 takes a 64-bit mask by reference. */
int eventRecord(int mask, int version, const void* in, void* out) {
    if (out == nullptr) return FG_ERR_INVALID_ARGUMENT;
    auto key = static_cast<std::uint64_t>(static_cast<std::int64_t>(mask));
    if (version >= 2 && in != nullptr) std::memcpy(&key, in, sizeof key);
    const InternalEventMetaInfo* event = findInternalEvent(key);
    if (event == nullptr) return FG_ERR_INVALID_ARGUMENT;

    auto* record = static_cast<FgEventRecord*>(out);
    record->name = event->dataName;
    record->value = event->value;
    if (version >= 1) record->description = "";
    return FG_OK;
}

} // namespace

std::int32_t Info(int code, int arg1, int arg2, void* in, void* out) {
    if (const NumberAnswer* row = rowOf(numberAnswers, code)) return row->answer;
    if (const ProcessAnswer* row = rowOf(processAnswers, code))
        return arg1 == 0 && (arg2 == 0 || !row->heedsIndex) ? row->answer : FG_ERR_INVALID_ARGUMENT;
    if (const TextAnswer* row = rowOf(textAnswers, code)) {
        store(out, row->text);
        return FG_OK;
    }
    switch (code) {
    case FG_INFO_ICON:
        return giveBlock(appletIcon, iconSize(), in, out);
    case FG_INFO_DESIGN_IMAGE:
        return giveBlock(appletDesignImage, designImageSize(), in, out);
    case FG_INFO_2304:
        store(in, std::int32_t{0});
        return FG_OK;
    case FG_INFO_DEVICE:
        store(in, FgLoomWrapper::accessDeviceHandle(nullptr));
        return FG_OK;
    case FG_INFO_DESIGN:
        store(in, FgLoomWrapper::accessDesignHandle(nullptr));
        return FG_OK;
    case FG_INFO_ENUM_VALUE:
        return enumerationValue(static_cast<const char*>(in));
    case FG_INFO_CREATE_OFFLINE:
        return createOffline(out);
    case FG_INFO_OFFLINE_TREE:
        return offlineTree(arg1, in, out);
    case FG_INFO_DESTROY_OFFLINE:
        return destroyOffline(in);
    case FG_INFO_EVENT_RECORD:
        return eventRecord(arg1, arg2, in, out);
    default:
        return FG_ERR_NOT_SUPPORTED;
    }
}
