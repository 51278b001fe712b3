#include "serve/http/routes/picture_api.h"

#include "applet_tools/applet/timing/ticks.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"
#include "applet_tools/pictures/region.h"
#include "applet_tools/station/picture_record.h"
#include "serve/http/protocol/Query.h"
#include "serve/http/state/station_documents.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace serve {
namespace {

using namespace std::chrono_literals;
using applet_tools::numberText;
using applet_tools::PictureRegion;
using applet_tools::PictureView;
using Clock = LivePictures::Clock;
using Picture = LivePictures::Picture;

constexpr std::int64_t anyNumber = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t longestTimeout = 10'000; // milliseconds
constexpr auto longestGap =
    1900ms; // after this time without a picture the reason is sent: within the usual timeout

Picture requireKept(SharedStation& station, std::int64_t number) {
    if (Picture picture = station.requirePictures().kept(number)) return picture;
    throw HttpError(status::notFound, "none",
                    number == 0
                        ? "there is no picture yet: GET /api/frame waits for one"
                        : "picture " + numberText(number) + " is no longer kept, or has not arrived yet");
}

Picture askedPicture(SharedStation& station, const Query& query) {
    return requireKept(station, query.number("picture", 1, anyNumber).value_or(0));
}

PictureRegion regionOf(const Query& query, const PictureView& picture) {
    const auto asked = query.rectangle("region");
    if (!asked) return wholeOf(picture);
    const PictureRegion region{(*asked)[0], (*asked)[1], (*asked)[2], (*asked)[3]};
    if (isWithin(region, picture)) return region;
    throw HttpError(status::badRequest, "invalid",
                    "region=" + query.text("region") + " is not within the picture of " +
                        numberText(picture.width) + " x " + numberText(picture.lines) + " pixels");
}

/** One for each remedy. */
Json waysOutOf(const applet_tools::MissingPicture& missing) {
    Json ways = Json::array();
    for (const std::string& remedy : missing.remedies)
        ways.push_back(remedyOf({remedy}));
    return ways;
}

/** Answers a request for which no picture came in time. Throws the reason if no pictures arrive at all. */
HttpAnswer withoutPicture(SharedStation& station) {
    const LivePictures::State state = station.pictures->state();
    const bool isGap = Clock::now() - state.lastPicture >= longestGap;
    if (state.isRunning && !isGap) return {.status = status::noContent, .type = ""};
    const auto missing = station.commands.run(Work::reads, [&] { return station.whyNoPicture(); });
    throw HttpError(status::unavailable, "none", missing.reason, {{"waysOut", waysOutOf(missing)}});
}

std::uint32_t scaled(std::uint32_t size, double scale) {
    return std::clamp(static_cast<std::uint32_t>(std::lround(size * scale)), 1U, size);
}

std::string formatName(std::uint32_t bits) { return "BGR" + numberText(bits) + (bits % 8 == 0 ? "" : "p"); }

HttpAnswer frameAnswer(const Picture& picture, const PictureForm& form) {
    const vboard_record& record = picture->record();
    const char* const types[] = {"image/jpeg", "image/png", "application/octet-stream"};
    const bool isWhole =
        form.region == wholeOf(picture->view()) && form.width == record.width && form.lines == record.lines;
    const std::uint32_t sentBits = isWhole ? record.bits : record.bits > 8 ? 16 : 8;
    HttpAnswer answer{.type = types[static_cast<int>(form.format)], .body = picture->encoded(form)};
    answer.headers = {{"Cache-Control", "no-store"},
                      {"X-Picture", numberText(picture->number())},
                      {"X-Tick", numberText(record.arrival)},
                      {"X-Width", numberText(record.width)},
                      {"X-Height", numberText(record.lines)},
                      {"X-Bits", numberText(record.bits)},
                      {"X-Format", formatName(sentBits)},
                      {"X-Sent-Size", numberText(form.width) + "x" + numberText(form.lines)},
                      {"X-Scale", numberText(static_cast<double>(form.width) / form.region.width)},
                      {"X-Lost-Before", numberText(record.lost_before)}};
    return answer;
}

Json perColour(const std::array<std::uint64_t, 3>& values) { return Json(values); }

} // namespace

PictureForm formOf(const HttpRequest& request, const PictureView& picture) {
    constexpr std::int64_t worst = 1, best = 100, usual = 85;
    const Query query(request);
    const std::string format = query.word("format", {"jpeg", "png", "raw"});
    PictureForm form;
    form.format = format == "jpeg"  ? PictureForm::Format::jpeg
                  : format == "png" ? PictureForm::Format::png
                                    : PictureForm::Format::raw;
    form.quality = static_cast<int>(query.number("quality", worst, best).value_or(usual));
    form.region = regionOf(query, picture);
    const auto fit = query.size("fit");
    const double scale = fit ? std::min({1.0, static_cast<double>((*fit)[0]) / form.region.width,
                                         static_cast<double>((*fit)[1]) / form.region.lines})
                             : 1;
    form.width = scaled(form.region.width, scale);
    form.lines = scaled(form.region.lines, scale);
    return form;
}

HttpAnswer sendFrame(SharedStation& station, const HttpRequest& request, const std::string&) {
    const Query query(request);
    LivePictures& pictures = station.requirePictures();
    const std::chrono::milliseconds timeout(query.number("timeout", 0, longestTimeout).value_or(2000));
    const auto number = query.number("picture", 1, anyNumber);
    Picture picture;
    if (number) {
        picture = requireKept(station, *number);
    } else {
        const Picture latest = pictures.kept(0);
        const std::int64_t after =
            query.number("after", 0, anyNumber).value_or(latest == nullptr ? 0 : latest->number());
        picture = pictures.newerThan(after, Clock::now() + timeout);
    }
    if (picture == nullptr) return withoutPicture(station);
    return frameAnswer(picture, formOf(request, picture->view()));
}

