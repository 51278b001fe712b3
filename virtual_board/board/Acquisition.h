/** The acquisition of a board's one DMA channel: pictures are counted, not made. */
#ifndef VIRTUAL_BOARD_BOARD_ACQUISITION_H
#define VIRTUAL_BOARD_BOARD_ACQUISITION_H

#include <cstdint>

namespace vboard {

/** Pictures are numbered from 1. The caller holds the board's mutex. */
class Acquisition {
public:
    /** `pictures`: how many are to be taken; 0 or less: no limit. */
    void start(std::int64_t pictures);
    void stop() { m_isRunning = false; }
    bool isRunning() const { return m_isRunning; }

    /** Number of the last picture. */
    std::int64_t picture() const { return m_picture; }
    /** Takes one more picture and returns its number. */
    std::int64_t nextPicture();
    /** Takes pictures up to this one. The number of the last picture, or FG_ERR_NOT_AVAILABLE. */
    std::int64_t waitForPicture(std::int64_t picture);

private:
    /** Whether a running acquisition takes this picture. */
    bool takes(std::int64_t picture) const;

    bool m_isRunning = false;
    std::int64_t m_picture = 0;
    std::int64_t m_pictures = 0; // to be taken; 0: no limit
};

} // namespace vboard

#endif
