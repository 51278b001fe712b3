/** Files that are read and written as a whole. */
#ifndef APPLET_TOOLS_BASE_FILES_H
#define APPLET_TOOLS_BASE_FILES_H

#include <memory>
#include <optional>
#include <string>

namespace applet_tools {

/** The text of a regular file; nothing where there is none that can be read. */
std::optional<std::string> textOfFile(const std::string& path);

/**
 * Writes the file as a whole or not at all: the content goes to a new file in the same folder, which takes the place
 * of the old one, with its mode, once all of it is on the disk. A symbolic link stays and the file behind it is
 * replaced. A device, a pipe or a descriptor of the process is written to. Throws Failure.
 */
void writeFile(const std::string& file, const std::string& content);

/** A file that is written piece by piece, and is there as a whole or not at all, as by writeFile. */
class OutputFile {
public:
    /** Throws Failure. */
    explicit OutputFile(const std::string& file);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /** Throws Failure. */
    void add(const std::string& content);
    /** Puts it in its place; without it nothing is left. Throws Failure. */
    void finish();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/** Throws Failure, as writeFile would, when the file cannot be written for another reason than a full disk. */
void requireWritable(const std::string& file);

/** Opens what is closed of the standard streams, so that no file of the program gets the number of one: standard input
 *  is at its end, and each write to the other two fails. */
void openStandardStreams();

/** Writes to the descriptor until all is out. False, with errno, when that fails. */
bool writeAll(int descriptor, const std::string& content);

} // namespace applet_tools

#endif
