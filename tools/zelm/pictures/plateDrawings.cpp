#include "plateDrawings.h"

#include <cairo-pdf.h>
#include <fmt/format.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <numbers>

#include "canvas.h"
#include "failure.h"

namespace zelm::tool {
namespace {

constexpr double kMillimetresPerInch = 25.4;
constexpr double kPointsPerMillimetre = 72.0 / kMillimetresPerInch;
constexpr double kCurveTolerance = 1e-3;     // of what is drawn, in its smallest unit: points or pixels
constexpr double kMaxPngPixels = 268e6;      // as many as the tool reads
constexpr double kMaxPngSide = 32767.0;      // of a surface to draw on
constexpr std::size_t kEndOfPngHeader = 33;  // signature and IHDR

cairo_status_t append(void* bytes, const unsigned char* data, unsigned int size) {
    static_cast<std::string*>(bytes)->append(reinterpret_cast<const char*>(data), size);
    return CAIRO_STATUS_SUCCESS;
}

void rectangle(cairo_t* cairo, const SheetBox& box) {
    cairo_rectangle(cairo, box.x, box.y, box.width, box.height);
}

// Dots of a printed ground are holes in it, so that no white ink is asked for.
void drawField(cairo_t* cairo, const PlateSheet& sheet) {
    if (sheet.isBright) {
        rectangle(cairo, sheet.ground);
    }
    for (const SheetDisc& disc : sheet.discs) {
        cairo_new_sub_path(cairo);
        cairo_arc(cairo, disc.centre.x, disc.centre.y, 0.5 * disc.diameter, 0.0, 2.0 * std::numbers::pi);
        cairo_close_path(cairo);
    }
    cairo_set_fill_rule(cairo, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_fill(cairo);
}

void drawTexts(cairo_t* cairo, const PlateSheet& sheet) {
    cairo_select_font_face(cairo, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cairo, sheet.textHeight / kCapitalHeight);
    for (const SheetText& text : sheet.texts) {
        cairo_text_extents_t extents;
        cairo_text_extents(cairo, text.text.c_str(), &extents);
        cairo_move_to(cairo, text.at.x - (text.isCentred ? 0.5 * extents.x_advance : 0.0), text.at.y);
        cairo_show_text(cairo, text.text.c_str());
    }
}

void drawMarks(cairo_t* cairo, const PlateSheet& sheet) {
    cairo_set_fill_rule(cairo, CAIRO_FILL_RULE_WINDING);
    for (const SheetBox& box : sheet.ruler) {
        rectangle(cairo, box);
    }
    cairo_fill(cairo);
    cairo_set_line_width(cairo, kCropLineWidth);
    for (const SheetLine& line : sheet.cropMarks) {
        cairo_move_to(cairo, line.from.x, line.from.y);
        cairo_line_to(cairo, line.to.x, line.to.y);
    }
    cairo_stroke(cairo);
}

// Draws in black, in millimetres.
void draw(cairo_t* cairo, const PlateSheet& sheet, double unitsPerMillimetre) {
    cairo_scale(cairo, unitsPerMillimetre, unitsPerMillimetre);
    cairo_set_tolerance(cairo, kCurveTolerance);
    cairo_set_antialias(cairo, CAIRO_ANTIALIAS_BEST);
    cairo_set_source_rgba(cairo, 0.0, 0.0, 0.0, 1.0);
    drawField(cairo, sheet);
    drawMarks(cairo, sheet);
    drawTexts(cairo, sheet);
}

void requireDrawn(cairo_status_t status) {
    if (status != CAIRO_STATUS_SUCCESS) {
        failData("the plate cannot be drawn: {}", cairo_status_to_string(status));
    }
}

// Ink, a byte a pixel, as gray levels.
Picture grayOf(cairo_surface_t* surface) {
    cairo_surface_flush(surface);
    Picture picture{cairo_image_surface_get_width(surface), cairo_image_surface_get_height(surface), {}};
    const unsigned char* const rows = cairo_image_surface_get_data(surface);
    const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(surface));
    const auto width = static_cast<std::size_t>(picture.width);
    picture.pixels.resize(width * static_cast<std::size_t>(picture.height));
    for (std::size_t y = 0; y < static_cast<std::size_t>(picture.height); ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            picture.pixels[y * width + x] = static_cast<std::uint8_t>(255 - rows[y * stride + x]);
        }
    }
    return picture;
}

// The check sum of a PNG's chunk (ISO 3309).
std::uint32_t crc32(const std::string& bytes) {
    std::uint32_t crc = 0xFFFFFFFFU;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 1U) != 0U ? 0xEDB88320U ^ (crc >> 1U) : crc >> 1U;
        }
    }
    return ~crc;
}

void addBigEndian(std::string& bytes, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        bytes += static_cast<char>(value >> static_cast<unsigned>(shift) & 0xFFU);
    }
}

