/** Whether a file is a whole library. */
#ifndef APPLET_HOST_LIBRARY_FILE_H
#define APPLET_HOST_LIBRARY_FILE_H

#include <filesystem>
#include <string>

namespace applet_host {

/**
 * What is wrong with a library's file as far as its size and its ELF headers show; empty if nothing is. The dynamic
 * loader maps the file as its headers say, and a process that touches what a truncated file lacks gets SIGBUS.
 */
std::string troubleWithLibrary(const std::filesystem::path& file);

} // namespace applet_host

#endif
