#include "access_log.h"

#include "vexo/fg_api.h"
#include "virtual_board.h"

#include <array>
#include <bit>
#include <charconv>

namespace vboard {

namespace {

std::string shortest(double number) {
    std::array<char, 64> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), end.ptr};
}

/** The type's word and, unless a get failed, the value. */
std::string valueOf(const Access& access, bool withValue) {
    const auto word = static_cast<std::uint32_t>(access.bits);
    const auto line = [&](const char* type, const std::string& value) {
        return std::string(" ") + type + (withValue ? " " + value : "");
    };
    switch (access.type) {
    case FG_PARAM_INT32:
        return line("i32", std::to_string(static_cast<std::int32_t>(word)));
    case FG_PARAM_UINT32:
        return line("u32", std::to_string(word));
    case FG_PARAM_INT64:
        return line("i64", std::to_string(static_cast<std::int64_t>(access.bits)));
    case FG_PARAM_UINT64:
        return line("u64", std::to_string(access.bits));
    case FG_PARAM_DOUBLE:
        return line("f64", shortest(std::bit_cast<double>(access.bits)));
    case FG_PARAM_TEXT:
    case FG_PARAM_ALLOCATED_STRING:
        return line("text", access.text);
    case FG_PARAM_FIELD_ACCESS:
    case FG_PARAM_FIELD_INT:
        return line("field", std::to_string(word) + "+" + std::to_string(access.bits >> 32));
    default:
        return line("tag", std::to_string(access.type));
    }
}

} // namespace

std::string lineOf(const Access& access) {
    const bool failed = access.result != 0;
    const std::string ending = failed ? " = " + std::to_string(access.result) : "";
    const char* name = access.name != nullptr ? access.name : access.text.c_str();
    switch (access.kind) {
    case VBOARD_SET:
        return std::string("set ") + name + valueOf(access, true) + ending;
    case VBOARD_GET:
        return std::string("get ") + name + valueOf(access, !failed) + ending;
    case VBOARD_REGISTER_WRITE:
    case VBOARD_REGISTER_READ: {
        const bool write = access.kind == VBOARD_REGISTER_WRITE;
        std::string line =
            std::string(write ? "write " : "read ") + name + (access.type > 32 ? " u64" : " u32");
        if (write || !failed) line += " " + std::to_string(access.bits);
        return line + ending;
    }
    case VBOARD_RESOLVE:
        return std::string("resolve ") + name + " = " + std::to_string(access.bits);
    default:
        return std::string("call ") + name + ending;
    }
}

void AccessLog::add(Access access) {
    if (m_accesses.size() == mostAccesses) m_accesses.pop_front();
    m_accesses.push_back(std::move(access));
}

void Faults::failAccess(unsigned k, int code, bool fromThenOn) {
    m_count = 0;
    m_failing = k;
    m_code = code;
    m_fromThenOn = fromThenOn;
}

void Faults::failName(const std::string& name, int code) {
    if (code == 0)
        m_byName.erase(name);
    else
        m_byName[name] = code;
}

int Faults::next(const char* name) {
    ++m_count;
    if (m_failing != 0 && (m_count == m_failing || (m_fromThenOn && m_count > m_failing))) return m_code;
    if (m_byName.empty() || name == nullptr) return 0;
    const auto found = m_byName.find(name);
    return found != m_byName.end() ? found->second : 0;
}

} // namespace vboard
