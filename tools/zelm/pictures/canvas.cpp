#include "canvas.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <vector>

#include "failure.h"

namespace zelm::tool {
namespace {

constexpr double kLineWidth = 1.0;   // pixels
constexpr double kCrossWidth = 1.5;  // pixels
constexpr double kCrossArm = 7.0;    // pixels

int widthOf(const AnyPicture& picture) {
    return std::visit([](const auto& p) { return p.width; }, picture);
}

int heightOf(const AnyPicture& picture) {
    return std::visit([](const auto& p) { return p.height; }, picture);
}

// Fills a surface with the colours 0xRRGGBB that `pixel` gives for each index of the picture.
template <typename Pixel>
SurfacePtr filledSurface(int pictureWidth, int pictureHeight, Pixel pixel) {
    SurfacePtr surface = blankSurface(pictureWidth, pictureHeight);
    unsigned char* const rows = cairo_image_surface_get_data(surface.get());
    const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(surface.get()));
    const auto width = static_cast<std::size_t>(pictureWidth);
    for (std::size_t y = 0; y < static_cast<std::size_t>(pictureHeight); ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            const std::uint32_t colour = pixel(y * width + x);
            std::memcpy(rows + y * stride + 4 * x, &colour, sizeof(colour));
        }
    }
    cairo_surface_mark_dirty(surface.get());
    return surface;
}

std::uint32_t packed(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
    return red << 16U | green << 8U | blue;
}

// Red, green and blue of every pixel, without padding.
std::vector<std::uint8_t> rgbOf(cairo_surface_t* surface) {
    const unsigned char* const rows = cairo_image_surface_get_data(surface);
    const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(surface));
    const auto width = static_cast<std::size_t>(cairo_image_surface_get_width(surface));
    const auto height = static_cast<std::size_t>(cairo_image_surface_get_height(surface));
    std::vector<std::uint8_t> rgb(3 * width * height);
    for (std::size_t i = 0; i < width * height; ++i) {
        std::uint32_t colour = 0;
        std::memcpy(&colour, rows + i / width * stride + 4 * (i % width), sizeof(colour));
        rgb[3 * i] = static_cast<std::uint8_t>(colour >> 16U);
        rgb[3 * i + 1] = static_cast<std::uint8_t>(colour >> 8U);
        rgb[3 * i + 2] = static_cast<std::uint8_t>(colour);
    }
    return rgb;
}

}  // namespace

SurfacePtr blankSurface(int width, int height) {
    SurfacePtr surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height), cairo_surface_destroy);
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) {
        failData("a picture of {} x {} pixels cannot be drawn: {}", width, height,
                 cairo_status_to_string(cairo_surface_status(surface.get())));
    }
    return surface;
}

SurfacePtr surfaceOf(const Picture& picture) {
    return filledSurface(picture.width, picture.height, [&](std::size_t i) {
        return packed(picture.pixels[i], picture.pixels[i], picture.pixels[i]);
    });
}

SurfacePtr surfaceOf(const ColourPicture& picture) {
    return filledSurface(picture.width, picture.height, [&](std::size_t i) {
        return packed(picture.argb[4 * i + 1], picture.argb[4 * i + 2], picture.argb[4 * i + 3]);
    });
}

SurfacePtr surfaceOf(const AnyPicture& picture) {
    return std::visit([](const auto& p) { return surfaceOf(p); }, picture);
}

// Compressed lightly: a quarter of the time of the usual level for some 4 % more bytes.
std::string pngOf(cairo_surface_t* surface) {
    cairo_surface_flush(surface);
    const std::vector<std::uint8_t> rgb = rgbOf(surface);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(cairo_image_surface_get_width(surface));
    image.height = static_cast<png_uint_32>(cairo_image_surface_get_height(surface));
    image.format = PNG_FORMAT_RGB;
    image.flags = PNG_IMAGE_FLAG_FAST;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::string png(size, '\0');
    if (png_image_write_to_memory(&image, png.data(), &size, 0, rgb.data(), 0, nullptr) == 0) {
        failData("a picture cannot be encoded: {}", image.message);
    }
    png.resize(size);
    return png;
}

Colour lineColour(std::size_t index) {
    constexpr std::array<Colour, 6> kColours{{{0.95, 0.25, 0.20},
                                              {0.20, 0.80, 0.30},
                                              {0.30, 0.55, 1.00},
                                              {1.00, 0.75, 0.10},
                                              {0.90, 0.35, 0.90},
                                              {0.10, 0.85, 0.85}}};
    return kColours[index % kColours.size()];
}

Canvas::Canvas(const AnyPicture& picture)
    : surface(surfaceOf(picture)), cairo(cairo_create(surface.get()), cairo_destroy) {
    cairo_translate(cairo.get(), 0.5, 0.5);  // cairo's whole numbers are the corners of pixels
}

Canvas::Canvas(const AnyPicture& left, const AnyPicture& right)
    : surface(blankSurface(widthOf(left) + widthOf(right), std::max(heightOf(left), heightOf(right)))),
      cairo(cairo_create(surface.get()), cairo_destroy) {
    place(left, 0.0);
    place(right, widthOf(left));
    cairo_translate(cairo.get(), 0.5, 0.5);
}

void Canvas::place(const AnyPicture& picture, double x) {
    const SurfacePtr source = surfaceOf(picture);
    cairo_set_source_surface(cairo.get(), source.get(), x, 0.0);
    cairo_paint(cairo.get());
}

void Canvas::line(Point2d from, Point2d to, Colour colour) {
    cairo_move_to(cairo.get(), from.x, from.y);
    cairo_line_to(cairo.get(), to.x, to.y);
    stroke(colour, kLineWidth);
}

void Canvas::cross(Point2d at, Colour colour) {
    cairo_move_to(cairo.get(), at.x - kCrossArm, at.y - kCrossArm);
    cairo_line_to(cairo.get(), at.x + kCrossArm, at.y + kCrossArm);
    cairo_move_to(cairo.get(), at.x - kCrossArm, at.y + kCrossArm);
    cairo_line_to(cairo.get(), at.x + kCrossArm, at.y - kCrossArm);
    stroke(colour, kCrossWidth);
}

void Canvas::stroke(Colour colour, double width) {
    cairo_set_source_rgb(cairo.get(), colour.red, colour.green, colour.blue);
    cairo_set_line_width(cairo.get(), width);
    cairo_stroke(cairo.get());
}

}  // namespace zelm::tool
