#include "virtual_board/board/AccessLog.h"

#include "vexo/fg_api.h"
#include "virtual_board/board/numbers.h"
#include "virtual_board/tables/design_tables.h"
#include "virtual_board/tables/runtime_entries.h"
#include "virtual_board/virtual_board.h"

#include <algorithm>
#include <utility>

namespace vboard {
namespace {

/** Name of the accessed item; "#" and the id if the design has no name for it. */
std::string subjectOf(const Access& access) {
    const auto row = static_cast<std::size_t>(access.row);
    std::string byId = "#" + std::to_string(access.id);
    if (access.row < 0) return byId;
    if (access.kind == VBOARD_CALL) return std::string(runtimeEntries[row].name);
    if ((access.kind & (VBOARD_REGISTER_READ | VBOARD_REGISTER_WRITE)) != 0) return registerRows()[row].name;
    return parameterRows()[row].number == 0 ? parameterRows()[row].name : byId;
}

const char* verbOf(const Access& access) {
    switch (access.kind) {
    case VBOARD_SET:
        return "set ";
    case VBOARD_GET:
        return "get ";
    case VBOARD_REGISTER_WRITE:
        return "write ";
    case VBOARD_REGISTER_READ:
        return "read ";
    case VBOARD_RESOLVE:
        return "resolve ";
    default:
        return "call ";
    }
}

std::string tagWord(int tag) {
    if (tag == FG_PARAM_ALLOCATED_STRING) return typeWord(Type::text);
    if (const auto type = typeOfTag(tag)) return typeWord(*type);
    return "tag" + std::to_string(tag);
}

} // namespace

// Enough for most sessions, so that the log seldom has to grow; unused room costs no memory.
AccessLog::AccessLog() : m_kinds(VBOARD_SET | VBOARD_GET | VBOARD_REGISTER_WRITE | VBOARD_REGISTER_READ) {
    m_accesses.reserve(16384);
}

void AccessLog::add(const Access& access) {
    if (m_accesses.size() < capacity) m_accesses.push_back(access);
}

void AccessLog::add(Access access, std::string text) {
    if (m_accesses.size() >= capacity) return;
    // Keeps the text on one line.
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r'; }, '?');
    access.content = Access::words;
    access.value = m_texts.size();
    m_texts.push_back(std::move(text));
    m_accesses.push_back(access);
}

void AccessLog::clear() {
    m_accesses.clear();
    m_texts.clear();
}

std::string AccessLog::line(std::size_t index) const {
    const Access& access = m_accesses[index];
    std::string text = verbOf(access);
    if (access.kind == VBOARD_RESOLVE)
        return text + m_texts[access.value] + " = " + std::to_string(access.id);
    text += subjectOf(access);
    if (access.kind != VBOARD_CALL) text += " " + tagWord(access.tag);
    switch (access.content) {
    case Access::number:
        text += " " + numberText(*typeOfTag(access.tag), access.value);
        break;
    case Access::words:
        text += " " + m_texts[access.value];
        break;
    case Access::run:
        text += " " + std::to_string(access.value & 0xffffffff) + "+" + std::to_string(access.value >> 32);
        break;
    case Access::nothing:
        break;
    }
    if (access.code != 0) text += " = " + std::to_string(access.code);
    return text;
}

} // namespace vboard
