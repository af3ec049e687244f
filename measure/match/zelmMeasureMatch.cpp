// The exported functions of correspondences.
#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "image.h"
#include "matchRun.h"
#include "noise.h"
#include "records.h"
#include "triangulator.h"

using namespace zelm::measure;

namespace {

constexpr int kDefaultWindow = 21;     // pixels
constexpr int kMinWindow = 5;          // pixels
constexpr double kDefaultReach = 2.0;  // windows

ZelmMeasureMatchOptions defaultOptions(const DepthLimits& limits) {
    const MatchSettings settings;
    ZelmMeasureMatchOptions o{};
    o.window = kDefaultWindow;
    o.minScore = settings.minScore;
    o.returnTolerance = settings.returnTolerance;
    o.precision = settings.worstPrecision;
    o.reach = kDefaultReach * kDefaultWindow;
    o.limits = {limits.leftNearest, limits.leftFarthest, limits.rightNearest, limits.rightFarthest};
    return o;
}

DepthLimits limitsOf(const ZelmMeasureMatchOptions& o) {
    return {o.limits.leftMin, o.limits.leftMax, o.limits.rightMin, o.limits.rightMax};
}

void checkOptions(const ZelmMeasureMatchOptions& o, const Rig& rig) {
    const int side = std::min({rig.left.width, rig.left.height, rig.right.width, rig.right.height});
    require(o.window >= kMinWindow && o.window % 2 == 1 && o.window + 2 < side,
            "the window must be odd, of 5 pixels or more, and smaller than the images");
    require(o.minScore >= 0.0 && o.minScore <= 1.0, "minScore must be from 0 to 1");
    require(o.returnTolerance > 0.0 && o.precision > 0.0, "returnTolerance and precision must be greater than 0");
    require(o.noise >= 0.0 && std::isfinite(o.noise), "the noise must not be negative");
    require(o.reach > 0.0 && std::isfinite(o.reach), "the reach must be greater than 0");
    require(o.threads >= 0, "the number of threads must not be negative");
    require(o.limits.leftMin < o.limits.leftMax && o.limits.rightMin < o.limits.rightMax, "a range of depths is empty");
    require(rig.left.isParallel() || o.limits.leftMin >= 0.0, "depths of a perspective camera are not negative");
    require(rig.right.isParallel() || o.limits.rightMin >= 0.0, "depths of a perspective camera are not negative");
}

void checkSize(const ZelmMeasureImage* image, const RigCamera& camera, const char* side) {
    checkImage(image);
    if (image->width != camera.width || image->height != camera.height) {
        throw Fault(ZELM_ERR_PARAM, std::string("the ") + side + " image is not of the size that was calibrated");
    }
}

MatchSettings settingsOf(const ZelmMeasureMatchOptions& o, const ZelmMeasureImage& left,
                         const ZelmMeasureImage& right) {
    MatchSettings settings;
    settings.half = o.window / 2;
    settings.minScore = o.minScore;
    settings.returnTolerance = o.returnTolerance;
    settings.worstPrecision = o.precision;
    settings.noise = o.noise > 0.0 ? o.noise : 0.5 * (noiseOf(left) + noiseOf(right));
    settings.limits = limitsOf(o);
    return settings;
}

ProgressReport reportTo(const ZelmMeasureMatchOptions& o) {
    if (o.progress == nullptr) {
        return [](const char*, std::size_t, std::size_t) {};
    }
    return [progress = o.progress, context = o.context](const char* stage, std::size_t done, std::size_t total) {
        if (progress(context, stage, static_cast<std::int64_t>(done), static_cast<std::int64_t>(total)) != 0) {
            throw Fault(ZELM_MEASURE_ERR_CANCELLED, "ended by the caller");
        }
    };
}

// A match with its point of space.
struct SpaceMatch {
    MatchStatus status = MatchStatus::outside;
    const PointMatch* match = nullptr;
    SpacePoint space;
    double depth = 0.0;      // along the left camera's axis
    double deviation = 0.0;  // expected, of the depth
};

SpaceMatch spaceMatch(const PointMatch& match, const Triangulator& triangulate, const Transfer& toRight,
                      const Rig& rig) {
    SpaceMatch s{match.status, &match, {}, 0.0, 0.0};
    if (match.status != MatchStatus::ok) {
        return s;
    }
    s.space = triangulate(match.left, match.right);
    if (s.space.status != PointStatus::ok) {
        s.status = MatchStatus::inconsistent;
        return s;
    }
    s.depth = rig.left.depthOf(s.space.position);
    const FittedSurface& f = match.fitted;
    s.deviation = f.deviation / f.pixelsPerRho * toRight.depthSlope(f.surface.rho);
    return s;
}

void give(const SpaceMatch& s, std::size_t i, const ZelmMeasureMatches& out) {
    const auto put = [i](double* array, auto... values) {
        if (array != nullptr) {
            double* to = array + sizeof...(values) * i;
            ((*to++ = values), ...);
        }
    };
    if (out.statuses != nullptr) {
        out.statuses[i] = static_cast<std::int32_t>(s.status);
    }
    if (s.status == MatchStatus::ok) {
        const Point3d& X = s.space.position;
        put(out.pixels, s.match->right.x, s.match->right.y);
        put(out.scores, s.match->fitted.score);
        put(out.positions, X.x, X.y, X.z);
        put(out.depths, s.depth);
        put(out.deviations, s.deviation);
        put(out.errors, s.space.errorLeft, s.space.errorRight);
    }
}

// What both ways of matching share; find(input) gives the matches.
template <class Find>
std::int32_t matchAll(ZelmMeasureRig* handle, const ZelmMeasureImage* left, const ZelmMeasureImage* right,
                      const ZelmMeasureMatchOptions* options, const ZelmMeasureMatches* matches, Find find) {
    return withRig(handle, [&](const Rig& rig) {
        const ZelmMeasureMatchOptions o = recordOf(options);
        const ZelmMeasureMatches out = recordOf(matches);
        checkOptions(o, rig);
        checkSize(left, rig.left, "left");
        checkSize(right, rig.right, "right");
        const Triangulator triangulate(rig);
        const DenseImage leftImage(*left);
        const DenseImage rightImage(*right);
        const MatchInput input{rig,       leftImage, rightImage, settingsOf(o, *left, *right),
                               o.threads, o.reach,   reportTo(o)};
        const std::vector<PointMatch> found = find(input);
        const Transfer toRight(rig, 'L', input.settings.limits);
        std::vector<SpaceMatch> results(found.size());
        std::transform(found.begin(), found.end(), results.begin(),
                       [&](const PointMatch& match) { return spaceMatch(match, triangulate, toRight, rig); });
        for (std::size_t i = 0; i < results.size(); ++i) {
            give(results[i], i, out);
        }
    });
}

std::vector<Point2d> pointsOf(std::int64_t count, const double* pixels) {
    require(count >= 0, "the number of pixels is negative");
    if (count == 0) {
        return {};
    }
    require(pixels != nullptr, "the pixels are NULL");
    std::vector<Point2d> points(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < points.size(); ++i) {
        points[i] = {pixels[2 * i], pixels[2 * i + 1]};
    }
    return points;
}

}  // namespace

