#include "plateDots.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

#include "coreStatus.h"
#include "rig.h"

namespace zelm::measure {
namespace {

constexpr double kGridTolerance = 0.15;  // of a pitch: the tolerance of the core's reader
constexpr std::size_t kNeighbours = 8;   // dots that a dot's size is compared with

double squaredDistance(Point2d a, Point2d b) {
    return (a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y);
}

// The box of the points, widened so that the blobs around them lie inside, within the picture.
ZelmRect regionAround(const DenseImage& image, const std::vector<Point2d>& points) {
    const auto [left, right] =
        std::minmax_element(points.begin(), points.end(), [](Point2d a, Point2d b) { return a.x < b.x; });
    const auto [top, bottom] =
        std::minmax_element(points.begin(), points.end(), [](Point2d a, Point2d b) { return a.y < b.y; });
    const double margin =
        0.5 * std::sqrt((right->x - left->x) * (bottom->y - top->y) / static_cast<double>(points.size()));
    const auto pixel = [](double value, int last) {
        return static_cast<std::int32_t>(std::clamp(value, 0.0, double(last)));
    };
    const std::int32_t x = pixel(left->x - margin, image.width() - 1);
    const std::int32_t y = pixel(top->y - margin, image.height() - 1);
    return {x, y, pixel(right->x + margin, image.width() - 1) - x + 1,
            pixel(bottom->y + margin, image.height() - 1) - y + 1};
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
std::vector<Point2d> markerPoints(const DenseImage& image, const Pattern& plate, const std::vector<Point2d>& points) {
    const std::vector<double> areas = areasAt(points, blobsOf(image, plate, regionAround(image, points)));
    std::vector<std::pair<double, std::size_t>> sizes;
    for (std::size_t i = 0; i < points.size(); ++i) {
        sizes.emplace_back(-relativeSize(i, points, areas), i);
    }
    std::sort(sizes.begin(), sizes.end());
    std::vector<Point2d> markers;
    for (std::size_t i = 0; i < std::min(sizes.size(), static_cast<std::size_t>(plate.markers)); ++i) {
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
    const std::int32_t status = statusOfCore(ZELM_ERR_CALIB_NOT_CONVERGED, [&] {
        return zelmCalibCalcHomography(static_cast<std::int32_t>(dots.size()), plane.data(), pixels.data(), -1.0, H);
    });
    return status >= 0;
}

// The affine map from the plane to the image that the markers give, as a homography.
std::array<double, 9> affineOf(const MarkerFrame& frame, const Pattern& plate) {
    const double d6 = plate.d6;
    const double d7 = plate.d7;
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

GridIndex markerIndex(const Pattern& plate) {
    return {static_cast<int>(plate.d6 / plate.d4 + 0.5), static_cast<int>(plate.d7 / plate.d5 + 0.5)};
}

Dot dotAt(const Pattern& plate, GridIndex index, Point2d pixel) {
    return {index, {index.x * plate.d4, index.y * plate.d5}, pixel};
}

std::vector<Point2d> pointsOf(const Zelm2ViewCalib* calib, char side, std::int32_t view) {
    std::int32_t count = 0;
    zelm2ViewGetPtnNum(calib, side, view, &count);
    std::vector<Point2d> points(static_cast<std::size_t>(count));
    zelm2ViewGetPattern(calib, side, view, points.data());
    return points;
}

}  // namespace

DotReading readDots(const DenseImage& image, const Pattern& plate, const ZelmRect* region) {
    // A pair whose right camera is a parallel one reads that camera in view 0 only, so view 1 reads one image.
    constexpr std::int32_t kView = 1;
    const Zelm2ViewCameraDesc cameras{0, image.width(), image.height(), 2, image.width(), image.height()};
    Zelm2ViewCalib* calib = nullptr;
    DotReading reading;
    reading.status = zelm2ViewCalibOpen(3, &plate, &cameras, &calib);
    const CalibPtr owner(calib);
    if (reading.status >= 0) {
        const unsigned char* const images[2] = {image.pixels(), nullptr};
        reading.status = zelm2ViewReadPtnImg(calib, kView, images, region, nullptr);
    }
    requireMemory(reading.status);
    if (reading.status >= 0) {
        reading.points = pointsOf(calib, 'L', kView);
    }
    return reading;
}

std::vector<Dot> indexDots(const Pattern& plate, const std::vector<Point2d>& points, const double* H) {
    std::vector<Dot> dots;
    double inverse[9];
    const std::int32_t status = zelmMatInvert(3, H, inverse);
    requireMemory(status);
    if (status < 0) {
        return dots;
    }
    for (const Point2d& p : points) {
        const double w = inverse[6] * p.x + inverse[7] * p.y + inverse[8];
        const double u = (inverse[0] * p.x + inverse[1] * p.y + inverse[2]) / w / plate.d4;
        const double v = (inverse[3] * p.x + inverse[4] * p.y + inverse[5]) / w / plate.d5;
        constexpr double kFarthest = 1e6;  // pitches; also keeps the conversion to int defined
        if (std::abs(u) < kFarthest && std::abs(v) < kFarthest && std::abs(u - std::round(u)) < kGridTolerance &&
            std::abs(v - std::round(v)) < kGridTolerance) {
            dots.push_back(dotAt(plate, {static_cast<int>(std::round(u)), static_cast<int>(std::round(v))}, p));
        }
    }
    return dots;
}

std::vector<Dot> indexDots(const DenseImage& image, const Pattern& plate, const std::vector<Point2d>& points) {
    const MarkerFrame frame = markerFrame(markerPoints(image, plate, points));
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

}  // namespace zelm::measure
