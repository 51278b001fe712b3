#include "support/station_board.h"

#include <cctype>
#include <sstream>

namespace station {

void Values::read() {
    std::istringstream words(m_text);
    for (std::string word; words >> word;) {
        const std::size_t sign = word.find('=');
        const std::string end = "_" + word.substr(0, sign);
        int found = 0;
        for (std::size_t i = 0; i < parameterCount; ++i) {
            const auto parameter = static_cast<Parameter>(i);
            if (!std::string(nameOf(parameter)).ends_with(end)) continue;
            m_values.emplace_back(parameter, std::stod(word.substr(sign + 1)));
            ++found;
        }
        EXPECT_EQ(found, 1) << word;
    }
}

std::string Trial::text(const Trace& trace) {
    std::string text = trace.level ? "1" : "0";
    for (const Edge& edge : trace.edges)
        text += (edge.level ? " +" : " -") + std::to_string(edge.tick);
    return text;
}

std::string Trial::starts(std::uint8_t select, Tick to) const {
    std::string ticks;
    for (const Edge& edge : station.trace(select, 0, to).edges)
        if (edge.level) ticks += (ticks.empty() ? "" : " ") + std::to_string(edge.tick);
    return ticks;
}

std::string Trial::picture(std::int64_t number) const {
    const auto record = memory->record(number);
    if (record == nullptr) return "none";
    return std::to_string(record->firstLine) + "-" + std::to_string(record->lastLine) + " " +
           std::to_string(record->lines) + (record->isShort ? " short" : "");
}

std::string Trial::pictures() {
    std::string all;
    for (std::int64_t number = 1; number <= station.lastPicture(); ++number)
        all += (number > 1 ? ", " : "") + picture(number);
    return all;
}

std::vector<int> Trial::bytes(std::int64_t number) {
    std::span<const std::uint8_t> picture;
    if (memory->bytes(number, picture) != HostMemory::Result::ok) return {};
    return {picture.begin(), picture.end()};
}

void Trial::play(const std::string& actions) {
    std::istringstream all(actions);
    for (std::string one; std::getline(all, one, ',');) {
        std::istringstream words(one);
        Tick tick = 0;
        if (!(words >> tick)) words.clear();
        if (tick > station.now()) advanceTo(tick);
        std::string rest;
        std::getline(words >> std::ws, rest);
        if (!rest.empty()) act(rest);
    }
}

void Trial::act(const std::string& action) {
    std::istringstream words(action);
    std::string what;
    std::size_t input = 0;
    words >> what;
    if (what == "acquire") return acquire();
    if (what == "wave") {
        words >> input;
        std::vector<Edge> edges;
        for (std::string edge; words >> edge;)
            edges.push_back({std::stoull(edge.substr(1)), edge[0] == '+'});
        EXPECT_TRUE(station.connect(input, Wave::edges(false, edges)));
        return;
    }
    if (what == "table") {
        std::string colour, entry;
        std::vector<std::uint32_t> entries(tableSize);
        for (words >> colour; words >> entry;) // "12800=7" in hexadecimal
            entries.at(std::stoul(entry, nullptr, 16)) =
                static_cast<std::uint32_t>(std::stoul(entry.substr(entry.find('=') + 1), nullptr, 16));
        return board.setTable(colour == "red" ? Colour::red : Colour::blue, entries);
    }
    if (what == "camera") return attach(words);
    if (what == "belt") return startBelt(words);
    if (what == "scene") return setScene(words);
    if (what == "inject") {
        Raster raster{Raster::Point::camera, 0, 1};
        for (unsigned component = 0; words >> component;
             raster.width = static_cast<std::uint32_t>(raster.components.size() / 3))
            raster.components.push_back(static_cast<std::uint16_t>(component));
        EXPECT_TRUE(station.inject(std::make_shared<Raster>(raster)));
        return;
    }
    const std::string values = what == "pulse"  ? "SoftwareTrgPulse=1"
                               : what == "high" ? "SoftwareTrgInput=1"
                               : what == "low"  ? "SoftwareTrgInput=0"
                                                : action;
    const Values read(values.c_str());
    for (const auto& [parameter, value] : read.all())
        write(parameter, value);
}

namespace {

/** Numbers between the separators of "encoder=1/2/25000". */
std::vector<std::int64_t> numbersOf(const std::string& text, int base = 10) {
    std::vector<std::int64_t> numbers;
    for (std::size_t position = text.find('=') + 1; position < text.size();) {
        std::size_t length = 0;
        numbers.push_back(std::stoll(text.substr(position), &length, base));
        position += length;
        while (position < text.size() && std::isdigit(text[position]) == 0 && text[position] != '-')
            ++position;
    }
    return numbers;
}

} // namespace

void Trial::attach(std::istream& words) {
    CameraSetup camera;
    if (!(words >> camera.timing.width)) return station.detachCamera();
    for (std::string word; words >> word;) {
        const std::vector<std::int64_t> numbers = numbersOf(word);
        const auto first = static_cast<std::uint32_t>(numbers[0]);
        const std::string what = word.substr(0, word.find('='));
        if (what == "rate") camera.timing.lineRate = first;
        if (what == "exposure") camera.timing.exposure = camera.fullExposure = first;
        if (what == "full") camera.fullExposure = first;
        if (what == "drop") camera.timing.dropEvery = first;
        if (what == "short") camera.timing.shortEvery = first;
        if (what == "short") camera.timing.shortWidth = static_cast<std::uint32_t>(numbers[1]);
        if (what == "lost") camera.timing.lostAt = first;
        if (what == "lost") camera.timing.lostFor = static_cast<Tick>(numbers[1]);
        for (std::size_t i = 0; what == "order" && i < 3; ++i)
            camera.order[i] = static_cast<std::uint8_t>(word[6 + i] - '0');
    }
    station.attachCamera(camera);
}

void Trial::startBelt(std::istream& words) {
    BeltSetup belt;
    for (std::string word; words >> word;) {
        const std::vector<std::int64_t> numbers = numbersOf(word);
        if (word.starts_with("encoder=")) {
            belt.encoderA = static_cast<std::size_t>(numbers[0]);
            belt.encoderB = static_cast<std::size_t>(numbers[1]);
            belt.step = static_cast<std::uint32_t>(numbers[2]);
        } else if (word.starts_with("barrier=")) {
            belt.barrier = static_cast<std::size_t>(numbers[0]);
            belt.ahead = numbers[1] * 1000;
        } else { // FROM..TO/TICKS, SPEED/TICKS or SPEED
            const bool isRamp = word.find("..") != word.npos;
            const auto ticks = static_cast<Tick>(numbers.size() > (isRamp ? 2U : 1U) ? numbers.back() : 1);
            belt.pieces.push_back({ticks, static_cast<std::int32_t>(numbers[0]),
                                   static_cast<std::int32_t>(numbers[isRamp ? 1 : 0])});
        }
    }
    EXPECT_TRUE(station.setBelt(belt));
}

void Trial::setScene(std::istream& words) {
    Scene scene;
    for (std::string word; words >> word;) {
        const std::string what = word.substr(0, word.find('='));
        if (what == "image" || what == "colour") { // WIDTHxHEIGHT:GREY.GREY..., or RED.GREEN.BLUE of a pixel
            auto image = std::make_shared<SceneImage>(SceneImage{1, 1, {}});
            const std::size_t colon = word.find(':');
            if (what == "image") {
                image->width = static_cast<std::uint32_t>(numbersOf(word)[0]);
                image->height = static_cast<std::uint32_t>(numbersOf(word)[1]);
            }
            std::istringstream levels(word.substr((colon == word.npos ? word.find('=') : colon) + 1));
            for (std::string level; std::getline(levels, level, '.');)
                image->components.insert(image->components.end(), what == "image" ? 3 : 1,
                                         static_cast<std::uint16_t>(std::stoul(level, nullptr, 16)));
            scene.image = image;
            continue;
        }
        const std::vector<std::int64_t> numbers = numbersOf(word);
        if (what == "pixel") scene.pixel = static_cast<std::uint32_t>(numbers[0]);
        if (what == "object") scene.objects.push_back({numbers[0] * 1000, numbers[1] * 1000});
        if (what == "noise") scene.noise = static_cast<std::uint32_t>(numbers[0]);
        if (what == "noise") scene.seed = static_cast<std::uint64_t>(numbers[1]);
    }
    station.setScene(scene);
}

std::string Trial::numbers(std::int64_t picture) {
    const std::vector<int> all = bytes(picture);
    const std::size_t pitch = all.empty() ? 1 : memory->record(picture)->layout.bytesPerLine;
    std::string numbers;
    for (std::size_t line = 0; line < all.size() / pitch; ++line) {
        const auto isWhite = [&](std::size_t bar) { return all[line * pitch + 3 * (8 * bar + 4)] > 127; };
        unsigned number = 0;
        for (std::size_t bit = 0; bit < 20; ++bit)
            number = 2 * number + (isWhite(2 + bit) ? 1 : 0);
        numbers += (line > 0 ? " " : "") + (isWhite(0) && !isWhite(1) ? std::to_string(number) : "-");
    }
    return numbers;
}

ValueBoard::ValueBoard() {
    set("Enable_SelectSource=1 Size_ImageWidth=32 LineGap_Number=32 Size_ImageHeight=8 FrameGap_Number=8 "
        "ControlPixelClock_Mode=1 ActivePixel_Number=1 Enable_Value=1 Y_Divisor=256 Offset_Value=0 "
        "FreeRun_Select=1 TriggerValve_Mode=2 GreenComponent=1 BlueComponent=2 "
        "SequenceLength_ImageWidth=12207 ExsyncPeriod=200 ExsyncExposure=19 Frame_Divisor=256 ExsyncEnable=1 "
        "LineTrgInSourceB=1 ImgTrgInSource=2 LineTrgInSourceA_Input_Select=1 LineTrgInSourceB_Input_Select=2 "
        "ImgTrgInSource_Input_Select=0 Prescale_Period=6 LineTrgDownscaler=1 LineTrgPhase=1 "
        "EncoderCompensation=1 "
        "ImgTriggerEnable=1 ImgTrgDebouncingTime=0.112 YLength=8 ImageHeight_ImageHeight=8 FlashEnable=1 "
        "SensorWidth=1024 XLength=1024 PixelFormat=8 RamAddressWidth=20 RamDataWidth=512 "
        "PcieCurrentLinkSpeed=3.725 PERIOD_Divisor=1 RedCoefficient=1 GreenCoefficient=1 BlueCoefficient=1 "
        "Shift_Value=8 Convert1_VirtualTrash_EnableTrash_Value=1 Convert2_VirtualTrash_EnableTrash_Value=1 "
        "Convert3_VirtualTrash_EnableTrash_Value=1 SelectTrigger_SelectSignal_Select=1 "
        "Analyzer0_Select_SelectSignal_Select=1 Analyzer1_Select_SelectSignal_Select=33 "
        "SelectCustomSignalEvent0_SelectSignal_Select=1 SelectCustomSignalEvent1_SelectSignal_Select=3");
}

} // namespace station
