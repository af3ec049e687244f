#include "viewGallery.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <mutex>

#include "htmlText.h"
#include "numberText.h"
#include "parallel.h"

namespace zelm::tool {
namespace {

constexpr int kJpegQuality = 80;

// Pixels of the longer side, so that all images together stay at about 4 MB: a picture takes some 0.14 byte a pixel.
int sideOf(const Calibration& c) {
    constexpr double kMost = 960.0;
    constexpr double kLeast = 320.0;
    constexpr double kImagesAtMost = 32.0;
    const double images = 2.0 * static_cast<double>(c.views.size());
    return static_cast<int>(std::clamp(kMost * std::sqrt(kImagesAtMost / std::max(images, 1.0)), kLeast, kMost));
}

struct GalleryImage {
    const std::filesystem::path* path = nullptr;
    const ImageFigures* figures = nullptr;
    const RigCamera* camera = nullptr;
    const char* side = "";
    std::string jpeg;
};

// Pixels between neighbours in a row, the median; of a plate too sparse to tell a part of the image.
double pitchOf(const GalleryImage& image) {
    std::vector<double> distances;
    const std::vector<Dot>& dots = image.figures->dots;
    for (std::size_t i = 1; i < dots.size(); ++i) {
        if (dots[i].index.y == dots[i - 1].index.y && dots[i].index.x == dots[i - 1].index.x + 1) {
            distances.push_back(
                std::hypot(dots[i].pixel.x - dots[i - 1].pixel.x, dots[i].pixel.y - dots[i - 1].pixel.y));
        }
    }
    constexpr double kPartOfImage = 0.03;
    return distances.empty() ? kPartOfImage * image.camera->width : figuresOf(distances).median;
}

std::string ring(Point2d centre, double radius) {
    return fmt::format("M{0:.1f} {1:.1f}a{2:.1f} {2:.1f} 0 1 0 {3:.1f} 0a{2:.1f} {2:.1f} 0 1 0-{3:.1f} 0",
                       centre.x - radius, centre.y, radius, 2.0 * radius);
}

// The corner marker, and the markers of the axes.
std::string axes(const GalleryImage& image, const GridIndex& reach, double pitch) {
    const auto find = [&](GridIndex index) {
        return std::find_if(image.figures->dots.begin(), image.figures->dots.end(),
                            [&](const Dot& dot) { return dot.index == index; });
    };
    const auto none = image.figures->dots.end();
    const auto corner = find({0, 0});
    std::string svg;
    std::string rings = corner == none ? "" : ring(corner->pixel, 0.44 * pitch);
    for (const auto& [index, name] : {std::pair(GridIndex{reach.x, 0}, "x"), std::pair(GridIndex{0, reach.y}, "y")}) {
        const auto end = find(index);
        if (end == none) {
            continue;
        }
        rings += ring(end->pixel, 0.44 * pitch);
        if (corner != none) {
            const double dx = end->pixel.x - corner->pixel.x;
            const double dy = end->pixel.y - corner->pixel.y;
            svg += fmt::format("<path class=\"axis-{}\" d=\"M{:.1f} {:.1f}l{:.1f} {:.1f}\"/>", name, corner->pixel.x,
                               corner->pixel.y, dx, dy);
            const double beyond = 1.0 + 0.75 * pitch / std::hypot(dx, dy);
            svg += fmt::format(
                "<text class=\"axis-{0}\" x=\"{1:.1f}\" y=\"{2:.1f}\" style=\"font-size:{3:.1f}px\" "
                "text-anchor=\"middle\" "
                "dominant-baseline=\"central\">{0}</text>",
                name, corner->pixel.x + beyond * dx, corner->pixel.y + beyond * dy, 0.6 * pitch);
        }
    }
    return svg + "<path class=\"markers\" d=\"" + rings + "\"/>";
}

std::string overlay(const GalleryImage& image, const Plate& plate, double magnification) {
    constexpr double kRingShareOfPitch = 0.30;
    const double pitch = pitchOf(image);
    std::string rings;
    std::string errors;
    for (const Dot& dot : image.figures->dots) {
        rings += ring(dot.pixel, kRingShareOfPitch * pitch);
        errors += fmt::format("M{:.1f} {:.1f}l{:.1f} {:.1f}", dot.pixel.x, dot.pixel.y, magnification * dot.error.x,
                              magnification * dot.error.y);
    }
    return "<g class=\"found\"><path class=\"rings\" d=\"" + rings + "\"/>" + axes(image, markerIndex(plate), pitch) +
           "</g><path class=\"found-errors\" d=\"" + errors + "\"/>";
}

std::string figureOf(const GalleryImage& image, const Plate& plate, double magnification) {
    const std::string name = escaped(imageName(*image.path));
    const RigCamera& camera = *image.camera;
    // Whole numbers are the centres of pixels.
    std::string svg = fmt::format(
        "<svg class=\"shot\" viewBox=\"-0.5 -0.5 {0} {1}\" role=\"img\" aria-label=\"{2} with the dots found\">"
        "<image href=\"data:image/jpeg;base64,{3}\" x=\"-0.5\" y=\"-0.5\" width=\"{0}\" height=\"{1}\"/>",
        camera.width, camera.height, name, base64(image.jpeg));
    svg += overlay(image, plate, magnification) + "</svg>";
    const DistanceFigures& d = image.figures->distances;
    return figureElement(svg, fmt::format("<b class=\"{}-ink\">{}</b> {}: {} dots, RMS {:.4f} px, worst {:.4f} px",
                                          image.side, image.side, name, image.figures->found, d.rms, d.max));
}

std::string poseText(const ViewPose& pose, const std::string& units) {
    constexpr std::array<const char*, 2> kSides{"left", "right"};
    std::string text;
    for (std::size_t side = 0; side < 2; ++side) {
        if (const auto& plate = pose.cameras[side]) {
            text += fmt::format("{}{} camera: tilted by {:.1f}°", text.empty() ? "" : "; ", kSides[side],
                                plate->tilt * kDegreesPerRadian);
            text += plate->distance > 0.0 ? fmt::format(", {:.4g} {} away", plate->distance, escaped(units)) : "";
        }
    }
    return text;
}

// Both images of every view, left before right.
std::vector<GalleryImage> galleryImages(const Calibration& c, const Console& console) {
    std::vector<GalleryImage> images;
    images.reserve(2 * c.views.size());
    for (std::size_t i = 0; i < c.views.size(); ++i) {
        images.push_back({&c.views[i].left, &c.figures.left.views[i], &c.rig.left, "left", {}});
        images.push_back({&c.views[i].right, &c.figures.right.views[i], &c.rig.right, "right", {}});
    }
    const int side = sideOf(c);
    Progress progress(console, "drawing the report", images.size());
    std::mutex mutex;
    onAllCores(images.size(), [&](std::size_t i) {
        GalleryImage& image = images[i];
        if (!image.path->empty() && !image.figures->dots.empty()) {
            image.jpeg = encodeReducedJpeg(*c.pictures->get(*image.path), side, kJpegQuality);
        }
        const std::scoped_lock lock(mutex);
        progress.advance();
    });
    return images;
}

constexpr const char* kControls = R"(<div class="controls" hidden>
<button type="button" class="previous" aria-label="Previous view">◀</button>
<label>View <select></select></label>
<button type="button" class="next" aria-label="Next view">▶</button>
<label><input type="checkbox" class="show-dots" checked> dots</label>
<label><input type="checkbox" class="show-errors" checked> errors</label>
</div>
)";

}  // namespace

std::string viewGallery(const Calibration& c, const std::vector<ViewPose>& poses, double magnification,
                        const Console& console) {
    const std::vector<GalleryImage> images = galleryImages(c, console);
    std::string html = fmt::format(
        "<section id=\"views\">\n<h2>Dots found in every view</h2>\n<p class=\"note\">Rings: dots that were measured; "
        "orange: markers; red and blue: the plate's x and y axis; short red lines: errors, {:g} times as long as "
        "they are. The images are reduced.</p>\n<div class=\"gallery\">\n{}",
        magnification, kControls);
    for (std::size_t i = 0; i < c.views.size(); ++i) {
        html += fmt::format(
            "<article class=\"view\" data-view=\"{0}\" aria-label=\"View {0}\"><h3>View {0}</h3>"
            "<p class=\"note\">{1}</p><div class=\"two\">\n",
            i, poseText(poses[i], c.plate.units));
        for (const GalleryImage* image : {&images[2 * i], &images[2 * i + 1]}) {
            html += image->jpeg.empty() ? "" : figureOf(*image, c.plate, magnification);
        }
        html += "</div></article>\n";
    }
    return html + "</div>\n</section>\n";
}

}  // namespace zelm::tool
