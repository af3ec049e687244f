// The exported functions of calibrations from points.
#include <zelmMeasure.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

#include "adjustOptions.h"
#include "adjustmentHandle.h"
#include "pointTarget.h"
#include "records.h"

using namespace zelm::measure;

namespace {

Side sideFrom(const Adjustment& adjustment, std::int32_t side) {
    const Side camera = sideOf(side) == 'L' ? kLeft : kRight;
    require(adjustment.isPair() || camera == adjustment.state().base, "the adjustment has no such camera");
    return camera;
}

std::size_t viewFrom(const Adjustment& adjustment, std::int32_t view) {
    require(view >= 0 && static_cast<std::size_t>(view) < adjustment.views().size(), "the adjustment has no such view");
    return static_cast<std::size_t>(view);
}

AdjustOptions pointOptions(const ZelmMeasureAdjustOptions* given, bool isPlate) {
    const AdjustOptions options = given == nullptr ? AdjustOptions{} : optionsOf(recordOf(given));
    require(isPlate || !options.estimateFactors, "points have no diameters");
    return options;
}

DotPlaces pointPlaces(const ZelmMeasureAdjustOptions* given, bool isPlate) {
    DotPlaces places = given == nullptr ? DotPlaces{} : placesOf(recordOf(given));
    require(isPlate || places.empty(), "places of dots are those of a plate");
    return places;
}

void requireUsable(const PointTarget& target) {
    for (std::size_t view = 0; view < target.views.size(); ++view) {
        if (statusOf(target.views[view]) != PointViewStatus::ok) {
            refuse("view " + std::to_string(view) +
                   " has too few points, or all on one line, to tell where its target stands: leave it out");
        }
    }
}

Point2d undistorted(const ZelmCameraIntrinsics& camera, Point2d pixel) {
    Point2d ideal{};
    if (zelmCalibUnDistortPoint(&camera, pixel.x, pixel.y, &ideal.x, &ideal.y) < 0) {
        constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
        return {kNone, kNone};
    }
    return ideal;
}

double distanceToLine(Point2d p, const Vector3& line) {
    return std::fabs(line[0] * p.x + line[1] * p.y + line[2]) / std::hypot(line[0], line[1]);
}

std::vector<double> epipolarDistances(const Adjustment& adjustment, std::size_t view) {
    const Matrix3 F = adjustment.adjustedFundamental();
    const std::array<ZelmCameraIntrinsics, kSides> lenses{adjustment.adjustedCamera(kLeft, 0).intrinsics,
                                                          adjustment.adjustedCamera(kRight, 0).intrinsics};
    std::map<GridIndex, Point2d> right;
    for (const DotObservation& dot : adjustment.views()[view].dots[kRight]) {
        if (dot.fate == DotFate::used) {
            right[dot.index] = undistorted(lenses[kRight], adjustment.centreOf(kRight, view, dot));
        }
    }
    std::vector<double> distances;
    for (const DotObservation& dot : adjustment.views()[view].dots[kLeft]) {
        const auto other = right.find(dot.index);
        if (dot.fate == DotFate::used && other != right.end()) {
            const Point2d l = undistorted(lenses[kLeft], adjustment.centreOf(kLeft, view, dot));
            const Point2d r = other->second;
            distances.push_back(distanceToLine(l, times(F, {r.x, r.y, 1.0})));
            distances.push_back(distanceToLine(r, timesTransposed(F, {l.x, l.y, 1.0})));
        }
    }
    return distances;
}

ZelmMeasureAdjustedCamera cameraRecord(const Adjustment& adjustment, Side side) {
    const RigCamera camera = adjustment.adjustedCamera(side, 0);
    ZelmMeasureAdjustedCamera r{};
    r.model = camera.model;
    r.width = camera.width;
    r.height = camera.height;
    r.intrinsics = camera.intrinsics;
    r.start = adjustment.startCamera(side).intrinsics;
    const AdjustCovariance& covariance = adjustment.covariance();
    const std::size_t at = side == adjustment.state().base ? kSharedBase : kSharedOther;
    for (std::size_t i = 0; i < kCameraParameters; ++i) {
        for (std::size_t j = 0; j < kCameraParameters; ++j) {
            r.covariance[i * kCameraParameters + j] = covariance.shared[(at + i) * kSharedParameters + at + j];
        }
    }
    r.noise = covariance.rig.noise;
    r.freedom = covariance.rig.freedom;
    return r;
}

void requireEmpty(ZelmMeasureRig* const* rig) {
    require(rig != nullptr && *rig == nullptr, "the rig's place is NULL, or holds one");
}

}  // namespace

