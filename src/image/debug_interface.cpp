// Debug interface: the points of the image path where images can be injected and observed, and the bring-up
// step that reads the properties of the design that are not known at build time.
//
// The design has the path of each point; the names of its parameters are composed here, and their ids
// looked up, at each access.

#include "catalogue/live_records.h"
#include "entry/sdk_parameters.h"
#include "entry/setter_tools.h"

#include <algorithm>

using namespace catalogue;

namespace {

std::string nameBelow(const std::string& path, const char* suffix) { return process0 + path + suffix; }

std::string debugName(const char* what, const std::string& number = "") {
    return std::string(process0) + "Debug_" + what + number;
}

constexpr const char* debugFile = "_DebugFile";
constexpr const char* operationMode = "_OperationMode";
constexpr std::uint32_t inputOn = 1;
constexpr std::uint32_t outputOn = 2;

constexpr std::size_t longestEntryText = 127;

/**
 * The record with an id in the runtime's tree, or null: the children of a group and all below them come
 * before its siblings.
 */
const RegisterInfo* findParameterRecord(const RegisterInfo* node, std::uint32_t id) {
    for (; node != nullptr; node = node->next) {
        if (node->kind != REGISTER_KIND_GROUP) {
            if (static_cast<std::uint32_t>(node->id) == id) return node;
            continue;
        }
        for (int i = 0; i < node->value.group.childCount; ++i)
            if (const RegisterInfo* found = findParameterRecord(node->value.group.children[i], id))
                return found;
    }
    return nullptr;
}

} // namespace

// ---- Bring-up

int FgLoomWrapperImpl::readTextTo(char* text, const std::string& name) {
    return getUnwrappedParameterWithType(getParameterIdByName(name.c_str()), text, 0, FG_PARAM_TEXT);
}

/** A text of the design; empty if it cannot be read. */
std::string FgLoomWrapperImpl::readText(RuntimeTextRoom& room, const std::string& name) {
    return room.take([&](char* text) { readTextTo(text, name); });
}

std::string FgLoomWrapperImpl::requireText(RuntimeTextRoom& room, const std::string& name) {
    return room.take([&](char* text) {
        if (readTextTo(text, name) != FG_OK) refuse(FG_ERR_UNRESOLVED);
    });
}

void FgLoomWrapperImpl::discoverDebugEntries(RuntimeTextRoom& room) {
    const int count = std::min(digitAt(readText(room, debugName("Entries")), 0), 9);
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        DebugEntry& entry = m_debugEntries.emplace_back();
        entry.name = requireText(room, debugName("Name", number)).substr(0, longestEntryText);
        const std::string type = requireText(room, debugName("Type", number));
        if (type == "Inject")
            entry.type = DebugEntry::inject;
        else if (type == "InjectMonitor")
            entry.type = DebugEntry::injectMonitor;
        else
            refuse(FG_ERR_UNRESOLVED);
        // A path that cannot be read is empty: accesses to the point fail, but the next points are found.
        entry.path = readText(room, debugName("Path", number)).substr(0, longestEntryText);
    }
}

void FgLoomWrapperImpl::discoverDebugInterface() {
    // The first failure ends the step but not the bring-up, and earlier results are kept.
    quietly([this] {
        RuntimeTextRoom room;
        discoverDebugEntries(room);
        discoverOutputFormats(room);
        publishPixelFrequencyLimit();
    });
}

// ---- Access to the parameters of the current point

const DebugInterface::DebugEntry& DebugInterface::debugEntry() const {
    static const DebugEntry none;
    return m_debugSource < m_debugEntries.size() ? m_debugEntries[m_debugSource] : none;
}

int FgLoomWrapperImpl::debugParameterId(const char* suffix) {
    return getParameterIdByName(nameBelow(debugEntry().path, suffix).c_str());
}

std::uint32_t FgLoomWrapperImpl::readDebugWord(const char* suffix) {
    std::uint32_t value = 0;
    if (getUnwrappedParameterWithType(debugParameterId(suffix), &value, 0, FG_PARAM_UINT32) != FG_OK)
        refuse(FG_ERR_UNRESOLVED);
    return value;
}

std::uint32_t FgLoomWrapperImpl::readMonitorWord(const char* suffix) {
    return debugEntry().type == DebugEntry::injectMonitor ? readDebugWord(suffix) : 0;
}

