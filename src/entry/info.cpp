// The stateless query function: what a runtime can learn of this applet without an object.

#include "catalogue/enumerations.h"
#include "entry/FgLoomWrapperImpl.h"
#include "entry/design_source.h"
#include "entry/embedded_data.h"
#include "trigger/internal_events.h"
#include "vexo/fg_api.h"

#include <cstring>
#include <memory>

namespace {

/** A question whose answer is always the same number. */
struct NumberAnswer {
    int code;
    int answer;
};

constexpr NumberAnswer numberAnswers[] = {
    {848, 1},
    {1040, 0},
    {1045, 1},
    {1792, 1},
    {1872, 1},
    {1888, 1},
    {2048, FgLoomWrapperImpl::appletVersion() << 16 | FgLoomWrapperImpl::appletRevision()},
    {2064, 1},
    {2160, 0},
    {2176, designTypeCode},
    {2192, 0},
    {2560, 0},
    {2816, 0},
    {3072, 0},
    {3328, 0},
    {4608, 1}, // number of processes
};

/** A question about a process and, for some, about an index: all know only number 0. */
struct ProcessAnswer {
    int code;
    bool heedsIndex;
    int answer;
};

constexpr ProcessAnswer processAnswers[] = {
    {4624, false, 1}, {4640, false, 1}, {4656, true, 0}, {4672, true, 0}, {4688, false, 1}, {4704, false, 10},
};

/** A question whose answer is a text. */
struct TextAnswer {
    int code;
    const char* text;
};

constexpr TextAnswer textAnswers[] = {
    {1043, "7c1d2e40-5ab3-4f86-9d21-3e8b6a0f4c11"}, // product
    {1044, "b26e91f3-08c4-47de-a1f7-6d05c93e2a58"}, // version
    {4096,
     "Capture Kit with support of TurboBurst technology, 16 bit image processing (per color component), "
     "white balancing and lookup table(up to 14 Bit) for one CameraLinkHS RGB line scan camera with 2 "
     "ports (20 Gbps)."},
    {4112, "CaptureKits:Line"},
    {4128, "class=standard,family=acquisition,type=single,sensortype=line,color=rgb,interface=clhs,lag=2"},
    {4176, "Grab_TwinLaneLineColor"},
    {4192, "2.2.4.0"},
    {4208, "2.2.4.0.20221221.064316"},
};

template <typename Rows> const auto* rowOf(const Rows& rows, int code) {
    for (const auto& row : rows)
        if (row.code == code) return &row;
    return static_cast<decltype(&rows[0])>(nullptr);
}

/** Stores a word of the caller's; a null place skips the store. */
template <typename Word> void store(void* place, Word word) {
    if (place != nullptr) std::memcpy(place, &word, sizeof word);
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
    // A negative tree passes this test, deliberately; it has no root.
    if (tree > 0 || instance == nullptr || out == nullptr) return FG_ERR_INVALID_ARGUMENT;
    store(out, static_cast<FgLoomWrapper*>(instance)->Fg_getParameterInfo(tree));
    return FG_OK;
}

int destroyOffline(void* instance) {
    if (instance == nullptr) return FG_ERR_INVALID_ARGUMENT;
    delete static_cast<FgLoomWrapper*>(instance);
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
    case 1041:
        return giveBlock(appletIcon, iconSize(), in, out);
    case 1042:
        return giveBlock(appletDesignImage, designImageSize(), in, out);
    case 2304:
        store(in, std::int32_t{0});
        return FG_OK;
    case 4144:
        store(in, FgLoomWrapper::accessDeviceHandle(nullptr));
        return FG_OK;
    case 4160:
        store(in, FgLoomWrapper::accessDesignHandle(nullptr));
        return FG_OK;
    case 4352:
        return enumerationValue(static_cast<const char*>(in));
    case 4864:
        return createOffline(out);
    case 4880:
        return offlineTree(arg1, in, out);
    case 4896:
        return destroyOffline(in);
    case 5120:
        return eventRecord(arg1, arg2, in, out);
    default:
        return FG_ERR_NOT_SUPPORTED;
    }
}