std::int32_t zelmMeasurePointViews(const ZelmMeasureTargetPoints* points, std::int32_t* statuses) {
    return guarded(nullptr, [&] {
        require(statuses != nullptr, "the statuses' place is NULL");
        ZelmMeasureTargetPoints given = recordOf(points);
        // What a plate's dots are called tells as well how they are spread.
        std::vector<double> places;
        if (given.places == nullptr && given.grid != nullptr && given.count > 0) {
            places.reserve(3 * static_cast<std::size_t>(given.count));
            for (std::size_t i = 0; i < static_cast<std::size_t>(given.count); ++i) {
                places.insert(places.end(), {static_cast<double>(given.grid[2 * i]),
                                             static_cast<double>(given.grid[2 * i + 1]), 0.0});
            }
            given.places = places.data();
        }
        const PointTarget target = pointTargetOf(given, std::nullopt, {});
        for (std::size_t view = 0; view < target.views.size(); ++view) {
            statuses[view] = static_cast<std::int32_t>(statusOf(target.views[view]));
        }
    });
}

std::int32_t zelmMeasureAdjustOpenPoints(const ZelmMeasureTargetPoints* points, const Zelm2ViewPatternDesc* pattern,
                                         const ZelmMeasureAdjustOptions* options, ZelmMeasureAdjustment** adjustment) {
    if (points == nullptr || adjustment == nullptr || *adjustment != nullptr) {
        return ZELM_ERR_PARAM;
    }
    return openAdjustment(adjustment, [&] {
        std::optional<Pattern> plate;
        if (pattern != nullptr) {
            checkPlate(*pattern);
            plate = *pattern;
        }
        const AdjustOptions chosen = pointOptions(options, plate.has_value());
        DotPlaces places = pointPlaces(options, plate.has_value());
        PointTarget target = pointTargetOf(recordOf(points), plate, places);
        requireUsable(target);
        return std::make_unique<Adjustment>(std::move(target), chosen, std::move(places));
    });
}

std::int32_t zelmMeasureAdjustStartRig(ZelmMeasureAdjustment* handle, ZelmMeasureRig** rig) {
    return withAdjustment(handle, [&](const Adjustment& adjustment) {
        requireEmpty(rig);
        auto made = std::make_unique<ZelmMeasureRig>();
        made->rig = adjustment.startRig();
        made->isOpen = true;
        *rig = made.release();
    });
}

std::int32_t zelmMeasureAdjustCamera(ZelmMeasureAdjustment* handle, std::int32_t side,
                                     ZelmMeasureAdjustedCamera* camera) {
    return withAdjustment(handle, [&](const Adjustment& adjustment) {
        recordOf(camera);
        const Side own = sideFrom(adjustment, side);
        adjustment.requireCurrent();
        giveRecord(cameraRecord(adjustment, own), camera);
    });
}

std::int32_t zelmMeasureAdjustPose(ZelmMeasureAdjustment* handle, std::int32_t side, std::int32_t view,
                                   ZelmCameraExtrinsics* pose) {
    return withAdjustment(handle, [&](const Adjustment& adjustment) {
        require(pose != nullptr, "the pose's place is NULL");
        const Side own = sideFrom(adjustment, side);
        const std::size_t index = viewFrom(adjustment, view);
        adjustment.requireCurrent();
        *pose = adjustment.adjustedPose(own, index);
    });
}

std::int32_t zelmMeasureAdjustEpipolar(ZelmMeasureAdjustment* handle, std::int32_t view, std::int64_t capacity,
                                       double* distances, std::int64_t* count) {
    return withAdjustment(handle, [&](const Adjustment& adjustment) {
        require(count != nullptr, "the number's place is NULL");
        require(capacity >= 0, "the capacity is negative");
        const std::size_t index = viewFrom(adjustment, view);
        adjustment.requireCurrent();
        const std::vector<double> found = epipolarDistances(adjustment, index);
        const std::size_t room = std::min(found.size(), static_cast<std::size_t>(capacity));
        if (distances != nullptr) {
            std::copy_n(found.begin(), room, distances);
        }
        *count = static_cast<std::int64_t>(found.size());
    });
}
