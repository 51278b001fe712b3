#include "station/Settings.h"

#include "station/picture/Packing.h"

#include <algorithm>

namespace station {
namespace {

constexpr std::uint32_t widest = ImageSize::widest;
constexpr std::uint32_t thinnedSequence = 2000; // cycles of which simulatorActivePixel are active
constexpr std::uint32_t outBits[] = {8, 10, 12, 14, 16};
constexpr std::uint64_t fastestDma = std::uint64_t{1} << 40;

/** Reads values of a board as the types of the design. */
class Reader {
public:
    explicit Reader(const Board& board) : m_board(board) {}

    std::uint32_t count(Parameter parameter) const { return countOf(m_board.value(parameter)); }
    /** A count of at least one. */
    std::uint32_t number(Parameter parameter) const { return std::max(count(parameter), 1U); }
    bool isOn(Parameter parameter) const { return count(parameter) == 1; }
    /** A choice from 0 to `last`; a larger value becomes 0. */
    std::uint8_t choice(Parameter parameter, std::uint32_t last) const {
        const std::uint32_t value = count(parameter);
        return static_cast<std::uint8_t>(value <= last ? value : 0);
    }
    Tick time(Parameter parameter, Tick minimum, Tick maximum) const {
        return ticksOf(m_board.value(parameter), minimum, maximum);
    }
    double value(Parameter parameter) const { return m_board.value(parameter); }
    Route route(Parameter select, Parameter invert) const {
        return {choice(select, signalCount - 1), isOn(invert)};
    }
    /** The number of an input; inputCount, which is always low, if there is no such input. */
    std::uint8_t input(Parameter parameter) const {
        return static_cast<std::uint8_t>(std::min(count(parameter), std::uint32_t{inputCount}));
    }

private:
    const Board& m_board;
};

Parameter after(Parameter first, std::size_t offset) {
    return static_cast<Parameter>(static_cast<std::size_t>(first) + offset);
}

bool isFreeRun(const Reader& board) {
    return !board.isOn(Parameter::imageTriggerEnable) || board.choice(Parameter::imageTriggerMode, 2) == 0;
}

Simulator::Settings simulatorOf(const Reader& board) {
    Simulator::Settings settings;
    settings.isSource = board.isOn(Parameter::simulatorSource);
    settings.isFreeRunning = board.isOn(Parameter::simulatorFreeRun);
    settings.isFrameTriggered = board.count(Parameter::simulatorTriggerMode) == 2;
    settings.cycles = board.number(Parameter::simulatorImageWidth);
    settings.activeCycles = std::min(board.number(Parameter::simulatorLineGap), settings.cycles);
    settings.lines = board.number(Parameter::simulatorImageHeight);
    settings.activeLines = std::min(board.count(Parameter::simulatorFrameGap), settings.lines);
    if (board.isOn(Parameter::simulatorPixelClockMode)) {
        // Half a tick shorter than the sequence, but not shorter than a line.
        const std::uint64_t halves = std::uint64_t{2} * board.number(Parameter::simulatorSequenceLength) - 1;
        settings.periodNumerator = std::max(halves, std::uint64_t{2} * settings.cycles);
        settings.periodDenominator = 2;
    } else {
        const std::uint32_t active = std::min(board.number(Parameter::simulatorActivePixel), thinnedSequence);
        settings.periodNumerator = std::uint64_t{2} * thinnedSequence * settings.cycles;
        settings.periodDenominator = std::uint64_t{2} * active - 1;
    }
    return settings;
}

ExSync::Settings exsyncOf(const Reader& board) {
    ExSync::Settings settings;
    settings.mode = static_cast<ExSync::Mode>(board.choice(Parameter::lineTriggerMode, 3));
    settings.period = board.time(Parameter::exsyncPeriod, 64, 262143);
    settings.exposure = board.time(Parameter::exsyncExposure, 64, 131071);
    settings.delay = board.time(Parameter::exsync2Delay, 0, 131071);
    settings.isEnabled = board.isOn(Parameter::exsyncEnable);
    settings.isInverted = board.isOn(Parameter::exsyncPolarity);
    settings.isGateOpen = isFreeRun(board);
    return settings;
}

Wire wireOf(const Reader& board, Parameter source, Parameter polarity) {
    Wire wire{.isInverted = board.isOn(polarity)};
    switch (board.count(source)) {
    case 0:
        wire.source = Wire::Source::inputA;
        break;
    case 1:
        wire.source = Wire::Source::inputB;
        break;
    case 2:
        wire.source = Wire::Source::image;
        break;
    case 4:
        wire.source = Wire::Source::software;
        break;
    default:
        break;
    }
    return wire;
}

ImageTrigger::Settings triggerOf(const Reader& board) {
    ImageTrigger::Settings settings;
    if (!isFreeRun(board))
        settings.mode = static_cast<ImageTrigger::Mode>(board.choice(Parameter::imageTriggerMode, 2));
    settings.isGateOfMany = board.value(Parameter::maxGatedHeight) != 0;
    settings.delay = board.count(Parameter::imageDelay);
    settings.offset = board.count(Parameter::yOffset);
    settings.length = board.count(Parameter::yLength);
    settings.imageHeight = board.number(Parameter::imageHeight);
    return settings;
}

Buffer::Settings bufferOf(const Reader& board, std::uint64_t bytesPerSecond) {
    const std::uint32_t addressWidth = std::min(board.count(Parameter::ramAddressWidth), 40U);
    const double linkRate = board.value(Parameter::linkSpeed) * 1073741824.0; // GB are 2^30 bytes here
    std::uint64_t rate = 0;
    if (linkRate >= 1)
        rate = linkRate < static_cast<double>(fastestDma) ? static_cast<std::uint64_t>(linkRate) : fastestDma;
    if (bytesPerSecond > 0) rate = std::min(bytesPerSecond, fastestDma);
    return {.capacity = ((std::uint64_t{1} << addressWidth) >> 1) * 3, .bytesPerSecond = rate};
}

std::uint32_t linkBitsOf(const Reader& board) {
    return std::clamp(board.count(Parameter::pixelFormat), 8U, 16U);
}

/** A gain in units of 1/1024, rounded half up. */
std::uint32_t gainOf(double factor) {
    const double gain = factor * 1024 + 0.5;
    if (!(gain >= 0)) return 0;
    return gain < 4095 ? static_cast<std::uint32_t>(gain) : 4095;
}

} // namespace

std::uint32_t countOf(double value) {
    if (!(value >= 0)) return 0;
    return value < 4294967295.0 ? static_cast<std::uint32_t>(value) : 0xffff'ffffU;
}

Layout readLayout(const Board& values) {
    const Reader board(values);
    const std::uint8_t format = board.choice(Parameter::format, std::size(outBits) - 1);
    const std::uint32_t sensorWidth = std::min(board.count(Parameter::sensorWidth), widest);
    const std::uint32_t width = std::min(board.count(Parameter::xLength), widest);
    const std::uint64_t wordBits = board.number(Parameter::ramDataWidth);
    const std::uint64_t lineBits = std::uint64_t{3} * sensorWidth * linkBitsOf(board);
    Layout layout;
    layout.wordsPerLine = (lineBits + wordBits - 1) / wordBits;
    layout.bytesPerLine = packedSize(std::uint64_t{3} * width, outBits[format]);
    layout.pixelsPerLine = width;
    layout.sensorWidth = sensorWidth;
    layout.isTurnedOver = board.isOn(Parameter::yMirror);
    layout.selectPeriod = board.number(Parameter::selectPeriod);
    layout.selectPhase = board.count(Parameter::selectPhase);
    layout.isSilenced = format < 4 && board.isOn(after(Parameter::trash0, format));
    return layout;
}

EngineSettings readEngineSettings(const Board& values, std::uint64_t bytesPerSecond) {
    const Reader board(values);
    EngineSettings settings;
    settings.simulator = simulatorOf(board);
    settings.exsync = exsyncOf(board);
    settings.encoder = {.resolution = board.choice(Parameter::encoderMode, 3),
                        .isBLeading = board.isOn(Parameter::encoderLead),
                        .isCompensating = board.isOn(Parameter::encoderCompensation)};
    settings.downscale = board.number(Parameter::lineDownscale);
    settings.phase = board.number(Parameter::linePhase);
    settings.inputs = {.debouncing = Tick{3} * board.count(Parameter::debouncePrescale),
                       .imageDebouncing = board.time(Parameter::imageDebouncing, 1, 8125),
                       .imageInput = board.input(Parameter::imageInput)};
    settings.inputA = board.input(Parameter::lineInputA);
    settings.inputB = board.input(Parameter::lineInputB);
    settings.lineA = wireOf(board, Parameter::lineSourceA, Parameter::linePolarity);
    settings.lineB = wireOf(board, Parameter::lineSourceB, Parameter::linePolarity);
    settings.image = wireOf(board, Parameter::imageSource, Parameter::imagePolarity);
    settings.softwareLevel = board.isOn(Parameter::softwareInput);
    settings.trigger = triggerOf(board);
    settings.flash = {.isEnabled = board.isOn(Parameter::flashEnable),
                      .isInverted = board.isOn(Parameter::flashPolarity),
                      .delay = board.count(Parameter::flashDelay)};
    settings.buffer = bufferOf(board, bytesPerSecond);
    settings.routes = {board.route(Parameter::analyzer0Select, Parameter::analyzer0Invert),
                       board.route(Parameter::analyzer1Select, Parameter::analyzer1Invert),
                       board.route(Parameter::custom0Select, Parameter::custom0Invert),
                       board.route(Parameter::custom1Select, Parameter::custom1Invert),
                       board.route(Parameter::cameraTriggerSelect, Parameter::cameraTriggerInvert),
                       board.route(Parameter::cameraTriggerSelect, Parameter::cameraTriggerInvert)};
    settings.routes.back().invert = !settings.routes.back().invert;
    settings.isPulseWidth = board.isOn(Parameter::cameraPulseWidth);
    settings.areAnalyzersHeld = board.isOn(Parameter::analyzerClear);
    settings.layout = readLayout(values);
    return settings;
}

PictureSettings readPictureSettings(const Board& values) {
    const Reader board(values);
    PictureSettings settings;
    settings.sensorWidth = std::min(board.count(Parameter::sensorWidth), widest);
    settings.xOffset = board.count(Parameter::xOffset);
    settings.xLength = std::min(board.count(Parameter::xLength), widest);
    settings.isMirroredX = board.isOn(Parameter::xMirror);
    settings.isMirroredY = board.isOn(Parameter::yMirror);
    settings.pattern = {.isXEnabled = board.isOn(Parameter::simulatorEnableX),
                        .yDivisor = board.number(Parameter::simulatorYDivisor),
                        .frameDivisor = board.number(Parameter::simulatorFrameDivisor),
                        .offset = board.count(Parameter::simulatorOffset)};
    ColourSettings& colours = settings.colours;
    colours.source.fill(ColourSettings::nothing);
    for (std::size_t component = 0; component < colourCount; ++component)
        colours.source[board.choice(after(Parameter::redComponent, component), 2)] =
            static_cast<std::uint8_t>(component);
    colours.linkBits = linkBitsOf(board);
    for (std::size_t colour = 0; colour < colourCount; ++colour)
        colours.gain[colour] = gainOf(board.value(after(Parameter::redGain, colour)));
    colours.isTableEnabled = board.isOn(Parameter::lutEnable);
    colours.shift = board.count(Parameter::shift);
    colours.outBits = outBits[board.choice(Parameter::format, std::size(outBits) - 1)];
    return settings;
}

Tables readTables(const Board& board) {
    Tables tables;
    for (std::size_t colour = 0; colour < colourCount; ++colour) {
        const auto entries = board.table(static_cast<Colour>(colour));
        for (std::size_t i = 0; i < std::min(entries.size(), tableSize); ++i)
            tables.entries[colour][i] = static_cast<std::uint16_t>(entries[i]);
    }
    return tables;
}

Route readOutput(const Board& board, std::size_t output) {
    if (output >= outputCount) return {};
    const Parameter select = after(Parameter::cameraTriggerSelect, 2 * output);
    return Reader(board).route(select, after(select, 1));
}

} // namespace station
