// Plots as inline SVG: axes with ticks, labels and units, and what is drawn between them.
#ifndef ZELM_TOOL_SVG_PLOT_H
#define ZELM_TOOL_SVG_PLOT_H

#include <string>

namespace zelm::tool {

// The smallest of 1, 2, 5, 10, ... times a power of ten that is not below the value; 1 for what is not positive.
double roundUp(double value);

// A text; `anchor` is "start", "middle" or "end".
std::string svgText(double x, double y, const char* anchor, const std::string& words, const char* kind = "");

// An element <svg> with a name for those who cannot see it.
std::string svgElement(double width, double height, const std::string& name, const std::string& content);

struct PlotAxis {
    double from = 0.0;
    double to = 1.0;
    std::string label;  // with its unit
};

// A rectangle with an axis below and one on the left. Sizes are in units of the drawing, which are about pixels.
class SvgPlot {
public:
    // Room for ticks and labels, left and below.
    static constexpr double kLeft = 66.0;
    static constexpr double kBelow = 42.0;
    static constexpr double kMargin = 12.0;  // on the other sides

    SvgPlot(double width, double height, PlotAxis horizontal, PlotAxis vertical);

    // Where a value is drawn.
    double x(double value) const;
    double y(double value) const;
    // Drawing units for one of the horizontal axis.
    double scale() const;

    void add(const std::string& svg) { content += svg; }
    void ticksX();
    void ticksY();
    // Draws a tick with a word of its own.
    void tickX(double value, const std::string& word);

    std::string svg(const std::string& name) const;

private:
    double width;
    double height;
    PlotAxis across;
    PlotAxis up;
    std::string content;
};

}  // namespace zelm::tool

#endif
