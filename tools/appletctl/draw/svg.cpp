#include "appletctl/draw/svg.h"

#include "applet_tools/base/numbers.h"
#include "appletctl/base/layout.h"
#include "appletctl/draw/xml.h"

#include <cmath>

namespace appletctl::svg {

using xml::attribute, xml::escaped;

std::string coordinate(double value) { return numberText(std::round(value * 10) / 10); }

std::string line(double x1, double y1, double x2, double y2, const std::string& stroke, double width) {
    return "<line" + attribute("x1", coordinate(x1)) + attribute("y1", coordinate(y1)) +
           attribute("x2", coordinate(x2)) + attribute("y2", coordinate(y2)) + attribute("stroke", stroke) +
           attribute("stroke-width", coordinate(width)) + "/>\n";
}

std::string label(double x, double y, const char* anchor, const std::string& text, const std::string& more) {
    return "<text" + attribute("x", coordinate(x)) + attribute("y", coordinate(y)) +
           attribute("text-anchor", anchor) + more + ">" + escaped(text) + "</text>\n";
}

std::string document(double width, double height, double left, const std::string& title,
                     const std::string& subtitle, const std::string& content) {
    constexpr double lineHeight = 16, characterWidth = 8; // of capitals
    const std::vector<std::string> lines =
        foldedLines(subtitle, static_cast<std::size_t>((width - 2 * left) / characterWidth));
    std::string subtitles;
    for (std::size_t i = 0; i < lines.size(); ++i)
        subtitles += label(left, 50 + lineHeight * static_cast<double>(i), "start", lines[i],
                           attribute("fill", "#555555"));
    const double moved = lineHeight * static_cast<double>(lines.size() - 1);
    const std::string w = coordinate(width);
    const std::string h = coordinate(height + moved);
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg" +
           attribute("xmlns", "http://www.w3.org/2000/svg") + attribute("width", w) + attribute("height", h) +
           attribute("viewBox", "0 0 " + w + " " + h) + attribute("font-family", "sans-serif") +
           attribute("font-size", "12") + ">\n<title>" + escaped(title) + "</title>\n<rect" +
           attribute("width", "100%") + attribute("height", "100%") + attribute("fill", "#ffffff") + "/>\n" +
           label(left, 28, "start", title, attribute("font-size", "18")) + subtitles + "<g" +
           attribute("transform", "translate(0 " + coordinate(moved) + ")") + ">\n" + content +
           "</g>\n</svg>\n";
}

} // namespace appletctl::svg
