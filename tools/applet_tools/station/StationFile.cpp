#include "applet_tools/station/StationFile.h"

#include "applet_tools/base/DocumentField.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"
#include "applet_tools/station/lengths.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <map>

namespace applet_tools {
namespace {

constexpr std::size_t largestStationFile = 1 << 20; // bytes
constexpr const char* lengthWanted = "a length, such as \"25um\" or \"51.2mm\"";
constexpr const char* speedWanted = "a speed, such as \"500mm/s\"";
constexpr const char* timeWanted = "a time, such as \"20us\" or \"10ms\"";
constexpr const char* inputWanted = "an input, such as \"GPI_0\"";

Ticks timeOf(const DocumentField& field, Ticks most = VBOARD_LONGEST_PIECE) {
    const Ticks ticks = field.read(timeWanted, [](const std::string& word) { return ticksFrom(word); });
    if (ticks > most) field.refuseAs("a time of at most " + durationText(most));
    return ticks;
}

std::uint32_t shortTimeOf(const DocumentField& field) {
    return static_cast<std::uint32_t>(timeOf(field, 0xffff'ffff));
}

std::int64_t lengthOf(const DocumentField& field) {
    return field.read(lengthWanted, [](const std::string& word) { return nanometresFrom(word); });
}

/** Above 0, and within the board's limit. */
std::uint32_t pixelSizeOf(const DocumentField& field) {
    const std::int64_t length = lengthOf(field);
    if (length < 1 || length > 0xffff'ffff) field.refuseAs("a length from 1nm to 4m");
    return static_cast<std::uint32_t>(length);
}

std::int64_t micrometresOf(const DocumentField& field) {
    return static_cast<std::int64_t>(std::round(static_cast<double>(lengthOf(field)) / 1000));
}

std::int32_t beltSpeedOf(const DocumentField& field) {
    return field.read(speedWanted, [](const std::string& word) { return beltSpeedFrom(word); });
}

constexpr std::int64_t mostCount = 0xffff'ffff;

/** Inputs in use, and the fields that use them. */
class UsedInputs {
public:
    unsigned take(const DocumentField& field) {
        return take(field, field.read(inputWanted, [](const std::string& word) { return inputFrom(word); }));
    }
    unsigned take(const DocumentField& field, unsigned input) {
        const auto [user, isNew] = m_users.emplace(input, field.path());
        if (!isNew) field.refuse("the input is already used by " + user->second);
        return input;
    }

private:
    std::map<unsigned, std::string> m_users;
};

vboard_speed beltPieceOf(const DocumentField& field, bool isLast) {
    field.requireObject({"speed", "from", "to", "for"});
    const auto speed = field.find("speed");
    const auto time = field.find("for");
    if (speed && (field.find("from") || field.find("to")))
        field.refuse("a piece has either a speed, or from and to");
    vboard_speed piece{1, 0, 0};
    piece.from = beltSpeedOf(speed ? *speed : field.at("from", speedWanted));
    piece.to = speed ? piece.from : beltSpeedOf(field.at("to", speedWanted));
    const bool needsTime = !isLast || piece.from != piece.to;
    if (time || needsTime) piece.ticks = timeOf(field.at("for", timeWanted));
    if (piece.ticks == 0) time->refuseAs("a time above 0");
    return piece;
}

void checkEncoderSpeed(const DocumentField& step, const StationBelt& belt) {
    constexpr std::int64_t fastestEncoder = VBOARD_FASTEST_ENCODER;
    for (const vboard_speed& piece : belt.profile) {
        const std::int64_t fastest =
            std::max(std::abs(std::int64_t{piece.from}), std::abs(std::int64_t{piece.to}));
        if (fastest * 1000 > fastestEncoder * belt.encoderStep)
            step.refuseAs("at least " + numberText((fastest * 1000 + fastestEncoder - 1) / fastestEncoder) +
                          "nm, with which the encoder makes no more than " + numberText(fastestEncoder) +
                          " quarter steps a second at " + numberText(fastest) + "um/s");
    }
}

StationBelt beltOf(const DocumentField& field, UsedInputs& inputs) {
    constexpr std::size_t mostPieces = 1024;
    field.requireObject({"profile", "encoder", "barrier"});
    StationBelt belt;
    const char* const wanted = "a list of pieces, such as [{\"speed\": \"500mm/s\"}]";
    const auto pieces = field.at("profile", wanted).elements(wanted, 1, mostPieces);
    for (std::size_t i = 0; i < pieces.size(); ++i)
        belt.profile.push_back(beltPieceOf(pieces[i], i + 1 == pieces.size()));
    if (const auto encoder = field.find("encoder")) {
        encoder->requireObject({"a", "b", "step"});
        belt.encoderA = inputs.take(encoder->at("a", inputWanted));
        belt.encoderB = inputs.take(encoder->at("b", inputWanted));
        const DocumentField step = encoder->at("step", lengthWanted);
        belt.encoderStep = pixelSizeOf(step);
        checkEncoderSpeed(step, belt);
    }
    if (const auto barrier = field.find("barrier")) {
        barrier->requireObject({"input", "ahead"});
        belt.barrier = inputs.take(barrier->at("input", inputWanted));
        if (const auto ahead = barrier->find("ahead")) belt.barrierAhead = micrometresOf(*ahead);
    }
    return belt;
}

vboard_camera cameraOf(const DocumentField& field) {
    constexpr std::int64_t fastest = 10'000'000;
    constexpr Ticks usual = 2500; // 20 us
    field.requireObject({"width", "lineRate", "exposure", "fullExposure"});
    vboard_camera camera{};
    const auto width = field.find("width");
    camera.width =
        width ? static_cast<std::uint32_t>(width->whole(1, VBOARD_WIDEST, "the pixels of a line")) : 2048;
    if (const auto rate = field.find("lineRate"))
        camera.line_rate = static_cast<std::uint32_t>(rate->whole(1, fastest, "lines a second"));
    const auto exposure = field.find("exposure");
    camera.exposure = exposure ? shortTimeOf(*exposure) : usual;
    const auto full = field.find("fullExposure");
    camera.full_exposure = full ? shortTimeOf(*full) : camera.exposure;
    if (full && camera.full_exposure == 0) full->refuseAs("a time of at least one tick, 8ns");
    return camera;
}

void readOrder(const DocumentField& field, vboard_camera_faults& faults) {
    const char* const wanted = "the colours in their order on the link, such as \"BGR\"";
    const std::string word = field.text(wanted);
    std::string sorted = word;
    std::ranges::sort(sorted);
    if (sorted != "BGR") field.refuseAs(wanted);
    for (std::size_t i = 0; i < 3; ++i)
        faults.order[i] = static_cast<std::uint8_t>(std::string_view("RGB").find(word[i]));
}

void readFaults(const DocumentField& field, StationCamera& station) {
    field.requireObject({"order", "dropEvery", "short", "linkLost"});
    vboard_camera_faults& faults = station.faults;
    constexpr const char* shortDistance = "the distance of short lines";
    const auto count = [](const DocumentField& one, std::int64_t most, const char* what) {
        return static_cast<std::uint32_t>(one.whole(1, most, what));
    };
    if (const auto order = field.find("order")) readOrder(*order, faults);
    if (const auto drop = field.find("dropEvery"))
        faults.drop_every = count(*drop, mostCount, "the distance of dropped triggers");
    if (const auto cut = field.find("short")) {
        cut->requireObject({"every", "width"});
        faults.short_every = count(cut->at("every", shortDistance), mostCount, shortDistance);
        faults.short_width = count(cut->at("width", "the pixels of a short line"), station.camera.width,
                                   "no more pixels than the camera has");
    }
    if (const auto lost = field.find("linkLost")) {
        lost->requireObject({"after", "for"});
        faults.lost_after = std::max<Ticks>(timeOf(lost->at("after", timeWanted)), 1);
        if (const auto time = lost->find("for")) faults.lost_for = timeOf(*time);
    }
}

void readScene(const DocumentField& field, const std::string& folder, StationScene& scene) {
    constexpr std::int64_t largestSeed = std::int64_t{1} << 53;
    field.requireObject({"image", "pixel", "noise", "seed"});
    if (const auto pixel = field.find("pixel")) scene.pixel = pixelSizeOf(*pixel);
    if (const auto image = field.find("image")) {
        const std::string name = image->text("the name of a PNG or TIFF file, or \"chart\"");
        if (name.empty() || name.find('\0') != std::string::npos) image->refuseAs("the name of a file");
        if (name != "chart") scene.image = (std::filesystem::path(folder) / name).string();
    }
    if (const auto noise = field.find("noise"))
        scene.noise = static_cast<std::uint32_t>(
            std::round(noise->number(0, 100, "a percentage of white") / 100 * whiteLevel));
    if (const auto seed = field.find("seed"))
        scene.seed = static_cast<std::uint64_t>(seed->whole(0, largestSeed, "a seed"));
}

void readObjects(const DocumentField& field, StationScene& scene) {
    constexpr std::int64_t most = VBOARD_MOST_OBJECTS;
    for (const DocumentField& one : field.elements("a list of objects", 1, most)) {
        one.requireObject({"place", "length", "times", "every"});
        vboard_object object{micrometresOf(one.at("place", lengthWanted)),
                             micrometresOf(one.at("length", lengthWanted))};
        if (object.length < 1) one.at("length", lengthWanted).refuseAs("a length of 1um or more");
        const auto times = one.find("times");
        const std::int64_t count = times ? times->whole(1, most, "a number of objects") : 1;
        const std::int64_t distance = count > 1 ? micrometresOf(one.at("every", lengthWanted)) : 0;
        if (count > 1 && std::abs(distance) < object.length)
            one.at("every", lengthWanted)
                .refuseAs("the length of an object or more, so that they do not overlap");
        if (count + static_cast<std::int64_t>(scene.objects.size()) > most)
            one.refuse("a scene has at most " + numberText(most) + " objects");
        constexpr double farthest = 1e12; // micrometres
        if (std::abs(static_cast<double>(distance)) * static_cast<double>(count) > farthest)
            one.at("every", lengthWanted).refuse("the last object would be farther away than 1000000m");
        for (std::int64_t i = 0; i < count; ++i, object.place += distance)
            scene.objects.push_back(object);
    }
}

void readInputs(const DocumentField& field, StationFile& station, UsedInputs& inputs) {
    const char* const wanted = "a wave, such as \"square:100us\"";
    for (const auto& [name, wave] : field.members("an object with a wave for each input")) {
        const std::string input = name + "=";
        const WaveRequest request =
            wave.read(wanted, [&](const std::string& word) { return parseWave(input + word); });
        inputs.take(wave, request.input);
        if (const auto* encoder = std::get_if<EncoderWave>(&request.wave)) inputs.take(wave, encoder->second);
        station.waves.push_back(request);
    }
}

void readParameters(const nlohmann::ordered_json& values, const DocumentField& field, Words& parameters) {
    for (const auto& [name, value] : field.members("an object with values of parameters")) {
        const nlohmann::ordered_json& found = values[name];
        if (!found.is_string() && !found.is_number()) value.refuseAs("a number or a text");
        if (name.find('=') != std::string::npos) value.refuse("a name cannot have an equals sign");
        parameters.push_back(name + "=" + (found.is_string() ? found.get<std::string>() : found.dump()));
    }
}

} // namespace

StationFile parseStation(const std::string& text, const std::string& folder) {
    if (text.size() > largestStationFile)
        throw UsageError("the file has " + numberText(text.size()) + " bytes; the limit is " +
                         numberText(largestStationFile));
    const nlohmann::ordered_json document = parseDocument(text);
    const DocumentField root(document, "");
    root.requireObject({"$schema", "station", "clock", "camera", "belt", "scene", "objects", "inputs",
                        "faults", "parameters"});
    constexpr const char* versionWanted = "1, the version of the format";
    const DocumentField version = root.at("station", versionWanted);
    if (version.asNumber() != 1) version.refuseAs(versionWanted);
    if (const auto schema = root.find("$schema")) schema->text("the name of a schema");
    StationFile station;
    UsedInputs inputs;
    if (const auto clock = root.find("clock")) {
        station.clock = clock->asNumber();
        const double speed = station.clock.value_or(-1);
        if (speed != 0 && !(speed >= VBOARD_SLOWEST_CLOCK && speed <= VBOARD_FASTEST_CLOCK))
            clock->refuseAs("the speed of the clock, a number from " + numberText(VBOARD_SLOWEST_CLOCK) +
                            " to " + numberText(VBOARD_FASTEST_CLOCK) + ", or 0 for steps");
    }
    if (const auto camera = root.find("camera")) station.camera.emplace().camera = cameraOf(*camera);
    if (const auto faults = root.find("faults")) {
        if (!station.camera) faults->refuse("only a camera has faults, and the field camera is missing");
        readFaults(*faults, *station.camera);
    }
    if (const auto belt = root.find("belt")) station.belt = beltOf(*belt, inputs);
    if (const auto scene = root.find("scene")) readScene(*scene, folder, station.scene.emplace());
    if (const auto objects = root.find("objects")) {
        if (!station.scene) station.scene.emplace();
        readObjects(*objects, *station.scene);
    }
    if (const auto waves = root.find("inputs")) readInputs(*waves, station, inputs);
    if (const auto values = root.find("parameters"))
        readParameters(document["parameters"], *values, station.parameters);
    return station;
}

StationFile readStationFile(const std::string& file) {
    const std::string text = requiredTextOfFile(file);
    try {
        StationFile station = parseStation(text, std::filesystem::path(file).parent_path().string());
        station.name = printable(file);
        return station;
    } catch (const UsageError& error) {
        throw UsageError(printable(file) + ": " + error.what());
    }
}

std::optional<StationFile> stationOfEnvironment() {
    const char* const file = std::getenv("VBOARD_STATION");
    if (file == nullptr) return std::nullopt;
    try {
        if (*file == '\0')
            throw UsageError("the name of the station file is empty: unset the variable to have none");
        return readStationFile(file);
    } catch (const UsageError& error) {
        throw UsageError("VBOARD_STATION: " + std::string(error.what()));
    }
}

} // namespace applet_tools
