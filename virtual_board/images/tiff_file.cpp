// TIFF files, by the system's library.

#include "virtual_board/images/ImageFile.h"
#include "virtual_board/images/LoadedLibrary.h"

#include <tiffio.h>

#include <cstdarg>
#include <cstdio>
#include <memory>

namespace vboard {
namespace {

/** Errors go to a handler of each open file, as the process-wide handlers belong to the host. */
struct TiffLibrary : LoadedLibrary {
    TiffLibrary() : LoadedLibrary("libtiff.so.6") {}

    decltype(TIFFOpenOptionsAlloc)* makeOptions = find("TIFFOpenOptionsAlloc");
    decltype(TIFFOpenOptionsFree)* freeOptions = find("TIFFOpenOptionsFree");
    decltype(TIFFOpenOptionsSetErrorHandlerExtR)* setError = find("TIFFOpenOptionsSetErrorHandlerExtR");
    decltype(TIFFOpenOptionsSetWarningHandlerExtR)* setWarning = find("TIFFOpenOptionsSetWarningHandlerExtR");
    decltype(TIFFOpenExt)* open = find("TIFFOpenExt");
    decltype(TIFFClose)* close = find("TIFFClose");
    decltype(TIFFGetFieldDefaulted)* field = find("TIFFGetFieldDefaulted");
    decltype(TIFFIsTiled)* isTiled = find("TIFFIsTiled");
    decltype(TIFFScanlineSize)* bytesOfRow = find("TIFFScanlineSize");
    decltype(TIFFReadScanline)* readRow = find("TIFFReadScanline");
};

const TiffLibrary& tiffs() {
    static const TiffLibrary library;
    return library;
}

/** Only the first reason is kept; later ones follow from it. */
struct FirstReason {
    char text[160] = "";
};

int noteReason(TIFF*, void* context, const char*, const char* format, va_list arguments) {
    auto& reason = *static_cast<FirstReason*>(context);
    if (reason.text[0] == '\0') std::vsnprintf(reason.text, sizeof reason.text, format, arguments);
    return 1;
}

int ignoreWarning(TIFF*, void*, const char*, const char*, va_list) { return 1; }

using OpenTiff = std::unique_ptr<TIFF, void (*)(TIFF*)>;

OpenTiff openTiff(const std::string& path, FirstReason& reason) {
    TIFFOpenOptions* const options = tiffs().makeOptions();
    if (options == nullptr) return {nullptr, tiffs().close};
    tiffs().setError(options, noteReason, &reason);
    tiffs().setWarning(options, ignoreWarning, nullptr);
    TIFF* const tiff =
        tiffs().open(path.c_str(), "rm", options); // m: the file is not mapped, because it may shrink
    tiffs().freeOptions(options);
    return {tiff, tiffs().close};
}

template <typename Number> Number fieldOf(const OpenTiff& tiff, std::uint32_t tag) {
    Number number = 0;
    tiffs().field(tiff.get(), tag, &number);
    return number;
}

/** Why this kind of image is not supported; empty if it is. */
std::string whyNot(const OpenTiff& tiff, const PixelRows& rows) {
    const auto meaning = fieldOf<std::uint16_t>(tiff, TIFFTAG_PHOTOMETRIC);
    const bool isGrey = meaning == PHOTOMETRIC_MINISBLACK || meaning == PHOTOMETRIC_MINISWHITE;
    constexpr unsigned mostSamples = 8;
    if (!isGrey && meaning != PHOTOMETRIC_RGB) return "its colours are neither grey nor red, green and blue";
    if (rows.samples > mostSamples || (!isGrey && rows.samples < 3) || (isGrey && rows.samples > 2))
        return "it has " + std::to_string(rows.samples) + " values a pixel";
    if (rows.bits != 8 && rows.bits != 16)
        return "its values have " + std::to_string(rows.bits) + " bits, and 8 or 16 are read";
    if (fieldOf<std::uint16_t>(tiff, TIFFTAG_SAMPLEFORMAT) != SAMPLEFORMAT_UINT)
        return "its values are not whole numbers from 0 on";
    if (rows.samples > 1 && fieldOf<std::uint16_t>(tiff, TIFFTAG_PLANARCONFIG) != PLANARCONFIG_CONTIG)
        return "it has a plane for each colour";
    if (tiffs().isTiled(tiff.get()) != 0) return "it is made of tiles, and strips are read";
    return "";
}

} // namespace

PixelRows readTiff(const std::string& path) {
    if (!tiffs().isComplete())
        return {.trouble =
                    "it is a TIFF file, and the system has no libtiff.so.6: install the package libtiff6, or "
                    "make a PPM file of it"};
    FirstReason reason;
    const OpenTiff tiff = openTiff(path, reason);
    if (tiff == nullptr) return {.trouble = std::string("it is not a sound TIFF file: ") + reason.text};
    PixelRows rows{.width = fieldOf<std::uint32_t>(tiff, TIFFTAG_IMAGEWIDTH),
                   .height = fieldOf<std::uint32_t>(tiff, TIFFTAG_IMAGELENGTH),
                   .samples = fieldOf<std::uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL),
                   .bits = fieldOf<std::uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE)};
    rows.isInverted = fieldOf<std::uint16_t>(tiff, TIFFTAG_PHOTOMETRIC) == PHOTOMETRIC_MINISWHITE;
    rows.trouble = whyNot(tiff, rows);
    if (!rows.trouble.empty() || !rows.makeRoom()) return rows;
    if (static_cast<std::size_t>(tiffs().bytesOfRow(tiff.get())) != rows.bytesOfRow()) {
        rows.trouble = "it is a TIFF file of a kind that is not read";
        return rows;
    }
    for (std::uint32_t y = 0; y < rows.height; ++y) {
        if (tiffs().readRow(tiff.get(), rows.bytes.data() + y * rows.bytesOfRow(), y, 0) == 1) continue;
        rows.trouble = std::string("it is not a sound TIFF file: ") + reason.text;
        break;
    }
    return rows;
}

} // namespace vboard
