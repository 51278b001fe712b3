#include "applet_tools/base/errors.h"
#include "applet_tools/pictures/formats.h"

#include <string> // before the library's header, which needs the type FILE

#include <jpeglib.h>

#include <csetjmp>
#include <cstdlib>

namespace applet_tools {
namespace {

/** The library's structures, and its output in memory. */
class JpegWriter {
public:
    JpegWriter() {
        m_jpeg.err = jpeg_std_error(&m_errors);
        m_errors.error_exit = failed;
        m_errors.output_message = [](j_common_ptr) {};
        m_jpeg.client_data = this;
    }
    ~JpegWriter() {
        jpeg_destroy_compress(&m_jpeg);
        std::free(m_bytes); // NOLINT(cppcoreguidelines-no-malloc): allocated by the library
    }
    JpegWriter(const JpegWriter&) = delete;
    JpegWriter& operator=(const JpegWriter&) = delete;

    /** False if the library reports an error, with the reason. */
    bool write(const PictureView& picture, int quality) {
        const bool isReady = picture.bits == 8; // the library takes its lines as they are
        m_row.resize(isReady ? 0 : std::size_t{3} * picture.width);
        m_line.reserve(m_row.size());
        if (setjmp(m_errorReturn) != 0) return false;
        jpeg_create_compress(&m_jpeg);
        jpeg_mem_dest(&m_jpeg, &m_bytes, &m_size);
        m_jpeg.image_width = picture.width;
        m_jpeg.image_height = picture.lines;
        m_jpeg.input_components = 3;
        m_jpeg.in_color_space = isReady ? JCS_EXT_BGR : JCS_RGB;
        jpeg_set_defaults(&m_jpeg);
        jpeg_set_quality(&m_jpeg, quality, TRUE);
        jpeg_start_compress(&m_jpeg, TRUE);
        for (std::uint32_t y = 0; y < picture.lines; ++y)
            writeLine(isReady ? bytesOf(picture, y) : convertedLine(picture, y));
        jpeg_finish_compress(&m_jpeg);
        return true;
    }

    std::string file() const { return {reinterpret_cast<const char*>(m_bytes), m_size}; }
    std::string reason() {
        char text[JMSG_LENGTH_MAX] = "";
        m_errors.format_message(reinterpret_cast<j_common_ptr>(&m_jpeg), text);
        return text;
    }

private:
    // The library must not return from an error, and no exception may pass through it.
    [[noreturn]] static void failed(j_common_ptr jpeg) {
        std::longjmp(static_cast<JpegWriter*>(jpeg->client_data)->m_errorReturn, 1);
    }

    void writeLine(const JSAMPLE* line) {
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): the library only reads it
        auto* row = const_cast<JSAMPROW>(line);
        jpeg_write_scanlines(&m_jpeg, &row, 1);
    }

    static const JSAMPLE* bytesOf(const PictureView& picture, std::uint32_t y) {
        return picture.bytes.subspan(std::size_t{y} * picture.bytesPerLine, picture.bytesPerLine).data();
    }

    const JSAMPLE* convertedLine(const PictureView& picture, std::uint32_t y) {
        unpackLine(picture, y, m_line);
        for (std::size_t i = 0; i < m_row.size(); ++i)
            m_row[i] = static_cast<JSAMPLE>(m_line[i] >> (picture.bits - 8));
        return m_row.data();
    }

    jpeg_compress_struct m_jpeg{};
    jpeg_error_mgr m_errors{};
    std::jmp_buf m_errorReturn{};
    unsigned char* m_bytes = nullptr;
    unsigned long m_size = 0; // NOLINT(google-runtime-int): of the library
    std::vector<std::uint16_t> m_line;
    std::vector<JSAMPLE> m_row;
};

} // namespace

std::string encodeJpeg(const PictureView& picture, int quality) {
    JpegWriter writer;
    if (!writer.write(picture, quality))
        throw Failure("the picture cannot be written as JPEG: " + writer.reason());
    return writer.file();
}

} // namespace applet_tools
