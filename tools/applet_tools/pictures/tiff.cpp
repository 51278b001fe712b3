#include "applet_tools/base/errors.h"
#include "applet_tools/pictures/formats.h"
#include "applet_tools/pictures/image_file.h"

#include <tiffio.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

namespace applet_tools {
namespace {

/** A file in memory with a write position. */
struct MemoryFile {
    std::string bytes;
    std::size_t place = 0;
};

MemoryFile& fileOf(thandle_t handle) { return *static_cast<MemoryFile*>(handle); }

tmsize_t readFrom(thandle_t handle, void* bytes, tmsize_t size) {
    MemoryFile& file = fileOf(handle);
    const std::size_t left = file.bytes.size() - std::min(file.place, file.bytes.size());
    const std::size_t count = std::min(static_cast<std::size_t>(size), left);
    std::memcpy(bytes, file.bytes.data() + file.place, count);
    file.place += count;
    return static_cast<tmsize_t>(count);
}

tmsize_t writeTo(thandle_t handle, void* bytes, tmsize_t size) {
    MemoryFile& file = fileOf(handle);
    const std::size_t end = file.place + static_cast<std::size_t>(size);
    try { // no exception may pass through the library
        if (end > file.bytes.size()) file.bytes.resize(end);
    } catch (const std::bad_alloc&) {
        return -1;
    }
    std::memcpy(file.bytes.data() + file.place, bytes, static_cast<std::size_t>(size));
    file.place = end;
    return size;
}

toff_t seekIn(thandle_t handle, toff_t offset, int whence) {
    MemoryFile& file = fileOf(handle);
    const std::size_t from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? file.place : file.bytes.size();
    return file.place = from + offset;
}

int closeNothing(thandle_t) { return 0; }

toff_t sizeOf(thandle_t handle) { return fileOf(handle).bytes.size(); }

void require(bool isDone) {
    if (!isDone)
        throw Failure("the picture cannot be written as TIFF: it is too large, or there is no memory left");
}

void writeRow(TIFF* tiff, const PictureView& picture, std::uint32_t y,
              const std::vector<std::uint16_t>& line) {
    std::vector<std::uint16_t> wide(line.size());
    std::vector<std::uint8_t> narrow(line.size());
    const bool isWide = picture.bits > 8;
    for (std::size_t i = 0; i < line.size(); ++i) {
        wide[i] = isWide ? widened(line[i], picture.bits) : line[i];
        narrow[i] = static_cast<std::uint8_t>(line[i]);
    }
    require(TIFFWriteScanline(tiff, isWide ? static_cast<void*>(wide.data()) : narrow.data(), y, 0) == 1);
}

using Tiff = std::unique_ptr<TIFF, void (*)(TIFF*)>;

Tiff openIn(MemoryFile& file, const char* mode = "w") {
    TIFFSetWarningHandler(nullptr);
    TIFFSetErrorHandler(nullptr);
    return {TIFFClientOpen("picture", mode, &file, readFrom, writeTo, seekIn, closeNothing, sizeOf, nullptr,
                           nullptr),
            TIFFClose};
}

} // namespace

struct TiffPages::State {
    MemoryFile file;
    Tiff tiff = openIn(file);
};

TiffPages::TiffPages() : m_state(std::make_unique<State>()) { require(m_state->tiff != nullptr); }
TiffPages::~TiffPages() = default;
TiffPages::TiffPages(TiffPages&&) noexcept = default;
TiffPages& TiffPages::operator=(TiffPages&&) noexcept = default;

void TiffPages::add(const PictureView& picture) {
    const Tiff& tiff = m_state->tiff;
    TIFFSetField(tiff.get(), TIFFTAG_IMAGEWIDTH, picture.width);
    TIFFSetField(tiff.get(), TIFFTAG_IMAGELENGTH, picture.lines);
    TIFFSetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, 3);
    TIFFSetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, picture.bits > 8 ? 16 : 8);
    TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tiff.get(), TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff.get(), TIFFTAG_COMPRESSION, COMPRESSION_LZW);
    TIFFSetField(tiff.get(), TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    TIFFSetField(tiff.get(), TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff.get(), 0));
    std::vector<std::uint16_t> line;
    for (std::uint32_t y = 0; y < picture.lines; ++y) {
        unpackLine(picture, y, line);
        writeRow(tiff.get(), picture, y, line);
    }
    require(TIFFWriteDirectory(tiff.get()) == 1);
}

