#include "applet_tools/base/errors.h"
#include "applet_tools/pictures/formats.h"
#include "applet_tools/pictures/image_file.h"

#include <sys/stat.h>
#include <tiffio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

namespace applet_tools {
namespace {

/** The bytes of a TIFF file, with the position of the library in them. */
class Bytes {
public:
    virtual ~Bytes() = default;
    /** The number of bytes read; -1 with errno. */
    virtual std::int64_t readAt(std::size_t offset, void* bytes, std::size_t size) = 0;
    /** False with errno. */
    virtual bool writeAt(std::size_t offset, const void* bytes, std::size_t size) = 0;
    virtual std::size_t size() = 0;
    /** Cuts off what comes after `size`. */
    virtual void cut(std::size_t size) = 0;

    std::size_t position = 0;
};

class BytesInMemory final : public Bytes {
public:
    explicit BytesInMemory(std::string content = "") : bytes(std::move(content)) {}

    std::int64_t readAt(std::size_t from, void* out, std::size_t count) override {
        const std::size_t left = bytes.size() - std::min(from, bytes.size());
        std::memcpy(out, bytes.data() + std::min(from, bytes.size()), std::min(count, left));
        return static_cast<std::int64_t>(std::min(count, left));
    }
    bool writeAt(std::size_t to, const void* in, std::size_t count) override {
        try { // no exception may pass through the library
            if (to + count > bytes.size()) bytes.resize(to + count);
        } catch (const std::bad_alloc&) {
            errno = ENOMEM;
            return false;
        }
        std::memcpy(bytes.data() + to, in, count);
        return true;
    }
    std::size_t size() override { return bytes.size(); }
    void cut(std::size_t size) override { bytes.resize(size); }

    std::string bytes;
};

class BytesOfFile final : public Bytes {
public:
    explicit BytesOfFile(int descriptor) : m_descriptor(descriptor) {}

    std::int64_t readAt(std::size_t from, void* out, std::size_t count) override {
        return pread(m_descriptor, out, count, static_cast<off_t>(from));
    }
    bool writeAt(std::size_t to, const void* in, std::size_t count) override {
        for (std::size_t done = 0; done < count;) {
            const ssize_t written = pwrite(m_descriptor, static_cast<const char*>(in) + done, count - done,
                                           static_cast<off_t>(to + done));
            if (written < 0 && errno == EINTR) continue;
            if (written < 0) return false;
            done += static_cast<std::size_t>(written);
        }
        return true;
    }
    std::size_t size() override {
        struct stat status {};
        return fstat(m_descriptor, &status) == 0 ? static_cast<std::size_t>(status.st_size) : 0;
    }
    void cut(std::size_t size) override {
        if (ftruncate(m_descriptor, static_cast<off_t>(size)) != 0) return; // what is left is in no page
    }

private:
    int m_descriptor;
};

Bytes& bytesOf(thandle_t handle) { return *static_cast<Bytes*>(handle); }

tmsize_t readFrom(thandle_t handle, void* bytes, tmsize_t size) {
    Bytes& file = bytesOf(handle);
    const std::int64_t count = file.readAt(file.position, bytes, static_cast<std::size_t>(size));
    if (count > 0) file.position += static_cast<std::size_t>(count);
    return static_cast<tmsize_t>(count);
}

tmsize_t writeTo(thandle_t handle, void* bytes, tmsize_t size) {
    Bytes& file = bytesOf(handle);
    if (!file.writeAt(file.position, bytes, static_cast<std::size_t>(size))) return -1;
    file.position += static_cast<std::size_t>(size);
    return size;
}

toff_t seekIn(thandle_t handle, toff_t offset, int whence) {
    Bytes& file = bytesOf(handle);
    const std::size_t from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? file.position : file.size();
    return file.position = from + offset;
}

int closeNothing(thandle_t) { return 0; }

toff_t sizeOf(thandle_t handle) { return bytesOf(handle).size(); }

/** Throws Failure, with errno as the reason if it is set. */
void require(bool isDone) {
    if (isDone) return;
    const std::string reason = errno != 0 ? std::strerror(errno) : "a TIFF file has 4 GiB at most";
    throw Failure("the picture cannot be written as TIFF: " + reason);
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

Tiff openIn(Bytes& file, const char* mode = "w") {
    TIFFSetWarningHandler(nullptr);
    TIFFSetErrorHandler(nullptr);
    return {TIFFClientOpen("picture", mode, &file, readFrom, writeTo, seekIn, closeNothing, sizeOf, nullptr,
                           nullptr),
            TIFFClose};
}

void writePage(TIFF* tiff, const PictureView& picture) {
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, picture.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, picture.lines);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 3);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, picture.bits > 8 ? 16 : 8);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
    TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
    std::vector<std::uint16_t> line;
    for (std::uint32_t y = 0; y < picture.lines; ++y) {
        unpackLine(picture, y, line);
        writeRow(tiff, picture, y, line);
    }
    require(TIFFWriteDirectory(tiff) == 1);
}

} // namespace

struct TiffPages::State {
    explicit State(std::unique_ptr<Bytes> store) : bytes(std::move(store)), tiff(openIn(*bytes)) {}

    /** Notes the end of the file and the offset of the link to the next page, in the last directory. */
    void endPage() {
        std::uint32_t directory = 0; // in the byte order of the machine, as the library writes
        std::uint16_t entries = 0;
        bytes->readAt(link, &directory, sizeof directory);
        bytes->readAt(directory, &entries, sizeof entries);
        constexpr std::size_t entrySize = 12;
        link = directory + sizeof entries + entries * entrySize;
        size = bytes->size();
        ++count;
    }

    /** Removes what a failed page has left, so that the earlier ones are a sound file. No page can follow. */
    void dropPage() {
        tiff.reset();
        bytes->cut(size);
        constexpr std::uint32_t none = 0;
        if (count > 0) bytes->writeAt(link, &none, sizeof none);
    }

    std::unique_ptr<Bytes> bytes;
    Tiff tiff;
    std::size_t link = 4; // of the first page, in the file's header
    std::size_t size = 0;
    std::size_t count = 0;
};

TiffPages::TiffPages() : m_state(std::make_unique<State>(std::make_unique<BytesInMemory>())) {
    require(m_state->tiff != nullptr);
}
TiffPages::TiffPages(int descriptor)
    : m_state(std::make_unique<State>(std::make_unique<BytesOfFile>(descriptor))) {
    require(m_state->tiff != nullptr);
}
TiffPages::~TiffPages() = default;
TiffPages::TiffPages(TiffPages&&) noexcept = default;
TiffPages& TiffPages::operator=(TiffPages&&) noexcept = default;

void TiffPages::add(const PictureView& picture) {
    errno = 0;
    require(m_state->tiff != nullptr);
    try {
        writePage(m_state->tiff.get(), picture);
    } catch (...) {
        m_state->dropPage();
        throw;
    }
    m_state->endPage();
}

std::size_t TiffPages::count() const { return m_state->count; }

const std::string& TiffPages::bytes() const {
    static const std::string none;
    const auto* memory = dynamic_cast<const BytesInMemory*>(m_state->bytes.get());
    return memory != nullptr ? memory->bytes : none;
}

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
    BytesInMemory file(bytes);
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
