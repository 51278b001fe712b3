#include "serve/live/SharedPicture.h"

#include "applet_tools/pictures/formats.h"

#include <algorithm>

namespace serve {
namespace {

using applet_tools::PictureView;

/** A limit, so that a client that requests many forms does not fill the memory. */
constexpr std::size_t mostForms = 16;

std::string encodedView(const PictureView& view, const PictureForm& form) {
    switch (form.format) {
    case PictureForm::Format::jpeg:
        return applet_tools::encodeJpeg(view, form.quality);
    case PictureForm::Format::png:
        return applet_tools::encodePng(view);
    default:
        return std::string(view.text());
    }
}

} // namespace

SharedPicture::SharedPicture(std::int64_t number, const vboard_record& record,
                             station_channel::SharedMemory bytes)
    : m_number(number)
    , m_record(record)
    , m_bytes(std::move(bytes)) {
    m_record.data = m_bytes.bytes().data();
    m_view = applet_tools::viewOf(m_record);
    m_record.data = nullptr;
}

std::shared_ptr<const std::string> SharedPicture::encoded(const PictureForm& form) const {
    std::promise<Encoded> own;
    std::shared_future<Encoded> result;
    bool isOwn = false;
    {
        const std::lock_guard guard(m_mutex);
        const auto found = std::ranges::find(m_encoded, form, [](const auto& row) { return row.first; });
        isOwn = found == m_encoded.end();
        result = isOwn ? own.get_future().share() : found->second;
        if (isOwn && m_encoded.size() < mostForms) m_encoded.emplace_back(form, result);
    }
    if (isOwn) {
        try {
            own.set_value(std::make_shared<const std::string>(encode(form)));
        } catch (...) {
            own.set_exception(std::current_exception());
        }
    }
    return result.get();
}

void SharedPicture::forgetForms() const {
    const std::lock_guard guard(m_mutex);
    m_encoded.clear();
}

std::string SharedPicture::encode(const PictureForm& form) const {
    const bool isWhole = form.region == applet_tools::wholeOf(m_view) && form.width == m_view.width &&
                         form.lines == m_view.lines;
    if (isWhole) return encodedView(m_view, form);
    return encodedView(applet_tools::scaledDown(m_view, form.region, form.width, form.lines).view(), form);
}

} // namespace serve
