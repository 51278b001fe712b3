/** Answers of info functions. */
#ifndef PRODUCER_BASE_ANSWER_H
#define PRODUCER_BASE_ANSWER_H

#include "gentl.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace producer {

/** A value with its type. */
class Answer {
public:
    static Answer text(std::string_view text);
    static Answer flag(bool value) { return of(INFO_DATATYPE_BOOL8, static_cast<bool8_t>(value)); }
    static Answer int32(std::int32_t value) { return of(INFO_DATATYPE_INT32, value); }
    static Answer uint32(std::uint32_t value) { return of(INFO_DATATYPE_UINT32, value); }
    static Answer uint64(std::uint64_t value) { return of(INFO_DATATYPE_UINT64, value); }
    static Answer size(std::size_t value) { return of(INFO_DATATYPE_SIZET, value); }
    static Answer pointer(const void* value) { return of(INFO_DATATYPE_PTR, value); }
    static Answer bytes(std::string_view bytes) { return {INFO_DATATYPE_BUFFER, std::string(bytes)}; }

    INFO_DATATYPE type() const { return m_type; }
    const std::string& raw() const { return m_bytes; }

private:
    Answer(INFO_DATATYPE type, std::string bytes) : m_type(type), m_bytes(std::move(bytes)) {}
    template <typename T> static Answer of(INFO_DATATYPE type, T value) {
        std::string bytes(sizeof value, 0);
        std::memcpy(bytes.data(), &value, sizeof value);
        return {type, std::move(bytes)};
    }

    INFO_DATATYPE m_type;
    std::string m_bytes;
};

/** The output arguments of an info function. */
struct InfoOutput {
    INFO_DATATYPE* type;
    void* buffer; /**< null: the caller asks only for the size */
    std::size_t* size;

    /** Throws INVALID_PARAMETER if type or size is null. */
    void check() const;
    /** Throws BUFFER_TOO_SMALL, with the required size in the text. */
    void put(const Answer& answer) const;
};

/** Copies bytes to the caller's buffer with the same rules, without a type. */
void putBytes(std::string_view bytes, void* buffer, std::size_t* size);
/** A text, including the terminating null. */
void putText(const std::string& text, char* buffer, std::size_t* size);

/** Throws NOT_IMPLEMENTED: this object does not have the command. */
[[noreturn]] void refuseCommand(const char* of, std::int32_t command);
/** Throws NOT_AVAILABLE: the command is known but has no answer now. */
[[noreturn]] void refuseForNow(const char* why);

} // namespace producer

#endif
