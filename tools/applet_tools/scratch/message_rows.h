/** Records as messages of the scratch board: one list of members for both directions. */
#ifndef APPLET_TOOLS_SCRATCH_MESSAGE_ROWS_H
#define APPLET_TOOLS_SCRATCH_MESSAGE_ROWS_H

#include "applet_tools/scratch/BoardState.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace applet_tools {

/** Specialised for each record with its members in the order of the message:
 *  `static constexpr auto rows = std::tuple(&Record::parameter, &Record::limit);` */
template <typename Record> struct MessageRows;

template <typename T>
concept HasMessageRows = requires {
    MessageRows<T>::rows;
};

template <typename T> struct MessageOf;

/** The record, or one of its members: numbers, texts, values, documents, optional ones and lists of them. */
template <typename T> json toMessage(const T& value) { return MessageOf<T>::from(value); }
/** The same back. Throws an exception of the JSON library for another message. */
template <typename T> T recordFrom(const json& message) { return MessageOf<T>::to(message); }

template <typename T> struct MessageOf {
    static json from(const T& value) { return value; }
    static T to(const json& message) { return message.get<T>(); }
};

template <HasMessageRows T> struct MessageOf<T> {
    static json from(const T& record) {
        json cells = json::array();
        const auto add = [&](auto member) { cells.push_back(toMessage(record.*member)); };
        std::apply([&](auto... members) { (add(members), ...); }, MessageRows<T>::rows);
        return cells;
    }
    static T to(const json& message) {
        T record{};
        std::size_t index = 0;
        const auto take = [&](auto member) {
            using Member = std::remove_reference_t<decltype(record.*member)>;
            record.*member = recordFrom<Member>(message.at(index++));
        };
        std::apply([&](auto... members) { (take(members), ...); }, MessageRows<T>::rows);
        return record;
    }
};

/** Whether a value is measured depends on the live board, which the scratch board does not know. */
template <> struct MessageRows<ReadResult> {
    static constexpr auto rows = std::tuple(&ReadResult::error, &ReadResult::value);
};

template <> struct MessageOf<Value> {
    static json from(const Value& value) { return asTypedMessage(value); }
    static Value to(const json& message) { return fromTypedMessage(message); }
};

/** As text, which keeps the order of members. */
template <> struct MessageOf<nlohmann::ordered_json> {
    static json from(const nlohmann::ordered_json& document) {
        return document.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
    }
    static nlohmann::ordered_json to(const json& message) {
        return nlohmann::ordered_json::parse(message.get<std::string>());
    }
};

template <typename T> struct MessageOf<std::optional<T>> {
    static json from(const std::optional<T>& value) { return value ? toMessage(*value) : json(); }
    static std::optional<T> to(const json& message) {
        return message.is_null() ? std::nullopt : std::optional<T>(recordFrom<T>(message));
    }
};

template <typename T> struct MessageOf<std::vector<T>> {
    static json from(const std::vector<T>& values) {
        json rows = json::array();
        for (const T& value : values)
            rows.push_back(toMessage(value));
        return rows;
    }
    static std::vector<T> to(const json& message) {
        std::vector<T> values;
        for (const json& row : message)
            values.push_back(recordFrom<T>(row));
        return values;
    }
};

} // namespace applet_tools

#endif
