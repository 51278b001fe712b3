/** Pieces of SVG pictures. */
#ifndef APPLETCTL_DRAW_SVG_H
#define APPLETCTL_DRAW_SVG_H

#include "appletctl/base/applet_tools.h"

#include <string>

namespace appletctl::svg {

/** A coordinate with one decimal. */
std::string coordinate(double value);

std::string line(double x1, double y1, double x2, double y2, const std::string& stroke, double width);

/** A text at a position; `anchor` is start, middle or end. */
std::string label(double x, double y, const char* anchor, const std::string& text,
                  const std::string& more = "");

/** A self-contained document, on white: a title, a subtitle that is folded to the width, and the content, which
 *  leaves room for one line of the subtitle and moves down for more. */
std::string document(double width, double height, double left, const std::string& title,
                     const std::string& subtitle, const std::string& content);

} // namespace appletctl::svg

#endif
