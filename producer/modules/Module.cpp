#include "modules/Module.h"

#include "base/NeverDestroyed.h"
#include "base/hexadecimal.h"

#include <algorithm>

namespace producer {

namespace {

NeverDestroyed<std::mutex>& storedLock() {
    static NeverDestroyed<std::mutex> mutex;
    return mutex;
}

} // namespace

std::mutex& lockOfModules() { return storedLock().value(); }

void forgetLockOfModules() { storedLock().forget(); }

RegisterMap& Module::registers() {
    std::call_once(m_hasRegisters, [this] {
        const DescriptionNames names{m_name, m_name + " of " + modelName, m_name + "Port"};
        m_registers = std::make_unique<RegisterMap>(names, makeFeatures());
    });
    return *m_registers;
}

Answer Module::portInfo(std::int32_t command) {
    switch (command) {
    case PORT_INFO_ID:
        return Answer::text(m_id);
    case PORT_INFO_VENDOR:
        return Answer::text(vendorName);
    case PORT_INFO_MODEL:
        return Answer::text(modelName);
    case PORT_INFO_TLTYPE:
        return Answer::text(transportType);
    case PORT_INFO_MODULE:
        return Answer::text(m_type);
    case PORT_INFO_LITTLE_ENDIAN:
    case PORT_INFO_ACCESS_READ:
        return Answer::flag(true);
    case PORT_INFO_ACCESS_WRITE:
        return Answer::flag(canBeWritten());
    case PORT_INFO_BIG_ENDIAN:
    case PORT_INFO_ACCESS_NA:
    case PORT_INFO_ACCESS_NI:
        return Answer::flag(false);
    case PORT_INFO_VERSION:
        return Answer::text(producerVersion);
    case PORT_INFO_PORTNAME:
        return Answer::text(registers().names().port);
    default:
        refuseCommand("a port", command);
    }
}

std::string Module::url() {
    return "local:///" + m_name + ".xml;" + hexadecimal(RegisterMap::descriptionAddress) + ";" +
           hexadecimal(registers().description().size()) + "?SchemaVersion=1.1.0";
}

Answer Module::urlInfo(std::int32_t command) {
    switch (command) {
    case URL_INFO_URL:
        return Answer::text(url());
    case URL_INFO_SCHEMA_VER_MAJOR:
    case URL_INFO_SCHEMA_VER_MINOR:
    case URL_INFO_FILE_VER_MAJOR:
        return Answer::int32(1);
    case URL_INFO_FILE_VER_MINOR:
    case URL_INFO_FILE_VER_SUBMINOR:
        return Answer::int32(0);
    case URL_INFO_FILE_SHA1_HASH:
        refuseForNow("the description has no hash");
    case URL_INFO_FILE_REGISTER_ADDRESS:
        return Answer::uint64(RegisterMap::descriptionAddress);
    case URL_INFO_FILE_SIZE:
        return Answer::uint64(registers().description().size());
    case URL_INFO_SCHEME:
        return Answer::int32(URL_SCHEME_LOCAL);
    case URL_INFO_FILENAME:
        return Answer::text(m_name + ".xml");
    default:
        refuseCommand("a URL", command);
    }
}

std::shared_ptr<EventQueue> Module::eventOf(std::int32_t kind) const {
    const auto found = m_events.find(kind);
    if (found != m_events.end()) return found->second;
    throw Error(GC_ERR_NOT_IMPLEMENTED,
                std::string(m_type) + " has no event of kind " + std::to_string(kind));
}

void* Module::registerEvent(std::int32_t kind) {
    const std::shared_ptr<EventQueue> queue = eventOf(kind);
    const std::lock_guard lock(m_eventMutex);
    queue->open();
    HandleTable::add(queue);
    return queue->handle();
}

void Module::unregisterEvent(std::int32_t kind) {
    const std::shared_ptr<EventQueue> queue = eventOf(kind);
    const std::lock_guard lock(m_eventMutex);
    queue->close();
    HandleTable::remove(*queue);
}

void Module::close() {
    HandleTable::remove(*this);
    const std::lock_guard lock(m_eventMutex);
    for (const auto& [kind, queue] : m_events) {
        if (!queue->isOpen()) continue;
        queue->close();
        HandleTable::remove(*queue);
    }
}

Feature textFeature(const char* category, const char* name, std::function<std::string()> get) {
    Feature feature{.name = name, .category = category, .kind = Feature::Kind::text};
    feature.get = [get = std::move(get)] { return Value(get()); };
    return feature;
}

Feature textFeature(const char* category, const char* name, std::string value) {
    return textFeature(category, name, [value = std::move(value)] { return value; });
}

Feature numberFeature(const char* category, const char* name, std::function<std::uint64_t()> get) {
    Feature feature{.name = name, .category = category};
    feature.get = [get = std::move(get)] { return static_cast<std::int64_t>(get()); };
    return feature;
}

Feature wordFeature(const char* category, const char* name, const char* word) {
    Feature feature{
        .name = name, .category = category, .kind = Feature::Kind::enumeration, .entries = {{word, 0}}};
    feature.get = [] { return std::int64_t{0}; };
    return feature;
}

Feature selectorFeature(const char* category, const char* name, std::function<std::uint64_t()> count,
                        std::vector<std::string> selected) {
    auto chosen = std::make_shared<std::int64_t>(0);
    const auto last = [count = std::move(count)] {
        return std::max<std::int64_t>(static_cast<std::int64_t>(count()) - 1, 0);
    };
    Feature feature{.name = name, .category = category, .selected = std::move(selected)};
    feature.limits = [last] { return Limits{std::int64_t{0}, last(), std::int64_t{1}}; };
    feature.get = [chosen, last] { return std::min(*chosen, last()); }; // the list may have become shorter
    feature.set = [chosen, last, name](const Value& value) {
        const std::int64_t wanted = std::get<std::int64_t>(value);
        if (wanted < 0 || wanted > last())
            throw Error(GC_ERR_INVALID_VALUE, std::string(name) + " = " + std::to_string(wanted) +
                                                  " was refused: it can be 0 to " + std::to_string(last()));
        *chosen = wanted;
    };
    return feature;
}

} // namespace producer
