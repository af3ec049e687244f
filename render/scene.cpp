#include "scene.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>
#include <string>

#include "randomSource.h"

namespace zelm::render {
namespace {

constexpr int kPointsPerSide = 24;     // of the plate's edge, looked at when asking whether the plate is in view
constexpr int kPlacesPerView = 8;      // in the image, tried for each orientation
constexpr int kAttemptsPerView = 100;  // orientations drawn before giving up
constexpr int kBisections = 40;        // of the interval that holds the distance at which the plate just fits
constexpr double kRadiansPerDegree = std::numbers::pi / 180.0;
constexpr double kMaxDistanceRatio = 64.0;  // distance up to which the plate is moved away, in multiples of the nearest

void requireFinite(double value, const char* name) {
    if (!std::isfinite(value)) {
        throw std::invalid_argument(std::string("the ") + name + " must be a finite number");
    }
}

std::vector<PlanePoint> outlinePoints(const Plate& plate) {
    const PlateBounds b = plateBounds(plate);
    std::vector<PlanePoint> points;
    for (int i = 0; i < kPointsPerSide; ++i) {
        const double s = static_cast<double>(i) / kPointsPerSide;
        const double x = b.left + s * (b.right - b.left);
        const double y = b.top + s * (b.bottom - b.top);
        points.push_back({x, b.top});
        points.push_back({b.right, y});
        points.push_back({b.right + b.left - x, b.bottom});
        points.push_back({b.left, b.bottom + b.top - y});
    }
    return points;
}

bool isInside(const Camera& camera, Pixel p, double border) {
    return p.x >= border && p.y >= border && p.x <= camera.width - 1 - border && p.y <= camera.height - 1 - border;
}

// The signed area of a small plane square in the image is positive on the printed side.
bool showsPrintedSide(const ProjectedPoint& p) {
    return p.dxdX * p.dydY - p.dxdY * p.dydX > 0.0;
}

Pose withScale(const Camera& camera, Aim aim, double scale) {
    aim.scale = scale;
    return aimedPose(camera, aim);
}

struct Viewer {
    const Plate& plate;
    const StereoRig& rig;
    double border;

