/** A temporary folder for one test. */
#ifndef TESTS_SUPPORT_TEMPORARY_FOLDER_H
#define TESTS_SUPPORT_TEMPORARY_FOLDER_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

namespace support {

class TemporaryFolder {
public:
    TemporaryFolder() { std::filesystem::create_directory(m_path); }
    ~TemporaryFolder() { std::filesystem::remove_all(m_path); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /** The path of a file or folder in it. */
    std::string operator/(const std::string& name) const { return m_path / name; }

private:
    const std::filesystem::path m_path =
        std::filesystem::temp_directory_path() / ("applet-test-" + std::to_string(getpid()));
};

inline std::string fileBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void writeFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

} // namespace support

#endif
