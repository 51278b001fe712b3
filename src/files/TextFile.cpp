#include "files/TextFile.h"

#include <cerrno>
#include <csignal>
#include <ctime>
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

/** Blocks SIGPIPE for this thread, which would end a host that does not expect it. */
class PipeSignalBlocker {
public:
    PipeSignalBlocker() {
        sigemptyset(&m_pipe);
        sigaddset(&m_pipe, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        m_wasPending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &m_pipe, &m_before);
    }
    ~PipeSignalBlocker() {
        constexpr timespec atOnce{};
        if (!m_wasPending) // then the signal is ours
            while (sigtimedwait(&m_pipe, nullptr, &atOnce) < 0 && errno == EINTR)
                continue;
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }
    PipeSignalBlocker(const PipeSignalBlocker&) = delete;
    PipeSignalBlocker& operator=(const PipeSignalBlocker&) = delete;

private:
    sigset_t m_pipe, m_before;
    bool m_wasPending;
};

} // namespace

bool TextFile::open(const char* path, Mode mode) {
    close();
    m_failed = false;
    if (path == nullptr) return false;
    // Without O_NONBLOCK a FIFO would wait here for its other end.
    m_descriptor = ::open(path, accessFlags(mode) | O_NONBLOCK | O_CLOEXEC | O_NOCTTY, 0666);
    if (!isOpen()) return false;
    m_isSeekable = lseek(m_descriptor, 0, SEEK_CUR) >= 0;
    if (m_isSeekable) return true;
    if (mode == Mode::Write)
        fcntl(m_descriptor, F_SETFL, 0); // from here on, writes wait for a reader
    else
        close();
    return isOpen();
}

std::uint64_t TextFile::size() const {
    struct stat status {};
    if (fstat(m_descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return 0;
    return static_cast<std::uint64_t>(status.st_size);
}

void TextFile::write(std::string_view text) {
    if (m_isSeekable) return writeAll(text);
    const PipeSignalBlocker blocker;
    writeAll(text);
}

void TextFile::writeAll(std::string_view text) {
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
