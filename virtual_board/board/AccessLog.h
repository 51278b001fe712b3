/** The accesses of one board in order. Lines of text are made on demand. */
#ifndef VIRTUAL_BOARD_BOARD_ACCESSLOG_H
#define VIRTUAL_BOARD_BOARD_ACCESSLOG_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vboard {

/** One access as it is logged. */
struct Access {
    /** Content of `value`. */
    enum Content : std::uint8_t { nothing, number, words, run };

    std::uint8_t kind = 0; // one of VBOARD_SET and so on
    Content content = nothing;
    std::int16_t row = -1; // of the parameter, register or function, by kind; -1: there is none
    std::int32_t tag = 0;  // how the caller passes the value
    std::int32_t id = 0;   // as the caller passed it; for a resolve, the result
    std::int32_t code = 0;
    std::uint64_t value = 0; // bits of a number; position of a text; first element and, above it, the count
};

class AccessLog {
public:
    /** When the log is full, later accesses are not logged. */
    static constexpr std::size_t capacity = 1'000'000;

    AccessLog();
    /** Whether accesses of a kind are logged, and counted for faults. At start all but VBOARD_RESOLVE and
     *  VBOARD_CALL. */
    bool includes(int kind) const { return (m_kinds & static_cast<unsigned>(kind)) != 0; }
    void setKinds(unsigned mask) { m_kinds = mask; }

    void add(const Access& access);
    /** The same for an access that has a text as its value. */
    void add(Access access, std::string text);
    std::size_t size() const { return m_accesses.size(); }
    void clear();
    std::string line(std::size_t index) const;

private:
    unsigned m_kinds;
    std::vector<Access> m_accesses;
    std::vector<std::string> m_texts;
};

} // namespace vboard

#endif
