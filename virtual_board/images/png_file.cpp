// PNG files, by the system's library.

#include "virtual_board/images/ImageFile.h"
#include "virtual_board/images/LoadedLibrary.h"

#include <png.h>

#include <bit>
#include <csetjmp>
#include <fstream>

namespace vboard {
namespace {

struct PngLibrary : LoadedLibrary {
    PngLibrary() : LoadedLibrary("libpng16.so.16") {}

    decltype(png_create_read_struct)* createReader = find("png_create_read_struct");
    decltype(png_create_info_struct)* createInfo = find("png_create_info_struct");
    decltype(png_destroy_read_struct)* destroy = find("png_destroy_read_struct");
    decltype(png_get_error_ptr)* errorPointer = find("png_get_error_ptr");
    decltype(png_get_io_ptr)* readPointer = find("png_get_io_ptr");
    decltype(png_set_read_fn)* setRead = find("png_set_read_fn");
    decltype(png_error)* error = find("png_error");
    decltype(png_set_user_limits)* setLimits = find("png_set_user_limits");
    decltype(png_read_info)* readInfo = find("png_read_info");
    decltype(png_get_image_width)* width = find("png_get_image_width");
    decltype(png_get_image_height)* height = find("png_get_image_height");
    decltype(png_get_bit_depth)* bits = find("png_get_bit_depth");
    decltype(png_get_rowbytes)* bytesOfRow = find("png_get_rowbytes");
    decltype(png_set_expand)* expand = find("png_set_expand");
    decltype(png_set_strip_alpha)* stripAlpha = find("png_set_strip_alpha");
    decltype(png_set_gray_to_rgb)* greyToRgb = find("png_set_gray_to_rgb");
    decltype(png_set_swap)* swap = find("png_set_swap");
    decltype(png_set_interlace_handling)* interlace = find("png_set_interlace_handling");
    decltype(png_read_update_info)* update = find("png_read_update_info");
    decltype(png_read_image)* readImage = find("png_read_image");
};

const PngLibrary& png() {
    static const PngLibrary library;
    return library;
}

/** All objects used while reading are members: after an error the library jumps back to read(). */
class PngReader {
public:
    explicit PngReader(const std::string& path)
        : m_file(path, std::ios::binary)
        , m_png(png().createReader(PNG_LIBPNG_VER_STRING, this, failed, ignored))
        , m_info(m_png != nullptr ? png().createInfo(m_png) : nullptr) {}
    ~PngReader() { png().destroy(&m_png, &m_info, nullptr); }
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;

    PixelRows read() {
        if (m_info == nullptr)
            m_rows.trouble = "there is no memory left to read it";
        else if (setjmp(m_back) == 0)
            readRows();
        return std::move(m_rows);
    }

private:
    void readRows();

    [[noreturn]] static void failed(png_structp reader, png_const_charp reason) {
        auto* self = static_cast<PngReader*>(png().errorPointer(reader));
        self->m_rows.trouble = std::string("it is not a sound PNG file: ") + reason;
        std::longjmp(self->m_back, 1);
    }
    static void ignored(png_structp, png_const_charp) {}
    static void take(png_structp reader, png_bytep bytes, std::size_t size) {
        auto* self = static_cast<PngReader*>(png().readPointer(reader));
        self->m_file.read(reinterpret_cast<char*>(bytes), static_cast<std::streamsize>(size));
        if (!self->m_file) png().error(reader, "it ends too early");
    }

    std::ifstream m_file;
    png_structp m_png;
    png_infop m_info;
    std::jmp_buf m_back{};
    PixelRows m_rows;
    std::vector<png_bytep> m_rowPointers;
};

void PngReader::readRows() {
    png().setRead(m_png, this, take);
    png().setLimits(m_png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png().readInfo(m_png, m_info);
    m_rows.width = png().width(m_png, m_info);
    m_rows.height = png().height(m_png, m_info);
    if (!m_rows.hasSize()) return; // before the library allocates its rows
    png().expand(m_png);           // palettes, bits of less than a byte, and transparency
    png().greyToRgb(m_png);
    png().stripAlpha(m_png);
    if (std::endian::native == std::endian::little) png().swap(m_png);
    png().interlace(m_png);
    png().update(m_png, m_info);
    m_rows.bits = png().bits(m_png, m_info);
    if (!m_rows.makeRoom()) return;
    if (png().bytesOfRow(m_png, m_info) != m_rows.bytesOfRow()) {
        m_rows.trouble = "it is a PNG file of a kind that is not read";
        return;
    }
    for (std::uint32_t y = 0; y < m_rows.height; ++y)
        m_rowPointers.push_back(m_rows.bytes.data() + y * m_rows.bytesOfRow());
    png().readImage(m_png, m_rowPointers.data());
}

} // namespace

PixelRows readPng(const std::string& path) {
    if (!png().isComplete())
        return {.trouble = "it is a PNG file, and the system has no libpng16.so.16: install the package "
                           "libpng16-16, or make a PPM file of it"};
    return PngReader(path).read();
}

} // namespace vboard
