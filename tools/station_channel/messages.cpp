#include "station_channel/messages.h"

#include <cstring>
#include <tuple>
#include <type_traits>
#include <utility>

namespace station_channel {
namespace {

using namespace applet_host;

/** The members of each structure, in the order of the message. */
template <typename T> constexpr auto membersOf = std::tuple<>();
template <>
constexpr auto membersOf<Limits> = std::tuple(&Limits::minimum, &Limits::maximum, &Limits::increment);
template <> constexpr auto membersOf<Entry> = std::tuple(&Entry::name, &Entry::value, &Entry::label);
template <>
constexpr auto membersOf<Parameter> = std::tuple(&Parameter::name, &Parameter::path, &Parameter::label,
                                                 &Parameter::description, &Parameter::unit, &Parameter::kind,
                                                 &Parameter::elements, &Parameter::entries);
template <>
constexpr auto membersOf<ParameterState> = std::tuple(&ParameterState::limits, &ParameterState::access);
template <> constexpr auto membersOf<EventName> = std::tuple(&EventName::mask, &EventName::name);
template <> constexpr auto membersOf<Hello> = std::tuple(&Hello::version);
template <> constexpr auto membersOf<Describe> = std::tuple(&Describe::first);
template <> constexpr auto membersOf<ReadValue> = std::tuple(&ReadValue::name);
template <> constexpr auto membersOf<ReadState> = std::tuple(&ReadState::name);
template <> constexpr auto membersOf<WriteValue> = std::tuple(&WriteValue::name, &WriteValue::value);
template <> constexpr auto membersOf<Accept> = std::tuple(&Accept::received, &Accept::room);
template <> constexpr auto membersOf<WantEvents> = std::tuple(&WantEvents::mask);
template <> constexpr auto membersOf<ToStation> = std::tuple(&ToStation::number, &ToStation::request);
template <> constexpr auto membersOf<Refusal> = std::tuple(&Refusal::reason, &Refusal::code, &Refusal::text);
template <>
constexpr auto membersOf<Description> = std::tuple(&Description::count, &Description::parameters,
                                                   &Description::events);
template <> constexpr auto membersOf<Time> = std::tuple(&Time::tick);
template <> constexpr auto membersOf<Started> = std::tuple(&Started::picture);
template <>
constexpr auto membersOf<Picture> = std::tuple(&Picture::number, &Picture::firstLine, &Picture::lostBefore,
                                               &Picture::size, &Picture::width, &Picture::lines,
                                               &Picture::bits);
template <> constexpr auto membersOf<Event> = std::tuple(&Event::mask, &Event::tick);
template <> constexpr auto membersOf<Events> = std::tuple(&Events::events);
template <> constexpr auto membersOf<ToClient> = std::tuple(&ToClient::number, &ToClient::answer);

/** Calls the function with each member of a structure. */
template <typename T, typename Function> void forMembers(T& value, Function function) {
    constexpr const auto& members = membersOf<std::remove_const_t<T>>;
    static_assert(std::tuple_size_v<std::remove_cvref_t<decltype(members)>> > 0 || std::is_empty_v<T>);
    std::apply([&](auto... member) { (function(value.*member), ...); }, members);
}

/** Of an array or a text. */
using Count = std::uint32_t;

/** Numbers are in the byte order of the machine, arrays and texts follow their count, alternatives their index. */
class Writer {
public:
    Bytes take() { return std::move(m_bytes); }

    template <typename T> void put(const T& value) {
        if constexpr (std::is_arithmetic_v<T> || std::is_enum_v<T>)
            append(&value, sizeof value);
        else
            forMembers(value, [this](const auto& member) { this->put(member); });
    }
    void put(const std::string& text) { putArray(text.data(), text.size()); }
    void put(const std::vector<std::uint32_t>& table) { putArray(table.data(), table.size()); }
    template <typename T> void put(const std::vector<T>& rows) {
        put(static_cast<Count>(rows.size()));
        for (const T& row : rows)
            put(row);
    }
    template <typename... T> void put(const std::variant<T...>& value) {
        put(static_cast<std::uint8_t>(value.index()));
        std::visit([this](const auto& alternative) { this->put(alternative); }, value);
    }

private:
    void append(const void* from, std::size_t size) {
        const auto* const bytes = static_cast<const std::uint8_t*>(from);
        m_bytes.insert(m_bytes.end(), bytes, bytes + size);
    }
    template <typename T> void putArray(const T* from, std::size_t count) {
        put(static_cast<Count>(count));
        append(from, count * sizeof(T));
    }

    Bytes m_bytes;
};

class Reader {
public:
    explicit Reader(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}

    bool isAtEnd() const { return m_bytes.empty(); }

    template <typename T> void get(T& value) {
        if constexpr (std::is_arithmetic_v<T> || std::is_enum_v<T>)
            take(&value, sizeof value);
        else
            forMembers(value, [this](auto& member) { this->get(member); });
    }
    void get(std::string& text) {
        text.resize(count(1));
        take(text.data(), text.size());
    }
    void get(std::vector<std::uint32_t>& table) {
        table.resize(count(sizeof(std::uint32_t)));
        take(table.data(), table.size() * sizeof(std::uint32_t));
    }
    template <typename T> void get(std::vector<T>& rows) {
        rows.resize(count(1)); // a row has at least one byte
        for (T& row : rows)
            get(row);
    }
    template <typename... T> void get(std::variant<T...>& value) {
        std::uint8_t index = 0;
        get(index);
        if (index >= sizeof...(T)) throw Malformed("a message has a part of an unknown kind");
        getAlternative(value, index, std::index_sequence_for<T...>());
    }

private:
    void take(void* to, std::size_t size) {
        if (size > m_bytes.size()) throw Malformed("a message ends too early");
        if (size > 0) std::memcpy(to, m_bytes.data(), size);
        m_bytes = m_bytes.subspan(size);
    }
    /** A count of elements of at least so many bytes: no memory is allocated for what did not come. */
    std::size_t count(std::size_t elementSize) {
        Count count = 0;
        get(count);
        if (count > m_bytes.size() / elementSize) throw Malformed("a message ends too early");
        return count;
    }
    template <typename Variant, std::size_t... indices>
    void getAlternative(Variant& value, std::size_t index, std::index_sequence<indices...>) {
        const auto one = [&]<std::size_t i>(std::integral_constant<std::size_t, i>) {
            if (i == index) get(value.template emplace<i>());
        };
        (one(std::integral_constant<std::size_t, indices>()), ...);
    }

    std::span<const std::uint8_t> m_bytes;
};

template <typename T> Bytes written(const T& message) {
    Writer writer;
    writer.put(message);
    return writer.take();
}

template <typename T> T readFrom(std::span<const std::uint8_t> bytes) {
    Reader reader(bytes);
    T message;
    reader.get(message);
    if (!reader.isAtEnd()) throw Malformed("a message is too long");
    return message;
}

} // namespace

Bytes encoded(const ToStation& message) { return written(message); }

Bytes encoded(const ToClient& message) { return written(message); }

std::size_t sizeOf(const applet_host::Parameter& parameter) { return written(parameter).size(); }

ToStation requestFrom(std::span<const std::uint8_t> bytes) { return readFrom<ToStation>(bytes); }

ToClient answerFrom(std::span<const std::uint8_t> bytes) { return readFrom<ToClient>(bytes); }

} // namespace station_channel
