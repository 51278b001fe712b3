// Temporary files, and the exported mkstemps for systems with a C library that lacks it.

#include "entry/FgLoomWrapper.h"

#include <atomic>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/sysinfo.h>
#include <unistd.h>

// Declared under another name: the C library's own declaration promises a non-null pattern.
extern "C" __attribute__((visibility("default"))) int exportedMkstemps(char* pattern,
                                                                       int suffixLength) __asm__("mkstemps");

namespace {

constexpr std::string_view alphabet = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
constexpr std::string_view placeholder = "XXXXXX";
constexpr int attempts = 62 * 62 * 62;
constexpr std::uint64_t stepAfterFailure = 7777;

// Names derive from the uptime and a counter, and existing files are skipped: no random source is needed.
std::atomic<std::uint64_t> counter{0};

std::uint64_t uptimeSeconds() {
    struct sysinfo info {};
    return sysinfo(&info) == 0 ? static_cast<std::uint64_t>(info.uptime) : 0;
}

void fillIn(char* characters, std::uint64_t value) {
    for (std::size_t i = 0; i < placeholder.size(); ++i, value /= alphabet.size())
        characters[i] = alphabet[value % alphabet.size()];
}

} // namespace

int exportedMkstemps(char* pattern, int suffixLength) {
    if (pattern == nullptr || suffixLength < 0) return -1;
    const std::size_t length = std::strlen(pattern);
    const auto suffix = static_cast<std::size_t>(suffixLength);
    if (suffix + placeholder.size() - 1 >= length) return -1;
    char* characters = pattern + length - suffix - placeholder.size();
    if (std::string_view(characters, placeholder.size()) != placeholder) return -1;

    std::uint64_t value = counter += uptimeSeconds();
    for (int attempt = 0; attempt < attempts; ++attempt) {
        fillIn(characters, value);
        const int descriptor = open(pattern, O_RDWR | O_CREAT | O_EXCL, 0600);
        if (descriptor >= 0) return descriptor;
        value = counter += stepAfterFailure;
    }
    *pattern = '\0';
    return -1;
}

char* FgLoomWrapper::createTempFile() {
    constexpr std::size_t nameSize = 32;
    auto name = std::make_unique<char[]>(nameSize);
    std::snprintf(name.get(), nameSize, "%s", "/tmp/coef-XXXXXX.tiff");
    const int descriptor = exportedMkstemps(name.get(), 5);
    if (descriptor < 0) return nullptr;
    close(descriptor);
    return name.release();
}

void FgLoomWrapper::deleteTempFile(char* name) {
    if (name != nullptr) unlink(name);
    delete[] name;
}
