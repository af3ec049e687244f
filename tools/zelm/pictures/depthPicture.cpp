#include "depthPicture.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "canvas.h"
#include "colourScale.h"

namespace zelm::tool {
namespace {

constexpr int kScaleWidth = 150;       // pixels beside the picture
constexpr double kBarWidth = 24.0;     //
constexpr double kMargin = 20.0;       // around the bar
constexpr double kTitleHeight = 24.0;  // above it
constexpr double kBackground = 0.35;   // of the picture's brightness
constexpr double kArrow = 12.0;        // height of an arrow at an end that values lie beyond
constexpr int kTicks = 8;              // about

ColourRange rangeOf(const std::vector<MatchedPoint>& points) {
    std::vector<double> depths;
    for (const MatchedPoint& p : points) {
        if (p.status == MatchStatus::ok) {
            depths.push_back(p.depth);
        }
    }
    return colourRange(std::move(depths));
}

// 1, 2 or 5 times a power of ten.
double tickStep(const ColourRange& range) {
    const double raw = (range.to - range.from) / kTicks;
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

// Points away from an end of the bar: there are depths beyond.
void drawArrow(cairo_t* cairo, double x, double y, double direction, double part) {
    paint(cairo, scaleColour(part));
    cairo_move_to(cairo, x, y);
    cairo_line_to(cairo, x + kBarWidth, y);
    cairo_line_to(cairo, x + 0.5 * kBarWidth, y + direction * kArrow);
    cairo_close_path(cairo);
    cairo_fill_preserve(cairo);
    paint(cairo, {1.0, 1.0, 1.0});
    cairo_set_line_width(cairo, 1.0);
    cairo_stroke(cairo);
}

void drawScale(cairo_t* cairo, const ColourRange& range, double left, double height, const std::string& unit) {
    const double top = kMargin + kTitleHeight + kArrow;
    const double length = std::max(height - top - kMargin - kArrow, 1.0);
    for (int y = 0; y < static_cast<int>(length); ++y) {
        paint(cairo, scaleColour((y + 0.5) / length));
        cairo_rectangle(cairo, left + kMargin, top + y, kBarWidth, 1.0);
        cairo_fill(cairo);
    }
    if (range.isCutBelow) {
        drawArrow(cairo, left + kMargin, top - 1.0, -1.0, 0.0);
    }
    if (range.isCutAbove) {
        drawArrow(cairo, left + kMargin, top + length + 1.0, 1.0, 1.0);
    }
    paint(cairo, {1.0, 1.0, 1.0});
    cairo_select_font_face(cairo, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cairo, 14.0);
    cairo_move_to(cairo, left + kMargin, kMargin + 8.0);
    cairo_show_text(cairo, fmt::format("depth, {}", unit).c_str());
    const double step = tickStep(range);
    const int digits = std::max(0, static_cast<int>(-std::floor(std::log10(step))));
    const double first = std::ceil(range.from / step);
    for (int i = 0; i <= 2 * kTicks && (first + i) * step <= range.to; ++i) {
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
    const ColourRange range = rangeOf(points);
    for (const MatchedPoint& p : points) {
        if (p.status == MatchStatus::ok) {
            paint(cairo.get(), scaleColour(range.partOf(p.depth)));
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
