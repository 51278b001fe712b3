/** Helpers of the fuzz targets. */
#ifndef FUZZ_INVARIANTS_H
#define FUZZ_INVARIANTS_H

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

/** Aborts unless the invariant holds, so that the fuzzer keeps the input. Prints `about` with it. */
inline void require(bool holds, const char* invariant, int about = 0) {
    if (holds) return;
    std::fprintf(stderr, "broken invariant: %s (%d)\n", invariant, about);
    std::abort();
}

/** Takes values from the input; 0 after its end. */
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : m_next(data), m_end(data + size) {}

    bool isEmpty() const { return m_next == m_end; }
    unsigned byte() { return isEmpty() ? 0 : *m_next++; }
    std::uint64_t word() {
        std::uint64_t value = 0;
        for (int shift = 0; shift < 64; shift += 8)
            value |= std::uint64_t{byte()} << shift;
        return value;
    }
    int integer() { return static_cast<int>(word()); }
    /** Without a slash, so that no file elsewhere can be named. */
    std::string text() {
        std::string text(byte(), ' ');
        std::ranges::generate(text, [&] { return static_cast<char>(byte()); });
        std::ranges::replace(text, '/', '_');
        return text;
    }

private:
    const std::uint8_t* m_next;
    const std::uint8_t* const m_end;
};

/** Writes a file once for each input; the file stays open. */
class InputFile {
public:
    explicit InputFile(std::string path)
        : m_path(std::move(path))
        , m_descriptor(open(m_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600)) {
        require(m_descriptor >= 0, "there is room for the input");
    }
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;
    ~InputFile() { close(m_descriptor); }

    void fill(const void* bytes, std::size_t size) {
        const bool isWhole = pwrite(m_descriptor, bytes, size, 0) == static_cast<ssize_t>(size) &&
                             ftruncate(m_descriptor, static_cast<off_t>(size)) == 0;
        require(isWhole, "the input is in its file");
    }
    const char* path() const { return m_path.c_str(); }

private:
    const std::string m_path;
    const int m_descriptor;
};

/** The lines of a text, as the C library reads them into a buffer of 256 bytes. */
inline std::vector<std::string> linesOf(const std::uint8_t* data, std::size_t size) {
    std::vector<std::string> lines;
    if (size == 0) return lines;
    std::FILE* file = fmemopen(const_cast<std::uint8_t*>(data), size, "r");
    char line[256];
    while (std::fgets(line, sizeof line, file) != nullptr)
        lines.emplace_back(line);
    std::fclose(file);
    return lines;
}

/** The text after a key in the first line that contains it anywhere, as the C library's functions find it. */
inline std::optional<std::string> plainKey(const std::vector<std::string>& lines, const char* key) {
    for (std::string line : lines) {
        if (std::strstr(line.c_str(), key) == nullptr) continue;
        std::strtok(line.data(), "='");
        const char* token = std::strtok(nullptr, "='");
        return token == nullptr ? "" : token;
    }
    return {};
}

} // namespace fuzz

#endif
