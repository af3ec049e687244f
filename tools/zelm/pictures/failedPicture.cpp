#include "failedPicture.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "canvas.h"
#include "smallLetters.h"

namespace zelm::tool {
namespace {

struct Verdict {
    std::int32_t verdict;
    const char* name;
    Colour colour;
};

// Rejected spots in warm colours, dots in cold ones.
constexpr std::array<Verdict, 8> kVerdicts{{{ZELM_MEASURE_SPOT_DOT, "dot", {0.10, 0.80, 0.30}},
                                            {ZELM_MEASURE_SPOT_MARKER, "marker", {0.20, 0.60, 1.00}},
                                            {ZELM_MEASURE_SPOT_WEAK_EDGE, "edge too weak", {1.00, 0.80, 0.00}},
                                            {ZELM_MEASURE_SPOT_SMALL, "too small", {1.00, 0.45, 0.75}},
                                            {ZELM_MEASURE_SPOT_CUT, "cut by the edge", {0.75, 0.45, 1.00}},
                                            {ZELM_MEASURE_SPOT_NO_ELLIPSE, "no ellipse", {1.00, 0.15, 0.15}},
                                            {ZELM_MEASURE_SPOT_OTHER_SIZE, "another size", {1.00, 0.50, 0.10}},
                                            {ZELM_MEASURE_SPOT_OFF_LATTICE, "in no row of dots", {0.70, 0.70, 0.70}}}};
constexpr Colour kWhite{1.0, 1.0, 1.0};

// Squares of a letter, so that the longest line fits and is legible.
double squareFor(int width) {
    return std::max(1.0, std::floor(width / 400.0));
}

class FailedPainter {
public:
    FailedPainter(const Picture& picture, const ImageTrouble& imageTrouble)
        : trouble(imageTrouble),
          width(std::max(picture.width, kMinWidth)),
          height(picture.height),
          square(squareFor(width)),
          surface(blankSurface(width, height + static_cast<int>(square * kLine * (2.5 + kRows)))),
          cairo(cairo_create(surface.get()), cairo_destroy) {
        const SurfacePtr source = surfaceOf(picture);
        cairo_set_source_surface(cairo.get(), source.get(), 0.0, 0.0);
        cairo_paint(cairo.get());
    }

    std::string draw() {
        cairo_save(cairo.get());
        cairo_rectangle(cairo.get(), 0.0, 0.0, width, height);
        cairo_clip(cairo.get());
        for (auto spot = trouble.spots.rbegin(); spot != trouble.spots.rend(); ++spot) {
            outline(*spot);  // dots last, over what was rejected
        }
        cairo_restore(cairo.get());
        drawLegend();
        return pngOf(surface.get());
    }

private:
    static constexpr int kMinWidth = 320;  // pixels
    static constexpr double kLine = 10.0;  // squares from line to line
    static constexpr std::size_t kRows = 4;

    static Colour colourOf(std::int32_t verdict) {
        const auto* const found =
            std::find_if(kVerdicts.begin(), kVerdicts.end(), [=](const Verdict& v) { return v.verdict == verdict; });
        return found == kVerdicts.end() ? kWhite : found->colour;
    }

    // A little outside the spot, so that its edge is seen.
    void outline(const SeenSpot& spot) {
        constexpr double kGap = 2.0;  // pixels
        const Colour colour = colourOf(spot.verdict);
        cairo_save(cairo.get());
        cairo_translate(cairo.get(), spot.centre.x + 0.5, spot.centre.y + 0.5);
        cairo_rotate(cairo.get(), spot.direction);
        cairo_scale(cairo.get(), spot.longAxis + kGap, spot.shortAxis + kGap);
        cairo_new_sub_path(cairo.get());
        cairo_arc(cairo.get(), 0.0, 0.0, 1.0, 0.0, 2.0 * std::numbers::pi);
        cairo_restore(cairo.get());
        cairo_set_source_rgb(cairo.get(), colour.red, colour.green, colour.blue);
        cairo_set_line_width(cairo.get(), std::max(1.5, 0.8 * square));
        cairo_stroke(cairo.get());
    }

    void drawLegend() {
        const double line = kLine * square;
        double y = height + line;
        writeLetters(cairo.get(), {line, y}, "not read: " + trouble.cause, square, kWhite);
        for (std::size_t i = 0; i < kVerdicts.size(); ++i) {
            const Verdict& v = kVerdicts[i];
            const auto count = std::count_if(trouble.spots.begin(), trouble.spots.end(),
                                             [&](const SeenSpot& spot) { return spot.verdict == v.verdict; });
            const double x = line + (i / kRows == 0 ? 0.0 : 0.5 * width);
            y = height + line * (2.2 + static_cast<double>(i % kRows));
            cairo_rectangle(cairo.get(), x, y, kLetterHeight * square, kLetterHeight * square);
            cairo_set_source_rgb(cairo.get(), v.colour.red, v.colour.green, v.colour.blue);
            cairo_fill(cairo.get());
            writeLetters(cairo.get(), {x + line, y}, fmt::format("{} {}", count, v.name), square, kWhite);
        }
    }

    const ImageTrouble& trouble;
    int width;
    int height;
    double square;
    SurfacePtr surface;
    CairoPtr cairo;
};

}  // namespace

std::string drawFailed(const Picture& picture, const ImageTrouble& trouble) {
    return FailedPainter(picture, trouble).draw();
}

}  // namespace zelm::tool
