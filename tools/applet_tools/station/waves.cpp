#include "applet_tools/station/waves.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"
#include "applet_tools/station/signals.h"

#include <algorithm>

namespace applet_tools {

const char* const waveForms =
    "INPUT=high, INPUT=low, INPUT=square:PERIOD[,HIGH[,START]], INPUT=edges:TIME[,TIME...] or "
    "INPUT_A,INPUT_B=encoder:SPEED[..SPEED][/TIME][,...]";

namespace {

std::vector<std::string_view> partsOf(std::string_view text, char mark) {
    std::vector<std::string_view> parts;
    for (std::size_t position = 0; position != std::string_view::npos;) {
        text.remove_prefix(position);
        position = text.find(mark);
        parts.push_back(text.substr(0, position));
        if (position != std::string_view::npos) ++position;
    }
    return parts;
}

std::int32_t speedFrom(std::string_view word) {
    constexpr std::int32_t fastest = VBOARD_FASTEST_ENCODER;
    const auto speed = wholeNumber<std::int32_t>(word);
    if (!speed || *speed > fastest || *speed < -fastest)
        throw UsageError(inQuotedWord(word) + " is not a speed: an encoder makes " + numberText(-fastest) +
                         " to " + numberText(fastest) + " quarter steps a second");
    return *speed;
}

/** Parses "20000", "0..20000/50ms". The last piece needs no time. */
vboard_speed pieceFrom(std::string_view word, bool isLast) {
    const std::size_t slash = word.find('/');
    if (slash == std::string_view::npos && !isLast)
        throw UsageError(inQuotedWord(word) + " needs a time, as in " + std::string(word) +
                         "/50ms: only the last speed can go without");
    const std::string_view speeds = word.substr(0, slash);
    const std::size_t dots = speeds.find("..");
    const std::int32_t from = speedFrom(speeds.substr(0, dots));
    const std::int32_t to = dots == std::string_view::npos ? from : speedFrom(speeds.substr(dots + 2));
    if (slash == std::string_view::npos && from != to)
        throw UsageError(inQuotedWord(word) + " needs the time in which the speed changes, as in " +
                         std::string(word) + "/50ms");
    constexpr Ticks longest = VBOARD_LONGEST_PIECE;
    const Ticks ticks = slash == std::string_view::npos ? 1 : ticksFrom(word.substr(slash + 1));
    if (ticks > longest) throw UsageError(inQuotedWord(word) + " takes longer than " + durationText(longest));
    return {ticks, from, to};
}

EncoderWave encoderFrom(std::string_view text, unsigned second) {
    EncoderWave wave{second, {}};
    const auto words = partsOf(text, ',');
    for (std::size_t i = 0; i < words.size(); ++i)
        wave.pieces.push_back(pieceFrom(words[i], i + 1 == words.size()));
    return wave;
}

SquareWave squareFrom(std::string_view text) {
    const auto words = partsOf(text, ',');
    if (words.size() > 3) throw UsageError("a square wave has at most a period, a high time and a start");
    SquareWave wave{ticksFrom(words[0]), 0, 0};
    if (wave.period < 2)
        throw UsageError(inQuotedWord(words[0]) + " is too short for a period: the minimum is 16 ns");
    wave.high = words.size() > 1 ? ticksFrom(words[1]) : wave.period / 2;
    if (wave.high == 0 || wave.high >= wave.period)
        throw UsageError("a high time of " + durationText(wave.high) +
                         " does not fit: it must be above 0 and below the period of " +
                         durationText(wave.period) + "; high or low gives a constant level");
    wave.start = words.size() > 2 ? ticksFrom(words[2]) : wave.period - wave.high;
    return wave;
}

EdgesWave edgesFrom(std::string_view text) {
    EdgesWave wave;
    for (const std::string_view word : partsOf(text, ',')) {
        const Ticks time = ticksFrom(word);
        if (!wave.times.empty() && time <= wave.times.back())
            throw UsageError("the edge at " + std::string(word) + " is not later than the one before it");
        wave.times.push_back(time);
    }
    return wave;
}

} // namespace

unsigned inputFrom(std::string_view word) {
    std::string name = lowerCase(word);
    if (name.starts_with("trginsrc_")) name.erase(0, 9);
    const bool isFront = name.starts_with("front_gpi_");
    const bool isNumber = !isFront && !name.starts_with("gpi_");
    const auto number = wholeNumber<unsigned>(name.substr(isNumber ? 0 : isFront ? 10 : 4));
    const unsigned first = isFront ? gpiCount : 0;
    const unsigned count = isNumber ? inputCount : isFront ? frontGpiCount : gpiCount;
    if (number && *number < count) return first + *number;
    Words names;
    for (const StationSignal& signal : stationSignals())
        if (signal.name.find("GPI_") != std::string::npos) names.push_back(signal.name);
    throw UnknownName(inQuotedWord(word) +
                          " is not an input: they are GPI_0 to GPI_7 and FRONT_GPI_0 to FRONT_GPI_3",
                      nearestWords(word, names));
}

WaveRequest parseWave(std::string_view word) {
    const std::size_t equals = word.find('=');
    if (equals == std::string_view::npos)
        throw UsageError(inQuotedWord(word) + " is not a wave; the forms are " + waveForms);
    const auto inputs = partsOf(word.substr(0, equals), ',');
    const std::string_view wave = word.substr(equals + 1);
    const std::size_t colon = wave.find(':');
    const std::string_view kind = wave.substr(0, colon);
    const std::string_view rest =
        colon == std::string_view::npos ? std::string_view() : wave.substr(colon + 1);
    const unsigned input = inputFrom(inputs[0]);
    const bool isEncoder = kind == "encoder";
    if (rest.empty() && (isEncoder || kind == "square" || kind == "edges"))
        throw UsageError(inQuotedWord(word) + " gives only the kind of the wave; the forms are " + waveForms);
    if (inputs.size() != (isEncoder ? 2 : 1))
        throw UsageError(inQuotedWord(word) +
                         (isEncoder ? ": an encoder has two inputs, as in GPI_0,GPI_1=encoder:20000"
                                    : ": only an encoder has two inputs"));
    if (isEncoder) {
        const unsigned second = inputFrom(inputs[1]);
        if (second == input)
            throw UsageError(inQuotedWord(word) + ": the two tracks of an encoder need different inputs");
        return {input, encoderFrom(rest, second)};
    }
    if (kind == "square") return {input, squareFrom(rest)};
    if (kind == "edges") return {input, edgesFrom(rest)};
    if (wave == "high" || wave == "low") return {input, LevelWave{wave == "high"}};
    throw UsageError(inQuotedWord(wave) + " is not a wave" +
                     didYouMean(nearestWords(kind, {"high", "low", "square", "edges", "encoder"})) +
                     "; the forms are " + waveForms);
}

namespace {

/** Connects each kind of wave. */
struct Connect {
    const applet_host::BoardFunctions& board;
    LOOMdevice* device;
    unsigned input;

    /** A time after the present tick: edges at or before it are already past. */
    Ticks tickAfter(Ticks ticks) const { return board.now(device) + std::max<Ticks>(ticks, 1); }

    void operator()(const LevelWave& wave) const { board.wave_level(device, input, wave.level); }
    void operator()(const SquareWave& wave) const {
        board.wave_square(device, input, tickAfter(wave.start), wave.period, wave.high);
    }
    void operator()(const EdgesWave& wave) const {
        std::vector<vboard_edge> edges;
        for (const Ticks ticks : wave.times)
            edges.push_back({tickAfter(ticks), edges.size() % 2 == 0});
        board.wave_edges(device, input, false, edges.data(), edges.size());
    }
    void operator()(const EncoderWave& wave) const {
        board.wave_encoder(device, input, wave.second, wave.pieces.data(), wave.pieces.size());
    }
};

} // namespace

void connectWave(const applet_host::BoardFunctions& board, LOOMdevice* device, const WaveRequest& request) {
    std::visit(Connect{board, device, request.input}, request.wave);
}

void connectWave(Instance& instance, const WaveRequest& request) {
    connectWave(instance.board(), instance.device(), request);
}

} // namespace applet_tools