std::int32_t zelmMeasureMatchDefaults(const ZelmMeasureRig* rig, ZelmMeasureMatchOptions* options) {
    if (rig != nullptr && !rig->isOpen) {
        return ZELM_ERR_PARAM;
    }
    return guarded(nullptr, [&] {
        giveRecord(defaultOptions(rig == nullptr ? DepthLimits{} : calibratedLimits(rig->rig)), options);
    });
}

std::int32_t zelmMeasureNoise(const ZelmMeasureImage* image, double* noise) {
    return guarded(nullptr, [&] {
        checkImage(image);
        require(noise != nullptr, "the noise's place is NULL");
        *noise = noiseOf(*image);
    });
}

std::int32_t zelmMeasureOverlap(ZelmMeasureRig* handle, const ZelmMeasureMatchOptions* options, std::int64_t count,
                                const double* pixels, std::int32_t* any) {
    return withRig(handle, [&](const Rig& rig) {
        const ZelmMeasureMatchOptions o = recordOf(options);
        checkOptions(o, rig);
        require(any != nullptr, "the answer's place is NULL");
        const std::vector<Point2d> points = pointsOf(count, pixels);
        const Transfer toRight(rig, 'L', limitsOf(o));
        *any = std::any_of(points.begin(), points.end(), [&](const Point2d& raw) {
            Point2d ideal{};
            return zelm2ViewUnDistortPoint(rig.calib.get(), 'L', &raw, &ideal) >= 0 &&
                   !toRight.searchInterval(ideal).isEmpty();
        });
    });
}

std::int32_t zelmMeasureMatch(ZelmMeasureRig* rig, const ZelmMeasureImage* left, const ZelmMeasureImage* right,
                              const ZelmMeasureMatchOptions* options, std::int64_t count, const double* pixels,
                              const ZelmMeasureMatches* matches) {
    return matchAll(rig, left, right, options, matches,
                    [&](const MatchInput& input) { return matchPoints(input, pointsOf(count, pixels)); });
}

std::int32_t zelmMeasureMatchDense(ZelmMeasureRig* rig, const ZelmMeasureImage* left, const ZelmMeasureImage* right,
                                   const ZelmMeasureMatchOptions* options, const ZelmMeasureMatches* matches) {
    return matchAll(rig, left, right, options, matches, [](const MatchInput& input) { return matchPixels(input); });
}
