#include "serve/http/routes/file_api.h"

#include "applet_tools/answers/loading/loading.h"
#include "applet_tools/applet/files/ConfigurationFile.h"
#include "applet_tools/applet/published_limits.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "applet_tools/pictures/formats.h"
#include "serve/http/protocol/Query.h"
#include "serve/http/routes/parameter_api.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <cmath>

namespace serve {
namespace {

using namespace applet_tools;
using namespace std::chrono_literals;

HttpAnswer attachment(std::string content, const char* type, const std::string& name) {
    return {.type = type,
            .body = std::make_shared<const std::string>(std::move(content)),
            .headers = {{"Cache-Control", "no-store"},
                        {"Content-Disposition", "attachment; filename=\"" + name + '"'}}};
}

/** A lookup table of the applet. */
struct Table {
    Target target; /**< all elements of the table */
    std::uint32_t size;
    double largest;
};

Table tableOf(SharedStation& station, const std::string& colour) {
    if (colour != "red" && colour != "green" && colour != "blue")
        throw HttpError(status::notFound, "unknown",
                        "there is no lookup table " + inQuotes(colour) + "; there are red, green, blue");
    std::string name = "FG_LUT_VALUE_" + colour;
    std::ranges::transform(name, name.begin(),
                           [](char c) { return c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c; });
    const Parameter& parameter = *station.parameters.targetOf(name).parameter;
    const std::uint32_t size = elementCount(parameter);
    const std::optional<Limits> limits = limitsOf(parameter);
    return {{&parameter, ElementRange{0, size - 1}}, size, limits ? asDouble(limits->maximum) : 0xffff};
}

struct CurvePoint {
    double index, value;
};

bool isPair(const Json& point) {
    return point.is_array() && point.size() == 2 && point[0].is_number() && point[1].is_number();
}

bool isWithin(const CurvePoint& point, const Table& table) {
    return point.index >= 0 && point.index <= table.size - 1 && point.value >= 0 &&
           point.value <= table.largest;
}

/** Two or more points within the table, with rising indices. Throws HttpError. */
std::vector<CurvePoint> pointsFrom(const Json& body, const Table& table) {
    const HttpError notCurve(
        status::badRequest, "invalid",
        R"(a curve is {"points": [[INDEX, VALUE], ...]} with two or more points, rising indices within 0 to )" +
            numberText(table.size - 1) + " and values from 0 to " + numberText(table.largest));
    if (!body.contains("points") || !body.at("points").is_array()) throw notCurve;
    std::vector<CurvePoint> points;
    for (const Json& pair : body.at("points")) {
        if (!isPair(pair)) throw notCurve;
        const CurvePoint point{pair[0].get<double>(), pair[1].get<double>()};
        const bool isRising = points.empty() || points.back().index < point.index;
        if (!isRising || !isWithin(point, table)) throw notCurve;
        points.push_back(point);
    }
    if (points.size() < 2) throw notCurve;
    return points;
}

/** Straight lines between the points; level before the first and after the last one. */
Elements curveOf(const std::vector<CurvePoint>& points, std::uint32_t size) {
    Elements elements(size);
    std::size_t next = 0;
    for (std::uint32_t i = 0; i < size; ++i) {
        while (next < points.size() && points[next].index < i)
            ++next;
        double value = 0;
        if (next == 0) {
            value = points.front().value;
        } else if (next == points.size()) {
            value = points.back().value;
        } else {
            const CurvePoint &a = points[next - 1], &b = points[next];
            value = a.value + (b.value - a.value) * (i - a.index) / (b.index - a.index);
        }
        elements[i] = static_cast<std::uint32_t>(std::lround(value));
    }
    return elements;
}

Json beltAsJson(const SharedStation& station) {
    const auto& belt = station.setup.belt;
    const bool isKnown = belt && !belt->profile.empty();
    return {{"isKnown", belt.has_value()},
            {"speed", isKnown ? Json(belt->profile.back().to / 1000.0) : Json()},
            {"hasEncoder", belt && belt->encoderA.has_value()}};
}

Json sceneAsJson(const SharedStation& station) {
    const StationScene scene = station.setup.scene.value_or(StationScene());
    Json kinds = {"chart"};
    if (!station.ownImage.empty()) kinds.push_back("image");
    return {{"kind", scene.image.empty() ? "chart" : "image"},
            {"kinds", std::move(kinds)},
            {"pixel", scene.pixel / 1000.0},
            {"noise", scene.noise * 100 / whiteLevel},
            {"objects", scene.objects.size()}};
}

/** A member that is a number within limits; empty if it is missing. */
std::optional<double> numberFrom(const Json& body, const char* name, double least, double most,
                                 const char* unit) {
    if (!body.contains(name)) return std::nullopt;
    const Json& value = body.at(name);
    if (value.is_number() && value.get<double>() >= least && value.get<double>() <= most)
        return value.get<double>();
    throw HttpError(status::badRequest, "invalid",
                    std::string(name) + " is " + shortened(value.dump(), 40) + ": a number from " +
                        numberText(least) + " to " + numberText(most) + ' ' + unit + " is expected");
}

} // namespace

HttpAnswer sendConfiguration(SharedStation& station, const HttpRequest&, const std::string&) {
    if (station.access.board == "none")
        throw HttpError(status::notFound, "none", "without a board there is nothing to save");
    std::string text = station.commands.run(Work::reads, [&] { return stateOf(station.instance()).text(); });
    return attachment(std::move(text), "text/plain", station.access.name + ".mcf");
}

HttpAnswer loadConfiguration(SharedStation& station, const HttpRequest& request, const std::string&) {
    if (request.body.empty())
        throw HttpError(status::badRequest, "invalid",
                        "the request has no body: the text of a configuration file is expected");
    return jsonAnswer(runChange(station, "load (by HTTP)", [&] {
        auto& live = *station.access.live;
        const ConfigurationFile written(request.body);
        const LoadCheck check = askCheck(live.scratch(), "the file", written);
        Json findings = applet_tools::asJson(check.findings);
        const bool isNothing = std::ranges::any_of(
            check.findings, [](const Finding& finding) { return finding.kind == FindingKind::file; });
        if (isNothing)
            throw HttpError(status::conflict, "refused", check.findings.front().message,
                            {{"findings", std::move(findings)}});
        const MemoryFile file;
        file.write(request.body);
        const int code = applet_tools::loadConfiguration(live.instance(), file.configurationPath());
        return Json{{"result", code == FG_OK ? Json() : codeAsJson(code)}, {"findings", std::move(findings)}};
    }));
}

HttpAnswer showTable(SharedStation& station, const HttpRequest& request, const std::string& colour) {
    constexpr std::int64_t usual = 257;
    const Query query(request);
    return jsonAnswer(station.commands.run(Work::reads, [&] {
        const Table table = tableOf(station, colour);
        const auto count = static_cast<std::uint32_t>(query.number("points", 2, table.size).value_or(usual));
        const auto elements = std::get<Elements>(valueOf(station.instance(), table.target));
        Json points = Json::array();
        const std::uint32_t steps = std::min(count, table.size) - 1;
        for (std::uint32_t i = 0; i <= steps; ++i) {
            const auto index = static_cast<std::uint32_t>(std::uint64_t{i} * (table.size - 1) / steps);
            points.push_back({index, elements[index]});
        }
        return Json{{"colour", colour},
                    {"size", table.size},
                    {"largest", table.largest},
                    {"points", std::move(points)}};
    }));
}

HttpAnswer setTable(SharedStation& station, const HttpRequest& request, const std::string& colour) {
    const Json body = bodyOf(request, {"points"});
    return jsonAnswer(runChange(station, "lut " + colour + " (by HTTP)", [&] {
        const Table table = tableOf(station, colour);
        const Elements elements = curveOf(pointsFrom(body, table), table.size);
        // The first element is set alone: its refusal has the remedies.
        applyAll(station, {table.target.parameter->name + "[0]=" + numberText(elements.front())});
        const int code = writeValue(station.instance(), table.target, elements);
        if (code != FG_OK)
            throw HttpError(status::conflict, "refused", "the table was refused: " + codeInWords(code),
                            {{"result", codeAsJson(code)}, {"waysOut", Json::array()}});
        return Json{{"colour", colour}, {"size", table.size}};
    }));
}

HttpAnswer showBelt(SharedStation& station, const HttpRequest&, const std::string&) {
    station.requireVirtual();
    return jsonAnswer(station.commands.run(Work::reads, [&] { return beltAsJson(station); }));
}

HttpAnswer setBelt(SharedStation& station, const HttpRequest& request, const std::string&) {
    constexpr double fastest = 10'000, micrometres = 1000;
    station.requireVirtual();
    const auto speed = numberFrom(bodyOf(request, {"speed"}), "speed", -fastest, fastest, "mm/s");
    if (!speed) throw HttpError(status::badRequest, "invalid", R"({"speed": 500} in mm/s is expected)");
    return jsonAnswer(station.commands.run(Work::changes, [&] {
        StationBelt belt = station.setup.belt.value_or(StationBelt());
        const auto now = static_cast<std::int32_t>(std::lround(*speed * micrometres));
        belt.profile = {{1, now, now}};
        connectBelt(station.instance().board(), station.instance().device(), belt);
        station.setup.belt = belt;
        return beltAsJson(station);
    }));
}

HttpAnswer showScene(SharedStation& station, const HttpRequest&, const std::string&) {
    station.requireVirtual();
    return jsonAnswer(station.commands.run(Work::reads, [&] { return sceneAsJson(station); }));
}

HttpAnswer setScene(SharedStation& station, const HttpRequest& request, const std::string&) {
    constexpr double smallest = 1, largest = 100'000, nanometres = 1000;
    station.requireVirtual();
    const Json body = bodyOf(request, {"kind", "pixel", "noise"});
    const auto pixel = numberFrom(body, "pixel", smallest, largest, "um");
    const auto noise = numberFrom(body, "noise", 0, 100, "percent of white");
    const Json kind = body.value("kind", Json());
    if (body.contains("kind") && !kind.is_string())
        throw HttpError(status::badRequest, "invalid",
                        "kind is " + shortened(kind.dump(), 40) + ": a text is expected");
    return jsonAnswer(station.commands.run(Work::changes, [&] {
        StationScene scene = station.setup.scene.value_or(StationScene());
        const Json kinds = sceneAsJson(station).at("kinds");
        if (!kind.is_null() && std::ranges::find(kinds, kind) == kinds.end())
            throw HttpError(status::badRequest, "invalid",
                            "kind is " + shortened(kind.dump(), 40) + ": one of " + kinds.dump() +
                                " is expected");
        if (!kind.is_null()) scene.image = kind == "image" ? station.ownImage : "";
        if (pixel) scene.pixel = static_cast<std::uint32_t>(std::lround(*pixel * nanometres));
        if (noise) scene.noise = static_cast<std::uint32_t>(std::lround(*noise / 100 * whiteLevel));
        connectScene(station.instance().board(), station.instance().device(), scene);
        station.setup.scene = scene;
        return sceneAsJson(station);
    }));
}

HttpAnswer recordPictures(SharedStation& station, const HttpRequest& request, const std::string&) {
    constexpr std::int64_t mostPictures = 64;
    constexpr std::size_t mostBytes = 256U << 20U;
    constexpr auto longest = 30s;
    const auto count = Query(request).number("count", 1, mostPictures).value_or(1);
    LivePictures& pictures = station.requirePictures();
    const std::unique_lock lock(station.recording, std::try_to_lock);
    if (!lock) throw HttpError(status::unavailable, "busy", "another client takes a series of pictures now");
    const auto due = LivePictures::Clock::now() + longest;
    const LivePictures::Picture before = pictures.kept(0);
    std::int64_t last = before == nullptr ? 0 : before->number();
    TiffPages pages;
    for (std::int64_t i = 0; i < count; ++i) {
        const LivePictures::Picture picture = pictures.newerThan(last, due);
        if (picture == nullptr)
            throw HttpError(status::unavailable, "none",
                            "only " + numberText(i) + " pictures arrived in 30 seconds");
        last = picture->number();
        pages.add(picture->view());
        if (pages.bytes().size() > mostBytes)
            throw HttpError(status::badRequest, "invalid",
                            "the file would be larger than 256 megabytes: take fewer than " +
                                numberText(i + 1) + " pictures");
    }
    return attachment(pages.bytes(), "image/tiff", station.access.name + ".tiff");
}

} // namespace serve
