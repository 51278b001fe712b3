#include "applet_tools/applet/files/MemoryFile.h"

#include "applet_tools/applet/Instance.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

namespace applet_tools {
namespace {

[[noreturn]] void fail(const char* what) {
    throw Unavailable(std::string("a file in memory cannot be ") + what + ": " + std::strerror(errno));
}

/** A link to /proc/self/fd that is installed with the virtual board. No system folder has ".mcf" in its name,
 *  and making one for each run would need a writable folder and leave it behind if the program is killed. */
const std::string& linkToDescriptors() {
    static const std::string link = [] {
        const std::filesystem::path path = applet_host::Locations::beside().virtualBoard / "descriptors.mcf";
        std::error_code error;
        if (!std::filesystem::is_directory(path, error))
            throw Unavailable(
                "the link " + shownFile(path) +
                " to /proc/self/fd, a part of the installation, is missing or broken: install the "
                "program with its libraries");
        return path.string();
    }();
    return link;
}

} // namespace

MemoryFile::MemoryFile() : m_descriptor(memfd_create("appletctl", MFD_CLOEXEC)) {
    if (m_descriptor < 0) fail("made");
    // The applet does not report failed writes, so check beforehand that there is enough memory.
    constexpr off_t room = 1 << 16;
    if (fallocate(m_descriptor, FALLOC_FL_KEEP_SIZE, 0, room) == 0) return;
    const int reason = errno;
    close(m_descriptor);
    errno = reason;
    fail("made");
}

MemoryFile::~MemoryFile() { close(m_descriptor); }

std::string MemoryFile::path() const { return "/proc/self/fd/" + numberText(m_descriptor); }

std::string MemoryFile::configurationPath() const {
    return linkToDescriptors() + '/' + numberText(m_descriptor);
}

std::string MemoryFile::text() const {
    const off_t size = lseek(m_descriptor, 0, SEEK_END);
    if (size < 0) fail("read");
    std::string text(static_cast<std::size_t>(size), '\0');
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t count =
            pread(m_descriptor, text.data() + done, text.size() - done, static_cast<off_t>(done));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) fail("read");
        done += static_cast<std::size_t>(count);
    }
    return text;
}

void MemoryFile::write(const std::string& text) const {
    if (ftruncate(m_descriptor, 0) != 0 || lseek(m_descriptor, 0, SEEK_SET) < 0 ||
        !writeAll(m_descriptor, text))
        fail("written");
}

} // namespace applet_tools
