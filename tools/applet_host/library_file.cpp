#include "applet_host/library_file.h"

#include <elf.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>

namespace applet_host {
namespace {

bool readAt(std::ifstream& stream, std::uint64_t offset, void* bytes, std::size_t count) {
    stream.seekg(static_cast<std::streamoff>(offset));
    return static_cast<bool>(stream.read(static_cast<char*>(bytes), static_cast<std::streamsize>(count)));
}

/** True when this many bytes starting at `offset` are within the file. */
bool isWithin(std::uint64_t size, std::uint64_t offset, std::uint64_t count) {
    return offset <= size && count <= size - offset;
}

std::string truncated(std::uint64_t size) {
    return "it is cut off: its headers promise more than the " + std::to_string(size) + " bytes that it has";
}

} // namespace

std::string troubleWithLibrary(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) return "it is not a regular file";
    const std::uint64_t size = std::filesystem::file_size(file, error);
    if (error) return error.message();
    if (size == 0) return "the file is empty";
    std::ifstream stream(file, std::ios::binary);
    if (!stream) return "it cannot be read";
    Elf64_Ehdr header{};
    if (!readAt(stream, 0, header.e_ident, std::min<std::uint64_t>(size, SELFMAG)) ||
        std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0)
        return "it is no ELF file";
    if (!readAt(stream, 0, &header, sizeof header)) return truncated(size);
    if (header.e_ident[EI_CLASS] != ELFCLASS64) return ""; // the loader reports a wrong machine by itself
    if (!isWithin(size, header.e_shoff, std::uint64_t{header.e_shentsize} * header.e_shnum))
        return truncated(size);
    for (std::uint64_t i = 0; i < header.e_phnum; ++i) {
        Elf64_Phdr segment{};
        const bool isRead = readAt(stream, header.e_phoff + i * sizeof segment, &segment, sizeof segment);
        if (!isRead || !isWithin(size, segment.p_offset, segment.p_filesz)) return truncated(size);
    }
    return "";
}

} // namespace applet_host
