#include "baseline_work.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

bool writeByLine(const std::string& file, const std::vector<std::string>& lines) {
    const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    bool written = true;
    for (const std::string& line : lines)
        written = write(descriptor, line.data(), line.size()) > 0 && written;
    close(descriptor);
    return written;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line + '\n');
    return lines;
}

BenchFolder::BenchFolder() {
    char pattern[] = "/tmp/applet-bench-XXXXXX";
    m_path = mkdtemp(pattern);
}

BenchFolder::~BenchFolder() { std::filesystem::remove_all(m_path); }
