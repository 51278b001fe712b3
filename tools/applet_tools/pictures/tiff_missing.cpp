#include "applet_tools/base/errors.h"
#include "applet_tools/pictures/formats.h"

namespace applet_tools {

std::string encodeTiff(const PictureView&) {
    throw Unavailable("this program was built without TIFF: build it with the package libtiff-dev");
}

} // namespace applet_tools
