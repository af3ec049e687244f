#include "depthPicture.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "canvas.h"

namespace zelm::tool {
namespace {

constexpr int kScaleWidth = 150;       // pixels beside the picture
constexpr double kBarWidth = 24.0;     //
constexpr double kMargin = 20.0;       // around the bar
constexpr double kTitleHeight = 24.0;  // above it
constexpr double kBackground = 0.35;   // of the picture's brightness
constexpr double kOutside = 0.01;      // part of the depths at each end that the scale leaves out
constexpr int kTicks = 8;              // about

// Even steps of lightness from far to near, told apart without seeing colours.
Colour colourOf(double part) {
    constexpr std::array<Colour, 6> kStops{{{0.99, 0.91, 0.15},
                                            {0.55, 0.83, 0.29},
                                            {0.13, 0.66, 0.52},
                                            {0.16, 0.47, 0.56},
                                            {0.28, 0.25, 0.54},
                                            {0.30, 0.06, 0.38}}};
    const double place = std::clamp(part, 0.0, 1.0) * (kStops.size() - 1);
    const auto i = std::min(static_cast<std::size_t>(place), kStops.size() - 2);
    const double f = place - static_cast<double>(i);
    const Colour& a = kStops[i];
    const Colour& b = kStops[i + 1];
    return {a.red + f * (b.red - a.red), a.green + f * (b.green - a.green), a.blue + f * (b.blue - a.blue)};
}

struct DepthRange {
    double near = 0.0;
    double far = 1.0;

    double partOf(double depth) const { return (depth - near) / (far - near); }
};

DepthRange rangeOf(const std::vector<MatchedPoint>& points) {
    std::vector<double> depths;
    for (const MatchedPoint& p : points) {
        if (p.status == MatchStatus::ok) {
            depths.push_back(p.depth);
        }
    }
    if (depths.empty()) {
        return {};
    }
    std::sort(depths.begin(), depths.end());
    const auto skipped = static_cast<std::size_t>(kOutside * static_cast<double>(depths.size()));
    DepthRange range{depths[skipped], depths[depths.size() - 1 - skipped]};
    const double least = 1e-6 * std::max(std::fabs(range.far), 1e-6);
    if (range.far - range.near < least) {
        range = {range.near - least, range.far + least};
    }
    return range;
}

// 1, 2 or 5 times a power of ten.
double tickStep(const DepthRange& range) {
    const double raw = (range.far - range.near) / kTicks;
    const double power = std::pow(10.0, std::floor(std::log10(raw)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (raw <= factor * power) {
            return factor * power;
        }
    }
    return 10.0 * power;
}

void paint(cairo_t* cairo, const Colour& c) {
    cairo_set_source_rgb(cairo, c.red, c.green, c.blue);
}

void drawScale(cairo_t* cairo, const DepthRange& range, double left, double height, const std::string& unit) {
    const double top = kMargin + kTitleHeight;
    const double length = std::max(height - top - kMargin, 1.0);
    for (int y = 0; y < static_cast<int>(length); ++y) {
        paint(cairo, colourOf((y + 0.5) / length));
        cairo_rectangle(cairo, left + kMargin, top + y, kBarWidth, 1.0);
        cairo_fill(cairo);
    }
    paint(cairo, {1.0, 1.0, 1.0});
    cairo_select_font_face(cairo, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cairo, 14.0);
    cairo_move_to(cairo, left + kMargin, kMargin + 8.0);
    cairo_show_text(cairo, fmt::format("depth, {}", unit).c_str());
    const double step = tickStep(range);
    const int digits = std::max(0, static_cast<int>(-std::floor(std::log10(step))));
    const double first = std::ceil(range.near / step);
    for (int i = 0; i <= 2 * kTicks && (first + i) * step <= range.far; ++i) {
        const double depth = (first + i) * step;
        const double y = top + length * range.partOf(depth);
        cairo_rectangle(cairo, left + kMargin + kBarWidth, y - 0.5, 6.0, 1.0);
        cairo_fill(cairo);
        cairo_move_to(cairo, left + kMargin + kBarWidth + 10.0, y + 5.0);
        cairo_show_text(cairo, fmt::format("{:.{}f}", depth, digits).c_str());
    }
}

}  // namespace

std::string depthPicture(const std::vector<MatchedPoint>& points, const Picture& left, int spot,
                         const std::string& unit) {
    const SurfacePtr surface = blankSurface(left.width + kScaleWidth, left.height);
    const CairoPtr cairo(cairo_create(surface.get()), cairo_destroy);
    const SurfacePtr background = surfaceOf(left);
    cairo_set_source_surface(cairo.get(), background.get(), 0.0, 0.0);
    cairo_paint_with_alpha(cairo.get(), kBackground);
    cairo_set_antialias(cairo.get(), CAIRO_ANTIALIAS_NONE);
    const DepthRange range = rangeOf(points);
    for (const MatchedPoint& p : points) {
        if (p.status == MatchStatus::ok) {
            paint(cairo.get(), colourOf(range.partOf(p.depth)));
            // Cairo's whole numbers are the corners of pixels.
            cairo_rectangle(cairo.get(), std::floor(p.left.x + 0.5) - spot / 2, std::floor(p.left.y + 0.5) - spot / 2,
                            spot, spot);
            cairo_fill(cairo.get());
        }
    }
    cairo_set_antialias(cairo.get(), CAIRO_ANTIALIAS_DEFAULT);
    cairo_set_source_rgb(cairo.get(), 0.0, 0.0, 0.0);
    cairo_rectangle(cairo.get(), left.width, 0.0, kScaleWidth, left.height);
    cairo_fill(cairo.get());
    drawScale(cairo.get(), range, left.width, left.height, unit);
    return pngOf(surface.get());
}

}  // namespace zelm::tool
