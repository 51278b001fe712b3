#include "virtual_board/board/Faults.h"

#include "virtual_board/tables/design_tables.h"
#include "virtual_board/virtual_board.h"

namespace vboard {
void Faults::reset() {
    m_accessCount = m_failingAccess = 0;
    m_parameters.assign(parameterRows().size(), 0);
    m_registers.assign(registerRows().size(), 0);
    m_answers.fill(std::nullopt);
}

bool Faults::isKthAccess() const {
    if (m_failingAccess == 0) return false;
    return m_failFromThenOn ? m_accessCount >= m_failingAccess : m_accessCount == m_failingAccess;
}

int Faults::due(const Access& access, bool isCounted) {
    if (isCounted) {
        ++m_accessCount;
        if (isKthAccess()) return m_failingCode;
    }
    if (access.row < 0) return 0;
    if ((access.kind & (VBOARD_SET | VBOARD_GET)) != 0) return m_parameters[indexOf(access.row)];
    if ((access.kind & (VBOARD_REGISTER_WRITE | VBOARD_REGISTER_READ)) != 0)
        return m_registers[indexOf(access.row)];
    return 0;
}

std::optional<std::int64_t> Faults::answer(int function) const { return m_answers[indexOf(function)]; }

void Faults::failAccess(unsigned k, int code, bool fromThenOn) {
    m_accessCount = 0;
    m_failingAccess = k;
    m_failingCode = code;
    m_failFromThenOn = fromThenOn;
}

bool Faults::failName(std::string_view name, int code) {
    if (const int row = findParameter(name); row >= 0) {
        m_parameters[indexOf(row)] = code;
        return true;
    }
    if (const int row = findRegister(name); row >= 0) {
        m_registers[indexOf(row)] = code;
        return true;
    }
    return false;
}

void Faults::setAnswer(int function, std::int64_t value) { m_answers[indexOf(function)] = value; }

} // namespace vboard
