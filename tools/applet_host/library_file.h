/** Checks that a library file is complete. */
#ifndef APPLET_HOST_LIBRARY_FILE_H
#define APPLET_HOST_LIBRARY_FILE_H

#include <filesystem>
#include <string>

namespace applet_host {

/**
 * Describes a fault in the size or the ELF headers of a library file; empty if there is none. The dynamic
 * loader maps the file as its headers say, and access to a page that a truncated file lacks raises SIGBUS.
 */
std::string troubleWithLibrary(const std::filesystem::path& file);

} // namespace applet_host

#endif
