#include "applet_tools/base/files.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <vector>

namespace applet_tools {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const std::string& file, const std::string& reason) {
    throw Failure(shownFile(file) + " cannot be written: " + reason);
}

/** Throws with errno as the reason. */
[[noreturn]] void fail(const std::string& file) { fail(file, std::strerror(errno)); }

/** The folder part of the path, which may be empty. */
fs::path folderOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

fs::path canonicalFolderOf(const fs::path& path) {
    std::error_code ignored;
    return fs::canonical(folderOf(path), ignored);
}

/** Links of /proc, such as the targets of /dev/stdout, refer to open files; their texts are not paths. */
bool isInProc(const fs::path& path) { return canonicalFolderOf(path).string().starts_with("/proc/"); }

/** Follows the symbolic links at the end of the path. */
fs::path withoutLinks(fs::path path) {
    constexpr int mostLinks = 40;
    std::error_code error;
    for (int i = 0; i < mostLinks && fs::is_symlink(path, error) && !isInProc(path); ++i)
        path = path.parent_path() / fs::read_symlink(path, error);
    return path;
}

/** The descriptor number that a path such as /dev/stdout or /dev/fd/7 names. */
std::optional<int> ownDescriptor(const fs::path& path) {
    std::error_code error;
    if (canonicalFolderOf(path) != fs::canonical("/proc/self/fd", error) || error) return std::nullopt;
    return wholeNumber<int>(path.filename().string());
}

/** Blocks the signals that end the program, so that no partial file is left behind. */
class SignalsHeldBack {
public:
    SignalsHeldBack() {
        sigset_t ending;
        sigemptyset(&ending);
        for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM})
            sigaddset(&ending, signal);
        pthread_sigmask(SIG_BLOCK, &ending, &m_before);
    }
    ~SignalsHeldBack() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsHeldBack(const SignalsHeldBack&) = delete;
    SignalsHeldBack& operator=(const SignalsHeldBack&) = delete;

private:
    sigset_t m_before{};
};

/** A new file that is to replace another one in the same folder. It has no name while it is written, if the
 *  file system supports that: then nothing is left of it if the program is killed meanwhile. */
class Replacement {
public:
    explicit Replacement(fs::path target) : m_target(std::move(target)) {
        requireWritableTarget();
        const fs::path folder = folderOf(m_target);
        m_descriptor = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, modeOfNewFile);
        if (m_descriptor < 0 && (errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL)) {
            m_temporary = unusedName();
            m_descriptor = open(m_temporary.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, modeOfNewFile);
        }
        if (m_descriptor >= 0) return;
        const std::string reason = std::strerror(errno);
        fail(m_target, "no file can be made in its folder " + shownFile(folder) + ": " + reason);
    }
    ~Replacement() {
        close(m_descriptor);
        if (!m_temporary.empty()) unlink(m_temporary.c_str());
    }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    void add(const std::string& content) {
        if (!writeAll(m_descriptor, content)) fail(m_target);
    }

    int descriptor() const { return m_descriptor; }

    void commit() {
        if (!keepAttributes() || fsync(m_descriptor) != 0) fail(m_target);
        if (m_temporary.empty()) giveName();
        if (rename(m_temporary.c_str(), m_target.c_str()) != 0) fail(m_target);
        m_temporary.clear();
        const int folder = open(folderOf(m_target).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (folder < 0) return; // the folder may be writable but not readable
        fsync(folder);
        close(folder);
    }

private:
    static constexpr mode_t modeOfNewFile = 0666; // before the umask

    void requireWritableTarget() {
        m_isNew = stat(m_target.c_str(), &m_before) != 0;
        if (m_isNew && errno != ENOENT) fail(m_target);
        if (m_isNew && !m_target.has_filename()) fail(m_target, std::strerror(EISDIR));
        // Rename only checks the folder's permissions; a read-only file must not be replaced.
        if (!m_isNew && faccessat(AT_FDCWD, m_target.c_str(), W_OK, AT_EACCESS) != 0) fail(m_target);
    }

    bool keepAttributes() {
        if (m_isNew) return true;
        // Only root can change the owner; otherwise the new file belongs to the user.
        const bool isGiven = fchown(m_descriptor, m_before.st_uid, m_before.st_gid) == 0;
        const mode_t setIds = isGiven ? 0 : S_ISUID | S_ISGID;
        return fchmod(m_descriptor, m_before.st_mode & 07777 & ~setIds) == 0;
    }

    void giveName() {
        m_temporary = unusedName();
        const std::string self = "/proc/self/fd/" + numberText(m_descriptor);
        if (linkat(AT_FDCWD, self.c_str(), AT_FDCWD, m_temporary.c_str(), AT_SYMLINK_FOLLOW) == 0) return;
        m_temporary.clear();
        fail(m_target);
    }

    fs::path unusedName() const {
        std::uint64_t random = 0;
        if (getrandom(&random, sizeof random, 0) != sizeof random) fail(m_target);
        return folderOf(m_target) / (".appletctl-" + numberText(random));
    }

    fs::path m_target;
    fs::path m_temporary; // empty while the new file has no name
    struct stat m_before {};
    bool m_isNew = true;
    int m_descriptor = -1;
};

