/** Texts that the runtime writes into a place; it is not told how much room there is. */
#ifndef ENTRY_RUNTIME_TEXT_H
#define ENTRY_RUNTIME_TEXT_H

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
 * Zeroed room for one text. It is reserved address space: only the pages that the runtime writes to take memory, and
 * they are given back at once.
 */
class RuntimeTextRoom {
public:
    /** Throws std::bad_alloc. */
    explicit RuntimeTextRoom(std::size_t size);
    ~RuntimeTextRoom();
    RuntimeTextRoom(const RuntimeTextRoom&) = delete;
    RuntimeTextRoom& operator=(const RuntimeTextRoom&) = delete;

    char* data() { return m_data; }
    /** What was written, cut to the room. */
    std::string text() const;

private:
    char* m_data;
    std::size_t m_size;
};

/** The text that `read` writes into a zeroed place with room for `room` characters at least. */
template <typename Read> std::string readRuntimeText(Read read, std::size_t room = runtimeTextRoom) {
    RuntimeTextRoom place(room > runtimeTextRoom ? room : runtimeTextRoom);
    read(place.data());
    return place.text();
}

#endif
