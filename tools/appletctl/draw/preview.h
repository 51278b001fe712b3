/** A picture as text. */
#ifndef APPLETCTL_DRAW_PREVIEW_H
#define APPLETCTL_DRAW_PREVIEW_H

#include "applet_tools/pictures/PictureView.h"
#include "appletctl/base/applet_tools.h"
#include "appletctl/base/terminal.h"

#include <cstddef>
#include <string>

namespace appletctl {

/**
 * The picture, smaller by a whole number so that it has at most so many columns and 60 lines, and never larger. With
 * colours each character has two halves, one above the other, each with the mean of a square of pixels; without them it is
 * one of ten characters from dark to bright for the mean of an area twice as high as wide. A line below says its scale.
 */
std::string previewOf(const PictureView& picture, ColourDepth colours, std::size_t columns);

} // namespace appletctl

#endif
