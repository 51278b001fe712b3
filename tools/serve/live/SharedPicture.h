/** A picture that many clients share. */
#ifndef SERVE_LIVE_SHAREDPICTURE_H
#define SERVE_LIVE_SHAREDPICTURE_H

#include "applet_tools/pictures/region.h"
#include "applet_tools/station/Grabber.h"
#include "station_channel/SharedMemory.h"

#include <cstdint>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace serve {

/** A form in which a picture is sent. */
struct PictureForm {
    enum class Format { jpeg, png, raw };
    Format format = Format::jpeg;
    int quality = 85;                     /**< of a JPEG */
    applet_tools::PictureRegion region{}; /**< part of the picture */
    std::uint32_t width = 0, lines = 0;   /**< to which the region is reduced */

    bool operator==(const PictureForm&) const = default;
};

/** Immutable; other processes can read its bytes. The first thread that requests a form encodes it, once for all. */
class SharedPicture {
public:
    /** `number` counts the pictures of the station; the number in the record counts those of one acquisition. */
    SharedPicture(std::int64_t number, const vboard_record& record, station_channel::SharedMemory bytes);

    std::int64_t number() const { return m_number; }
    /** Without the bytes. */
    const vboard_record& record() const { return m_record; }
    applet_tools::PictureView view() const { return m_view; }
    std::size_t size() const { return m_bytes.bytes().size(); }
    /** Its sealed memory. */
    int descriptor() const { return m_bytes.descriptor(); }
    /** Throws Unavailable for a format that the program was built without. */
    std::shared_ptr<const std::string> encoded(const PictureForm& form) const;
    /** Frees the forms that encoded() keeps. */
    void forgetForms() const;

private:
    using Encoded = std::shared_ptr<const std::string>;

    std::string encode(const PictureForm& form) const;

    const std::int64_t m_number;
    vboard_record m_record;
    const station_channel::SharedMemory m_bytes;
    applet_tools::PictureView m_view;
    mutable std::mutex m_mutex;
    mutable std::vector<std::pair<PictureForm, std::shared_future<Encoded>>> m_encoded; // guarded
};

} // namespace serve

#endif
