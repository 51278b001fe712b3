/** Location of the SDK that this library belongs to. */
#ifndef SUPPORT_SDK_DIRECTORY_H
#define SUPPORT_SDK_DIRECTORY_H

#include "support/SharedLibrary.h"

#include <cstddef>
#include <memory>
#include <string_view>

/**
 * The SDK directory: the parent of the first of bin, dll, "Hardware Applets", lib or lib64 above this
 * library's file, otherwise the value of NORVANE_FG_SDK_DIR. Once found it does not change. A relative path
 * is resolved against the working directory at the time when this library was loaded.
 *
 * Returns a text owned by the library, or null if there is none; a later call then tries again. Takes its own
 * spin lock; may be called from any thread.
 */
const char* sdkDirectory();

/**
 * Opens "DIRECTORY/lib64/libNAME.so"; with a null `directory` below sdkDirectory(). Null if there is no
 * directory or the library cannot be opened.
 */
std::unique_ptr<SharedLibrary> openSdkLibrary(const char* name, const char* directory);

/** The prefix of a file's path that is its SDK directory; empty if there is none. */
std::string_view sdkDirectoryAbove(std::string_view path);

/** Makes `value` absolute, copies as much as fits and removes the '/' at its end; a single '/' stays. */
void copyDirectory(char* buffer, std::size_t size, const char* value);

#endif
