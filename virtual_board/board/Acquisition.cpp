#include "virtual_board/board/Acquisition.h"

#include "vexo/fg_errors.h"

#include <algorithm>

namespace vboard {

void Acquisition::start(std::int64_t pictures) {
    m_isRunning = true;
    m_picture = 0;
    m_pictures = std::max(pictures, std::int64_t{0});
}

bool Acquisition::takes(std::int64_t picture) const {
    return m_isRunning && (m_pictures == 0 || picture <= m_pictures);
}

std::int64_t Acquisition::nextPicture() {
    if (takes(m_picture + 1)) ++m_picture;
    return m_picture;
}

std::int64_t Acquisition::waitForPicture(std::int64_t picture) {
    if (picture <= m_picture) return m_picture;
    if (!takes(picture)) return FG_ERR_NOT_AVAILABLE;
    return m_picture = picture;
}

} // namespace vboard
