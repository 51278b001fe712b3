#include "applet_tools/station/picture_record.h"

#include "applet_tools/base/files.h"
#include "applet_tools/base/numbers.h"

#include <filesystem>

namespace applet_tools {
namespace {

/** Format name: blue, green, red with this many bits each; "p": packed without padding. */
std::string formatOf(const vboard_record& record) {
    return "BGR" + numberText(record.bits) + (record.bits % 8 == 0 ? "" : "p");
}

/** Type of a component: "uint8", "uint16"; "uint10p" if packed. */
std::string typeOf(const vboard_record& record) {
    return "uint" + numberText(record.bits) + (record.bits % 8 == 0 ? "" : "p");
}

} // namespace

nlohmann::ordered_json asJson(const vboard_record& record) {
    return {{"picture", record.picture},
            {"tick", record.arrival},
            {"firstLine", record.first_line},
            {"lastLine", record.last_line},
            {"width", record.width},
            {"lines", record.lines},
            {"bits", record.bits},
            {"format", formatOf(record)},
            {"bytesPerLine", record.bytes_per_line},
            {"bytes", record.size},
            {"trigger", record.trigger},
            {"encoder", record.encoder},
            {"lostBefore", record.lost_before},
            {"short", record.is_short},
            {"narrow", record.is_narrow}};
}

std::string writePicture(PictureFiles& files, const vboard_record& record,
                         const nlohmann::ordered_json& settings) {
    std::string file = files.write(viewOf(record), record.picture);
    std::error_code none; // a device or a pipe gets no second file
    if (!files.isRaw() || !std::filesystem::is_regular_file(file, none)) return file;
    nlohmann::ordered_json beside = asJson(record);
    constexpr int components = 3;
    beside["shape"] = {record.lines, record.width, components};
    beside["type"] = typeOf(record);
    beside["byteOrder"] = "little";
    beside["order"] = "BGR";
    beside["settings"] = settings;
    writeFile(file + ".json", beside.dump(2) + '\n');
    return file;
}

} // namespace applet_tools
