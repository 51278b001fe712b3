#include "station_work.h"

#include "station/picture/Packing.h"

#include <array>
#include <initializer_list>
#include <utility>

namespace {

using station::Parameter;

/** A board that only has values. */
class Values final : public station::Board {
public:
    void set(std::initializer_list<std::pair<Parameter, double>> values) {
        for (const auto& [parameter, value] : values)
            m_values[static_cast<std::size_t>(parameter)] = value;
        ++m_revision;
    }
    std::uint64_t revision() const override { return m_revision; }
    std::uint64_t tableRevision() const override { return 1; }
    double value(Parameter parameter) const override { return m_values[static_cast<std::size_t>(parameter)]; }
    std::span<const std::uint32_t> table(station::Colour) const override { return {}; }
    void publish(Parameter parameter, double value) override {
        m_values[static_cast<std::size_t>(parameter)] = value;
    }
    void raise(station::Event, std::uint64_t times) override { m_events += times; }
    std::uint64_t events() const { return m_events; }

private:
    std::array<double, station::parameterCount> m_values{};
    std::uint64_t m_revision = 1;
    std::uint64_t m_events = 0;
};

/** Where a component of a raster comes from in a picture: blue, green, red of each pixel. */
std::uint16_t rasterComponent(std::size_t i) { return static_cast<std::uint16_t>(77 * i); }

} // namespace

Simulated simulate(station::Tick seconds, std::int32_t linesPerSecond, double resolution) {
    const std::int32_t speed = resolution == 3 ? linesPerSecond : 4 * linesPerSecond;
    Values board;
    board.set({{Parameter::lineTriggerMode, 1},
               {Parameter::encoderMode, resolution},
               {Parameter::encoderCompensation, 1},
               {Parameter::debouncePrescale, 6},
               {Parameter::lineInputA, 1},
               {Parameter::lineInputB, 2},
               {Parameter::lineSourceB, 1},
               {Parameter::lineDownscale, 1},
               {Parameter::exsyncExposure, 2},
               {Parameter::exsync2Delay, 5},
               {Parameter::exsyncEnable, 1},
               {Parameter::cameraTriggerSelect, station::exsync},
               {Parameter::simulatorSource, 1},
               {Parameter::simulatorTriggerMode, 1},
               {Parameter::simulatorImageWidth, 32},
               {Parameter::simulatorLineGap, 32},
               {Parameter::simulatorImageHeight, 1},
               {Parameter::simulatorFrameGap, 1},
               {Parameter::yLength, 1024},
               {Parameter::imageHeight, 1024},
               {Parameter::sensorWidth, 1024},
               {Parameter::xLength, 1024},
               {Parameter::ramAddressWidth, 20},
               {Parameter::ramDataWidth, 512},
               {Parameter::linkSpeed, 3.725},
               {Parameter::selectPeriod, 1},
               {Parameter::analyzer0Select, station::exsync},
               {Parameter::analyzer1Select, station::lineStart},
               {Parameter::custom0Select, station::exsync2},
               {Parameter::custom1Select, station::flash},
               {Parameter::flashEnable, 1}});
    station::Station station(board);
    station.connect(1, station::Wave::encoder(0, {{1, speed, speed}}), 2);
    station.start(std::make_shared<station::HostMemory>(4, 1U << 22, station::HostMemory::Kind::ring), 0);
    station.advance(seconds * station::ticksPerSecond);
    return {station.lines(), board.events()};
}

station::Record pictureRecord(std::uint32_t bits, bool isRaster) {
    const auto settings = std::make_shared<station::PictureSettings>();
    settings->sensorWidth = settings->xLength = pictureWidth;
    settings->colours.outBits = bits;
    settings->colours.shift = 16 - bits;
    settings->colours.isTableEnabled = true;
    const auto tables = std::make_shared<station::Tables>();
    for (auto& table : tables->entries)
        for (std::size_t i = 0; i < table.size(); ++i)
            table[i] = static_cast<std::uint16_t>(4 * i);
    station::Record record;
    record.settings = settings;
    record.tables = tables;
    record.lines = pictureHeight;
    record.layout.bytesPerLine = station::packedSize(std::uint64_t{3} * pictureWidth, bits);
    record.runs.push_back(
        {station::SourceLine{.height = pictureHeight, .cycles = pictureWidth / 32}, pictureHeight});
    if (!isRaster) return record;
    const auto raster = std::make_shared<station::Raster>();
    raster->width = pictureWidth;
    raster->height = pictureHeight;
    for (std::size_t i = 0; i < std::size_t{3} * pictureWidth * pictureHeight; ++i)
        raster->components.push_back(rasterComponent(i));
    record.raster = raster;
    return record;
}

LookUps::LookUps(std::uint32_t bits, bool isRaster)
    : m_bits(bits)
    , m_table(isRaster ? 65536 : 256)
    , m_components(std::size_t{3} * pictureWidth * pictureHeight)
    , m_bytes(station::packedSize(m_components.size(), bits)) {
    for (std::size_t i = 0; i < m_table.size(); ++i)
        m_table[i] = static_cast<std::uint16_t>((isRaster ? i : i << 8) >> (16 - bits));
    for (std::size_t i = 0; i < m_components.size(); ++i)
        m_components[i] = isRaster ? rasterComponent(i) : static_cast<std::uint16_t>((i * 3) & 0xff);
}

void LookUps::run() {
    station::packInto(m_bytes.data(), m_bits, [&](auto packed) {
        for (const std::uint16_t component : m_components)
            packed.put(m_table[component]);
        packed.finish();
    });
}
