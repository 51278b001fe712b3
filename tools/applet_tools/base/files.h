/** Reads and writes whole files. */
#ifndef APPLET_TOOLS_BASE_FILES_H
#define APPLET_TOOLS_BASE_FILES_H

#include <memory>
#include <optional>
#include <string>

namespace applet_tools {

/** The text of a regular file; empty if there is no readable one. */
std::optional<std::string> textOfFile(const std::string& path);
/** Why the file cannot be read, in words for a person; empty if it can. */
std::string whyUnreadable(const std::string& path);
/** The text of a file; throws UsageError, with the reason, if there is no readable one. */
std::string requiredTextOfFile(const std::string& path);
/** A user's file cannot be read. Throws UsageError with the reason, if there is one. */
[[noreturn]] void refuseUnreadable(const std::string& path, const std::string& reason = "");

/**
 * Writes the whole file or nothing: the content goes to a new file in the same folder, which replaces the old
 * one and takes its mode once all of it is on disk. A symbolic link is kept and its target is replaced.
 * A device, a pipe or a descriptor of the process is written to in place. Throws Failure.
 */
void writeFile(const std::string& file, const std::string& content);

/** A file that is written in pieces and, like with writeFile, replaced as a whole or not at all. */
class OutputFile {
public:
    /** Throws Failure. */
    explicit OutputFile(const std::string& file);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /** Throws Failure. */
    void add(const std::string& content);
    /** The new file, for other ways of writing to it; empty for a file that is written to in place. */
    std::optional<int> descriptor() const;
    /** Moves the file into place; without this call nothing remains. Throws Failure. */
    void finish();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/** Throws Failure, like writeFile, if the file cannot be written for a reason other than a full disk. */
void requireWritable(const std::string& file);

/** Opens the standard streams that are closed, so that no file of the program gets one of their numbers.
 *  Standard input then is at its end, and each write to the other two fails. */
void openStandardStreams();

/** Writes all of it to the descriptor. False, with errno, if that fails. */
bool writeAll(int descriptor, const std::string& content);

} // namespace applet_tools

#endif
