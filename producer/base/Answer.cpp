#include "base/Answer.h"

#include "base/Error.h"

namespace producer {

Answer Answer::text(std::string_view text) {
    std::string bytes(text);
    bytes.push_back(0);
    return {INFO_DATATYPE_STRING, std::move(bytes)};
}

void InfoOutput::check() const {
    required(size, "size");
    required(type, "type");
}

void InfoOutput::put(const Answer& answer) const {
    check();
    putBytes(answer.raw(), buffer, size);
    *type = answer.type();
}

void putBytes(std::string_view bytes, void* buffer, std::size_t* size) {
    std::size_t& room = required(size, "size");
    if (buffer != nullptr) {
        if (room < bytes.size()) {
            throw Error(GC_ERR_BUFFER_TOO_SMALL, "the buffer has " + std::to_string(room) +
                                                     " bytes and the answer " + std::to_string(bytes.size()) +
                                                     ": ask with a null buffer first");
        }
        std::memcpy(buffer, bytes.data(), bytes.size());
    }
    room = bytes.size();
}

void putText(const std::string& text, char* buffer, std::size_t* size) {
    putBytes({text.c_str(), text.size() + 1}, buffer, size);
}

void refuseCommand(const char* of, std::int32_t command) {
    throw Error(GC_ERR_NOT_IMPLEMENTED,
                std::string(of) + " has no information of number " + std::to_string(command));
}

void refuseForNow(const char* why) { throw Error(GC_ERR_NOT_AVAILABLE, why); }

} // namespace producer