void FgLoomWrapperImpl::writeDebug(const char* suffix, const void* value, FgParamTypes type) {
    if (setUnwrappedParameterWithType(debugParameterId(suffix), value, 0, type) != FG_OK)
        refuse(FG_ERR_UNRESOLVED);
}

std::uint32_t FgLoomWrapperImpl::readDebugInEnable() { return readDebugWord(operationMode) & inputOn; }

std::uint32_t FgLoomWrapperImpl::readDebugOutEnable() {
    return (readMonitorWord(operationMode) & outputOn) != 0;
}

std::string FgLoomWrapperImpl::readDebugFile() {
    RuntimeTextRoom room(m_longestDebugFile);
    return requireText(room, nameBelow(debugEntry().path, debugFile));
}

void FgLoomWrapperImpl::updateDebugPixelRange() {
    quietly([this] {
        RegisterInfo* published = recordAt(indexOf(FG_DEBUGOUTPIXEL));
        if (debugEntry().type != DebugEntry::injectMonitor) return publishMaximum(published, 0u);
        const auto id = static_cast<std::uint32_t>(debugParameterId("_PixelValue"));
        if (const RegisterInfo* record = findParameterRecord(getUnwrappedParameterInfo(), id))
            publishMaximum(published, record->value.u32.maximum);
    });
}

// ---- Setters. A change of source leaves the input and the output of the old point unchanged. Values that a
// get reads from the design are not stored here.

void FgLoomWrapperImpl::set_FG_DEBUGSOURCE(std::uint32_t value) {
    // Without points the limit wraps, and every value is accepted.
    RuntimeTextRoom room;
    const std::string entries = requireText(room, debugName("Entries"));
    requireAtMost(value, static_cast<std::uint32_t>(digitAt(entries, 0) - 1));
    Replacement stored(m_debugSource, value);
    if (debugEntry().type == DebugEntry::unknown) refuse(FG_ERR_UNRESOLVED);
    publishAccess(recordAt(indexOf(FG_DEBUGOUTENABLE)),
                  debugEntry().type == DebugEntry::injectMonitor ? anyTime : readOnly);
    updateDebugPixelRange();
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_DEBUGINENABLE(std::uint32_t value) {
    requireEntry(enumOnOff, value);
    const std::uint32_t mode = readDebugOutEnable() * outputOn | value;
    writeDebug(operationMode, &mode, FG_PARAM_UINT32);
}

void FgLoomWrapperImpl::set_FG_DEBUGOUTENABLE(std::uint32_t value) {
    requireEntry(enumOnOff, value);
    if (debugEntry().type != DebugEntry::injectMonitor)
        return; // no error: the parameter is shown as read-only
    const std::uint32_t mode = readDebugInEnable() | value * outputOn;
    writeDebug(operationMode, &mode, FG_PARAM_UINT32);
}

void FgLoomWrapperImpl::set_FG_DEBUGFILE(const char* path) {
    const std::size_t length = std::string_view(path).size();
    writeDebug(debugFile, path, FG_PARAM_TEXT);
    m_longestDebugFile = std::max(m_longestDebugFile, length);
}

void FgLoomWrapperImpl::set_FG_DEBUGINSERT(std::uint32_t value) {
    requireEntry(enumApply, value);
    Replacement stored(m_debugInsert, value);
    readDebugInEnable(); // no image for a point that cannot be read
    writeDebug("_Insert", &value, FG_PARAM_UINT32);
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_DEBUGWRITEPIXEL(std::uint64_t value) {
    requireRange(value, limitsOf<UInt64>(FG_DEBUGWRITEPIXEL));
    Replacement stored(m_debugWritePixel, value);
    writeDebug("_Inject_WritePixel", &value, FG_PARAM_UINT64);
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_DEBUGWRITEFLAG(std::uint32_t value) {
    requireEntry(enumDebugWriteFlag, value);
    Replacement stored(m_debugWriteFlag, value);
    writeDebug("_Inject_WriteFlag", &value, FG_PARAM_UINT32);
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_DEBUGSAVECONFIG(const char* path) {
    Replacement stored(m_debugSaveConfig, std::string(path));
    // The runtime calls back into the exported function, which takes no lock. Its result is ignored.
    saveUnwrappedConfig(path);
    stored.keep();
}
