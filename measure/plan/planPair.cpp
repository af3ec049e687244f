#include "planPair.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "adjustStart.h"
#include "fault.h"

namespace zelm::measure {
namespace {

constexpr int kMaxSide = 1 << 20;           // pixels; as of calibrations
constexpr double kMaxRotationError = 1e-6;  // of R'R from the identity
constexpr double kMinAxes = 0.1;            // length of the sum of both axes: less is two cameras face to face

// The squared radius at which r (1 + k1 r^2 + k2 r^4) stops growing: the least positive root of
// 1 + 3 k1 s + 5 k2 s^2.
double foldOf(double k1, double k2) {
    constexpr double kNone = std::numeric_limits<double>::infinity();
    const double a = 5.0 * k2;
    const double b = 3.0 * k1;
    const double discriminant = b * b - 4.0 * a;
    if (discriminant < 0.0) {
        return kNone;
    }
    // 2 / (-b +- sqrt(D)): without the loss of digits where k2 is small.
    const double root = std::sqrt(discriminant);
    double least = kNone;
    for (const double denominator : {-b + root, -b - root}) {
        if (denominator > 0.0) {
            least = std::min(least, 2.0 / denominator);
        }
    }
    return least;
}

PlanCamera planCamera(const ZelmMeasureCamera& camera, const char* name) {
    const std::string which = std::string("the ") + name + " camera's ";
    const ZelmCameraIntrinsics& i = camera.intrinsics;
    if (camera.model == ZELM_CAMERA_PARALLEL) {
        refuse(which + "projection is parallel: plans are for perspective cameras");
    }
    const std::array numbers{i.A[0], i.A[1], i.A[2], i.A[4], i.A[5], i.k1, i.k2};
    if (!std::all_of(numbers.begin(), numbers.end(), [](double x) { return std::isfinite(x); })) {
        refuse(which + "parameters are not finite");
    }
    if (camera.width <= 0 || camera.height <= 0 || camera.width > kMaxSide || camera.height > kMaxSide) {
        refuse(which + "image size cannot be meant: give it in pixels");
    }
    if (!(i.A[0] > 0.0) || !(i.A[4] > 0.0)) {
        refuse(which + "focal lengths are not positive");
    }
    PlanCamera result;
    result.projection.p = {i.A[0], i.A[1], i.A[4], i.A[2], i.A[5], i.k1, i.k2};
    result.width = camera.width;
    result.height = camera.height;
    result.fold = foldOf(i.k1, i.k2);
    return result;
}

Vector3 sum(const Vector3& a, const Vector3& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

Motion frameOf(const PlanPair& pair) {
    const Matrix3& R = pair.relative.R;
    const Vector3 axes = sum({0.0, 0.0, 1.0}, {R[6], R[7], R[8]});
    if (!(dot(axes, axes) > kMinAxes * kMinAxes)) {
        refuse("the cameras look at each other: give how the right one stands to the left one");
    }
    const Vector3 z = unit(axes);
    Vector3 x = sum({1.0, 0.0, 0.0}, {R[0], R[1], R[2]});
    if (!(dot(x, x) > kMinAxes * kMinAxes)) {
        x = {1.0, 0.0, 0.0};  // one camera stands on its head
    }
    const double along = dot(x, z);
    x = unit({x[0] - along * z[0], x[1] - along * z[1], x[2] - along * z[2]});
    const Vector3 y = cross(z, x);
    const Vector3 centre = pair.rightCentre();
    return {{x[0], y[0], z[0], x[1], y[1], z[1], x[2], y[2], z[2]},
            {0.5 * centre[0], 0.5 * centre[1], 0.5 * centre[2]}};
}

}  // namespace

std::optional<Point2d> PlanCamera::pixelOf(const Vector3& point, double margin) const {
    if (!(point[2] > 0.0)) {
        return std::nullopt;
    }
    const double x = point[0] / point[2];
    const double y = point[1] / point[2];
    if (!(x * x + y * y < fold)) {
        return std::nullopt;
    }
    const Point2d pixel = measure::pixelOf(projection, point);
    const bool inside =
        pixel.x >= margin && pixel.y >= margin && pixel.x <= width - 1 - margin && pixel.y <= height - 1 - margin;
    return inside ? std::optional(pixel) : std::nullopt;
}

double PlanCamera::focalLength() const {
    return std::max(projection.p[kFx], projection.p[kFy]);
}

Vector3 PlanPair::inCamera(Side side, const Vector3& point) const {
    return side == kLeft ? point : sum(times(relative.R, point), relative.t);
}

std::optional<Point2d> PlanPair::seen(Side side, const Vector3& point, double margin) const {
    const Vector3 inside = inCamera(side, point);
    if (inside[2] < focus.nearest || (focus.farthest > 0.0 && inside[2] > focus.farthest)) {
        return std::nullopt;
    }
    return cameras[side].pixelOf(inside, margin);
}

bool PlanPair::bothSee(const Vector3& point) const {
    return seen(kLeft, point, 0.0).has_value() && seen(kRight, point, 0.0).has_value();
}

Vector3 PlanPair::fromFrame(const Vector3& point) const {
    return sum(times(frame.R, point), frame.t);
}

Vector3 PlanPair::toFrame(const Vector3& point) const {
    return timesTransposed(frame.R, {point[0] - frame.t[0], point[1] - frame.t[1], point[2] - frame.t[2]});
}

Vector3 PlanPair::rightCentre() const {
    const Vector3 c = timesTransposed(relative.R, relative.t);
    return {-c[0], -c[1], -c[2]};
}

bool isRotation(const Matrix3& R) {
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            const double product = R[i] * R[j] + R[3 + i] * R[3 + j] + R[6 + i] * R[6 + j];
            if (!(std::fabs(product - (i == j ? 1.0 : 0.0)) < kMaxRotationError)) {
                return false;
            }
        }
    }
    return dot(cross({R[0], R[1], R[2]}, {R[3], R[4], R[5]}), {R[6], R[7], R[8]}) > 0.0;
}

PlanPair planPair(const ZelmMeasureCamera& left, const ZelmMeasureCamera& right, const Motion& relative,
                  const FocusRange& focus) {
    PlanPair pair;
    pair.cameras = {planCamera(left, "left"), planCamera(right, "right")};
    if (!isRotation(relative.R)) {
        refuse("the rotation between the cameras is none: give R with R'R = 1");
    }
    const double baseline = std::sqrt(dot(relative.t, relative.t));
    if (!(baseline > 0.0) || !std::isfinite(baseline)) {
        refuse("the cameras stand at one place: give a baseline greater than 0");
    }
    pair.relative = relative;
    pair.relativeParameters = motionParameters(relative.R, relative.t);
    pair.focus = focus;
    pair.frame = frameOf(pair);
    return pair;
}

}  // namespace zelm::measure
