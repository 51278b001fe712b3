/** The numbers of objects that exist in the process. */
#ifndef VIRTUAL_BOARD_BOARD_LIVE_H
#define VIRTUAL_BOARD_BOARD_LIVE_H

namespace vboard {

/** Counts the objects of each kind that exist in the process. */
class Live {
public:
    enum Kind { boards, designs, handles, strings, kinds };

    explicit Live(Kind kind) : m_kind(kind) { add(kind, 1); }
    ~Live() { add(m_kind, -1); }
    Live(const Live&) = delete;
    Live& operator=(const Live&) = delete;

    static void add(Kind kind, int number);
    static int count(Kind kind);

private:
    Kind m_kind;
};

} // namespace vboard

#endif
