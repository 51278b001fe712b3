#include "applet_tools/base/errors.h"
#include "applet_tools/pictures/formats.h"

namespace applet_tools {

std::string encodePng(const PictureView&) {
    throw Unavailable("this program was built without PNG: build it with the package libpng-dev");
}

} // namespace applet_tools
