#include "dots.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

#include "failure.h"
#include "rigFile.h"

namespace zelm::tool {
namespace {

constexpr double kGridTolerance = 0.15;  // of a pitch: the tolerance of the library's reader
constexpr std::size_t kNeighbours = 8;   // dots that a dot's size is compared with

// What the library reads but does not write.
ZelmImage imageOf(const Picture& picture) {
    return {const_cast<std::uint8_t*>(picture.pixels.data()), picture.width, picture.height};
}

std::vector<ZelmBlob> blobsOf(const Picture& picture, const Plate& plate, const ZelmRect& region) {
    const ZelmImage image = imageOf(picture);
    ZelmBlob* blobs = nullptr;
    std::int32_t count = 0;
    const std::int32_t threshold = zelmBinOtsuThresholdImage(&image, &region);
    const std::int32_t status =
        zelmBinBlob(&image, &region, threshold, plate.pattern.polarity, 0, plate.pattern.minDotArea, &blobs, &count);
    std::vector<ZelmBlob> found;
    if (status >= 0 && blobs != nullptr) {
        found.assign(blobs, blobs + count);
    }
    zelmBinFree(&blobs);
    return found;
}

double squaredDistance(Point2d a, Point2d b) {
    return (a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y);
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// The box of the points, widened so that the blobs around them lie inside, within the picture.
ZelmRect regionAround(const Picture& picture, const std::vector<Point2d>& points) {
    const auto [left, right] =
        std::minmax_element(points.begin(), points.end(), [](Point2d a, Point2d b) { return a.x < b.x; });
    const auto [top, bottom] =
        std::minmax_element(points.begin(), points.end(), [](Point2d a, Point2d b) { return a.y < b.y; });
    const double margin =
        0.5 * std::sqrt((right->x - left->x) * (bottom->y - top->y) / static_cast<double>(points.size()));
    const auto pixel = [](double value, int last) {
        return static_cast<std::int32_t>(std::clamp(value, 0.0, double(last)));
    };
    const std::int32_t x = pixel(left->x - margin, picture.width - 1);
    const std::int32_t y = pixel(top->y - margin, picture.height - 1);
    return {x, y, pixel(right->x + margin, picture.width - 1) - x + 1,
            pixel(bottom->y + margin, picture.height - 1) - y + 1};
}

// Area of the blob that holds each point; 0 where there is none.
std::vector<double> areasAt(const std::vector<Point2d>& points, const std::vector<ZelmBlob>& blobs) {
    std::vector<double> areas(points.size(), 0.0);
    for (std::size_t i = 0; i < points.size(); ++i) {
        double nearest = std::numeric_limits<double>::infinity();
        for (const ZelmBlob& blob : blobs) {
            const double distance = squaredDistance(points[i], {blob.cx, blob.cy});
            if (distance < nearest &&
                distance < 0.25 * std::min(blob.width, blob.height) * std::min(blob.width, blob.height)) {
                nearest = distance;
                areas[i] = blob.area;
            }
        }
    }
    return areas;
}

// A dot's area over the median area of the dots around it, so that perspective does not count.
double relativeSize(std::size_t i, const std::vector<Point2d>& points, const std::vector<double>& areas) {
    std::vector<std::pair<double, double>> others;  // distance, area
    for (std::size_t j = 0; j < points.size(); ++j) {
        if (j != i && areas[j] > 0.0) {
            others.emplace_back(squaredDistance(points[i], points[j]), areas[j]);
        }
    }
    if (others.empty()) {
        return 0.0;
    }
    const std::size_t count = std::min(kNeighbours, others.size());
    std::partial_sort(others.begin(), others.begin() + static_cast<std::ptrdiff_t>(count), others.end());
    std::vector<double> around(count);
    std::transform(others.begin(), others.begin() + static_cast<std::ptrdiff_t>(count), around.begin(),
                   [](const auto& other) { return other.second; });
    return areas[i] / median(around);
}

// The points that stand for the markers: as many as the plate has, the largest first.
std::vector<Point2d> markerPoints(const Picture& picture, const Plate& plate, const std::vector<Point2d>& points) {
    const std::vector<double> areas = areasAt(points, blobsOf(picture, plate, regionAround(picture, points)));
    std::vector<std::pair<double, std::size_t>> sizes;
    for (std::size_t i = 0; i < points.size(); ++i) {
        sizes.emplace_back(-relativeSize(i, points, areas), i);
    }
    std::sort(sizes.begin(), sizes.end());
    std::vector<Point2d> markers;
    for (std::size_t i = 0; i < std::min(sizes.size(), static_cast<std::size_t>(plate.pattern.markers)); ++i) {
        markers.push_back(points[sizes[i].second]);
    }
    return markers;
}

struct MarkerFrame {
    Point2d corner{};
    Point2d xMarker{};
    Point2d yMarker{};
    double error = std::numeric_limits<double>::infinity();  // how far its angle is from a right one
};

// The corner is where the angle between two other markers is nearest to a right one; x turns towards y clockwise as
// the image is seen (its y axis points down).
MarkerFrame markerFrame(const std::vector<Point2d>& markers) {
    MarkerFrame best;
    for (const Point2d& corner : markers) {
        for (const Point2d& x : markers) {
            for (const Point2d& y : markers) {
                const Point2d a{x.x - corner.x, x.y - corner.y};
                const Point2d b{y.x - corner.x, y.y - corner.y};
                const double cross = a.x * b.y - a.y * b.x;
                const double error = std::abs(std::atan2(a.x * b.x + a.y * b.y, cross));
                if (cross > 0.0 && error < best.error) {
                    best = {corner, x, y, error};
                }
            }
        }
    }
    return best;
}

// The homography from grid indices to the image through dots whose index is known.
bool gridHomography(const std::vector<Dot>& dots, double* H) {
    std::vector<Point2d> plane;
    std::vector<Point2d> pixels;
    for (const Dot& dot : dots) {
        plane.push_back(dot.plane);
        pixels.push_back(dot.pixel);
    }
    return zelmCalibCalcHomography(static_cast<std::int32_t>(dots.size()), plane.data(), pixels.data(), -1.0, H) >= 0;
}

// The affine map from the plane to the image that the markers give, as a homography.
std::array<double, 9> affineOf(const MarkerFrame& frame, const Plate& plate) {
    const double d6 = plate.pattern.d6;
    const double d7 = plate.pattern.d7;
    return {(frame.xMarker.x - frame.corner.x) / d6,
            (frame.yMarker.x - frame.corner.x) / d7,
            frame.corner.x,
            (frame.xMarker.y - frame.corner.y) / d6,
            (frame.yMarker.y - frame.corner.y) / d7,
            frame.corner.y,
            0.0,
            0.0,
            1.0};
}

int countMarkerSized(const Picture& picture, const Plate& plate) {
    const std::vector<ZelmBlob> blobs = blobsOf(picture, plate, {0, 0, picture.width, picture.height});
    if (blobs.empty()) {
        return 0;
    }
    std::vector<double> areas;
    for (const ZelmBlob& blob : blobs) {
        areas.push_back(blob.area);
    }
    const double usual = median(areas);
    const double ratio = plate.pattern.d3 * plate.pattern.d3 / (plate.pattern.d2 * plate.pattern.d2);
    return static_cast<int>(std::count_if(areas.begin(), areas.end(), [&](double area) {
        return area > usual * 0.5 * (1.0 + ratio) && area < usual * 2.0 * ratio;
    }));
}

const char* polarityWord(std::int32_t polarity) {
    return polarity == 0 ? "dark" : "bright";
}

// The level that all but the brightest thousandth of the pixels stay within.
int brightLevel(const Picture& picture) {
    std::array<std::size_t, 256> counts{};
    for (const std::uint8_t level : picture.pixels) {
        counts[level] += 1;
    }
    std::size_t above = picture.pixels.size() / 1000;
    int level = 255;
    for (; level > 0 && counts[static_cast<std::size_t>(level)] <= above; --level) {
        above -= counts[static_cast<std::size_t>(level)];
    }
    return level;
}

}  // namespace

std::vector<Point2d> pointsOf(const Zelm2ViewCalib* handle, char side, std::int32_t view) {
    std::int32_t count = 0;
    zelm2ViewGetPtnNum(handle, side, view, &count);
    std::vector<Point2d> points(static_cast<std::size_t>(count));
    zelm2ViewGetPattern(handle, side, view, points.data());
    return points;
}

DotReading readDots(const Picture& picture, const Plate& plate, const std::optional<ZelmRect>& region) {
    // A pair whose right camera is a parallel one reads that camera in view 0 only, so view 1 reads one image.
    constexpr std::int32_t kView = 1;
    const Zelm2ViewCameraDesc cameras{0, picture.width, picture.height, 2, picture.width, picture.height};
    Zelm2ViewCalib* handle = nullptr;
    DotReading reading;
    reading.status = zelm2ViewCalibOpen(3, &plate.pattern, &cameras, &handle);
    const CalibPtr owner(handle);
    if (reading.status >= 0) {
        const unsigned char* const images[2] = {picture.pixels.data(), nullptr};
        reading.status = zelm2ViewReadPtnImg(handle, kView, images, region ? &*region : nullptr, nullptr);
    }
    if (reading.status >= 0) {
        reading.points = pointsOf(handle, 'L', kView);
    }
    return reading;
}

GridIndex markerIndex(const Plate& plate) {
    return {static_cast<int>(plate.pattern.d6 / plate.pattern.d4 + 0.5),
            static_cast<int>(plate.pattern.d7 / plate.pattern.d5 + 0.5)};
}

Dot dotAt(const Plate& plate, GridIndex index, Point2d pixel) {
    return {index, {index.x * plate.pattern.d4, index.y * plate.pattern.d5}, pixel};
}

std::vector<Dot> indexDots(const Plate& plate, const std::vector<Point2d>& points, const double* H) {
    std::vector<Dot> dots;
    double inverse[9];
    if (zelmMatInvert(3, H, inverse) < 0) {
        return dots;
    }
    for (const Point2d& p : points) {
        const double w = inverse[6] * p.x + inverse[7] * p.y + inverse[8];
        const double u = (inverse[0] * p.x + inverse[1] * p.y + inverse[2]) / w / plate.pattern.d4;
        const double v = (inverse[3] * p.x + inverse[4] * p.y + inverse[5]) / w / plate.pattern.d5;
        constexpr double kFarthest = 1e6;  // pitches; also keeps the conversion to int defined
        if (std::abs(u) < kFarthest && std::abs(v) < kFarthest && std::abs(u - std::round(u)) < kGridTolerance &&
            std::abs(v - std::round(v)) < kGridTolerance) {
            dots.push_back(dotAt(plate, {static_cast<int>(std::round(u)), static_cast<int>(std::round(v))}, p));
        }
    }
    return dots;
}

std::vector<Dot> indexDots(const Picture& picture, const Plate& plate, const std::vector<Point2d>& points) {
    const MarkerFrame frame = markerFrame(markerPoints(picture, plate, points));
    if (frame.error > std::numbers::pi / 2.0) {
        return {};
    }
    // From the markers out: the affine map holds among them, the homography of the dots there everywhere.
    const GridIndex reach = markerIndex(plate);
    std::vector<Dot> dots = indexDots(plate, points, affineOf(frame, plate).data());
    std::erase_if(dots,
                  [&](const Dot& dot) { return std::abs(dot.index.x) > reach.x || std::abs(dot.index.y) > reach.y; });
    double H[9];
    if (dots.size() < 4 || !gridHomography(dots, H)) {
        return {};
    }
    return indexDots(plate, points, H);
}

namespace {

// Why no dots are found in a picture whose levels are to blame; empty when they are not.
std::string contrastText(const Picture& picture, const Plate& plate) {
    constexpr int kDark = 32;  // a plate so dark has hardly the contrast that dots need
    if (const int level = brightLevel(picture); level < kDark) {
        return fmt::format(
            "the picture is nearly black, with levels up to {} of 255: is it of 10 or 12 bits in 16? Scale its levels "
            "up, or take it brighter",
            level);
    }
    Plate inverted = plate;
    inverted.pattern.polarity = 1 - plate.pattern.polarity;
    if (const DotReading reading = readDots(picture, inverted, std::nullopt); reading.status >= 0) {
        return fmt::format("{} {} dots found, but no {} ones: set \"polarity\" of the plate to \"{}\"",
                           reading.points.size(), polarityWord(inverted.pattern.polarity),
                           polarityWord(plate.pattern.polarity), polarityWord(inverted.pattern.polarity));
    }
    return {};
}

}  // namespace

std::string readingText(std::int32_t status, const Plate& plate, const Picture* picture) {
    const Zelm2ViewPatternDesc& p = plate.pattern;
    const char* const dots = polarityWord(p.polarity);
    if (picture != nullptr && (status == ZELM_ERR_PATTERN_PLATE || status == ZELM_ERR_PATTERN)) {
        if (const std::string text = contrastText(*picture, plate); !text.empty()) {
            return text;
        }
    }
    switch (status) {
        case ZELM_ERR_PATTERN_PLATE:
            return fmt::format("no plate found: does it fill a twentieth of the picture, with {} dots on a {} ground?",
                               dots, p.polarity == 0 ? "bright" : "dark");
        case ZELM_ERR_PATTERN:
            return fmt::format(
                "fewer than {} {} dots found: is the plate wholly in view, sharp, evenly lit and not "
                "tilted far, with dots at least 10 pixels wide? (--min-dots asks for fewer)",
                p.minDots, dots);
        case ZELM_ERR_PATTERN_MARKERS: {
            const int seen = picture != nullptr ? countMarkerSized(*picture, plate) : p.markers;
            if (seen < p.markers) {
                return fmt::format("only {} of {} marker dots found: is a marker hidden or out of the picture?", seen,
                                   p.markers);
            }
            return fmt::format(
                "the {} marker dots cannot be told apart from the others: is something of their size in "
                "the picture, or is the plate tilted too far?",
                p.markers);
        }
        case ZELM_ERR_PATTERN_GRID:
            return "the dots form no grid with the markers: do pitch and marker distances in the plate file fit the "
                   "plate?";
        case ZELM_ERR_MEMORY:
            return "out of memory: use smaller pictures";
        default:
            return fmt::format("the plate cannot be read (status {})", status);
    }
}

void checkRegion(const ZelmRect& region, const Picture& picture, const std::string& file) {
    const bool inside = region.x >= 0 && region.y >= 0 && region.width > 0 && region.height > 0 &&
                        region.width <= picture.width - region.x && region.height <= picture.height - region.y;
    if (!inside) {
        failUsage("{}: the region {},{},{},{} is not inside this {} x {} picture", file, region.x, region.y,
                  region.width, region.height, picture.width, picture.height);
    }
}

}  // namespace zelm::tool
