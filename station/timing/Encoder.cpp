#include "station/timing/Encoder.h"

namespace station {
namespace {

/** The index of two levels in the order 00, 10, 11, 01. */
int quarter(bool a, bool b) { return b ? (a ? 2 : 3) : (a ? 1 : 0); }

} // namespace

bool Encoder::step(bool a, bool b) {
    const bool oldA = m_a;
    const bool oldB = m_b;
    m_a = a;
    m_b = b;
    const bool changesA = a != oldA;
    const bool changesB = b != oldB;
    if (m_settings.resolution == 0) {
        if (!(changesA && a)) return false;
        ++m_position;
        return true;
    }
    if (changesA == changesB) return false; // nothing, or both at once: no direction
    const bool isUp = quarter(a, b) == (quarter(oldA, oldB) + 1) % 4;
    const bool isForward = isUp != m_settings.isBLeading;
    m_position += isForward ? 1 : -1;
    // A backward step crosses the edge that rises in the forward direction.
    const bool rises = isForward ? (changesA ? a : b) : (changesA ? oldA : oldB);
    const bool isPulse = m_settings.resolution == 3 || (rises && (changesA || m_settings.resolution == 2));
    if (!isPulse) return false;
    if (!isForward) {
        if (m_settings.isCompensating && m_count < largestCount) ++m_count;
        return false;
    }
    if (m_count == 0) return true;
    --m_count;
    return false;
}

} // namespace station
