#include "trialStations.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <numbers>

namespace zelm::accuracy {
namespace {

using render::RandomSource;

render::Plate randomPlate(RandomSource& random) {
    render::Plate plate;
    plate.maxX = between(random, 2, 12);
    plate.maxY = between(random, 2, 9);
    plate.minX = -plate.maxX;
    plate.minY = -plate.maxY;
    plate.pitchX = random.uniform(2.0, 20.0);
    plate.pitchY = chance(random, 0.7) ? plate.pitchX : plate.pitchX * random.uniform(0.8, 1.25);
    const double pitch = std::min(plate.pitchX, plate.pitchY);
    plate.dotDiameter = pitch * random.uniform(0.35, 0.5);
    plate.markerDiameter = plate.dotDiameter * random.uniform(1.6, 1.85);
    // The reader takes no markers that are next neighbours.
    plate.markerX = between(random, 2, std::clamp(plate.maxX - 1, 2, 5));
    plate.markerY = std::min(plate.markerX, plate.maxY);
    if (chance(random, 0.3)) {
        plate.markerY = between(random, 2, std::clamp(plate.maxY - 1, 2, 5));
    }
    plate.marginX = plate.marginY = plate.pitchX * random.uniform(1.0, 1.6);
    plate.polarity = chance(random, 0.7) ? render::Polarity::darkDots : render::Polarity::lightDots;
    return plate;
}

// Mostly small images: large ones take long.
std::array<int, 2> randomSize(RandomSource& random) {
    constexpr std::array<std::array<int, 2>, 7> kUsual{
        {{640, 480}, {640, 480}, {800, 600}, {1024, 768}, {480, 640}, {752, 480}, {600, 600}}};
    if (chance(random, 0.88)) {
        return kUsual[static_cast<std::size_t>(between(random, 0, static_cast<int>(kUsual.size()) - 1))];
    }
    const int width = static_cast<int>(400.0 * std::pow(10.0, std::pow(random.uniform(), 2.0)));
    return {width, static_cast<int>(width * random.uniform(0.6, 1.0))};
}

double markerDifference(const Station& s) {
    return std::fabs(s.plate.markerX * s.plate.pitchX - s.plate.markerY * s.plate.pitchY) * s.aim.scale;
}

Station drawStation(RandomSource& random) {
    Station s;
    s.plate = randomPlate(random);
    const auto [width, height] = randomSize(random);
    s.camera.width = width;
    s.camera.height = height;
    s.camera.fx = width * random.uniform(1.5, 3.0);
    s.camera.fy = s.camera.fx * random.uniform(0.99, 1.01);
    s.camera.cx = 0.5 * (width - 1) + random.uniform(-0.015, 0.015) * width;
    s.camera.cy = 0.5 * (height - 1) + random.uniform(-0.015, 0.015) * width;
    s.camera.k1 = random.uniform(-0.12, 0.05);
    s.aim.rollDegrees = random.uniform(-180.0, 180.0);
    s.aim.tiltDegrees = random.uniform(0.0, 35.0);
    s.aim.tiltAxisDegrees = random.uniform(0.0, 360.0);
    // The share of the image's smaller side that the plate's diagonal takes.
    s.aim.scale = random.uniform(0.55, 0.98) * 0.5 * std::min(width, height) / reachOf(s.plate);
    s.aim.pixel = {s.camera.cx, s.camera.cy};
    s.radius = 0.5 * s.plate.dotDiameter * s.aim.scale;
    const double dark = random.uniform(8.0, 50.0);
    const double bright = dark + random.uniform(70.0, 180.0);
    const bool isLight = s.plate.polarity == render::Polarity::lightDots;
    s.optics.levels = {isLight ? bright : dark, isLight ? dark : bright, isLight ? bright : dark};
    if (chance(random, 0.5)) {  // a ground of a level of its own
        s.optics.levels.ground += (isLight ? -1.0 : 1.0) * random.uniform(0.0, 0.25) * (bright - dark);
    }
    s.optics.light = {random.uniform(-0.12, 0.12), random.uniform(-0.12, 0.12), random.uniform(0.0, 0.1)};
    s.optics.blurSigma = std::min(random.uniform(0.4, std::max(1.1, 0.08 * s.radius)), 0.16 * s.radius);
    s.optics.noiseSigma = random.uniform(0.3, 3.0);
    return s;
}

Zelm2ViewPatternDesc describe(const render::Plate& plate) {
    Zelm2ViewPatternDesc d{};
    d.d0 = render::fieldExtentX(plate);
    d.d1 = render::fieldExtentY(plate);
    d.d2 = plate.dotDiameter;
    d.d3 = plate.markerDiameter;
    d.d4 = plate.pitchX;
    d.d5 = plate.pitchY;
    d.d6 = plate.markerX * plate.pitchX;
    d.d7 = plate.markerY * plate.pitchY;
    d.markers = 3;
    d.polarity = plate.polarity == render::Polarity::lightDots ? 1 : 0;
    d.minDotArea = 20;
    d.minEdgeStrength = 3.0;
    d.minDots = (plate.maxX - plate.minX + 1) * (plate.maxY - plate.minY + 1) / 2;
    return d;
}

}  // namespace

double reachOf(const render::Plate& plate) {
    const render::PlateBounds b = render::plateBounds(plate);
    return 0.5 * std::hypot(b.right - b.left, b.bottom - b.top);
}

Station randomStation(RandomSource& random, double minRadius) {
    constexpr double kMaxDifference = 70.0;  // pixels: the reader refuses 100 along a tilted plate
    for (;;) {
        const Station s = drawStation(random);
        if (s.radius * std::cos(s.aim.tiltDegrees * std::numbers::pi / 180.0) >= minRadius &&
            markerDifference(s) <= kMaxDifference) {
            return s;
        }
    }
}

render::Pixel pixelOf(const Station& s, int column, int row) {
    return render::project(s.camera, render::aimedPose(s.camera, s.aim),
                           {column * s.plate.pitchX, row * s.plate.pitchY})
        .pixel;
}

double& levelOf(render::LevelImage& image, int x, int y) {
    return image
        .levels[static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) + static_cast<std::size_t>(x)];
}

TrialImage shoot(const Station& s, RandomSource& random, const Change& change) {
    const render::Pose pose = render::aimedPose(s.camera, s.aim);
    render::LevelImage levels = render::renderLevels(s.plate, s.camera, pose, s.optics);
    if (change) {
        change(levels);
    }
    TrialImage trial;
    trial.image =
        render::digitise(levels, s.optics.noiseSigma, static_cast<std::uint64_t>(random.uniform() * 1e15) + 1);
    trial.pattern = describe(s.plate);
    trial.radius = s.radius;
    trial.noise = s.optics.noiseSigma;
    trial.blur = s.optics.blurSigma;
    return trial;
}

}  // namespace zelm::accuracy
