#include "appletctl/cli/scenario/station_steps.h"

#include "applet_tools/base/Interruption.h"
#include "applet_tools/pictures/formats.h"
#include "applet_tools/scratch/defaults_and_roles.h"
#include "applet_tools/station/missing_picture.h"
#include "applet_tools/station/picture_record.h"
#include "applet_tools/station/station_words.h"
#include "applet_tools/station/waves.h"
#include "appletctl/cli/scenario/step_words.h"

#include <algorithm>
#include <array>
#include <span>

namespace appletctl {
namespace {

/** Records the time that passes during its lifetime as the last step of the station. */
class MovingStep {
public:
    explicit MovingStep(ScenarioRunner& runner)
        : m_runner(runner)
        , m_from(now())
        , m_before(lossesOf(runner.instance())) {}
    ~MovingStep() {
        StationState& state = m_runner.stationState();
        state.from = m_from;
        state.to = now();
        state.losses = lossesOf(m_runner.instance());
        for (std::size_t i = 0; i < m_before.size(); ++i)
            state.losses[i] -= m_before[i];
    }
    MovingStep(const MovingStep&) = delete;
    MovingStep& operator=(const MovingStep&) = delete;

    bool goesOn() const {
        m_runner.context().pause();
        return !m_interruption.isAsked();
    }

private:
    Ticks now() const { return m_runner.board().now(m_runner.instance().device()); }

