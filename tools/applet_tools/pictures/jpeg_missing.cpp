#include "applet_tools/base/errors.h"
#include "applet_tools/pictures/formats.h"

namespace applet_tools {

std::string encodeJpeg(const PictureView&, int) {
    throw Unavailable("this program was built without JPEG (package libjpeg-dev)");
}

} // namespace applet_tools
