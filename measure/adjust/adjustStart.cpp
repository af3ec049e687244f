#include "adjustStart.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace zelm::measure {
namespace {

MotionParameters ofExtrinsics(const ZelmCameraExtrinsics& pose) {
    Matrix3 R{};
    std::copy_n(pose.R, 9, R.begin());
    return motionParameters(R, {pose.t[0], pose.t[1], pose.t[2]});
}

Matrix3 rotation(const MotionParameters& m) {
    return rotationOf({m[0], m[1], m[2]});
}

// From the plate's plane to the undistorted image: columns 1, 2 and 4 of the projection matrix.
Matrix3 planeHomography(const RigCamera& camera, const MotionParameters& pose) {
    ZelmCameraExtrinsics record{};
    const Matrix3 R = rotation(pose);
    std::copy(R.begin(), R.end(), record.R);
    std::copy(pose.begin() + 3, pose.end(), record.t);
    double P[12] = {};
    zelmCalibCameraMatrix(camera.intrinsics.A, &record, P, camera.model);
    return {P[0], P[1], P[3], P[4], P[5], P[7], P[8], P[9], P[11]};
}

std::vector<DotObservation> dotsOf(const RigCamera& camera, const Pattern& plate, const MotionParameters& pose,
                                   const std::vector<Point2d>& pixels, const DotPlaces& places) {
    const Matrix3 H = planeHomography(camera, pose);
    std::vector<DotObservation> dots;
    std::set<GridIndex> taken;
    for (const Point2d& pixel : pixels) {
        Point2d ideal{};
        if (zelmCalibUnDistortPoint(&camera.intrinsics, pixel.x, pixel.y, &ideal.x, &ideal.y) < 0) {
            continue;
        }
        for (const Dot& placed : indexDots(plate, {ideal}, H.data())) {
            if (taken.insert(placed.index).second) {
                DotObservation dot = plateDot(plate, placed.index, places);
                dot.pixel = pixel;
                dots.push_back(dot);
            }
        }
    }
    return dots;
}

// From the plate of a view to a camera, as the camera's own dots tell it: they find their places on the plate even
// where the other camera saw it elsewhere. A parallel camera has no pose of views that it was not calibrated from.
MotionParameters ownPose(const RigCamera& camera, const AdjustState& state, Side side, std::size_t view) {
    const ZelmCameraExtrinsics& pose = camera.poses[view];
    const bool isKnown = std::any_of(std::begin(pose.R), std::end(pose.R), [](double r) { return r != 0.0; });
    return isKnown ? ofExtrinsics(pose) : poseOf(state, side, view);
}

}  // namespace

MotionParameters motionParameters(const Matrix3& R, const Vector3& t) {
    Matrix3 copy = R;
    Vector3 r{};
    zelmCalibRodrigues(1, r.data(), copy.data());
    return {r[0], r[1], r[2], t[0], t[1], t[2]};
}

MotionParameters composed(const MotionParameters& second, const MotionParameters& first) {
    const Matrix3 R = rotation(second);
    Vector3 t = times(R, {first[3], first[4], first[5]});
    for (std::size_t i = 0; i < 3; ++i) {
        t[i] += second[3 + i];
    }
    return motionParameters(product(R, rotation(first)), t);
}

MotionParameters inverted(const MotionParameters& motion) {
    const Vector3 t = timesTransposed(rotation(motion), {motion[3], motion[4], motion[5]});
    return {-motion[0], -motion[1], -motion[2], -t[0], -t[1], -t[2]};
}

MotionParameters poseOf(const AdjustState& state, Side side, std::size_t view) {
    return side == state.base ? state.poses[view] : composed(state.relative, state.poses[view]);
}

DotObservation plateDot(const Pattern& plate, GridIndex index, const DotPlaces& places) {
    const GridIndex corner{0, 0};
    const GridIndex onX{static_cast<int>(std::lround(plate.d6 / plate.d4)), 0};
    const GridIndex onY{0, static_cast<int>(std::lround(plate.d7 / plate.d5))};
    DotObservation dot;
    dot.index = index;
    dot.kind = index == corner || index == onX || index == onY ? kMarkerDot : kPlainDot;
    dot.radius = 0.5 * (dot.kind == kMarkerDot ? plate.d3 : plate.d2);
    const auto known = places.find(index);
    dot.place = known != places.end() ? known->second : Vector3{index.x * plate.d4, index.y * plate.d5, 0.0};
    return dot;
}

AdjustState stateOf(const Rig& rig, const Pattern& plate) {
    rig.requireTriangulation();
    AdjustState state;
    state.cameras = {projectionOf(rig.left), projectionOf(rig.right)};
    state.base = rig.left.isParallel() ? kRight : kLeft;
    const RigCamera& base = state.base == kLeft ? rig.left : rig.right;
    const RigCamera& other = state.base == kLeft ? rig.right : rig.left;
    for (const ZelmCameraExtrinsics& pose : base.poses) {
        state.poses.push_back(ofExtrinsics(pose));
    }
    state.relative = composed(ofExtrinsics(other.pose()), inverted(state.poses.front()));
    state.bow.extent = 0.5 * std::hypot(plate.d0, plate.d1);
    return state;
}

std::vector<AdjustView> viewsOf(const Rig& rig, const Pattern& plate, const AdjustState& state,
                                const DotPlaces& places) {
    std::vector<AdjustView> views(state.poses.size());
    for (const Side side : {kLeft, kRight}) {
        const RigCamera& camera = side == kLeft ? rig.left : rig.right;
        for (std::size_t view = 0; view < views.size() && view < camera.dots.size(); ++view) {
            views[view].dots[side] =
                dotsOf(camera, plate, ownPose(camera, state, side, view), camera.dots[view], places);
        }
    }
    return views;
}

}  // namespace zelm::measure