    ScenarioRunner& m_runner;
    const Interruption m_interruption;
    Ticks m_from;
    std::vector<std::int64_t> m_before;
};

/** "grab [N] [FILE] [within TIME]". */
struct GrabWords {
    std::int64_t pictures = 1;
    std::optional<PictureFiles> files;
    Ticks timeout = 10 * ticksPerSecond;
};

GrabWords grabWords(Words words) {
    GrabWords grab;
    if (words.size() >= 2 && words[words.size() - 2] == "within") {
        grab.timeout = ticksFrom(words.back());
        words.resize(words.size() - 2);
    }
    if (!words.empty() && words.front().find_first_not_of("0123456789") == std::string::npos) {
        grab.pictures = wholeFrom<std::int64_t>(words.front());
        if (grab.pictures < 1) throw UsageError("0 is not a number of pictures");
        words.erase(words.begin());
    }
    const char* const form = "the form is 'grab [N] [FILE] [within TIME]'";
    if (words.size() > 1) throw UsageError(form);
    if (words.empty()) return grab;
    grab.files.emplace(words.front(), "", form);
    grab.files->expect(grab.pictures);
    return grab;
}

std::string takePictures(ScenarioRunner& runner, GrabWords& words, Grabber& grabber,
                         const MovingStep& moving) {
    StationState& state = runner.stationState();
    state.pictures.clear();
    state.lastBytes.clear();
    const bool isRaw = words.files && words.files->isRaw();
    const nlohmann::ordered_json settings = isRaw ? changedSettings(runner.context()) : nullptr;
    while (static_cast<std::int64_t>(state.pictures.size()) < words.pictures) {
        const WaitStart start = waitStart(runner.instance());
        const Grabber::Outcome outcome = grabber.next(words.timeout, [&] { return moving.goesOn(); });
        if (outcome == Grabber::Outcome::interrupted) return "it was interrupted";
        if (outcome == Grabber::Outcome::timeout)
            return "picture " + numberText(state.pictures.size() + 1) + " did not come within " +
                   durationText(words.timeout) + ": " +
                   whyNoPicture(runner.instance(), runner.parameters(),
                                {.start = start,
                                 .longer = "give a longer time after 'within'",
                                 .wave = "a wave by the step 'wave'"})
                       .reason;
        grabber.draw();
        const vboard_record& record = grabber.record();
        if (words.files) writePicture(*words.files, record, settings);
        state.lastBytes.assign(record.data, record.data + record.size);
        state.pictures.push_back(record);
        state.pictures.back().data = nullptr; // invalid once the next picture arrives
    }
    if (words.files) words.files->finish();
    return "";
}

/** The last picture of the last grab. */
PictureView lastPicture(ScenarioRunner& runner) {
    const StationState& state = runner.stationState();
    if (state.pictures.empty()) throw UsageError("there is no picture yet: take one with 'grab' first");
    PictureView picture = viewOf(state.pictures.back());
    picture.bytes = state.lastBytes;
    return picture;
}

/** The state after the last step in which time passed. */
const StationState& stateAfterTime(ScenarioRunner& runner) {
    runner.board();
    const StationState& state = runner.stationState();
    if (state.losses.empty())
        throw UsageError("no step has advanced the time yet: use 'advance' or 'grab' first");
    return state;
}

/** Fields of a picture for expectations. */
struct FrameField {
    const char* name;
    std::int64_t (*of)(const vboard_record& record);
};

constexpr FrameField frameFields[] = {
    {"number", [](const vboard_record& record) { return record.picture; }},
    {"width", [](const vboard_record& record) { return std::int64_t{record.width}; }},
    {"lines", [](const vboard_record& record) { return std::int64_t{record.lines}; }},
    {"bits", [](const vboard_record& record) { return std::int64_t{record.bits}; }},
    {"bytes", [](const vboard_record& record) { return static_cast<std::int64_t>(record.size); }},
    {"tick", [](const vboard_record& record) { return static_cast<std::int64_t>(record.arrival); }},
    {"trigger", [](const vboard_record& record) { return static_cast<std::int64_t>(record.trigger); }},
    {"encoder", [](const vboard_record& record) { return record.encoder; }},
    {"lost", [](const vboard_record& record) { return static_cast<std::int64_t>(record.lost_before); }},
    {"short", [](const vboard_record& record) { return std::int64_t{record.is_short}; }},
    {"narrow", [](const vboard_record& record) { return std::int64_t{record.is_narrow}; }},
};

/** "[PICTURE] FIELD OPERATOR VALUE"; the fields "count" and "sha256" are not in a record. */
struct FrameWords {
    std::optional<std::size_t> picture; // index in the last grab, from 1 on; empty: the last one
    std::string field, relation, value;
};

FrameWords frameWords(const Words& words) {
    const bool hasPicture = words.size() == 4;
    if (!hasPicture) return {{}, words[0], words[1], words[2]};
    const auto picture = wholeFrom<std::size_t>(words[0]);
    if (picture == 0) throw UsageError("the pictures of a grab count from 1");
    return {picture, words[1], words[2], words[3]};
}

std::string expectDigest(ScenarioRunner& runner, const FrameWords& words) {
    const std::string digest = sha256Of(lastPicture(runner));
    const bool isSame = digest == lowerCase(words.value);
    return isSame == (words.relation == "==") ? "" : "its SHA-256 is " + digest;
}

/** Measures of a signal: values of each period or pulse, or a single value. */
struct SignalMeasure {
    const char* name;
    bool isTime; // its values are times
    std::vector<double> (*of)(const Waveform& waveform);
};

std::vector<double> asNumbers(const std::vector<Ticks>& ticks) { return {ticks.begin(), ticks.end()}; }

std::vector<double> rate(const Waveform& waveform) {
    const auto found = rateOf(waveform);
    return found ? std::vector<double>{*found} : std::vector<double>{};
}

constexpr SignalMeasure measures[] = {
    {"period", true, [](const Waveform& waveform) { return asNumbers(waveform.periods()); }},
    {"width", true, [](const Waveform& waveform) { return asNumbers(waveform.widths()); }},
    {"gap", true, [](const Waveform& waveform) { return asNumbers(waveform.widths(true)); }},
    {"rate", false, rate},
    {"pulses", false,
     [](const Waveform& waveform) {
         return std::vector<double>{1.0 * static_cast<double>(waveform.risingEdges())};
     }},
    {"level", false,
     [](const Waveform& waveform) { return std::vector<double>{waveform.level() ? 1.0 : 0.0}; }},
};

const SignalMeasure& measureFrom(const std::string& word) {
    Words names;
    for (const SignalMeasure& measure : measures) {
        if (measure.name == word) return measure;
        names.emplace_back(measure.name);
    }
    checkOneOf(word, names);
    throw UsageError(word);
}

double measureValue(const SignalMeasure& measure, const std::string& word) {
    return measure.isTime ? static_cast<double>(ticksFrom(word)) : numberFrom(word);
}

std::string measureText(const SignalMeasure& measure, double value) {
    return measure.isTime ? durationText(static_cast<Ticks>(value)) : numberText(value);
}

/** Comma-separated numbers. */
std::vector<std::uint32_t> numbersFrom(const std::string& word, std::size_t fewest, std::size_t most) {
    std::vector<std::uint32_t> numbers;
    for (std::size_t begin = 0; begin <= word.size();) {
        const std::size_t end = std::min(word.find(',', begin), word.size());
        numbers.push_back(wholeFrom<std::uint32_t>(word.substr(begin, end - begin)));
        begin = end + 1;
    }
    if (numbers.size() != fewest && numbers.size() != most)
        throw UsageError(inQuotedWord(word) + " has " + numberText(numbers.size()) + " numbers, and " +
                         numberText(most) + " are wanted");
    return numbers;
}

} // namespace

void checkAdvance(const Words& words) { ticksFrom(words[0]); }

std::string advanceStation(ScenarioRunner& runner, const Step& step) {
    runner.board();
    const MovingStep moving(runner);
    const bool isDone =
        advance(runner.instance(), ticksFrom(step.words[0]), [&](Ticks) { return moving.goesOn(); });
    return isDone ? "" : "it was interrupted";
}

void checkWave(const Words& words) { parseWave(words[0] + "=" + words[1]); }

std::string connectStationWave(ScenarioRunner& runner, const Step& step) {
    runner.board();
    connectWave(runner.instance(), parseWave(step.words[0] + "=" + step.words[1]));
    return "";
}

void checkStation(const Words& words) { readStationFile(words[0]); }

std::string setUpStationFile(ScenarioRunner& runner, const Step& step) {
    runner.board();
    setUpStation(runner.instance(), runner.parameters(), readStationFile(step.words[0]));
    return "";
}

void checkCamera(const Words& words) {
    if (words.size() > 1 || words[0] != "off") cameraFromWords(words);
}

std::string attachCamera(ScenarioRunner& runner, const Step& step) {
    const auto& board = runner.board();
    LOOMdevice* const device = runner.instance().device();
    if (step.words[0] == "off")
        board.camera_detach(device);
    else
        connectCamera(board, device, cameraFromWords(step.words));
    return "";
}

void checkBelt(const Words& words) { beltFromWords(words); }

std::string startBelt(ScenarioRunner& runner, const Step& step) {
    connectBelt(runner.board(), runner.instance().device(), beltFromWords(step.words));
    return "";
}

void checkScene(const Words& words) { sceneFromWords(words); }

std::string putScene(ScenarioRunner& runner, const Step& step) {
    connectScene(runner.board(), runner.instance().device(), sceneFromWords(step.words));
    return "";
}

void checkAcquire(const Words& words) { checkOneOf(words[0], {"start", "stop"}); }

std::string acquire(ScenarioRunner& runner, const Step& step) {
    runner.board();
    auto& grabber = runner.stationState().grabber;
    grabber.reset();
    constexpr std::size_t frames = 16;
    if (step.words[0] == "start") grabber.emplace(runner.instance(), frames);
    return "";
}

void checkGrab(const Words& words) { grabWords(words); }

std::string grab(ScenarioRunner& runner, const Step& step) {
    runner.board();
    GrabWords words = grabWords(step.words);
    const MovingStep moving(runner);
    if (auto& running = runner.stationState().grabber) return takePictures(runner, words, *running, moving);
    Grabber grabber(runner.instance(), 4);
    return takePictures(runner, words, grabber, moving);
}

void checkFrame(const Words& step) {
    const FrameWords words = frameWords(step);
    Words names{"count", "sha256"};
    for (const FrameField& field : frameFields)
        names.emplace_back(field.name);
    checkOneOf(words.field, names);
    relationFrom(words.relation);
    if (words.field != "sha256") {
        numberFrom(words.value);
        return;
    }
    checkOneOf(words.relation, {"==", "!="});
    if (words.picture) throw UsageError("the bytes of the last picture only are kept: leave the number out");
}

std::string expectFrame(ScenarioRunner& runner, const Step& step) {
    const FrameWords words = frameWords(step.words);
    const auto& pictures = runner.stationState().pictures;
    const auto holds = [&](std::int64_t value) {
        return relationFrom(words.relation).holds(static_cast<double>(value) <=> numberFrom(words.value));
    };
    if (words.field == "sha256") return expectDigest(runner, words);
    if (words.field == "count")
        return holds(static_cast<std::int64_t>(pictures.size()))
                   ? ""
                   : "the last grab took " + numberText(pictures.size());
    lastPicture(runner);
    const std::size_t number = words.picture.value_or(pictures.size());
    if (number > pictures.size())
        return "the last grab took " + numberText(pictures.size()) +
               (pictures.size() == 1 ? " picture" : " pictures");
    const auto field =
        std::ranges::find_if(frameFields, [&](const FrameField& one) { return one.name == words.field; });
    const std::int64_t value = field->of(pictures[number - 1]);
    return holds(value)
               ? ""
               : "picture " + numberText(number) + " of the grab: " + words.field + " = " + numberText(value);
}

void checkSignal(const Words& words) {
    signalFrom(words[0]);
    const SignalMeasure& measure = measureFrom(words[1]);
    relationFrom(words[2]);
    measureValue(measure, words[3]);
}

std::string expectSignal(ScenarioRunner& runner, const Step& step) {
    const StationState& state = stateAfterTime(runner);
    const StationSignal& signal = signalFrom(step.words[0]);
    const SignalMeasure& measure = measureFrom(step.words[1]);
    const double wanted = measureValue(measure, step.words[3]);
    const Waveform waveform = waveformSince(runner.instance(), signal.select, state.from, state.to);
    if (!waveform.isComplete) return incompleteText(signal.name) + ": advance by less";
    const std::vector<double> values = measure.of(waveform);
    if (values.empty())
        return signal.name + " had " + numberText(waveform.risingEdges()) + " rising edges in " +
               durationText(state.to - state.from) + ", too few for a " + measure.name;
    const auto wrong = std::ranges::find_if(
        values, [&](double value) { return !relationFrom(step.words[2]).holds(value <=> wanted); });
    if (wrong == values.end()) return "";
    if (measure.name == std::string_view("pulses"))
        return signal.name + " has " + measureText(measure, *wrong) + (*wrong == 1 ? " pulse" : " pulses");
    const std::string which = values.size() == 1
                                  ? std::string("the ") + measure.name
                                  : measure.name + (" " + numberText(wrong - values.begin() + 1)) + " of " +
                                        numberText(values.size());
    return which + " of " + signal.name + " is " + measureText(measure, *wrong);
}

void checkPixel(const Words& words) {
    numbersFrom(words[0], 2, 2);
    relationFrom(words[1]);
    numbersFrom(words[2], 1, 3);
}

std::string expectPixel(ScenarioRunner& runner, const Step& step) {
    const PictureView picture = lastPicture(runner);
    const auto position = numbersFrom(step.words[0], 2, 2);
    if (position[0] >= picture.width || position[1] >= picture.lines)
        return "the picture has " + numberText(picture.width) + " x " + numberText(picture.lines) + " pixels";
    const Pixel pixel = pixelAt(picture, position[0], position[1]);
    const std::array<std::uint32_t, 3> found{pixel.blue, pixel.green, pixel.red};
    const auto wanted = numbersFrom(step.words[2], 1, 3);
    const Relation& relation = relationFrom(step.words[1]);
    std::size_t equal = 0, holding = 0;
    for (std::size_t i = 0; i < found.size(); ++i) {
        const std::uint32_t one = wanted[wanted.size() == 1 ? 0 : i];
        equal += found[i] == one ? 1 : 0;
        holding += relation.holds(found[i] * 1.0 <=> one * 1.0) ? 1 : 0;
    }
    // A different pixel differs in at least one component; other operators must hold for each of them.
    const bool holds = relation.symbol == "!=" ? equal < found.size() : holding == found.size();
    return holds ? ""
                 : "blue, green and red of the pixel are " + numberText(found[0]) + "," +
                       numberText(found[1]) + "," + numberText(found[2]);
}

void checkLoss(const Words& words) {
    checkOneOf(words[0], lossNames());
    relationFrom(words[1]);
    numberFrom(words[2]);
}

std::string expectLoss(ScenarioRunner& runner, const Step& step) {
    const auto& losses = stateAfterTime(runner).losses;
    for (std::size_t i = 0; i < lossKinds().size(); ++i) {
        const LossKind& kind = lossKinds()[i];
        if (kind.name != step.words[0]) continue;
        const std::int64_t count = losses[i];
        if (relationFrom(step.words[1]).holds(static_cast<double>(count) <=> numberFrom(step.words[2])))
            return "";
        return std::string(kind.what) + ": " + numberText(count) +
               (count > 0 ? std::string("; ") + kind.advice : "");
    }
    return "";
}

} // namespace appletctl
