#include "modules/System.h"

#include "base/Error.h"
#include "device/Machine.h"
#include "modules/Interface.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace producer {
namespace {

constexpr const char* systemId = "vexo-virtual-boards";
constexpr std::uint32_t versionMajor = 1, versionMinor = 5;
constexpr const char* systemInformation = "SystemInformation";
constexpr const char* interfaceEnumeration = "InterfaceEnumeration";

constexpr std::string_view stationPrefix = "station-";

/** VBOARD_COUNT, 1 without it. */
std::size_t boardCount() {
    constexpr std::size_t most = 16;
    const char* const text = std::getenv("VBOARD_COUNT");
    if (text == nullptr) return 1;
    const std::string_view word = text;
    std::size_t count = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), count);
    if (error != std::errc{} || end != word.data() + word.size() || count < 1 || count > most) {
        throw Error(GC_ERR_INVALID_VALUE, "the environment variable VBOARD_COUNT is \"" + std::string(word) +
                                              "\": let it be a number of boards from 1 to 16");
    }
    return count;
}

std::vector<std::string> boardIds() {
    std::vector<std::string> ids;
    const std::size_t count = boardCount();
    for (std::size_t i = 0; i < count; ++i)
        ids.push_back("virtual-" + std::to_string(i));
    return ids;
}

} // namespace

System::System() : Module("TLSystem", "TLSystem", systemId), m_boards(boardIds()) {}

System::~System() = default;

Answer System::info(std::int32_t command) {
    switch (command) {
    case TL_INFO_ID:
        return Answer::text(systemId);
    case TL_INFO_VENDOR:
        return Answer::text(vendorName);
    case TL_INFO_MODEL:
        return Answer::text(modelName);
    case TL_INFO_VERSION:
        return Answer::text(producerVersion);
    case TL_INFO_TLTYPE:
        return Answer::text(transportType);
    case TL_INFO_NAME:
        return Answer::text(producerFile().filename().string());
    case TL_INFO_PATHNAME:
        return Answer::text(producerFile().string());
    case TL_INFO_DISPLAYNAME:
        return Answer::text("Virtual boards of Grab_TwinLaneLineColor");
    case TL_INFO_CHAR_ENCODING:
        return Answer::int32(1);
    case TL_INFO_GENTL_VER_MAJOR:
        return Answer::uint32(versionMajor);
    case TL_INFO_GENTL_VER_MINOR:
        return Answer::uint32(versionMinor);
    default:
        refuseCommand("the system", command);
    }
}

std::size_t System::interfaceCount() const {
    const std::lock_guard lock(m_listMutex);
    return m_listed.size();
}

std::string System::interfaceId(std::uint32_t index) const {
    const std::lock_guard lock(m_listMutex);
    if (index < m_listed.size()) return m_listed[index];
    throw Error(GC_ERR_INVALID_INDEX, "there is no interface " + std::to_string(index) +
                                          " in the list, which has " + std::to_string(m_listed.size()) +
                                          " after the last update");
}

bool System::updateInterfaces() {
    std::vector<std::string> ids = m_boards;
    for (const std::string& name : servedStations())
        ids.push_back(std::string(stationPrefix) + name);
    const std::lock_guard lock(m_listMutex);
    return std::exchange(m_listed, ids) != ids;
}

System::Target System::known(const char* id) const {
    const std::string wanted = &required(id, "id");
    if (std::ranges::find(m_boards, wanted) != m_boards.end()) return {wanted, ""};
    if (wanted.starts_with(stationPrefix)) {
        std::string station = wanted.substr(stationPrefix.size());
        const std::lock_guard lock(m_listMutex);
        if (isServed(station) || std::ranges::find(m_listed, wanted) != m_listed.end())
            return {wanted, std::move(station)};
    }
    throw Error(GC_ERR_INVALID_ID, "there is no interface \"" + wanted + "\"");
}

Answer System::interfaceInfo(const char* id, std::int32_t command) const {
    const Target target = known(id);
    return Interface::infoOf(target.id, target.station, command);
}

std::shared_ptr<Interface> System::openInterface(const char* id) {
    const Target target = known(id);
    for (const auto& open : m_open)
        if (open->id() == target.id)
            throw Error(GC_ERR_RESOURCE_IN_USE, "the interface " + target.id + " is open already");
    auto opened = std::make_shared<Interface>(shared_from_this(), target.id, target.station);
    m_open.push_back(opened);
    HandleTable::add(opened);
    return opened;
}

void System::forget(const Interface& closed) {
    std::erase_if(m_open, [&closed](const auto& open) { return open.get() == &closed; });
}

const Libraries& System::libraries() {
    if (m_libraries == nullptr) m_libraries = loadLibraries();
    return m_libraries;
}

void System::stopThreads() {
    std::unique_lock lock(lockOfModules());
    const std::vector<std::shared_ptr<Interface>> all = m_open;
    lock.unlock();
    for (const auto& open : all)
        open->stopThreads();
}

void System::close() {
    std::unique_lock lock(lockOfModules());
    while (!m_open.empty()) {
        const std::shared_ptr<Interface> last = m_open.back();
        lock.unlock();
        last->close();
        lock.lock();
    }
    Module::close();
    m_libraries.reset();
}

std::vector<Feature> System::makeFeatures() {
    const auto count = [this] { return interfaceCount(); };
    Feature selector = selectorFeature(interfaceEnumeration, "InterfaceSelector", count, {"InterfaceID"});
    const auto chosen = [this, get = selector.get]() -> std::string {
        const auto index = static_cast<std::size_t>(std::get<std::int64_t>(get()));
        const std::lock_guard lock(m_listMutex);
        return index < m_listed.size() ? m_listed[index] : ""; // empty before the first update
    };
    Feature update{
        .name = "InterfaceUpdateList", .category = interfaceEnumeration, .kind = Feature::Kind::command};
    update.get = [] { return std::int64_t{0}; };
    update.set = [this](const Value&) { updateInterfaces(); };
    return {textFeature(systemInformation, "TLVendorName", vendorName),
            textFeature(systemInformation, "TLModelName", modelName),
            textFeature(systemInformation, "TLID", systemId),
            textFeature(systemInformation, "TLVersion", producerVersion),
            textFeature(systemInformation, "TLPath", producerFile().string()),
            wordFeature(systemInformation, "TLType", transportType),
            numberFeature(systemInformation, "GenTLVersionMajor", [] { return versionMajor; }),
            numberFeature(systemInformation, "GenTLVersionMinor", [] { return versionMinor; }),
            update,
            selector,
            textFeature(interfaceEnumeration, "InterfaceID", chosen)};
}

} // namespace producer
