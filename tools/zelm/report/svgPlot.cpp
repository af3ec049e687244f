#include "svgPlot.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "htmlText.h"

namespace zelm::tool {
namespace {

constexpr int kTicks = 5;  // about, along an axis

struct Ticks {
    std::vector<double> values;
    int digits = 0;  // after the point
};

Ticks ticksOf(const PlotAxis& axis) {
    const double low = std::min(axis.from, axis.to);
    const double high = std::max(axis.from, axis.to);
    const double step = roundUp((high - low) / kTicks);
    Ticks ticks;
    ticks.digits = std::max(0, static_cast<int>(-std::floor(std::log10(step) + 1e-9)));
    const double slack = 1e-6 * step;
    for (double i = std::ceil(low / step - 1e-6); i * step <= high + slack && ticks.values.size() < 4 * kTicks; ++i) {
        ticks.values.push_back(i * step + 0.0);
    }
    return ticks;
}

std::string gridLine(double x1, double y1, double x2, double y2) {
    return fmt::format("<line class=\"grid\" x1=\"{:.1f}\" y1=\"{:.1f}\" x2=\"{:.1f}\" y2=\"{:.1f}\"/>", x1, y1, x2,
                       y2);
}

}  // namespace

double roundUp(double value) {
    if (!(value > 0.0) || !std::isfinite(value)) {
        return 1.0;
    }
    const double power = std::pow(10.0, std::floor(std::log10(value)));
    for (const double step : {1.0, 2.0, 5.0}) {
        if (step * power >= value) {
            return step * power;
        }
    }
    return 10.0 * power;
}

std::string svgText(double x, double y, const char* anchor, const std::string& words, const char* kind) {
    return fmt::format("<text{} x=\"{:.1f}\" y=\"{:.1f}\" text-anchor=\"{}\">{}</text>",
                       *kind == '\0' ? "" : fmt::format(" class=\"{}\"", kind), x, y, anchor, escaped(words));
}

std::string svgElement(double width, double height, const std::string& name, const std::string& content) {
    return fmt::format("<svg viewBox=\"0 0 {:.0f} {:.0f}\" role=\"img\" aria-label=\"{}\">{}</svg>", width, height,
                       escaped(name), content);
}

SvgPlot::SvgPlot(double drawingWidth, double drawingHeight, PlotAxis horizontal, PlotAxis vertical)
    : width(drawingWidth), height(drawingHeight), across(std::move(horizontal)), up(std::move(vertical)) {
    content += svgText(0.5 * (kLeft + width - kMargin), height - 6.0, "middle", across.label, "axis");
    content += fmt::format(
        "<text class=\"axis\" transform=\"translate(13 {:.1f}) rotate(-90)\" text-anchor=\"middle\">"
        "{}</text>",
        0.5 * (kMargin + height - kBelow), escaped(up.label));
}

double SvgPlot::x(double value) const {
    return kLeft + (width - kMargin - kLeft) * (value - across.from) / (across.to - across.from);
}

double SvgPlot::y(double value) const {
    return height - kBelow - (height - kBelow - kMargin) * (value - up.from) / (up.to - up.from);
}

double SvgPlot::scale() const {
    return (width - kMargin - kLeft) / std::fabs(across.to - across.from);
}

void SvgPlot::tickX(double value, const std::string& word) {
    content += svgText(x(value), height - kBelow + 16.0, "middle", word);
}

void SvgPlot::ticksX() {
    const Ticks ticks = ticksOf(across);
    for (const double value : ticks.values) {
        content += gridLine(x(value), kMargin, x(value), height - kBelow);
        tickX(value, fmt::format("{:.{}f}", value, ticks.digits));
    }
}

void SvgPlot::ticksY() {
    const Ticks ticks = ticksOf(up);
    for (const double value : ticks.values) {
        content += gridLine(kLeft, y(value), width - kMargin, y(value));
        content += svgText(kLeft - 6.0, y(value) + 4.0, "end", fmt::format("{:.{}f}", value, ticks.digits));
    }
}

std::string SvgPlot::svg(const std::string& name) const {
    return svgElement(width, height, name, content);
}

}  // namespace zelm::tool
