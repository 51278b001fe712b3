// Runs a fuzz target on each file of a folder, then on mutations of them, the same ones each time. The
// current mutation is written to a file, so that it is kept after a failure.

#include "invariants.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace {

using Bytes = std::vector<char>;
namespace fs = std::filesystem;

constexpr int mutations = 2000;
const Bytes::size_type mostBytes = 20000; // beyond the block size of a reader

void run(const Bytes& input) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
}

std::vector<Bytes> seedsIn(const char* folder) {
    std::vector<fs::path> paths(fs::directory_iterator(folder), {});
    std::ranges::sort(paths);
    std::vector<Bytes> seeds;
    for (const fs::path& path : paths) {
        std::ifstream file(path, std::ios::binary);
        seeds.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return seeds;
}

class Mutator {
public:
    explicit Mutator(const std::vector<Bytes>& seeds) : m_seeds(seeds) {}

    Bytes next() {
        Bytes input = anySeed();
        for (std::size_t edits = 1 + below(8); edits > 0; --edits)
            edit(input);
        input.resize(std::min(input.size(), mostBytes));
        return input;
    }

private:
    std::size_t below(std::size_t end) { return m_random() % end; }
    const Bytes& anySeed() { return m_seeds[below(m_seeds.size())]; }

    void edit(Bytes& input) {
        const std::size_t begin = below(input.size() + 1), length = below(input.size() - begin + 1);
        const auto at = [&](std::size_t i) { return input.begin() + static_cast<std::ptrdiff_t>(i); };
        switch (below(5)) {
        case 0: // a byte changes
            if (length > 0) input[begin] = static_cast<char>(below(256));
            return;
        case 1: // a small piece is removed
            input.erase(at(begin), at(begin + std::min<std::size_t>(length, 16)));
            return;
        case 2: { // a piece is duplicated
            const Bytes piece(at(begin), at(begin + length));
            input.insert(at(begin), piece.begin(), piece.end());
            return;
        }
        case 3: { // a piece of another seed
            const Bytes& other = anySeed();
            input.insert(at(begin), other.begin(),
                         other.begin() + static_cast<std::ptrdiff_t>(below(other.size() + 1)));
            return;
        }
        default: { // a number
            static constexpr std::string_view numbers[] = {"-1",  "4294967296", "1e308",
                                                           "nan", "0x7fffffff", "99999999"};
            const std::string_view number = numbers[below(std::size(numbers))];
            input.insert(at(begin), number.begin(), number.end());
        }
        }
    }

    const std::vector<Bytes>& m_seeds;
    std::mt19937 m_random{2};
};

} // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        std::fprintf(stderr, "usage: %s FOLDER-OF-SEEDS FILE-FOR-THE-MUTATION-AT-WORK\n", arguments[0]);
        return 2;
    }
    const std::vector<Bytes> seeds = seedsIn(arguments[1]);
    fuzz::require(!seeds.empty(), "there are seeds");
    for (const Bytes& seed : seeds)
        run(seed);
    Mutator mutator(seeds);
    for (int i = 0; i < mutations; ++i) {
        const Bytes input = mutator.next();
        std::ofstream(arguments[2], std::ios::binary)
            .write(input.data(), static_cast<std::streamsize>(input.size()));
        run(input);
    }
    std::printf("%zu seeds, %d mutations\n", seeds.size(), mutations);
}