const std::string& TiffPages::bytes() const { return m_state->file.bytes; }

namespace {

/** Reads rows of 16 bits, with three components or grey, without conversion. */
bool readWideRows(TIFF* tiff, std::uint16_t samples, PixelImage& image) {
    std::vector<std::uint16_t> row(static_cast<std::size_t>(TIFFScanlineSize(tiff)) / 2 + 1);
    for (std::uint32_t y = 0; y < image.height; ++y) {
        if (TIFFReadScanline(tiff, row.data(), y, 0) != 1) return false;
        std::uint16_t* const out = image.row(y);
        for (std::size_t i = 0; i < std::size_t{3} * image.width; ++i)
            out[i] = row[samples == 1 ? i / 3 : i / 3 * samples + i % 3];
    }
    return true;
}

/** Reads all other kinds with 8 bits. */
/** The library multiplies the colours of an image with its alpha channel, unless that is said to be done. */
void ignoreAlpha(TIFF* tiff) {
    std::uint16_t count = 0;
    const std::uint16_t* kinds = nullptr;
    if (TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds) != 1) return;
    const std::vector<std::uint16_t> done(count, EXTRASAMPLE_ASSOCALPHA);
    TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, count, done.data());
}

bool readNarrowRows(TIFF* tiff, PixelImage& image) {
    ignoreAlpha(tiff);
    std::vector<std::uint32_t> pixels(std::size_t{image.width} * image.height);
    const int isStopping = 1;
    if (TIFFReadRGBAImageOriented(tiff, image.width, image.height, pixels.data(), ORIENTATION_TOPLEFT,
                                  isStopping) != 1)
        return false;
    for (std::size_t i = 0; i < image.components.size(); ++i)
        image.components[i] = widened(static_cast<std::uint8_t>(pixels[i / 3] >> (8 * (i % 3))), 8);
    return true;
}

std::uint16_t tagOf(TIFF* tiff, std::uint32_t tag) {
    std::uint16_t value = 0;
    TIFFGetFieldDefaulted(tiff, tag, &value);
    return value;
}

} // namespace

PixelImage decodeTiff(const std::string& bytes) {
    MemoryFile file{bytes, 0};
    const Tiff tiff = openIn(file, "rm");
    PixelImage image;
    std::uint32_t width = 0, height = 0;
    if (tiff == nullptr || TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width) != 1 ||
        TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &height) != 1)
        throw UsageError("it is not a sound TIFF file");
    image.resize(width, height);
    const std::uint16_t samples = tagOf(tiff.get(), TIFFTAG_SAMPLESPERPIXEL);
    const std::uint16_t kind = tagOf(tiff.get(), TIFFTAG_PHOTOMETRIC);
    const bool isWide = tagOf(tiff.get(), TIFFTAG_BITSPERSAMPLE) == 16 && TIFFIsTiled(tiff.get()) == 0 &&
                        tagOf(tiff.get(), TIFFTAG_PLANARCONFIG) == PLANARCONFIG_CONTIG &&
                        ((kind == PHOTOMETRIC_RGB && (samples == 3 || samples == 4)) ||
                         (kind == PHOTOMETRIC_MINISBLACK && samples == 1));
    const bool isRead = isWide ? readWideRows(tiff.get(), samples, image) : readNarrowRows(tiff.get(), image);
    if (!isRead) throw UsageError("it is not a sound TIFF file");
    return image;
}

std::string encodeTiff(const PictureView& picture) {
    TiffPages pages;
    pages.add(picture);
    return pages.bytes();
}

} // namespace applet_tools
