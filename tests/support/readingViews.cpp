#include "readingViews.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "patternFixtures.h"

namespace zelm::accuracy {
namespace {

constexpr double kDark = 25.0;  // gray level of what is dark
constexpr int kViews = 3;       // the fewest that an object is opened for
constexpr int kView = 1;        // see PlateReader

render::Plate makePlate(render::Polarity polarity) {
    render::Plate plate;
    plate.polarity = polarity;
    return plate;
}

// A camera that holds the plate at any roll and tilt, about 42 degrees wide.
render::Camera makeCamera(const render::Plate& plate, double radius, double k1, double k2) {
    const double scale = 2.0 * radius / plate.dotDiameter;
    const render::PlateBounds bounds = render::plateBounds(plate);
    const double diagonal = std::hypot(bounds.right - bounds.left, bounds.bottom - bounds.top) * scale;
    render::Camera camera;
    camera.width = static_cast<int>(1.35 * diagonal) + 16;
    camera.height = camera.width;
    camera.fx = camera.fy = 1.3 * camera.width;
    camera.cx = 0.5 * (camera.width - 1) + 3.3;
    camera.cy = 0.5 * (camera.height - 1) - 2.2;
    camera.k1 = k1;
    camera.k2 = k2;
    return camera;
}

// Cuts the image down to the plate. The view itself, relative to the principal point, stays the same.
void cropToPlate(const std::vector<render::DotTruth>& truths, render::Camera& camera) {
    double extent = 0.0;
    for (const render::DotTruth& truth : truths) {
        // The plate's edge is six dot radii beyond the centres of the outermost dots.
        const double reach = 7.0 * truth.radius + 8.0;
        extent = std::max(
            {extent, std::fabs(truth.centre.x - camera.cx) + reach, std::fabs(truth.centre.y - camera.cy) + reach});
    }
    camera.width = camera.height = 2 * static_cast<int>(extent);
    camera.cx = 0.5 * (camera.width - 1) + 3.3;
    camera.cy = 0.5 * (camera.height - 1) - 2.2;
}

// The falloff, a property of the image's corners, with which the dimmest dot has lost that share of the light.
double falloffForDots(const std::vector<render::DotTruth>& truths, const render::Camera& camera, double share) {
    render::Light unit;
    unit.falloff = 1.0;
    double most = 0.0;
    for (const render::DotTruth& truth : truths) {
        most = std::max(most, 1.0 - unit.at(camera, truth.centre.x, truth.centre.y));
    }
    return share / most;
}

render::Optics makeOptics(const ReadingCase& setting, render::Polarity polarity) {
    render::Optics optics;
    const double light = kDark + setting.contrast;
    const bool lightDots = polarity == render::Polarity::lightDots;
    optics.levels.dots = lightDots ? light : kDark;
    optics.levels.plate = lightDots ? kDark : light;
    optics.levels.ground = optics.levels.dots;
    optics.blurSigma = setting.blur;
    return optics;
}

double smallestRadius(const std::vector<render::DotTruth>& truths) {
    double radius = HUGE_VAL;
    for (const render::DotTruth& truth : truths) {
        radius = std::min(radius, truth.radius);
    }
    return radius;
}

// A pose at a random roll and tilt axis in which the smallest dot has that radius.
render::Pose makePose(const render::Plate& plate, const render::Camera& camera, double radius, double tiltDegrees,
                      render::RandomSource& random) {
    render::Aim aim;
    aim.pixel = {camera.cx + random.uniform(-2.0, 2.0), camera.cy + random.uniform(-2.0, 2.0)};
    aim.scale = 2.0 * radius / plate.dotDiameter;
    aim.rollDegrees = random.uniform(-180.0, 180.0);
    aim.tiltDegrees = tiltDegrees;
    aim.tiltAxisDegrees = random.uniform(0.0, 360.0);
    for (int step = 0; step < 3; ++step) {
        aim.scale *= radius / smallestRadius(render::dotTruths(plate, camera, render::aimedPose(camera, aim)));
    }
    return render::aimedPose(camera, aim);
}

}  // namespace

ReadingView readingView(const ReadingCase& setting, int view, render::RandomSource& random) {
    ReadingView seen;
    const auto polarity = view % 2 == 0 ? render::Polarity::darkDots : render::Polarity::lightDots;
    seen.plate = makePlate(polarity);
    seen.camera = makeCamera(seen.plate, setting.radius, setting.k1, setting.k2);
    const double tilt = setting.maxTiltDegrees * (view + 0.5) / setting.views;
    seen.pose = makePose(seen.plate, seen.camera, setting.radius, tilt, random);
    cropToPlate(render::dotTruths(seen.plate, seen.camera, seen.pose), seen.camera);
    seen.truths = render::dotTruths(seen.plate, seen.camera, seen.pose);
    seen.optics = makeOptics(setting, polarity);
    seen.optics.light.falloff = falloffForDots(seen.truths, seen.camera, setting.falloff);
    return seen;
}

std::vector<render::DotTruth> uncroppedTruths(const ReadingCase& setting, double tiltDegrees,
                                              render::RandomSource& random) {
    const render::Plate plate = makePlate(render::Polarity::darkDots);
    const render::Camera camera = makeCamera(plate, setting.radius, setting.k1, setting.k2);
    return render::dotTruths(plate, camera, makePose(plate, camera, setting.radius, tiltDegrees, random));
}

// An object for single images: with a right camera of model 2, views after the first one read the left image alone.
PlateReader::PlateReader(const ReadingView& view) {
    Zelm2ViewPatternDesc pattern = zelmtest::describe(view.plate);
    pattern.minEdgeStrength = 3.0;
    const render::Camera& c = view.camera;
    const Zelm2ViewCameraDesc cameras = {0, c.width, c.height, 2, c.width, c.height};
    if (zelm2ViewCalibOpen(kViews, &pattern, &cameras, &handle) < 0) {
        throw std::runtime_error("cannot open a calibration object");
    }
}

PlateReader::~PlateReader() {
    zelm2ViewCalibClose(&handle);
}

bool PlateReader::read(const render::GrayImage& image, std::vector<Point2d>& dots) {
    dots.clear();
    const unsigned char* const images[2] = {image.pixels.data(), nullptr};
    std::int32_t count = 0;
    if (zelm2ViewReadPtnImg(handle, kView, images, nullptr, nullptr) < 0 ||
        zelm2ViewGetPtnNum(handle, 'L', kView, &count) < 0) {
        return false;
    }
    dots.resize(static_cast<std::size_t>(count));
    return zelm2ViewGetPattern(handle, 'L', kView, dots.data()) >= 0;
}

}  // namespace zelm::accuracy
