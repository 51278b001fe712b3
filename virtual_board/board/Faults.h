/** Faults injected into a board: accesses that fail, and forced answers of the runtime. */
#ifndef VIRTUAL_BOARD_BOARD_FAULTS_H
#define VIRTUAL_BOARD_BOARD_FAULTS_H

#include "virtual_board/board/AccessLog.h"
#include "virtual_board/tables/runtime_entries.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace vboard {

/** The caller holds the board's mutex. */
class Faults {
public:
    Faults() { reset(); }
    void reset();

    /** The code with which an access must fail, or 0. Only a counted access can be the k-th. */
    int due(const Access& access, bool isCounted);
    /** The forced answer of a function of the runtime, if any. */
    std::optional<std::int64_t> answer(int function) const;

    /** Access number `k` from now on fails, and all later ones too if `fromThenOn`; 0: none fails. */
    void failAccess(unsigned k, int code, bool fromThenOn);
    /** Accesses counted since then. */
    unsigned accessCount() const { return m_accessCount; }
    /** Every access of this parameter or register fails; code 0 ends that. False for an unknown name. */
    bool failName(std::string_view name, int code);
    void setAnswer(int function, std::int64_t value);

private:
    bool isKthAccess() const;

    unsigned m_accessCount = 0;
    unsigned m_failingAccess = 0; // 0: none
    int m_failingCode = 0;
    bool m_failFromThenOn = false;
    std::vector<int> m_parameters; // codes, by row
    std::vector<int> m_registers;  // codes, by row
    std::array<std::optional<std::int64_t>, std::size(runtimeEntries)> m_answers;
};

} // namespace vboard

#endif
