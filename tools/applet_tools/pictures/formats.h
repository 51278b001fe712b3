/** Pictures as files. */
#ifndef APPLET_TOOLS_PICTURES_FORMATS_H
#define APPLET_TOOLS_PICTURES_FORMATS_H

#include "applet_tools/base/words.h"
#include "applet_tools/pictures/PictureView.h"

#include <memory>
#include <optional>
#include <span>
#include <string>

namespace applet_tools {

/** A way to write a picture. Those that need a library which the program was built without throw Unavailable. */
struct PictureFormat {
    const char* name;
    const char* suffix;      /**< of files: ".png" */
    const char* otherSuffix; /**< or null */
    std::string (*encode)(const PictureView& picture);
};

std::span<const PictureFormat> pictureFormats();

/** By its name. Throws UsageError. */
const PictureFormat& formatNamed(const std::string& name);
/** By the end of the file's name. Throws UsageError with the advice. */
const PictureFormat& formatOfFile(const std::string& file, const std::string& advice);

/** Red, green, blue with 8 bits, or with 16 if the picture has more; the file notes how many of them count. */
std::string encodePng(const PictureView& picture);
/** The same as one page with LZW compression. */
std::string encodeTiff(const PictureView& picture);
/** A TIFF file of several pages, in memory. */
class TiffPages {
public:
    TiffPages();
    ~TiffPages();
    TiffPages(TiffPages&&) noexcept;
    TiffPages& operator=(TiffPages&&) noexcept;

    /** One more page, as encodeTiff makes it. Throws Failure when a file cannot be as large. */
    void add(const PictureView& picture);
    /** The file with the pages so far. */
    const std::string& bytes() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/** Red, green, blue with the largest value that the picture's bits allow (Netpbm P6). */
std::string encodePpm(const PictureView& picture);

/** The SHA-256 of the picture's bytes as they are in memory, in hexadecimal digits. */
std::string sha256Of(const PictureView& picture);

/** A file name in which %d, or %06d, stands for the number of a picture, and %% for a percent. */
class NumberedName {
public:
    /** Throws UsageError for another %. */
    explicit NumberedName(const std::string& pattern);

    bool isNumbered() const { return m_isNumbered; }
    std::string of(std::int64_t number) const;

private:
    std::string m_before, m_behind;
    std::size_t m_digits = 0;
    bool m_isNumbered = false;
};

/** Where pictures are written to, and how. */
class PictureFiles {
public:
    /** The format is that of the file's name if none is given. Throws UsageError for a name or a format that is none:
     *  `advice` is what to do where the name has no format. */
    PictureFiles(const std::string& pattern, const std::string& format, const std::string& advice);

    /** From now on so many pictures come; 0: it is not known how many. A TIFF without a number in its name takes several as
     *  its pages; throws UsageError for another one file, but not for "-", the standard output. */
    void expect(std::int64_t pictures);

    std::string name(std::int64_t number) const { return m_name.of(number); }
    bool isRaw() const;
    /** Writes the picture as a whole or not at all, or keeps it as a page, and gives the name of the file. Throws
     *  Failure. */
    std::string write(const PictureView& picture, std::int64_t number);
    /** What is to be written of the picture: nothing for a page. */
    std::string encode(const PictureView& picture);
    /** The file with all pages; empty if there is none. */
    const std::string& pages() const;
    /** Writes the file with all pages, if there is one. */
    void finish() const;

private:
    std::string m_pattern;
    NumberedName m_name;
    const PictureFormat* m_format;
    bool m_hasPages = false;
    std::optional<TiffPages> m_pages;
};

} // namespace applet_tools

#endif
