#include "applet_tools/station/picture_record.h"

#include "applet_tools/base/files.h"
#include "applet_tools/base/numbers.h"

#include <filesystem>

namespace applet_tools {
namespace {

/** Blue, green, red with so many bits each; "p": packed without a gap. */
std::string formatOf(const vboard_record& record) {
    return "BGR" + numberText(record.bits) + (record.bits % 8 == 0 ? "" : "p");
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

std::string writePicture(PictureFiles& files, const vboard_record& record) {
    std::string file = files.write(viewOf(record), record.picture);
    std::error_code none; // a device or a pipe has no file beside it
    if (files.isRaw() && std::filesystem::is_regular_file(file, none))
        writeFile(file + ".json", asJson(record).dump(2) + '\n');
    return file;
}

} // namespace applet_tools
