#include "applet_tools/base/errors.h"
#include "applet_tools/pictures/formats.h"

#include <png.h>

#include <csetjmp>
#include <new>

namespace applet_tools {
namespace {

/** The library's two structures, and what they write to. */
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

    /** False, with the reason, when the library fails. */
    bool write(const PictureView& picture);

    std::string file;
    std::string reason = "there is no memory left";

private:
    void writeHead(const PictureView& picture);
    void writeLine(const PictureView& picture, std::uint32_t y);

    // The library goes back to setjmp after an error, so no exception goes through it.
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

} // namespace

std::string encodePng(const PictureView& picture) {
    Writer writer;
    if (!writer.write(picture)) throw Failure("the picture cannot be written as PNG: " + writer.reason);
    return std::move(writer.file);
}

} // namespace applet_tools
