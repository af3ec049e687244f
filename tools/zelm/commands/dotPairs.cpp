#include "dotPairs.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "cameraPicture.h"
#include "targets.h"

namespace zelm::tool {
namespace {

Point2d imageOf(const Point3d& point, const RigCamera& camera) {
    Point2d pixel{};
    zelmCalibChange3Dto2D(&point, &camera.intrinsics, &camera.poses.front(), &pixel, camera.model);
    return pixel;
}

// What moves both pixels onto rays that meet is one error of noise: more than six deviations is none in a million.
constexpr double kMaxDeviations = 6.0;
constexpr double kRounding = 0.2887;   // pixels: standard deviation of a coordinate that is rounded to whole ones
constexpr double kMaxOfTargets = 0.5;  // pixels: shadows and dirt move outlines by tenths
constexpr double kMinShare = 0.65;     // of an outline
double missOf(const SpacePoint& point) {
    return std::hypot(point.errorLeft, point.errorRight);
}

}  // namespace

double maxErrorOf(const DotOptions& o, const std::optional<double>& noise) {
    const double least = o.areGiven() ? kMaxOfTargets : kMaxDeviations * kRounding;
    return o.maxError.value_or(std::max(least, kMaxDeviations * noise.value_or(0.0)));
}

void addDotOptions(Subcommand& sub, DotOptions& options) {
    sub.option("--dots", options.images, "LEFT and RIGHT image: measure the round targets in whose dots the pixels lie")
        .takes(2);
    sub.option("--polarity", options.polarity, "Polarity of the dots of --dots")
        .oneOf({"dark", "bright"})
        .showDefault();
    sub.option("--max-error", options.maxError,
               "Pixels that the rays of a pair may miss each other by; more is a mismatch. Default: six standard "
               "deviations of the noise or of rounding to whole pixels (1.73), 0.5 with --dots")
        .inRange(1e-6, 1e6);
}

std::vector<SpacePoint> pointsOf(std::vector<PixelPair>& pairs, const DotOptions& o, const std::optional<double>& noise,
                                 const LoadedRig& rig, const std::string& file) {
    const PointLimits limits{maxErrorOf(o, noise), kMinShare, true};
    if (!o.areGiven()) {
        return triangulate(rig, file, pairs, limits);
    }
    const Picture left = readGrayCameraPicture(o.images[0], rig, 'L');
    const Picture right = readGrayCameraPicture(o.images[1], rig, 'R');
    std::vector<SpacePoint> points = measureTargets(rig, file, left, right, pairs, o.polarity == "bright", limits);
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        if (points[i].status == PointStatus::ok) {
            pairs[i].left = imageOf(points[i].position, rig.rig.left);
            pairs[i].right = imageOf(points[i].position, rig.rig.right);
        }
    }
    return points;
}

std::string noiseText(const DotOptions& o, const std::optional<double>& noise, const LoadedRig& rig) {
    return !o.areGiven() || noise ? fmt::format("{:.4f} px", noise.value_or(rig.rig.covariance->noise))
                                  : "the outlines of the targets";
}

std::string mismatchText(const std::vector<SpacePoint>& points, double maxError, const std::string& rigFile) {
    std::vector<double> misses;
    std::size_t known = 0;
    for (const SpacePoint& point : points) {
        known += point.status == PointStatus::ok ? 1U : 0U;
        if (point.status == PointStatus::mismatch) {
            misses.push_back(missOf(point));
        }
    }
    if (misses.size() <= known) {
        return {};
    }
    const auto middle = misses.begin() + static_cast<std::ptrdiff_t>(misses.size() / 2);
    std::nth_element(misses.begin(), middle, misses.end());
    return fmt::format(
        "the rays of {} of {} pixel pairs miss each other by more than {:.3g} px, by {:.3g} px in the median: either "
        "the pairs are wrong (columns or rows exchanged, pixels of undistorted images, of other images than those "
        "of these cameras), or {} is not the calibration of these cameras, or no good one: zelm rectify --pairs shows "
        "it, zelm verify tells whether the cameras have moved",
        misses.size(), misses.size() + known, maxError, *middle, rigFile);
}

void warnOfMisses(const std::string& file, const std::vector<PixelPair>& pairs, const std::vector<SpacePoint>& points,
                  const PixelQuality& quality, const Console& console) {
    constexpr double kMaxOfUnknown = 5.0;  // pixels: of pixels that were pointed at by hand
    double limit = quality.noise ? kMaxDeviations * *quality.noise : kMaxOfUnknown;
    limit = quality.areTargets ? std::max(limit, kMaxOfTargets) : limit;
    std::size_t count = 0;
    std::size_t known = 0;
    std::size_t worst = 0;
    double largest = 0.0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (points[i].status == PointStatus::ok) {
            const double miss = missOf(points[i]);
            known += 1;
            count += miss > limit ? 1U : 0U;
            worst = miss > largest ? i : worst;
            largest = std::max(largest, miss);
        }
    }
    if (count == 0) {
        return;
    }
    const std::string stated = !quality.noise
                                   ? std::string("more than a pixel read by hand is wrong by")
                                   : fmt::format(
                                         "more than noise of {:.2g} px explains, so that they are less well known than "
                                         "stated",
                                         *quality.noise);
    console.warn(fmt::format(
        "{}: the rays of {} of {} pixel pairs pass each other, by {:.3g} px at most (id {}): {}: correct the pairs "
        "(are "
        "columns or rows exchanged?), use the calibration of these cameras, or say with --noise how exact pixels are",
        file, count, known, largest, pairs[worst].id, stated));
}

}  // namespace zelm::tool
