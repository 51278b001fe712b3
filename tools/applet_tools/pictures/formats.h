/** Picture file formats. */
#ifndef APPLET_TOOLS_PICTURES_FORMATS_H
#define APPLET_TOOLS_PICTURES_FORMATS_H

#include "applet_tools/base/words.h"
#include "applet_tools/pictures/PictureView.h"

#include <memory>
#include <optional>
#include <string>

namespace applet_tools {

/** A picture file format. Its functions throw Unavailable if the program was built without the library. */
struct PictureFormat {
    const char* name;
    const char* suffix;      /**< of file names: ".png" */
    const char* otherSuffix; /**< or null */
    std::string (*encode)(const PictureView& picture);
};

/** Finds a format by its name. Throws UsageError. */
const PictureFormat& formatNamed(const std::string& name);
/** Finds a format by the end of a file name. Throws UsageError with `advice`, if it is not empty. */
const PictureFormat& formatOfFile(const std::string& file, const std::string& advice);

/** Red, green, blue with 8 bits, or with 16 if the picture has more; the file records the significant bits. */
std::string encodePng(const PictureView& picture);
/** The same as one page with LZW compression. */
std::string encodeTiff(const PictureView& picture);
/** A JPEG file of the upper 8 bits of each component, with a quality of 1 to 100. */
std::string encodeJpeg(const PictureView& picture, int quality);
/** A TIFF file with several pages. */
class TiffPages {
public:
    /** In memory. Throws Failure. */
    TiffPages();
    /** In this empty file, which is open for reading and writing and stays so; each page is in it once it is added.
     *  Throws Failure. */
    explicit TiffPages(int descriptor);
    ~TiffPages();
    TiffPages(TiffPages&&) noexcept;
    TiffPages& operator=(TiffPages&&) noexcept;

    /** Adds a page, as encodeTiff makes it. Throws Failure when the file would be too large or cannot be written;
     *  the earlier pages then are the whole file, and no page can follow. */
    void add(const PictureView& picture);
    /** The number of pages so far. */
    std::size_t count() const;
    /** The file with all pages so far, if it is in memory; else empty. */
    const std::string& bytes() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/** Red, green, blue with the maximum for the picture's bits (Netpbm P6). */
std::string encodePpm(const PictureView& picture);

/** The SHA-256 of the picture's bytes in memory, in hexadecimal. */
std::string sha256Of(const PictureView& picture);

/** A file name in which %d, or %06d, is replaced by the number of a picture, and %% by a percent sign. */
class NumberedName {
public:
    /** Throws UsageError for another %. */
    explicit NumberedName(const std::string& pattern);

    bool isNumbered() const { return m_isNumbered; }
    std::string of(std::int64_t number) const;

private:
    std::string m_before, m_after;
    std::size_t m_digits = 0;
    bool m_isNumbered = false;
};

/** Writes pictures to files. */
class PictureFiles {
public:
    /** The format follows from the file name if none is given. Throws UsageError for an invalid name or format;
     *  `advice` is shown if the name implies no format. */
    PictureFiles(const std::string& pattern, const std::string& format, const std::string& advice);
    /** Finishes, whatever ends the work; an error is lost. */
    ~PictureFiles();
    PictureFiles(PictureFiles&&) noexcept;
    PictureFiles& operator=(PictureFiles&&) noexcept;

    /** Sets the number of pictures to come; 0 if unknown. A TIFF file without a number in its name takes
     *  several as its pages; for any other single file it throws UsageError, except for "-", the standard
     *  output. */
    void expect(std::int64_t pictures);

    std::string name(std::int64_t number) const { return m_name.of(number); }
    bool isRaw() const;
    /** Writes the whole picture or nothing; a page goes to a temporary file beside the file of all pages. Returns the
     *  name of the file. Throws Failure. */
    std::string write(const PictureView& picture, std::int64_t number);
    /** The bytes to write for the picture; empty for a page. */
    std::string encode(const PictureView& picture);
    /** The pages for the standard output; empty if there are none. */
    const std::string& pages() const;
    /** Moves the file with all pages into place, if there is a page. Throws Failure. */
    void finish();

private:
    struct Pages;

    std::string m_pattern;
    NumberedName m_name;
    const PictureFormat* m_format;
    bool m_hasPages = false;
    std::unique_ptr<Pages> m_pages; // null before the first page
};

} // namespace applet_tools

#endif
