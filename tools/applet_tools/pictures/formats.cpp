#include "applet_tools/pictures/formats.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"

namespace applet_tools {
namespace {

std::string encodeRaw(const PictureView& picture) { return std::string(picture.text()); }

constexpr PictureFormat formats[] = {{"png", ".png", nullptr, encodePng},
                                     {"tiff", ".tiff", ".tif", encodeTiff},
                                     {"ppm", ".ppm", nullptr, encodePpm},
                                     {"raw", ".raw", ".bin", encodeRaw}};

} // namespace

const PictureFormat& formatNamed(const std::string& name) {
    std::vector<std::string> names;
    for (const PictureFormat& format : formats) {
        if (format.name == name) return format;
        names.emplace_back(format.name);
    }
    throw UsageError(inQuotedWord(name) + " is not a format of pictures; they are " + join(names, ", "));
}

const PictureFormat& formatOfFile(const std::string& file, const std::string& advice) {
    const std::string name = lowerCase(file);
    for (const PictureFormat& format : formats)
        if (name.ends_with(format.suffix) ||
            (format.otherSuffix != nullptr && name.ends_with(format.otherSuffix)))
            return format;
    throw UsageError(shownFile(file) + " does not end with .png, .tiff, .ppm or .raw" +
                     (advice.empty() ? "" : ": " + advice));
}

std::string encodePpm(const PictureView& picture) {
    std::string file = "P6\n" + numberText(picture.width) + " " + numberText(picture.lines) + "\n" +
                       numberText((1U << picture.bits) - 1) + "\n";
    const std::size_t components = std::size_t{3} * picture.width * picture.lines;
    file.reserve(file.size() + components * (picture.bits > 8 ? 2 : 1));
    std::vector<std::uint16_t> line;
    for (std::uint32_t y = 0; y < picture.lines; ++y) {
        unpackLine(picture, y, line);
        for (const std::uint16_t component : line) {
            if (picture.bits > 8) file += static_cast<char>(component >> 8);
            file += static_cast<char>(component & 0xff);
        }
    }
    return file;
}

NumberedName::NumberedName(const std::string& pattern) {
    std::string* part = &m_before;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != '%') {
            *part += pattern[i];
            continue;
        }
        const std::size_t end = pattern.find_first_not_of("0123456789", i + 1);
        const std::string width = end == std::string::npos ? "" : pattern.substr(i + 1, end - i - 1);
        if (end == i + 1 && pattern[end] == '%') {
            *part += '%';
        } else if (end != std::string::npos && pattern[end] == 'd' && !m_isNumbered && width.size() <= 3 &&
                   (width.empty() || width.front() == '0')) {
            m_isNumbered = true;
            m_digits = width.empty() ? 0 : wholeNumber<std::size_t>(width).value_or(0);
            part = &m_after;
        } else {
            throw UsageError(
                quotedText(pattern) +
                ": one %d, or %06d, stands for the number of the picture; write %% for a percent");
        }
        i = end;
    }
}

std::string NumberedName::of(std::int64_t number) const {
    if (!m_isNumbered) return m_before;
    const std::string digits = numberText(number);
    return m_before + std::string(m_digits > digits.size() ? m_digits - digits.size() : 0, '0') + digits +
           m_after;
}

/** Pages on their way to a file, or in memory where the file is written to in place. */
struct PictureFiles::Pages {
    explicit Pages(const std::string& name)
        : file(name == "-" ? nullptr : std::make_unique<OutputFile>(name))
        , descriptor(file ? file->descriptor() : std::nullopt)
        , tiff(descriptor ? TiffPages(*descriptor) : TiffPages()) {}
    ~Pages() {
        try {
            finish();
        } catch (const std::exception&) { // the error that ends the work is the one to tell
        }
    }
    Pages(const Pages&) = delete;
    Pages& operator=(const Pages&) = delete;

    void finish() {
        const std::unique_ptr<OutputFile> whole = std::move(file);
        if (!whole) return;
        const TiffPages pages = std::move(tiff); // ends before the file
        if (pages.count() == 0) return;
        if (!descriptor) whole->add(pages.bytes());
        whole->finish();
    }

    std::unique_ptr<OutputFile> file; // null for the standard output, and once it is finished
    std::optional<int> descriptor;
    TiffPages tiff;
};

PictureFiles::PictureFiles(const std::string& pattern, const std::string& format, const std::string& advice)
    : m_pattern(pattern)
    , m_name(pattern)
    , m_format(&(format.empty() ? formatOfFile(pattern, advice) : formatNamed(format))) {}

PictureFiles::~PictureFiles() = default;
PictureFiles::PictureFiles(PictureFiles&&) noexcept = default;
PictureFiles& PictureFiles::operator=(PictureFiles&&) noexcept = default;

void PictureFiles::expect(std::int64_t pictures) {
    m_pages.reset();
    m_hasPages = pictures != 1 && !m_name.isNumbered() && m_format->encode == encodeTiff;
    if (pictures != 1 && !m_name.isNumbered() && !m_hasPages && m_pattern != "-")
        throw UsageError(
            shownFile(m_pattern) + " is one file, and " +
            (pictures == 0 ? "several pictures may come" : numberText(pictures) + " pictures are wanted") +
            ": put a %d into its name, or write a .tiff, which has pages");
}

bool PictureFiles::isRaw() const { return m_format->encode == encodeRaw; }

std::string PictureFiles::encode(const PictureView& picture) {
    if (!m_hasPages) return m_format->encode(picture);
    if (!m_pages) m_pages = std::make_unique<Pages>(name(1));
    m_pages->tiff.add(picture);
    return "";
}

std::string PictureFiles::write(const PictureView& picture, std::int64_t number) {
    std::string file = name(number);
    const std::string content = encode(picture);
    if (!m_hasPages) writeFile(file, content);
    return file;
}

const std::string& PictureFiles::pages() const {
    static const std::string none;
    return m_pages ? m_pages->tiff.bytes() : none;
}

void PictureFiles::finish() {
    if (m_pages) m_pages->finish();
}

} // namespace applet_tools
