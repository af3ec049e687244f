#include "readingAccuracy.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <stdexcept>
#include <vector>

#include "patternFixtures.h"
#include "randomSource.h"
#include "renderView.h"
#include "zelmLib.h"

namespace zelm::accuracy {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDark = 25.0;       // gray level of what is dark
constexpr double kNearPixels = 0.5;  // a dot farther than this from its truth is wrong
constexpr int kViews = 3;            // the fewest that an object is opened for
constexpr int kView = 1;             // see openReader

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

// An object for single images: with a right camera of model 2, views after the first one read the left image alone.
Zelm2ViewCalib* openReader(const render::Plate& plate, const render::Camera& camera) {
    Zelm2ViewPatternDesc pattern = zelmtest::describe(plate);
    pattern.minEdgeStrength = 3.0;
    const Zelm2ViewCameraDesc cameras = {0, camera.width, camera.height, 2, camera.width, camera.height};
    Zelm2ViewCalib* handle = nullptr;
    if (zelm2ViewCalibOpen(kViews, &pattern, &cameras, &handle) < 0) {
        throw std::runtime_error("cannot open a calibration object");
    }
    return handle;
}

// The dots that the library reads; false when it refuses the image.
bool readDots(Zelm2ViewCalib* handle, const render::GrayImage& image, std::vector<Point2d>& dots) {
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

// Sums of squares that become root mean squares at the end.
struct Sums {
    double error = 0.0;
    double bound = 0.0;
    double excess = 0.0;
};

const render::DotTruth& nearestTruth(const std::vector<render::DotTruth>& truths, const Point2d& p, double& distance) {
    const render::DotTruth* best = &truths.front();
    distance = HUGE_VAL;
    for (const render::DotTruth& truth : truths) {
        const double d = std::hypot(truth.ellipse.centre.x - p.x, truth.ellipse.centre.y - p.y);
        if (d < distance) {
            distance = d;
            best = &truth;
        }
    }
    return *best;
}

void judge(const ReadingCase& setting, const render::Camera& camera, const render::Optics& optics,
           const std::vector<render::DotTruth>& truths, const std::vector<Point2d>& dots, ReadingFigures& figures,
           Sums& sums) {
    std::vector<const render::DotTruth*> seen;
    for (const Point2d& dot : dots) {
        double distance = 0.0;
        const render::DotTruth& truth = nearestTruth(truths, dot, distance);
        if (distance > kNearPixels || std::find(seen.begin(), seen.end(), &truth) != seen.end()) {
            ++figures.wrong;
            continue;
        }
        seen.push_back(&truth);
        ++figures.found;
        figures.worst = std::max(figures.worst, distance);
        const double contrast = setting.contrast * optics.light.at(camera, dot.x, dot.y);
        const double bound = centreBound(setting.noise, contrast, setting.blur, truth.radius);
        const double limit = 1.5 * bound + 0.008;
        sums.error += 0.5 * distance * distance;
        sums.bound += bound * bound;
        sums.excess += 0.5 * (distance / limit) * (distance / limit);
    }
}

}  // namespace

double centreBound(double noise, double contrast, double blur, double radius) {
    return noise / contrast * std::sqrt(2.0 * blur / (std::sqrt(kPi) * radius));
}

ReadingFigures readPlates(const ReadingCase& setting) {
    ReadingFigures figures;
    Sums sums;
    render::RandomSource random(setting.seed);
    std::vector<Point2d> dots;
    for (int view = 0; view < setting.views; ++view) {
        const auto polarity = view % 2 == 0 ? render::Polarity::darkDots : render::Polarity::lightDots;
        const render::Plate plate = makePlate(polarity);
        render::Camera camera = makeCamera(plate, setting.radius, setting.k1, setting.k2);
        const double tilt = setting.maxTiltDegrees * (view + 0.5) / setting.views;
        const render::Pose pose = makePose(plate, camera, setting.radius, tilt, random);
        cropToPlate(render::dotTruths(plate, camera, pose), camera);
        const std::vector<render::DotTruth> truths = render::dotTruths(plate, camera, pose);
        render::Optics optics = makeOptics(setting, polarity);
        optics.light.falloff = falloffForDots(truths, camera, setting.falloff);
        const render::LevelImage levels = render::renderLevels(plate, camera, pose, optics);
        Zelm2ViewCalib* handle = openReader(plate, camera);
        for (int draw = 0; draw < setting.noiseDraws; ++draw) {
            const auto seed = setting.seed + 1000U * static_cast<unsigned>(view) + static_cast<unsigned>(draw);
            const render::GrayImage image = render::digitise(levels, setting.noise, seed);
            ++figures.images;
            figures.dots += static_cast<int>(truths.size());
            if (readDots(handle, image, dots)) {
                ++figures.imagesRead;
                judge(setting, camera, optics, truths, dots, figures, sums);
            }
        }
        zelm2ViewCalibClose(&handle);
    }
    if (figures.found > 0) {
        figures.rms = std::sqrt(sums.error / figures.found);
        figures.bound = std::sqrt(sums.bound / figures.found);
        figures.excess = std::sqrt(sums.excess / figures.found);
    }
    return figures;
}

CentreMiss ellipseCentreMiss(double radius, double tiltDegrees, double k1, double k2, bool markers) {
    const render::Plate plate = makePlate(render::Polarity::darkDots);
    const render::Camera camera = makeCamera(plate, radius, k1, k2);
    render::RandomSource random(7);
    CentreMiss miss;
    int count = 0;
    for (int view = 0; view < 8; ++view) {
        const render::Pose pose = makePose(plate, camera, radius, tiltDegrees, random);
        for (const render::DotTruth& truth : render::dotTruths(plate, camera, pose)) {
            if (truth.dot.marker != markers) {
                continue;
            }
            const double d =
                std::hypot(truth.ellipse.centre.x - truth.centre.x, truth.ellipse.centre.y - truth.centre.y);
            miss.rms += d * d;
            miss.worst = std::max(miss.worst, d);
            ++count;
        }
    }
    miss.rms = std::sqrt(miss.rms / count);
    return miss;
}

}  // namespace zelm::accuracy
