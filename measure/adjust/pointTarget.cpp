#include "pointTarget.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string>

#include "adjuster.h"
#include "fault.h"

namespace zelm::measure {
namespace {

constexpr std::int32_t kMaxSide = 32768;  // pixels of an image
constexpr std::int32_t kMaxViews = 100000;
constexpr double kMaxDepth = 0.05;        // of a flat target's extent
constexpr std::size_t kFewestPoints = 6;  // of an image that places a target

RigCamera cameraOf(const ZelmMeasurePointCamera& given) {
    RigCamera camera;
    if (given.width == 0) {
        return camera;
    }
    require(given.model == ZELM_CAMERA_PERSPECTIVE || given.model == ZELM_CAMERA_TILTED,
            "a camera's model is neither perspective nor tilted");
    require(given.width > 0 && given.width <= kMaxSide && given.height > 0 && given.height <= kMaxSide,
            "an image size cannot be meant");
    camera.model = given.model;
    camera.width = given.width;
    camera.height = given.height;
    return camera;
}

bool isFinite(const Vector3& place, Point2d pixel) {
    return std::isfinite(place[0]) && std::isfinite(place[1]) && std::isfinite(place[2]) && std::isfinite(pixel.x) &&
           std::isfinite(pixel.y);
}

DotObservation observation(const ZelmMeasureTargetPoints& points, std::size_t i, const std::optional<Pattern>& plate,
                           const DotPlaces& places) {
    const GridIndex index{points.grid[2 * i], points.grid[2 * i + 1]};
    DotObservation dot;
    if (plate) {
        dot = plateDot(*plate, index, places);
    } else {
        dot.index = index;
        dot.place = {points.places[3 * i], points.places[3 * i + 1], points.places[3 * i + 2]};
    }
    dot.pixel = {points.pixels[2 * i], points.pixels[2 * i + 1]};
    require(isFinite(dot.place, dot.pixel), "a point is not finite");
    return dot;
}

void requireFlat(const std::vector<AdjustView>& views) {
    Vector3 low{HUGE_VAL, HUGE_VAL, HUGE_VAL};
    Vector3 high{-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
    for (const AdjustView& view : views) {
        for (const auto& list : view.dots) {
            for (const DotObservation& dot : list) {
                for (std::size_t k = 0; k < 3; ++k) {
                    low[k] = std::min(low[k], dot.place[k]);
                    high[k] = std::max(high[k], dot.place[k]);
                }
            }
        }
    }
    if (high[2] - low[2] > kMaxDepth * std::hypot(high[0] - low[0], high[1] - low[1])) {
        refuse("the target is not flat: its points lie up to " + std::to_string(high[2] - low[2]) +
               " plate units apart in Z: give points of one plane, with X and Y in it");
    }
}

}  // namespace

PointTarget pointTargetOf(const ZelmMeasureTargetPoints& points, const std::optional<Pattern>& plate,
                          const DotPlaces& places) {
    PointTarget target;
    target.plate = plate;
    target.cameras = {cameraOf(points.left), cameraOf(points.right)};
    require(target.has(kLeft) || target.has(kRight), "there is no camera");
    require(points.views > 0 && points.views <= kMaxViews && points.count > 0, "no views, or no points");
    require(points.view != nullptr && points.side != nullptr && points.grid != nullptr && points.pixels != nullptr &&
                (points.places != nullptr || plate),
            "an array is NULL");
    target.views.resize(static_cast<std::size_t>(points.views));
    std::vector<std::array<std::set<GridIndex>, kSides>> seen(target.views.size());
    for (std::size_t i = 0; i < static_cast<std::size_t>(points.count); ++i) {
        require(points.view[i] >= 0 && points.view[i] < points.views, "a point's view is not there");
        const Side side = sideOf(points.side[i]) == 'L' ? kLeft : kRight;
        require(target.has(side), "a point's camera is not there");
        const auto view = static_cast<std::size_t>(points.view[i]);
        const DotObservation dot = observation(points, i, plate, places);
        require(seen[view][side].insert(dot.index).second, "a point stands twice in an image");
        target.views[view].dots[side].push_back(dot);
    }
    requireFlat(target.views);
    return target;
}

PointViewStatus statusOf(const AdjustView& view) {
    PointViewStatus status = PointViewStatus::few;
    for (const Side side : {kLeft, kRight}) {
        if (view.dots[side].size() < kFewestPoints) {
            continue;
        }
        AdjustView one;
        one.dots[side] = view.dots[side];
        if (placesPlate(one)) {
            return PointViewStatus::ok;
        }
        status = PointViewStatus::line;
    }
    return status;
}

}  // namespace zelm::measure
