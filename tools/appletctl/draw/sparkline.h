/** A value over time in one line of text. */
#ifndef APPLETCTL_DRAW_SPARKLINE_H
#define APPLETCTL_DRAW_SPARKLINE_H

#include <deque>
#include <string>

namespace appletctl {

/** One character per number, scaled from the lowest to the highest; as blocks, or in ASCII. */
std::string sparkline(const std::deque<double>& numbers, bool unicode);

} // namespace appletctl

#endif
