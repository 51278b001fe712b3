/** Where the SDK that this library belongs to is installed. */
#ifndef SUPPORT_SDK_DIRECTORY_H
#define SUPPORT_SDK_DIRECTORY_H

#include "support/SharedLibrary.h"

#include <cstddef>
#include <memory>
#include <string_view>

/**
 * The SDK directory: the parent of the first of bin, dll, "Hardware Applets", lib or lib64 above this
 * library's file, else what NORVANE_FG_SDK_DIR says. Once found it stays. A relative path is taken from the working
 * directory of the time when this library was loaded, wherever the process goes afterwards.
 *
 * Returns a text of the library's own, or null if there is none; a later call then tries again. Takes a spin
 * lock of its own; may be called from any thread.
 */
const char* sdkDirectory();

/**
 * Opens "DIRECTORY/lib64/libNAME.so"; with a null `directory` below sdkDirectory(). Null if there is no
 * directory or the library cannot be opened.
 */
std::unique_ptr<SharedLibrary> openSdkLibrary(const char* name, const char* directory);

/** The start of a file's path that is the SDK directory above it; empty if there is none. */
std::string_view sdkDirectoryAbove(std::string_view path);

/** Copies as much of `value`, made absolute, as fits and cuts the '/' at its end; a single '/' stays. */
void copyDirectory(char* buffer, std::size_t size, const char* value);

#endif