// The chunk that tells the size of a pixel.
std::string resolutionChunk(int dotsPerInch) {
    const auto perMetre = static_cast<std::uint32_t>(std::lround(1000.0 * dotsPerInch / kMillimetresPerInch));
    std::string body = "pHYs";
    addBigEndian(body, perMetre);
    addBigEndian(body, perMetre);
    body += '\1';  // the unit is the metre
    std::string chunk;
    addBigEndian(chunk, static_cast<std::uint32_t>(body.size() - 4));
    chunk += body;
    addBigEndian(chunk, crc32(body));
    return chunk;
}

std::string escaped(const std::string& text) {
    std::string safe;
    for (const char c : text) {
        safe += c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '>' ? "&gt;" : std::string(1, c);
    }
    return safe;
}

std::string svgBox(const SheetBox& box, const char* more) {
    return fmt::format("<rect x=\"{:.6f}\" y=\"{:.6f}\" width=\"{:.6f}\" height=\"{:.6f}\"{}/>\n", box.x, box.y,
                       box.width, box.height, more);
}

}  // namespace

std::string platePdf(const PlateSheet& sheet) {
    std::string bytes;
    const SurfacePtr surface(cairo_pdf_surface_create_for_stream(append, &bytes, sheet.width * kPointsPerMillimetre,
                                                                 sheet.height * kPointsPerMillimetre),
                             cairo_surface_destroy);
    cairo_pdf_surface_set_metadata(surface.get(), CAIRO_PDF_METADATA_TITLE, sheet.title.c_str());
    cairo_pdf_surface_set_metadata(surface.get(), CAIRO_PDF_METADATA_CREATOR, "zelm plate");
    const CairoPtr cairo(cairo_create(surface.get()), cairo_destroy);
    draw(cairo.get(), sheet, kPointsPerMillimetre);
    cairo_show_page(cairo.get());
    requireDrawn(cairo_status(cairo.get()));
    cairo_surface_finish(surface.get());
    requireDrawn(cairo_surface_status(surface.get()));
    return bytes;
}

std::string plateSvg(const PlateSheet& sheet) {
    std::string svg = fmt::format(
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0:.6g}mm\" height=\"{1:.6g}mm\" viewBox=\"0 0 {0:.6g} "
        "{1:.6g}\">\n<title>{2}</title>\n<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n",
        sheet.width, sheet.height, escaped(sheet.title));
    if (sheet.isBright) {
        svg += svgBox(sheet.ground, " id=\"ground\"");
    }
    svg += fmt::format("<g id=\"dots\" fill=\"{}\">\n", sheet.isBright ? "white" : "black");
    for (const SheetDisc& disc : sheet.discs) {
        svg += fmt::format("<circle{} cx=\"{:.6f}\" cy=\"{:.6f}\" r=\"{:.6f}\"/>\n",
                           disc.isMarker ? " class=\"marker\"" : "", disc.centre.x, disc.centre.y, 0.5 * disc.diameter);
    }
    svg += "</g>\n<g id=\"ruler\">\n";
    for (const SheetBox& box : sheet.ruler) {
        svg += svgBox(box, "");
    }
    svg += fmt::format("</g>\n<g id=\"cut\" stroke=\"black\" stroke-width=\"{}\">\n", kCropLineWidth);
    for (const SheetLine& line : sheet.cropMarks) {
        svg += fmt::format("<line x1=\"{:.6f}\" y1=\"{:.6f}\" x2=\"{:.6f}\" y2=\"{:.6f}\"/>\n", line.from.x,
                           line.from.y, line.to.x, line.to.y);
    }
    svg +=
        fmt::format("</g>\n<g font-family=\"sans-serif\" font-size=\"{:.6f}\">\n", sheet.textHeight / kCapitalHeight);
    for (const SheetText& text : sheet.texts) {
        svg += fmt::format("<text x=\"{:.6f}\" y=\"{:.6f}\"{}>{}</text>\n", text.at.x, text.at.y,
                           text.isCentred ? " text-anchor=\"middle\"" : "", escaped(text.text));
    }
    return svg + "</g>\n</svg>\n";
}

std::string platePng(const PlateSheet& sheet, int dotsPerInch) {
    const double perMillimetre = dotsPerInch / kMillimetresPerInch;
    const double width = std::ceil(sheet.width * perMillimetre - 1e-6);
    const double height = std::ceil(sheet.height * perMillimetre - 1e-6);
    if (width > kMaxPngSide || height > kMaxPngSide || width * height > kMaxPngPixels) {
        failData("{:.0f} x {:.0f} pixels are too many for a PNG: lower --dpi, or leave png out of --format", width,
                 height);
    }
    const SurfacePtr surface(
        cairo_image_surface_create(CAIRO_FORMAT_A8, static_cast<int>(width), static_cast<int>(height)),
        cairo_surface_destroy);
    requireDrawn(cairo_surface_status(surface.get()));
    const CairoPtr cairo(cairo_create(surface.get()), cairo_destroy);
    draw(cairo.get(), sheet, perMillimetre);
    requireDrawn(cairo_status(cairo.get()));
    std::string png = encodePicture(grayOf(surface.get()), "plate.png");
    png.insert(kEndOfPngHeader, resolutionChunk(dotsPerInch));
    return png;
}

}  // namespace zelm::tool
