#include "files/TextFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr int accessFlags(TextFile::Mode mode) {
    switch (mode) {
    case TextFile::Mode::Read:
        return O_RDONLY;
    case TextFile::Mode::Update:
        return O_RDWR;
    case TextFile::Mode::Write:
        break;
    }
    return O_WRONLY | O_CREAT | O_TRUNC;
}

} // namespace

bool TextFile::open(const char* path, Mode mode) {
    close();
    m_failed = false;
    if (path == nullptr) return false;
    // Without O_NONBLOCK a FIFO would wait here for its other end.
    m_descriptor = ::open(path, accessFlags(mode) | O_NONBLOCK | O_CLOEXEC | O_NOCTTY, 0666);
    if (isOpen() && lseek(m_descriptor, 0, SEEK_CUR) < 0) close();
    return isOpen();
}

std::uint64_t TextFile::size() const {
    struct stat status {};
    if (fstat(m_descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return 0;
    return static_cast<std::uint64_t>(status.st_size);
}

void TextFile::write(std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(m_descriptor, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) {
            m_failed = true;
            return;
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

bool TextFile::finish() {
    close();
    return !m_failed;
}

void TextFile::close() {
    if (isOpen() && ::close(std::exchange(m_descriptor, -1)) != 0) m_failed = true;
}
