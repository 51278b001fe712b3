#include "applet_tools/base/errors.h"
#include "applet_tools/pictures/formats.h"
#include "applet_tools/pictures/image_file.h"

namespace applet_tools {

namespace {

constexpr const char* noPng = "this program was built without PNG: build it with the package libpng-dev";

} // namespace

std::string encodePng(const PictureView&) { throw Unavailable(noPng); }

PixelImage decodePng(const std::string&) { throw Unavailable(noPng); }

} // namespace applet_tools
