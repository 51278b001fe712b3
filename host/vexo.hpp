/**
 * The host library for C++20, header-only over vexo.h: stations that are closed by their destructor, exceptions
 * with code and message, values by name.
 *
 *     vexo::Station station = vexo::Station::virtualBoard();
 *     station["FG_WIDTH"] = 2048;
 *     const auto width = station.get<int>("FG_WIDTH");
 *     const auto [minimum, maximum, step] = station["FG_XOFFSET"].range();
 *     for (const vexo::Picture& picture : station.pictures(10)) ...
 *
 * Every function throws vexo::Error for a negative result of the C function that it calls; vexo.h describes the
 * results, and what threads may do.
 */
#ifndef VEXO_VEXO_HPP
#define VEXO_VEXO_HPP

#include "vexo.h"

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace vexo {

/** A failed call: its code, message and details (JSON), as vexo.h describes them. */
class Error : public std::runtime_error {
public:
    /** The last error of this thread. */
    Error() : Error(vexo_last_code()) {}
    explicit Error(int code)
        : std::runtime_error(vexo_last_error())
        , m_code(code)
        , m_details(vexo_last_details()) {}

    int code() const noexcept { return m_code; }
    const std::string& details() const noexcept { return m_details; }

private:
    int m_code;
    std::string m_details;
};

/** Throws Error for a negative result; passes others on. */
inline int check(int result) {
    if (result < 0) throw Error(result);
    return result;
}

/** A type of number that a parameter can be set to. */
template <typename T>
concept Number = std::is_arithmetic_v<T> || std::is_enum_v<T>;

/** A type that a parameter can be read as. */
template <typename T>
concept Value = Number<T> || std::same_as<T, std::string>;

/** The answer to a question, as text and as a JSON document. */
struct Answer {
    std::string text, json;
    std::optional<vexo_range> range{}; /**< for limits of a number */
};

/** Time-outs of a wait. */
struct Timeout {
    double seconds = 1; /**< in the station's time */
    double wall = -1;   /**< of the wall clock; negative: none */
};

namespace detail {

struct Close {
    void operator()(vexo_station* station) const { vexo_close(station); }
};
struct Free {
    void operator()(char* text) const { vexo_free(text); }
    void operator()(vexo_answer* answer) const { vexo_answer_free(answer); }
};

/** Returns the text that a call gives. */
template <typename Call> std::string textOf(const Call& call) {
    char* text = nullptr;
    const int result = call(&text);
    const std::unique_ptr<char, Free> owner(text);
    check(result);
    return text;
}

/** Returns the answer that a call gives, and the call's result. */
template <typename Call> std::pair<Answer, int> answerOf(const Call& call) {
    vexo_answer* answer = nullptr;
    const int result = call(&answer);
    const std::unique_ptr<vexo_answer, Free> owner(answer);
    if (answer == nullptr) check(result);
    return {{vexo_answer_text(answer), vexo_answer_json(answer)}, result};
}

inline std::vector<const char*> pointersTo(std::span<const std::string> texts) {
    std::vector<const char*> pointers;
    pointers.reserve(texts.size());
    for (const std::string& text : texts)
        pointers.push_back(text.c_str());
    return pointers;
}

inline const char* orNull(const std::string& text) { return text.empty() ? nullptr : text.c_str(); }

} // namespace detail

class Station;

/** A parameter of an open station, which must outlive it. An assignment sets the value, also an assignment of
 *  another Parameter; it never rebinds the object. */
class Parameter {
public:
    Parameter(const Parameter&) = default;

    int id() const noexcept { return m_id; }

    vexo_parameter describe() const {
        vexo_parameter description{};
        check(vexo_describe(m_station, m_id, &description));
        return description;
    }
    std::string name() const { return describe().name; }

    /** The value as a number, or as std::string. Throws Error if it does not fit in the type. */
    template <Value T> T get() const {
        if constexpr (std::same_as<T, std::string>) {
            return text();
        } else if constexpr (std::same_as<T, bool>) {
            return get<std::uint64_t>() != 0;
        } else if constexpr (std::is_enum_v<T>) {
            return static_cast<T>(get<std::underlying_type_t<T>>());
        } else if constexpr (std::floating_point<T>) {
            double value = 0;
            check(vexo_get_double(m_station, m_id, &value));
            return static_cast<T>(value);
        } else if constexpr (std::is_unsigned_v<T>) {
            std::uint64_t value = 0;
            check(vexo_get_uint(m_station, m_id, &value));
            return fitting<T>(value);
        } else {
            std::int64_t value = 0;
            check(vexo_get_int(m_station, m_id, &value));
            return fitting<T>(value);
        }
    }
    /** Elements of a field. */
    std::vector<std::uint32_t> elements(std::uint32_t first, std::uint32_t count) const {
        std::vector<std::uint32_t> values(count);
        check(vexo_get_field(m_station, m_id, first, count, values.data()));
        return values;
    }

    template <Number T> void set(T value) const {
        if constexpr (std::is_enum_v<T>)
            check(vexo_set_int(m_station, m_id, static_cast<std::int64_t>(value)));
        else if constexpr (std::floating_point<T>)
            check(vexo_set_double(m_station, m_id, value));
        else if constexpr (std::is_unsigned_v<T>)
            check(vexo_set_uint(m_station, m_id, value));
        else
            check(vexo_set_int(m_station, m_id, value));
    }
    /** A text, a symbol or label of an enumeration, or a number as text. */
    void set(const std::string& text) const { check(vexo_set_text(m_station, m_id, text.c_str())); }
    void set(const char* text) const { check(vexo_set_text(m_station, m_id, text)); }
    void setElements(std::uint32_t first, std::span<const std::uint32_t> values) const {
        check(
            vexo_set_field(m_station, m_id, first, static_cast<std::uint32_t>(values.size()), values.data()));
    }
    template <typename T> const Parameter& operator=(const T& value) const {
        set(value);
        return *this;
    }

    /** Sets this parameter to the value of the other one, which may be of another kind of number. Either both are
     *  fields of the same length, or neither is a field. */
    const Parameter& operator=(const Parameter& other) const {
        if (this == &other) return *this;
        const vexo_parameter source = other.describe();
        switch (source.kind) {
        case VEXO_FIELD:
            if (const std::uint32_t length = describe().elements; length != 0 && length != source.elements)
                throw std::length_error(name() + " has " + std::to_string(length) + " elements, and " +
                                        source.name + " has " + std::to_string(source.elements));
            setElements(0, other.elements(0, source.elements));
            break;
        case VEXO_TEXT:
            set(other.get<std::string>());
            break;
        case VEXO_DOUBLE:
            set(other.get<double>());
            break;
        case VEXO_UINT64:
            set(other.get<std::uint64_t>());
            break;
        default:
            set(other.get<std::int64_t>());
        }
        return *this;
    }

    /** Reads the range that is published now. */
    vexo_range range() const {
        vexo_range published{};
        check(vexo_get_range(m_station, m_id, &published));
        return published;
    }
    /** Finds what setters accept now, and what sets the limits; `with`: assignments that are assumed to be set
     *  before. */
    Answer limits(const std::string& with = "") const {
        vexo_range range{};
        const std::string parameter = name();
        auto [answer, code] = detail::answerOf([&](vexo_answer** out) {
            return vexo_ask_limits(m_station, parameter.c_str(), detail::orNull(with), &range, out);
        });
        if (code == VEXO_OK) answer.range = range; // otherwise it is not a number
        return answer;
    }
    /** Finds why the parameter is read-only, or refuses a value. */
    Answer why(const std::string& value = "", const std::string& with = "") const {
        const std::string question = value.empty() ? name() : name() + "=" + value;
        return detail::answerOf([&](vexo_answer** out) {
                   return vexo_ask_why(m_station, question.c_str(), detail::orNull(with), out);
               })
            .first;
    }
    std::vector<vexo_entry> entries() const {
        std::vector<vexo_entry> all(describe().entries);
        for (std::uint32_t i = 0; i < all.size(); ++i)
            check(vexo_entry_at(m_station, m_id, i, &all[i]));
        return all;
    }

private:
    std::string text() const {
        std::string words(64, '\0');
        std::size_t size = words.size();
        while (vexo_get_text(m_station, m_id, words.data(), &size) != VEXO_OK) {
            if (vexo_last_code() != VEXO_ERR_SPACE) throw Error();
            words.resize(size);
        }
        words.resize(size - 1);
        return words;
    }
    friend class Station;

    Parameter(vexo_station* station, int id) : m_station(station), m_id(id) {}

    template <typename To, typename From> To fitting(From value) const {
        if (static_cast<From>(static_cast<To>(value)) == value) return static_cast<To>(value);
        throw std::out_of_range(name() + ": " + std::to_string(value) + " does not fit in the type");
    }

    vexo_station* m_station;
    int m_id;
};

/** A picture in memory. */
class Picture {
public:
    Picture(const vexo_picture& picture, std::vector<std::uint8_t> bytes)
        : m_picture(picture)
        , m_bytes(std::move(bytes)) {}

    /** Its description: number, size, times. */
    const vexo_picture& info() const noexcept { return m_picture; }
    std::uint32_t width() const noexcept { return m_picture.width; }
    std::uint32_t height() const noexcept { return m_picture.height; }
    /** Lines of blue, green, red (see vexo_render). */
    std::span<const std::uint8_t> bytes() const noexcept { return m_bytes; }
    /** Red, green, blue of each pixel, 16 bits each. */
    std::vector<std::uint16_t> pixels() const {
        std::vector<std::uint16_t> components(std::size_t{3} * m_picture.width * m_picture.height);
        check(vexo_unpack(&m_picture, m_bytes.data(), components.data()));
        return components;
    }
    /** Writes the picture to a file, in the format of its suffix. */
    void write(const std::string& file) const {
        check(vexo_write_picture(&m_picture, m_bytes.data(), file.c_str()));
    }

private:
    vexo_picture m_picture;
    std::vector<std::uint8_t> m_bytes;
};

/** A running acquisition, which ends with the object, as a range of its pictures. Each picture is rendered when the
 *  iteration reaches it. Only one thread at a time may use it. */
class Pictures {
public:
    class Iterator;

    Pictures(vexo_station* station, std::uint64_t count, Timeout timeout, std::uint32_t frames,
             vexo_memory memory)
        : m_station(station)
        , m_left(count)
        , m_timeout(timeout)
        , m_memory(memory) {
        check(vexo_start(station, frames, memory));
    }
    ~Pictures() {
        if (m_station != nullptr) vexo_stop(m_station);
    }
    Pictures(Pictures&& other) noexcept
        : m_station(std::exchange(other.m_station, nullptr))
        , m_left(other.m_left)
        , m_timeout(other.m_timeout)
        , m_memory(other.m_memory) {}
    /** Ends the acquisition of this object, and takes over the other one. */
    Pictures& operator=(Pictures&& other) noexcept {
        Pictures(std::move(other)).swap(*this);
        return *this;
    }

    /** Waits for the next picture and renders it. */
    Picture next() {
        vexo_picture record{};
        check(vexo_wait_picture(m_station, 0, m_timeout.seconds, m_timeout.wall, &record));
        std::vector<std::uint8_t> bytes(record.size);
        check(vexo_render(m_station, record.number, bytes.data(), bytes.size()));
        if (m_memory == VEXO_KEEP) check(vexo_release(m_station, record.number));
        return {record, std::move(bytes)};
    }

    Iterator begin();
    static std::default_sentinel_t end() { return std::default_sentinel; }

private:
    void swap(Pictures& other) noexcept {
        std::swap(m_station, other.m_station);
        std::swap(m_left, other.m_left);
        std::swap(m_timeout, other.m_timeout);
        std::swap(m_memory, other.m_memory);
    }

    vexo_station* m_station;
    std::uint64_t m_left;
    Timeout m_timeout;
    vexo_memory m_memory;
};

/** An input iterator over the pictures. Dereferencing or incrementing waits for the picture. */
class Pictures::Iterator {
public:
    using value_type = Picture;
    using difference_type = std::ptrdiff_t;

    explicit Iterator(Pictures& pictures) : m_pictures(&pictures) {}
    const Picture& operator*() const { return taken(); }
    const Picture* operator->() const { return &taken(); }
    Iterator& operator++() {
        taken();
        m_picture.reset();
        return *this;
    }
    void operator++(int) { ++*this; }
    bool operator==(std::default_sentinel_t) const noexcept { return !m_picture && m_pictures->m_left == 0; }

private:
    const Picture& taken() const {
        if (m_picture) return *m_picture;
        --m_pictures->m_left;
        return m_picture.emplace(m_pictures->next());
    }

    Pictures* m_pictures;
    mutable std::optional<Picture> m_picture;
};

inline Pictures::Iterator Pictures::begin() { return Iterator(*this); }

/** An open station; it is closed with the object. */
class Station {
public:
    /** Opens a station with these options; their `size` is filled in. */
    explicit Station(vexo_options options) {
        options.size = sizeof options;
        vexo_station* opened = nullptr;
        check(vexo_open(&options, &opened));
        m_station.reset(opened);
    }
    /** Opens a virtual board, set up from a station file if one is named. */
    static Station virtualBoard(const std::string& stationFile = "") {
        vexo_options options{};
        options.station = detail::orNull(stationFile);
        return Station(options);
    }
    static Station offline() {
        vexo_options options{};
        options.board = VEXO_OFFLINE;
        return Station(options);
    }
    /** Opens the board of this machine; `bridge` is the library that opens it, if the board library does not. */
    static Station systemBoard(const std::string& bridge = "") {
        vexo_options options{};
        options.board = VEXO_SYSTEM;
        options.bridge = detail::orNull(bridge);
        return Station(options);
    }

    /** The handle for functions of vexo.h. */
    vexo_station* handle() const noexcept { return m_station.get(); }

    Parameter operator[](const std::string& name) const {
        return {handle(), check(vexo_id(handle(), name.c_str()))};
    }
    Parameter operator[](int id) const {
        vexo_parameter known{};
        check(vexo_describe(handle(), id, &known));
        return {handle(), id};
    }
    template <typename T> T get(const std::string& name) const { return (*this)[name].template get<T>(); }
    template <typename T> void set(const std::string& name, const T& value) { (*this)[name].set(value); }
    /** Sets all parameters or none: "FG_WIDTH=2048". */
    void set(std::span<const std::string> assignments, vexo_order order = VEXO_GIVEN_ORDER) {
        const auto pointers = detail::pointersTo(assignments);
        check(vexo_set_all(handle(), pointers.data(), pointers.size(), order));
    }
    void set(std::initializer_list<std::string> assignments, vexo_order order = VEXO_GIVEN_ORDER) {
        set(std::span(assignments.begin(), assignments.size()), order);
    }
    /** All parameters in the order of the tree. */
    std::vector<Parameter> parameters() const {
        std::vector<Parameter> all;
        vexo_parameter description{};
        for (std::uint32_t i = 0; i < vexo_count(handle()); ++i) {
            check(vexo_parameter_at(handle(), i, &description));
            all.push_back(Parameter(handle(), description.id));
        }
        return all;
    }

    void save(const std::string& file) const { check(vexo_save(handle(), file.c_str())); }
    void load(const std::string& file) { check(vexo_load(handle(), file.c_str())); }
    /** The XML document of the parameters. */
    std::string document() const {
        return detail::textOf([&](char** out) { return vexo_document(handle(), out); });
    }
    /** Describes the station, as JSON. */
    std::string info() const {
        return detail::textOf([&](char** out) { return vexo_info(handle(), out); });
    }

    /** Finds the effects of the assignments; nothing is set. */
    Answer plan(std::span<const std::string> assignments) const {
        const auto pointers = detail::pointersTo(assignments);
        return detail::answerOf([&](vexo_answer** out) {
                   return vexo_ask_plan(handle(), pointers.data(), pointers.size(), out);
               })
            .first;
    }
    Answer plan(std::initializer_list<std::string> assignments) const {
        return plan(std::span(assignments.begin(), assignments.size()));
    }
    /** Finds what a load of the file would lose. */
    Answer losses(const std::string& file) const {
        return detail::answerOf(
                   [&](vexo_answer** out) { return vexo_ask_check(handle(), file.c_str(), out); })
            .first;
    }
    /** Finds settings that are accepted, but probably not intended. */
    Answer lint() const {
        return detail::answerOf([&](vexo_answer** out) { return vexo_ask_lint(handle(), out); }).first;
    }

    /** Makes time follow the wall clock, `factor` times as fast; 0: makes it stepped. */
    void clock(double factor) { check(vexo_clock(handle(), factor)); }
    std::uint64_t now() const {
        std::uint64_t tick = 0;
        check(vexo_now(handle(), &tick));
        return tick;
    }
    void advance(std::uint64_t ticks) { check(vexo_advance(handle(), ticks)); }
    void wave(const std::string& wave) { check(vexo_wave(handle(), wave.c_str())); }
    void setUp(const std::string& file) { check(vexo_set_up(handle(), file.c_str())); }

    std::uint64_t eventMask(const std::string& name) const {
        std::uint64_t mask = 0;
        check(vexo_event_mask(handle(), name.c_str(), &mask));
        return mask;
    }
    /** Waits for the next event of the mask (0: any); empty after the time-out. */
    std::optional<vexo_event> waitEvent(std::uint64_t mask = 0, Timeout timeout = {}) {
        vexo_event event{};
        const int code = vexo_wait_event(handle(), mask, timeout.seconds, timeout.wall, &event, nullptr);
        if (code == VEXO_TIMEOUT) return std::nullopt;
        check(code);
        return event;
    }

    /** Starts an acquisition of `count` pictures. */
    Pictures pictures(std::uint64_t count = std::numeric_limits<std::uint64_t>::max(), Timeout timeout = {},
                      std::uint32_t frames = 4, vexo_memory memory = VEXO_KEEP) {
        return {handle(), count, timeout, frames, memory};
    }
    /** Takes one picture. */
    Picture grab(Timeout timeout = {}) { return pictures(1, timeout).next(); }

private:
    std::unique_ptr<vexo_station, detail::Close> m_station;
};

} // namespace vexo

#endif
