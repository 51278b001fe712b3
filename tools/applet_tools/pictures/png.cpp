#include "applet_tools/base/errors.h"
#include "applet_tools/pictures/formats.h"
#include "applet_tools/pictures/image_file.h"

#include <png.h>

#include <algorithm>
#include <csetjmp>
#include <new>

namespace applet_tools {
namespace {

/** The library's two structures, and the destination of its output. */
class Writer {
public:
    Writer()
        : m_png(png_create_write_struct(PNG_LIBPNG_VER_STRING, this, failed, warned))
        , m_info(m_png != nullptr ? png_create_info_struct(m_png) : nullptr) {
        if (m_info != nullptr) png_set_write_fn(m_png, this, append, flush);
    }
    ~Writer() { png_destroy_write_struct(&m_png, &m_info); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    /** False, with the reason, if the library reports an error. */
    bool write(const PictureView& picture);

    std::string file;
    std::string reason = "there is no memory left";

private:
    void writeHead(const PictureView& picture);
    void writeLine(const PictureView& picture, std::uint32_t y);

    // The library calls longjmp on an error, so no exception may pass through it.
    [[noreturn]] static void failed(png_structp png, const char* reason) {
        static_cast<Writer*>(png_get_error_ptr(png))->reason = reason;
        png_longjmp(png, 1);
    }
    static void warned(png_structp, const char*) {}
    static void flush(png_structp) {}
    static void append(png_structp png, png_bytep bytes, std::size_t size) {
        bool isAppended = true;
        try {
            static_cast<Writer*>(png_get_io_ptr(png))
                ->file.append(reinterpret_cast<const char*>(bytes), size);
        } catch (const std::bad_alloc&) {
            isAppended = false;
        }
        if (!isAppended) png_error(png, "there is no memory left");
    }

    png_structp m_png;
    png_infop m_info;
    std::vector<std::uint16_t> m_line;
    std::vector<png_byte> m_row;
};

void Writer::writeHead(const PictureView& picture) {
    const bool isWide = picture.bits > 8;
    png_set_user_limits(m_png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_IHDR(m_png, m_info, picture.width, picture.lines, isWide ? 16 : 8, PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    const auto bits = static_cast<png_byte>(picture.bits);
    const png_color_8 significant{bits, bits, bits, 0, 0};
    if (isWide) png_set_sBIT(m_png, m_info, &significant);
    png_write_info(m_png, m_info);
}

void Writer::writeLine(const PictureView& picture, std::uint32_t y) {
    unpackLine(picture, y, m_line);
    m_row.clear();
    for (const std::uint16_t component : m_line) {
        const std::uint16_t value = picture.bits > 8 ? widened(component, picture.bits) : component;
        if (picture.bits > 8) m_row.push_back(static_cast<png_byte>(value >> 8));
        m_row.push_back(static_cast<png_byte>(value & 0xff));
    }
    png_write_row(m_png, m_row.data());
}

bool Writer::write(const PictureView& picture) {
    if (m_info == nullptr || setjmp(png_jmpbuf(m_png)) != 0) return false;
    writeHead(picture);
    for (std::uint32_t y = 0; y < picture.lines; ++y)
        writeLine(picture, y);
    png_write_end(m_png, m_info);
    return true;
}

/** The same two structures for reading. */
class Reader {
public:
    explicit Reader(const std::string& bytes)
        : m_bytes(bytes)
        , m_png(png_create_read_struct(PNG_LIBPNG_VER_STRING, this, failed, warned))
        , m_info(m_png != nullptr ? png_create_info_struct(m_png) : nullptr) {
        if (m_info != nullptr) png_set_read_fn(m_png, this, take);
    }
    ~Reader() { png_destroy_read_struct(&m_png, &m_info, nullptr); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    /** False, with the reason, if the library reports an error. Sets the size of the image once it is known. */
    bool readHead();
    bool readRows();

    std::uint32_t width = 0, height = 0;
    PixelImage image;
    std::string reason = "there is no memory left";

private:
    bool readInto(png_bytepp rows);

    [[noreturn]] static void failed(png_structp png, const char* reason) {
        static_cast<Reader*>(png_get_error_ptr(png))->reason = reason;
        png_longjmp(png, 1);
    }
    static void warned(png_structp, const char*) {}
    static void take(png_structp png, png_bytep to, std::size_t size) {
        auto& reader = *static_cast<Reader*>(png_get_io_ptr(png));
        if (size > reader.m_bytes.size() - reader.m_position) png_error(png, "the file ends too early");
        std::copy_n(reader.m_bytes.data() + reader.m_position, size, reinterpret_cast<char*>(to));
        reader.m_position += size;
    }

    const std::string& m_bytes;
    std::size_t m_position = 0;
    png_structp m_png;
    png_infop m_info;
    bool m_isWide = false;
};

bool Reader::readHead() {
    if (m_info == nullptr || setjmp(png_jmpbuf(m_png)) != 0) return false;
    png_read_info(m_png, m_info);
    png_set_expand(m_png);
    png_set_strip_alpha(m_png);
    png_set_gray_to_rgb(m_png);
    png_set_interlace_handling(m_png);
    png_read_update_info(m_png, m_info);
    width = png_get_image_width(m_png, m_info);
    height = png_get_image_height(m_png, m_info);
    m_isWide = png_get_bit_depth(m_png, m_info) == 16;
    return true;
}

bool Reader::readRows() {
    const std::size_t pitch = std::size_t{3} * width * (m_isWide ? 2 : 1);
    std::vector<png_byte> pixels(pitch * height);
    std::vector<png_bytep> rows(height);
    for (std::size_t y = 0; y < height; ++y)
        rows[y] = pixels.data() + pitch * y;
    if (!readInto(rows.data())) return false;
    for (std::size_t i = 0; i < image.components.size(); ++i)
        image.components[i] = m_isWide ? static_cast<std::uint16_t>(pixels[2 * i] << 8 | pixels[2 * i + 1])
                                       : widened(pixels[i], 8);
    return true;
}

/** Has no local objects, as a longjmp would not destroy them. */
bool Reader::readInto(png_bytepp rows) {
    if (setjmp(png_jmpbuf(m_png)) != 0) return false;
    png_read_image(m_png, rows);
    return true;
}

} // namespace

PixelImage decodePng(const std::string& bytes) {
    Reader reader(bytes);
    if (reader.readHead()) {
        reader.image.resize(reader.width, reader.height);
        if (reader.readRows()) return std::move(reader.image);
    }
    throw UsageError("it is not a sound PNG file: " + reader.reason);
}

std::string encodePng(const PictureView& picture) {
    Writer writer;
    if (!writer.write(picture)) throw Failure("the picture cannot be written as PNG: " + writer.reason);
    return std::move(writer.file);
}

} // namespace applet_tools
