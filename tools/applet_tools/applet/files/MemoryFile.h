/** A file in memory that the applet reads and writes by a path. */
#ifndef APPLET_TOOLS_APPLET_FILES_MEMORYFILE_H
#define APPLET_TOOLS_APPLET_FILES_MEMORYFILE_H

#include <string>

namespace applet_tools {

/** It takes no place in a folder and is gone with the object or the process, however that ends. Each member throws
 *  Unavailable when it fails. */
class MemoryFile {
public:
    MemoryFile();
    ~MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    int descriptor() const { return m_descriptor; }
    /** The path, for this process only. */
    std::string path() const;
    /** The same with ".mcf" in it, which the applet requires of a configuration file. */
    std::string configurationPath() const;

    std::string text() const;
    /** Replaces what is in it. */
    void write(const std::string& text) const;

private:
    int m_descriptor;
};

} // namespace applet_tools

#endif
