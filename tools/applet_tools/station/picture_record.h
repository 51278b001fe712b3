/** The record of a picture, as JSON. */
#ifndef APPLET_TOOLS_STATION_PICTURE_RECORD_H
#define APPLET_TOOLS_STATION_PICTURE_RECORD_H

#include "applet_tools/pictures/formats.h"
#include "applet_tools/station/Grabber.h"

#include <nlohmann/json.hpp>

#include <string>

namespace applet_tools {

nlohmann::ordered_json asJson(const vboard_record& record);

/** Writes the rendered picture. A raw file does not describe its bytes, so it gets a second file with ".json"
 *  appended to its name: shape, type and order of the values, and the settings it was taken with. Returns the
 *  name of the picture's file. Throws Failure. */
std::string writePicture(PictureFiles& files, const vboard_record& record,
                         const nlohmann::ordered_json& settings);

} // namespace applet_tools

#endif
