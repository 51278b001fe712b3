/** Texts that the runtime writes into a buffer of unknown size: its interface has no size argument. */
#ifndef ENTRY_RUNTIME_RUNTIME_TEXT_H
#define ENTRY_RUNTIME_RUNTIME_TEXT_H

#include <cstddef>
#include <string>

/** What the names of the design's parameters of process 0 begin with. */
inline constexpr char process0[] = "Device1_Process0_";

/** Value of the digit at a place of a text; of what is none, and behind the end, what its code gives. */
inline int digitAt(const std::string& text, std::size_t place) {
    return (place < text.size() ? text[place] : '\0') - '0';
}

/** Room for any text of a design: a design as a whole has half as many bytes. */
inline constexpr std::size_t runtimeTextRoom = 16 << 20;

/**
 * Room that texts of the runtime are written to, one after the other, zeroed each time. It is reserved address space:
 * only the pages that the runtime writes to take memory, and they go with the room.
 */
class RuntimeTextRoom {
public:
    /** Room for `length` characters at least. Throws std::bad_alloc. */
    explicit RuntimeTextRoom(std::size_t length = 0);
    ~RuntimeTextRoom();
    RuntimeTextRoom(const RuntimeTextRoom&) = delete;
    RuntimeTextRoom& operator=(const RuntimeTextRoom&) = delete;

    /** The text that `read` writes to the place that it is called with. */
    template <typename Read> std::string take(Read read) {
        clear();
        read(m_data);
        return text();
    }

private:
    void clear();
    std::string text();

    char* m_data;
    std::size_t m_size;
    std::size_t m_used = 0;
};

#endif
