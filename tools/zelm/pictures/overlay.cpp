#include "overlay.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "canvas.h"

namespace zelm::tool {
namespace {

constexpr Colour kDotColour{0.10, 0.75, 0.25};
constexpr Colour kMarkerColour{1.00, 0.60, 0.00};
constexpr Colour kXColour{0.95, 0.15, 0.15};
constexpr Colour kYColour{0.15, 0.45, 1.00};
constexpr double kRingShareOfPitch = 0.30;    // radius of a dot's ring over the distance to its neighbour
constexpr double kMarkerShareOfPitch = 0.44;  // of a marker's ring
constexpr double kLabelShareOfPitch = 0.32;   // size of a letter

SurfacePtr scaledTo(const SurfacePtr& surface, double scale) {
    const int width = std::max(1, static_cast<int>(scale * cairo_image_surface_get_width(surface.get())));
    const int height = std::max(1, static_cast<int>(scale * cairo_image_surface_get_height(surface.get())));
    SurfacePtr scaled(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height), cairo_surface_destroy);
    const CairoPtr cairo(cairo_create(scaled.get()), cairo_destroy);
    cairo_scale(cairo.get(), scale, scale);
    cairo_set_source_surface(cairo.get(), surface.get(), 0.0, 0.0);
    cairo_pattern_set_filter(cairo_get_source(cairo.get()), CAIRO_FILTER_BEST);
    cairo_paint(cairo.get());
    return scaled;
}

const Dot* find(const std::vector<Dot>& dots, GridIndex index) {
    const auto dot = std::find_if(dots.begin(), dots.end(), [&](const Dot& d) { return d.index == index; });
    return dot == dots.end() ? nullptr : &*dot;
}

// Draws in the coordinates of the picture, whose pixel centres are whole numbers; cairo's pixel corners are.
class Painter {
public:
    Painter(cairo_surface_t* surface, double drawingScale, const Plate& description, const std::vector<Dot>& found)
        : cairo(cairo_create(surface), cairo_destroy), plate(description), dots(found), pitch(typicalPitch()) {
        cairo_scale(cairo.get(), drawingScale, drawingScale);
        cairo_translate(cairo.get(), 0.5, 0.5);
        thin = std::max(1.0 / drawingScale, 0.03 * pitch);
    }

    void draw() {
        for (const Dot& dot : dots) {
            drawDot(dot);
        }
        const GridIndex reach = markerIndex(plate);
        drawAxis({reach.x, 0}, kXColour, "x", 1.0);
        drawAxis({0, reach.y}, kYColour, "y", -1.0);
        for (const GridIndex index : {GridIndex{0, 0}, GridIndex{reach.x, 0}, GridIndex{0, reach.y}}) {
            if (const Dot* marker = find(dots, index); marker != nullptr) {
                ring(marker->pixel, kMarkerShareOfPitch * pitch, kMarkerColour, 2.0 * thin);
            }
        }
    }

private:
    // Pixels between neighbours: the median distance from each dot to the next one in its row.
    double typicalPitch() const {
        std::vector<double> distances;
        for (const Dot& dot : dots) {
            if (const Dot* next = find(dots, {dot.index.x + 1, dot.index.y}); next != nullptr) {
                distances.push_back(std::hypot(next->pixel.x - dot.pixel.x, next->pixel.y - dot.pixel.y));
            }
        }
        if (distances.empty()) {
            constexpr double kFallback = 20.0;
            return kFallback;
        }
        std::nth_element(distances.begin(), distances.begin() + static_cast<std::ptrdiff_t>(distances.size() / 2),
                         distances.end());
        return distances[distances.size() / 2];
    }

    void stroke(Colour colour, double width) {
        cairo_set_source_rgb(cairo.get(), colour.red, colour.green, colour.blue);
        cairo_set_line_width(cairo.get(), width);
        cairo_stroke(cairo.get());
    }

    void ring(Point2d centre, double radius, Colour colour, double width) {
        cairo_new_sub_path(cairo.get());
        cairo_arc(cairo.get(), centre.x, centre.y, radius, 0.0, 2.0 * std::numbers::pi);
        stroke(colour, width);
    }

    void line(Point2d from, Point2d to) {
        cairo_move_to(cairo.get(), from.x, from.y);
        cairo_line_to(cairo.get(), to.x, to.y);
    }

    void drawDot(const Dot& dot) {
        const double arm = 0.12 * pitch;
        line({dot.pixel.x - arm, dot.pixel.y}, {dot.pixel.x + arm, dot.pixel.y});
        line({dot.pixel.x, dot.pixel.y - arm}, {dot.pixel.x, dot.pixel.y + arm});
        stroke(kDotColour, thin);
        ring(dot.pixel, kRingShareOfPitch * pitch, kDotColour, thin);
    }

    // An arrow from the corner marker to the marker of an axis, and the axis's name beyond it between the dots, on the
    // side that `turn` tells (1: counter-clockwise of the arrow).
    void drawAxis(GridIndex end, Colour colour, const char* name, double turn) {
        const Dot* const from = find(dots, {0, 0});
        const Dot* const to = find(dots, end);
        if (from == nullptr || to == nullptr) {
            return;
        }
        const double length = std::hypot(to->pixel.x - from->pixel.x, to->pixel.y - from->pixel.y);
        const Point2d u{(to->pixel.x - from->pixel.x) / length, (to->pixel.y - from->pixel.y) / length};
        const double head = 0.3 * pitch;
        const Point2d base{to->pixel.x - head * u.x, to->pixel.y - head * u.y};
        line(from->pixel, to->pixel);
        line(to->pixel, {base.x - 0.5 * head * u.y, base.y + 0.5 * head * u.x});
        line(to->pixel, {base.x + 0.5 * head * u.y, base.y - 0.5 * head * u.x});
        stroke(colour, 2.5 * thin);
        const double aside = 0.5 * pitch;
        label({to->pixel.x + aside * (u.x + turn * u.y), to->pixel.y + aside * (u.y - turn * u.x)}, colour, name);
    }

    // The letter x or y as strokes on a white ground; text would need fonts on the machine.
    void label(Point2d centre, Colour colour, const char* letter) {
        const double half = 0.5 * kLabelShareOfPitch * pitch;
        const bool isX = *letter == 'x';
        line({centre.x + half, centre.y - half}, {centre.x - half, centre.y + half});
        line({centre.x - half, centre.y - half}, isX ? Point2d{centre.x + half, centre.y + half} : centre);
        cairo_set_source_rgb(cairo.get(), 1.0, 1.0, 1.0);
        cairo_set_line_width(cairo.get(), 6.0 * thin);
        cairo_stroke_preserve(cairo.get());
        stroke(colour, 3.0 * thin);
    }

    CairoPtr cairo;
    const Plate& plate;
    const std::vector<Dot>& dots;
    double pitch;
    double thin = 1.0;  // line width
};

}  // namespace

std::string drawOverlay(const Picture& picture, const Plate& plate, const std::vector<Dot>& dots, int largestSide) {
    SurfacePtr surface = surfaceOf(picture);
    double scale = 1.0;
    if (const int side = std::max(picture.width, picture.height); largestSide > 0 && largestSide < side) {
        scale = static_cast<double>(largestSide) / side;
        surface = scaledTo(surface, scale);
    }
    Painter(surface.get(), scale, plate, dots).draw();
    return pngOf(surface.get());
}

}  // namespace zelm::tool