    bool sees(const Pose& left) const {
        return seesWholePlate(plate, rig.left, left, border) &&
               seesWholePlate(plate, rig.right, compose(rig.rightFromLeft, left), border);
    }
};

// The largest scale at which both cameras see the whole plate, or 0. The plate is first moved away until it is seen.
double fittingScale(const Viewer& viewer, const Aim& aim, double largest) {
    const Camera& camera = viewer.rig.left;
    double fits = largest;
    while (!viewer.sees(withScale(camera, aim, fits))) {
        fits *= 0.95;
        if (fits * kMaxDistanceRatio < largest) {
            return 0.0;
        }
    }
    double fails = fits / 0.95;
    for (int i = 0; i < kBisections; ++i) {
        const double middle = 0.5 * (fits + fails);
        (viewer.sees(withScale(camera, aim, middle)) ? fits : fails) = middle;
    }
    return fits;
}

double tiltOf(const std::array<double, 9>& R) {
    return std::acos(std::clamp(R[8], -1.0, 1.0)) / kRadiansPerDegree;
}

// Whether the right camera, too, sees the plate at no more than the largest tilt, or than the angle between the cameras
// where that is larger: a plate that faces the left camera must not be refused.
bool isTiltAllowed(const StereoRig& rig, const Pose& left, const ViewRange& range) {
    const double convergence = tiltOf(rig.rightFromLeft.R);
    return tiltOf(compose(rig.rightFromLeft, left).R) <= std::max(range.maxTiltDegrees, convergence);
}

Aim drawOrientation(const Plate& plate, const ViewRange& range, RandomSource& random) {
    const PlateBounds b = plateBounds(plate);
    Aim aim;
    aim.point = {0.5 * (b.left + b.right), 0.5 * (b.top + b.bottom)};
    aim.rollDegrees = random.uniform(-range.maxRollDegrees, range.maxRollDegrees);
    aim.tiltDegrees = range.maxTiltDegrees * random.uniform();
    aim.tiltAxisDegrees = random.uniform(0.0, 360.0);
    return aim;
}

// Scale at which the plate's shorter side is as long as the image's longer one: more can never fit.
double largestScale(const Plate& plate, const Camera& camera) {
    const PlateBounds b = plateBounds(plate);
    return std::max(camera.width, camera.height) / std::min(b.right - b.left, b.bottom - b.top);
}

// Draws an orientation, and the best of a few places in the image, since at many of them the plate would have to be far
// away to be seen by both cameras. The aim's scale is the largest that fits, or 0.
Aim drawAim(const Viewer& viewer, const ViewRange& range, RandomSource& random) {
    const Camera& camera = viewer.rig.left;
    Aim best = drawOrientation(viewer.plate, range, random);
    best.scale = 0.0;
    for (int i = 0; i < kPlacesPerView; ++i) {
        Aim aim = best;
        aim.pixel = {camera.width * random.uniform(0.25, 0.75), camera.height * random.uniform(0.3, 0.7)};
        aim.scale = fittingScale(viewer, aim, largestScale(viewer.plate, camera));
        if (aim.scale > best.scale) {
            best = aim;
        }
    }
    return best;
}

}  // namespace

GrayLevels GrayLevels::matching(Polarity polarity) {
    GrayLevels levels;
    if (polarity == Polarity::lightDots) {
        levels = {190.0, 25.0, 200.0};
    }
    return levels;
}

double Light::at(const Camera& camera, double x, double y) const {
    const double u = (2.0 * x - (camera.width - 1)) / camera.width;  // -1 .. 1
    const double v = (2.0 * y - (camera.height - 1)) / camera.height;
    return (1.0 + gradientX * u + gradientY * v) * (1.0 - falloff * 0.5 * (u * u + v * v));
}

void checkOptics(const Optics& optics) {
    requireFinite(optics.levels.dots, "level of the dots");
    requireFinite(optics.levels.plate, "level of the plate");
    requireFinite(optics.levels.ground, "level of the ground");
    requireFinite(optics.light.gradientX, "gradient along x");
    requireFinite(optics.light.gradientY, "gradient along y");
    requireFinite(optics.light.falloff, "falloff");
    constexpr double kMinBlur = 0.02, kMaxBlur = 50.0;  // pixels; the cost grows with sharper and wider blur
    if (optics.blurSigma != 0.0 && !(optics.blurSigma >= kMinBlur && optics.blurSigma <= kMaxBlur)) {
        throw std::invalid_argument("the blur must be 0 or between 0.02 and 50 pixels");
    }
    if (!(optics.noiseSigma >= 0.0) || !std::isfinite(optics.noiseSigma)) {
        throw std::invalid_argument("the noise must be 0 or a positive number");
    }
}

StereoRig exampleRig() {
    StereoRig rig;
    rig.left = {1280, 960, Projection::perspective, 1690.4, 1688.1, 0.0, 641.7, 477.3, 0.0, -0.118, 0.052};
    rig.right = {1280, 960, Projection::perspective, 1695.2, 1693.6, 0.0, 637.2, 483.8, 0.0, -0.111, 0.045};
    rig.rightFromLeft.R =
        rotationFromVector({0.45 * kRadiansPerDegree, 19.5 * kRadiansPerDegree, -0.7 * kRadiansPerDegree});
    rig.rightFromLeft.t = {-118.3, 1.2, 19.4};
    return rig;
}

bool seesWholePlate(const Plate& plate, const Camera& camera, const Pose& pose, double border) {
    for (const PlanePoint& point : outlinePoints(plate)) {
        if (!canProject(camera, pose, point)) {
            return false;
        }
        const ProjectedPoint p = project(camera, pose, point);
        if (!isInside(camera, p.pixel, border) || !showsPrintedSide(p)) {
            return false;
        }
    }
    return true;
}

std::vector<Pose> makeViewPoses(const Plate& plate, const StereoRig& rig, int count, std::uint64_t seed,
                                const ViewRange& range) {
    checkPlate(plate);
    checkCamera(rig.left);
    checkCamera(rig.right);
    RandomSource random(seed);
    const Viewer viewer{plate, rig, range.borderPixels};
    std::vector<Pose> poses;
    int attempts = 0;
    while (static_cast<int>(poses.size()) < count) {
        if (++attempts > kAttemptsPerView * count) {
            throw std::runtime_error(
                "no pose was found in which both cameras see the whole plate; "
                "check the rig's geometry and the plate's size");
        }
        const Aim aim = drawAim(viewer, range, random);
        const double fill = random.uniform(range.smallestFill, range.largestFill);
        const Pose pose = aim.scale > 0.0 ? withScale(rig.left, aim, fill * aim.scale) : Pose{};
        if (aim.scale > 0.0 && isTiltAllowed(rig, pose, range) && viewer.sees(pose)) {
            poses.push_back(pose);
        }
    }
    return poses;
}

}  // namespace zelm::render