HttpAnswer sendPixel(SharedStation& station, const HttpRequest& request, const std::string&) {
    const Query query(request);
    const Picture picture = askedPicture(station, query);
    const PictureView view = picture->view();
    const auto x = query.number("x", 0, anyNumber), y = query.number("y", 0, anyNumber);
    if (!x || !y)
        throw HttpError(status::badRequest, "invalid",
                        "the position of the pixel is missing: x=NUMBER&y=NUMBER");
    if (*x >= view.width || *y >= view.lines)
        throw HttpError(status::badRequest, "invalid",
                        "the pixel x=" + numberText(*x) + ", y=" + numberText(*y) +
                            " is not within picture " + numberText(picture->number()) + " of " +
                            numberText(view.width) + " x " + numberText(view.lines) + " pixels");
    const applet_tools::Pixel pixel =
        pixelAt(view, static_cast<std::uint32_t>(*x), static_cast<std::uint32_t>(*y));
    return jsonAnswer({{"picture", picture->number()},
                       {"x", *x},
                       {"y", *y},
                       {"bits", view.bits},
                       {"format", formatName(view.bits)},
                       {"components", {pixel.red, pixel.green, pixel.blue}}});
}

HttpAnswer sendHistogram(SharedStation& station, const HttpRequest& request, const std::string&) {
    const Query query(request);
    const Picture picture = askedPicture(station, query);
    const PictureRegion region = regionOf(query, picture->view());
    const applet_tools::PictureHistogram histogram = histogramOf(picture->view(), region);
    const auto share = [&](const auto& counts) {
        Json shares = Json::array();
        for (const std::uint64_t count : counts)
            shares.push_back(static_cast<double>(count) / static_cast<double>(histogram.count));
        return shares;
    };
    return jsonAnswer({{"picture", picture->number()},
                       {"region", {region.x, region.y, region.width, region.lines}},
                       {"bits", picture->view().bits},
                       {"count", histogram.count},
                       {"bins", histogram.counts},
                       {"low", perColour(histogram.low)},
                       {"high", perColour(histogram.high)},
                       {"clippedLow", share(histogram.low)},
                       {"clippedHigh", share(histogram.high)},
                       {"mean", share(histogram.sum)},
                       {"isEstimate", false}});
}

HttpAnswer sendProfile(SharedStation& station, const HttpRequest& request, const std::string&) {
    const Query query(request);
    const Picture picture = askedPicture(station, query);
    const PictureView view = picture->view();
    const auto line = query.number("line", 0, view.lines - 1),
               column = query.number("column", 0, view.width - 1);
    if (line.has_value() == column.has_value())
        throw HttpError(status::badRequest, "invalid",
                        "a profile is along a line or a column: line=NUMBER or column=NUMBER");
    const std::uint32_t size = line ? view.lines : view.width;
    const auto position = static_cast<std::uint32_t>(line.value_or(column.value_or(0)));
    const auto width = static_cast<std::uint32_t>(query.number("width", 1, size).value_or(1));
    const std::uint32_t first = std::min(position - std::min(position, width / 2), size - width);
    const applet_tools::PictureProfile profile = line ? columnMeans(view, {0, first, view.width, width})
                                                      : lineMeans(view, {first, 0, width, view.lines});
    return jsonAnswer({{"picture", picture->number()},
                       {"along", line ? "line" : "column"},
                       {"first", first},
                       {"width", width},
                       {"bits", view.bits},
                       {"values", profile}});
}

HttpAnswer sendRecords(SharedStation& station, const HttpRequest&, const std::string&) {
    Json rows = Json::array();
    for (const Picture& picture : station.requirePictures().allKept()) {
        Json row = applet_tools::asJson(picture->record());
        row["picture"] = picture->number();
        rows.push_back(std::move(row));
    }
    return jsonAnswer({{"pictures", std::move(rows)}});
}

HttpAnswer showAcquisition(SharedStation& station, const HttpRequest&, const std::string&) {
    LivePictures& pictures = station.requirePictures();
    const auto missing = station.commands.run(Work::reads, [&] { return station.whyNoPicture(); });
    const LivePictures::State state = pictures.state();
    const bool isSignal = state.isRunning && Clock::now() - state.lastPicture < longestGap;
    const Picture latest = pictures.kept(0);
    Json signal = {{"state", "ok"}, {"reason", nullptr}, {"waysOut", Json::array()}};
    if (!isSignal) signal = {{"state", "none"}, {"reason", missing.reason}, {"waysOut", waysOutOf(missing)}};
    return jsonAnswer({{"isRunning", state.isRunning},
                       {"isPaused", state.isPaused},
                       {"picture", latest == nullptr ? Json() : Json(latest->number())},
                       {"pictures", state.pictures},
                       {"rendered", state.rendered},
                       {"rate", state.rate},
                       {"signal", std::move(signal)}});
}

HttpAnswer setAcquisition(SharedStation& station, const HttpRequest& request, const std::string& none) {
    const Json body = bodyOf(request, {"isRunning"});
    if (!body.contains("isRunning") || !body.at("isRunning").is_boolean())
        throw HttpError(status::badRequest, "invalid",
                        R"({"isRunning": true} or {"isRunning": false} is expected)");
    LivePictures& pictures = station.requirePictures();
    const bool isRunning = body.at("isRunning").get<bool>();
    station.commands.run(Work::changes, [&] { pictures.setPaused(!isRunning); });
    return showAcquisition(station, request, none);
}

} // namespace serve
