/** Texts that the runtime writes into a buffer of unknown size: its interface has no size argument. */
#ifndef ENTRY_RUNTIME_RUNTIME_TEXT_H
#define ENTRY_RUNTIME_RUNTIME_TEXT_H

#include <cstddef>
#include <string>

/** Prefix of the names of the design's parameters of process 0. */
inline constexpr char process0[] = "Device1_Process0_";

/** Value of the digit at an index; other characters, and the end of the text, give their code minus '0'. */
inline int digitAt(const std::string& text, std::size_t index) {
    return (index < text.size() ? text[index] : '\0') - '0';
}

/** Room for any text of a design: the whole design has half as many bytes. */
inline constexpr std::size_t runtimeTextRoom = 16 << 20;

/**
 * A buffer that texts of the runtime are written to, one after the other, zeroed each time. It is reserved
 * address space: only the pages that the runtime writes to use memory, and the destructor releases them.
 */
class RuntimeTextRoom {
public:
    /** Room for at least `length` characters. Throws std::bad_alloc. */
    explicit RuntimeTextRoom(std::size_t length = 0);
    ~RuntimeTextRoom();
    RuntimeTextRoom(const RuntimeTextRoom&) = delete;
    RuntimeTextRoom& operator=(const RuntimeTextRoom&) = delete;

    /** Returns the text that `read` writes to the address passed to it. */
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
