// The cases of tests/data/station, one per line. Their numbers are computed by hand, in ticks of 8 ns.
//   base VALUES                                      of the parameters, for all cases below it
//   what it is | VALUES | ACTIONS | QUESTION = ANSWER | QUESTION = ANSWER ...
// Actions are those of Trial::play. Signals go by the number that selects them.

#include "support/station_board.h"

#include <cstdio>
#include <fstream>
#include <sstream>

namespace station {
namespace {

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == text.npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::vector<std::string> cut(const std::string& line, char separator) {
    std::vector<std::string> pieces;
    std::istringstream all(line);
    for (std::string piece; std::getline(all, piece, separator);)
        pieces.push_back(trimmed(piece));
    return pieces;
}

template <typename Number> std::string listOf(const std::vector<Number>& numbers, std::size_t step = 1) {
    std::ostringstream text;
    for (std::size_t i = 0; i < numbers.size(); i += step)
        text << (i > 0 ? " " : "") << numbers[i];
    return text.str();
}

std::string hexOf(const std::vector<int>& bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        char digits[4];
        std::snprintf(digits, sizeof digits, i > 0 ? " %02x" : "%02x", static_cast<unsigned>(bytes[i]));
        text += digits;
    }
    return text;
}

std::string answer(Trial& run, const std::string& question) {
    std::istringstream words(question);
    std::string what, name;
    words >> what;
    unsigned signal = 0;
    Tick from = 0, to = 0;
    std::int64_t picture = 0;
    if (what == "pictures") return run.pictures();
    if (what == "starts" && words >> signal >> to) return run.starts(static_cast<std::uint8_t>(signal), to);
    if (what == "trace" && words >> signal >> from >> to)
        return run.trace(static_cast<std::uint8_t>(signal), from, to);
    if (what == "output" && words >> signal >> to) return Trial::text(run.station.outputTrace(signal, 0, to));
    if (what == "bytes" && words >> picture) return hexOf(run.bytes(picture));
    if (what == "greys" && words >> picture) return listOf(run.bytes(picture), 3);
    if (what == "value" && words >> name)
        return listOf(std::vector{run.value(Values((name + "=0").c_str()).all().at(0).first)});
    if (what == "numbers" && words >> picture) return run.numbers(picture);
    if (what == "narrow" && words >> picture) return std::to_string(run.memory->record(picture)->isNarrow);
    if (what == "link-losses") return std::to_string(run.board.raised(Event::linkLost));
    if (what == "state") return std::to_string(static_cast<int>(run.station.cameraState()));
    if (what == "status") return std::to_string(run.station.cameraStatus());
    if (what == "glitches") return std::to_string(run.board.raised(Event::glitch));
    if (what == "ignored") return std::to_string(run.station.losses().triggers);
    if (what == "lost-pulses") return std::to_string(run.station.losses().pulses);
    if (what == "dropped-triggers") return std::to_string(run.station.losses().droppedTriggers);
    if (what == "lost-camera-triggers") return std::to_string(run.station.losses().cameraTriggers);
    return "no such question";
}

void expectAnswers(const char* name) {
    std::ifstream file(std::string(TEST_DATA_DIR "/station/") + name + ".txt");
    std::string base;
    int cases = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("base ")) base = line.substr(5) + " ";
        const std::vector<std::string> pieces = cut(line, '|');
        if (line.starts_with("base ") || line.starts_with('#') || pieces.size() < 4) continue;
        SCOPED_TRACE(line);
        Trial run((base + pieces[1]).c_str());
        run.acquire();
        run.play(pieces[2]);
        for (std::size_t i = 3; i < pieces.size(); ++i) {
            const std::size_t sign = pieces[i].find('=');
            ASSERT_NE(sign, std::string::npos);
            EXPECT_EQ(answer(run, pieces[i].substr(0, sign)), trimmed(pieces[i].substr(sign + 1)));
        }
        ++cases;
    }
    EXPECT_GT(cases, 10);
}

TEST(StationCases, Camera) { expectAnswers("camera"); }
TEST(StationCases, Images) { expectAnswers("images"); }
TEST(StationCases, Inputs) { expectAnswers("inputs"); }
TEST(StationCases, Pixels) { expectAnswers("pixels"); }
TEST(StationCases, Signals) { expectAnswers("signals"); }

} // namespace
} // namespace station