/** True if the path is written to in place instead of being replaced. */
bool isSpecial(const fs::path& path) {
    struct stat status {};
    return isInProc(path) || (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode));
}

/** `file` is the name that was given, for messages. */
int openInPlace(const fs::path& path, const std::string& file) {
    const std::optional<int> own = ownDescriptor(path);
    const int descriptor =
        own ? fcntl(*own, F_DUPFD_CLOEXEC, 0) : open(path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
    if (descriptor < 0) fail(file);
    return descriptor;
}

void writeInPlace(const fs::path& path, const std::string& file, const std::string& content) {
    const int descriptor = openInPlace(path, file);
    const bool isWritten = writeAll(descriptor, content);
    const int reason = errno;
    const bool isClosed = close(descriptor) == 0;
    if (!isWritten) errno = reason;
    if (!isWritten || !isClosed) fail(file);
}

} // namespace

std::optional<std::string> textOfFile(const std::string& path) {
    std::error_code error;
    if (!fs::is_regular_file(path, error)) return std::nullopt; // a FIFO would wait for a writer
    const auto size = fs::file_size(path, error);
    std::ifstream stream(path, std::ios::binary);
    std::string text;
    if (!error) text.reserve(size);
    std::vector<char> part(1 << 16);
    while (stream.read(part.data(), static_cast<std::streamsize>(part.size())) || stream.gcount() > 0)
        text.append(part.data(), static_cast<std::size_t>(stream.gcount()));
    return stream.is_open() && !stream.bad() ? std::optional(std::move(text)) : std::nullopt;
}

std::string whyUnreadable(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || access(path.c_str(), R_OK) != 0) return std::strerror(errno);
    if (S_ISDIR(status.st_mode)) return "it is a folder";
    return S_ISREG(status.st_mode) ? ""
                                   : "it is not a regular file"; // opening a FIFO would wait for a writer
}

void refuseUnreadable(const std::string& path, const std::string& reason) {
    throw UsageError(shownFile(path) + " is not a file that can be read" +
                     (reason.empty() ? "" : ": " + reason));
}

std::string requiredTextOfFile(const std::string& path) {
    auto text = textOfFile(path);
    if (!text) refuseUnreadable(path, whyUnreadable(path));
    return std::move(*text);
}

void openStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        // open() returns the lowest free number.
        if (fcntl(stream, F_GETFD) < 0) open("/dev/null", O_RDONLY);
}

bool writeAll(int descriptor, const std::string& content) {
    for (std::size_t done = 0; done < content.size();) {
        const ssize_t count = write(descriptor, content.data() + done, content.size() - done);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        done += static_cast<std::size_t>(count);
    }
    return true;
}

void writeFile(const std::string& file, const std::string& content) {
    const fs::path path = withoutLinks(file);
    if (isSpecial(path)) return writeInPlace(path, file, content);
    const SignalsHeldBack held;
    Replacement replacement(path);
    replacement.add(content);
    replacement.commit();
}

void requireWritable(const std::string& file) {
    const fs::path path = withoutLinks(file);
    if (!isSpecial(path)) {
        const SignalsHeldBack held;
        const Replacement replacement(path);
    } else if (fs::is_directory(path)) {
        fail(file, std::strerror(EISDIR));
    } else if (!ownDescriptor(path) && faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) {
        fail(file);
    }
}

struct OutputFile::State {
    explicit State(const std::string& asked) : file(asked), path(withoutLinks(asked)) {
        if (isSpecial(path))
            descriptor = openInPlace(path, file);
        else
            replacement.emplace(path);
    }
    ~State() {
        if (descriptor >= 0) close(descriptor);
    }
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    const std::string file; // as given, for messages
    const fs::path path;
    std::optional<Replacement> replacement;
    int descriptor = -1; // if written in place
};

OutputFile::OutputFile(const std::string& file) : m_state(std::make_unique<State>(file)) {}
OutputFile::~OutputFile() = default;

void OutputFile::add(const std::string& content) {
    if (m_state->replacement)
        m_state->replacement->add(content);
    else if (!writeAll(m_state->descriptor, content))
        fail(m_state->file);
}

std::optional<int> OutputFile::descriptor() const {
    return m_state->replacement ? std::optional(m_state->replacement->descriptor()) : std::nullopt;
}

void OutputFile::finish() {
    const SignalsHeldBack held;
    if (m_state->replacement) m_state->replacement->commit();
}

} // namespace applet_tools
