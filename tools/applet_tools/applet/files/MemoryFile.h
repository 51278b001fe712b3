/** A file in memory that the applet reads and writes by path. */
#ifndef APPLET_TOOLS_APPLET_FILES_MEMORYFILE_H
#define APPLET_TOOLS_APPLET_FILES_MEMORYFILE_H

#include <string>

namespace applet_tools {

/** It is in no folder and is removed with the object or the process, however the process ends. Each member
 *  throws Unavailable if it fails. */
class MemoryFile {
public:
    MemoryFile();
    ~MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    int descriptor() const { return m_descriptor; }
    /** The path; valid in this process only. */
    std::string path() const;
    /** The same with ".mcf" in it, which the applet requires of a configuration file. */
    std::string configurationPath() const;

    std::string text() const;
    /** Replaces the content. */
    void write(const std::string& text) const;

private:
    int m_descriptor;
};

} // namespace applet_tools

#endif
