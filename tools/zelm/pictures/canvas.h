// Drawing on pictures.
#ifndef ZELM_TOOL_CANVAS_H
#define ZELM_TOOL_CANVAS_H

#include <cairo.h>
#include <zelmLib.h>

#include <cstddef>
#include <memory>
#include <string>

#include "colour.h"
#include "imageFile.h"

namespace zelm::tool {

using SurfacePtr = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;
using CairoPtr = std::unique_ptr<cairo_t, decltype(&cairo_destroy)>;

// A black surface. Throws Failure when there is no memory for it.
SurfacePtr blankSurface(int width, int height);

// A picture as a drawing surface. Throws Failure when there is no memory for it.
SurfacePtr surfaceOf(const Picture& picture);
SurfacePtr surfaceOf(const ColourPicture& picture);
SurfacePtr surfaceOf(const AnyPicture& picture);

// A surface as a PNG. Throws Failure when there is no memory for it.
std::string pngOf(cairo_surface_t* surface);

// One of a few colours that are told apart on gray.
Colour lineColour(std::size_t index);

// Lines and crosses on one picture or on pictures side by side. Points are in pixels of the canvas; the centre of its
// first pixel is (0, 0).
class Canvas {
public:
    explicit Canvas(const AnyPicture& picture);
    // The first picture on the left.
    Canvas(const AnyPicture& left, const AnyPicture& right);

    void line(Point2d from, Point2d to, Colour colour);
    void cross(Point2d at, Colour colour);

    std::string png() const { return pngOf(surface.get()); }

private:
    void place(const AnyPicture& picture, double x);
    void stroke(Colour colour, double width);

    SurfacePtr surface;
    CairoPtr cairo;
};

}  // namespace zelm::tool

#endif
