#include "applet_tools/base/errors.h"
#include "applet_tools/pictures/formats.h"
#include "applet_tools/pictures/image_file.h"

namespace applet_tools {
namespace {

[[noreturn]] void refuse() {
    throw Unavailable("this program was built without TIFF: build it with the package libtiff-dev");
}

} // namespace

struct TiffPages::State {};

TiffPages::TiffPages() { refuse(); }
TiffPages::TiffPages(int) { refuse(); }
TiffPages::~TiffPages() = default;
TiffPages::TiffPages(TiffPages&&) noexcept = default;
TiffPages& TiffPages::operator=(TiffPages&&) noexcept = default;
void TiffPages::add(const PictureView&) { refuse(); }
std::size_t TiffPages::count() const { refuse(); }
const std::string& TiffPages::bytes() const { refuse(); }

std::string encodeTiff(const PictureView&) { refuse(); }
PixelImage decodeTiff(const std::string&) { refuse(); }

} // namespace applet_tools
