#include "imageFaultTrials.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <numbers>

#include "imageFaults.h"
#include "platelessScenes.h"

namespace zelm::accuracy {
namespace {

using render::LevelImage;
using render::RandomSource;

constexpr double kMinRadius = 5.0;  // pixels, of dots

render::Pixel randomMarker(const Station& s, RandomSource& random) {
    const int which = between(random, 0, 2);
    return pixelOf(s, which == 1 ? s.plate.markerX : 0, which == 2 ? s.plate.markerY : 0);
}

// Levels that a part of the image takes.
template <class IsInside, class Level>
Change painted(IsInside isInside, Level level) {
    return [=](LevelImage& image) {
        changeLevels(image, [&](int x, int y, double old) { return isInside(x, y) ? level(x, y) : old; });
    };
}

Change scaled(double base, double gain) {
    return [=](LevelImage& image) { changeLevels(image, [&](int, int, double level) { return base + gain * level; }); };
}

TrialImage noPlate(RandomSource& random) {
    const Station s = randomStation(random, kMinRadius);
    const auto scene = static_cast<Scene>(chance(random, 0.4) ? 0 : between(random, 1, kScenes - 1));
    return shoot(s, random,
                 [&](LevelImage& image) { image = platelessScene(scene, image.width, image.height, random); });
}

// One marker painted over, printed as an ordinary dot, or one too many.
TrialImage hiddenMarker(RandomSource& random) {
    Station s = randomStation(random, kMinRadius);
    if (chance(random, 0.2)) {
        s.plate.shrunkMarkers = {{0, 0}};
        return shoot(s, random);
    }
    if (chance(random, 0.2)) {
        s.plate.extraMarkers = {{-s.plate.markerX, -1}};
        return shoot(s, random);
    }
    const render::Pixel p = randomMarker(s, random);
    const double reach = s.radius * random.uniform(1.9, 2.3);
    const double gray = s.optics.levels.plate + random.uniform(-20.0, 6.0);
    return shoot(
        s, random,
        painted([=](int x, int y) { return std::hypot(x - p.x, y - p.y) < reach; }, [=](int, int) { return gray; }));
}

// The sides over which dots of the plate hang.
int sidesOf(const Station& s) {
    int sides = 0;
    for (int row = s.plate.minY; row <= s.plate.maxY; ++row) {
        for (int column = s.plate.minX; column <= s.plate.maxX; ++column) {
            const render::Pixel p = pixelOf(s, column, row);
            const double reach = 2.0 * s.radius;
            sides |= p.x < reach ? ZELM_MEASURE_SIDE_LEFT : 0;
            sides |= p.x > s.camera.width - 1 - reach ? ZELM_MEASURE_SIDE_RIGHT : 0;
            sides |= p.y < reach ? ZELM_MEASURE_SIDE_TOP : 0;
            sides |= p.y > s.camera.height - 1 - reach ? ZELM_MEASURE_SIDE_BOTTOM : 0;
        }
    }
    return sides;
}

// The plate moved over an edge or a corner of the image, so far that a marker is lost.
TrialImage cutOff(RandomSource& random) {
    Station s = randomStation(random, kMinRadius);
    const double angle = random.uniform(0.0, 2.0 * std::numbers::pi);
    const double step = 0.02 * s.camera.width;
    const auto out = [&](render::Pixel p) {
        return p.x < 0.0 || p.y < 0.0 || p.x > s.camera.width - 1.0 || p.y > s.camera.height - 1.0;
    };
    for (int k = 0; k < 60; ++k) {
        if (out(pixelOf(s, 0, 0)) || out(pixelOf(s, s.plate.markerX, 0)) || out(pixelOf(s, 0, s.plate.markerY))) {
            break;
        }
        s.aim.pixel.x += step * std::cos(angle);
        s.aim.pixel.y += step * std::sin(angle);
    }
    TrialImage trial = shoot(s, random);
    trial.sides = sidesOf(s);
    return trial;
}

TrialImage outOfFocus(RandomSource& random) {
    Station s = randomStation(random, kMinRadius);
    s.optics.blurSigma = std::max(s.radius * random.uniform(0.36, 1.1), 1.8);
    return shoot(s, random);
}

TrialImage motion(RandomSource& random) {
    const Station s = randomStation(random, kMinRadius);
    const double length = s.radius * random.uniform(1.5, 4.0);
    const double direction = random.uniform(-1.57, 1.57);
    TrialImage trial =
        shoot(s, random, [&](LevelImage& image) { image = zelmtest::smeared(image, length, direction); });
    trial.direction = direction;
    return trial;
}

// All of the plate at white, or as much of it as loses dots.
TrialImage saturated(RandomSource& random) {
    const Station s = randomStation(random, kMinRadius);
    const double darkest = std::min({s.optics.levels.dots, s.optics.levels.plate});
    const double gain = chance(random, 0.5) ? 255.0 / darkest * random.uniform(1.0, 2.0) : random.uniform(3.0, 16.0);
    return shoot(s, random, scaled(0.0, gain));
}

TrialImage dark(RandomSource& random) {
    Station s = randomStation(random, kMinRadius);
    s.optics.noiseSigma = random.uniform(0.3, 1.2);
    return shoot(s, random,
                 scaled(0.0, random.uniform(4.0, 14.0) / std::max(s.optics.levels.dots, s.optics.levels.plate)));
}

// A camera of 10 or 12 bits whose levels stand at the foot of 16: what is left of them in 8 bits.
TrialImage fewBits(RandomSource& random) {
    Station s = randomStation(random, kMinRadius);
    const double gain = chance(random, 0.5) ? 1.0 / 16.0 : 1.0 / 64.0;
    s.optics.noiseSigma *= gain;
    return shoot(s, random, scaled(0.0, gain));
}

TrialImage lowContrast(RandomSource& random) {
    Station s = randomStation(random, kMinRadius);
    const double contrast = std::fabs(s.optics.levels.dots - s.optics.levels.plate);
    s.optics.noiseSigma = random.uniform(0.3, 1.5);
    return shoot(s, random, scaled(random.uniform(80.0, 200.0), random.uniform(3.0, 11.0) / contrast));
}

// Whether enough of the dots are left to tell that there is a plate: a third, and 12.
template <class IsHidden>
bool leavesDots(const Station& s, IsHidden isHidden) {
    int left = 0;
    int all = 0;
    for (int row = s.plate.minY; row <= s.plate.maxY; ++row) {
        for (int column = s.plate.minX; column <= s.plate.maxX; ++column) {
            const render::Pixel p = pixelOf(s, column, row);
            left += isHidden(p.x, p.y) ? 0 : 1;
            ++all;
        }
    }
    return left >= std::max(all / 3, 12);
}

TrialImage reflection(RandomSource& random) {
    const Station s = randomStation(random, kMinRadius);
    const render::Pixel p = randomMarker(s, random);
    const double reach = s.radius * random.uniform(5.0, 14.0);
    const double x = p.x + random.uniform(-0.4, 0.4) * reach;
    const double y = p.y + random.uniform(-0.4, 0.4) * reach;
    if (!leavesDots(s, [&](double px, double py) { return std::hypot(px - x, py - y) < reach + 2.0 * s.radius; })) {
        return reflection(random);
    }
    return shoot(s, random, [&](LevelImage& image) {
        changeLevels(image, [&](int px, int py, double level) {
            const double r = std::hypot(px - x, py - y) / reach;
            return level + 500.0 / (1.0 + std::exp(12.0 * (r - 1.0)));
        });
    });
}

// A straight edge or something round before a marker, darker than the bright parts of the plate: what is brighter can
// be a reflection as well.
TrialImage covered(RandomSource& random) {
    const Station s = randomStation(random, kMinRadius);
    const double turn = random.uniform(0.0, 2.0 * std::numbers::pi);
    const render::Pixel p = randomMarker(s, random);
    const double gray =
        random.uniform(10.0, std::min(110.0, std::max(s.optics.levels.dots, s.optics.levels.plate) - 15.0));
    const double slope = random.uniform(-0.1, 0.1) * 640.0 / s.camera.width;
    const double cover = s.radius * random.uniform(2.2, 6.0);
    const double length = s.radius * random.uniform(5.0, 12.0);
    const bool isRound = chance(random, 0.4);
    const auto across = [=](double x, double y) { return (x - p.x) * std::cos(turn) + (y - p.y) * std::sin(turn); };
    const auto along = [=](double x, double y) { return (y - p.y) * std::cos(turn) - (x - p.x) * std::sin(turn); };
    // What is round takes more than a marker alone.
    const double width = 1.25 * std::max(s.plate.pitchX, s.plate.pitchY) * s.aim.scale;
    const auto isHidden = [=](double x, double y) {
        return isRound ? std::hypot(across(x, y) / width, along(x, y) / std::max(width, length)) < 1.0
                       : across(x, y) > -cover;
    };
    if (!leavesDots(s, isHidden)) {
        return covered(random);
    }
    return shoot(s, random, painted(isHidden, [=](int x, int y) { return gray + slope * along(x, y); }));
}

TrialImage otherPolarity(RandomSource& random) {
    TrialImage trial = shoot(randomStation(random, kMinRadius), random);
    trial.pattern.polarity = 1 - trial.pattern.polarity;
    return trial;
}

// Without larger dots, with smaller markers than described, with many fewer dots, or of squares.
TrialImage otherPlate(RandomSource& random) {
    Station s = randomStation(random, kMinRadius);
    const int kind = between(random, 0, 3);
    if (kind == 3) {
        return shoot(s, random, [&](LevelImage& image) { image = checkerboard(image.width, image.height, random); });
    }
    if (kind == 0) {
        s.plate.shrunkMarkers = {{0, 0}, {s.plate.markerX, 0}, {0, s.plate.markerY}};
    }
    TrialImage trial = shoot(s, random);
    if (kind == 1) {
        trial.pattern.d3 *= random.uniform(1.3, 1.7);
    }
    if (kind == 2) {
        const int more = between(random, 4, 8);
        trial.pattern.d0 += 2 * more * trial.pattern.d4;
        trial.pattern.d1 += 2 * more * trial.pattern.d5;
        trial.pattern.minDots = static_cast<std::int32_t>((trial.pattern.d0 / trial.pattern.d4 + 1.0) *
                                                          (trial.pattern.d1 / trial.pattern.d5 + 1.0) / 2.0);
    }
    return trial;
}

TrialImage markerDistance(RandomSource& random) {
    TrialImage trial = shoot(randomStation(random, kMinRadius), random);
    const bool isX = chance(random, 0.5);
    const double more = (chance(random, 0.5) ? 1.0 : 2.0) * (isX ? trial.pattern.d4 : trial.pattern.d5);
    double& distance = isX ? trial.pattern.d6 : trial.pattern.d7;
    distance += distance > 2.5 * more && chance(random, 0.5) ? -more : more;
    return trial;
}

// In an image of which the plate takes a hundredth and more.
TrialImage smallDots(RandomSource& random) {
    Station s = randomStation(random, kMinRadius);
    while (s.radius > 15.0) {
        s = randomStation(random, kMinRadius);
    }
    const double factor = random.uniform(1.5, 3.0) / s.radius;
    s.aim.scale *= factor;
    s.radius *= factor;
    s.optics.blurSigma = random.uniform(0.35, 0.55);
    s.optics.noiseSigma = random.uniform(0.3, 2.0);
    return shoot(s, random);
}

TrialImage tilted(RandomSource& random) {
    Station s = randomStation(random, 7.0);
    s.aim.tiltDegrees = random.uniform(69.0, 77.0);
    return shoot(s, random);
}

// A plate that takes little of the image.
TrialImage notSeparate(RandomSource& random) {
    Station s = randomStation(random, 10.0);
    const double factor = random.uniform(5.8, 7.0) / s.radius;
    s.aim.scale *= factor;
    s.radius *= factor;
    s.optics.blurSigma = random.uniform(0.4, 0.7);
    return shoot(s, random);
}

// Light that falls off so far that the ground here is darker than the dots there.
TrialImage unevenLight(RandomSource& random) {
    Station s = randomStation(random, 6.0);
    const double angle = random.uniform(0.0, 2.0 * std::numbers::pi);
    const bool isLight = s.plate.polarity == render::Polarity::lightDots;
    s.optics.levels = {isLight ? 230.0 : 100.0, isLight ? 100.0 : 230.0, isLight ? 230.0 : 100.0};
    s.optics.light = {};
    s.optics.noiseSigma = random.uniform(0.3, 1.0);
    const double reach = reachOf(s.plate) * s.aim.scale;
    const double fall = random.uniform(1.2, 1.6);
    return shoot(s, random, [&](LevelImage& image) {
        changeLevels(image, [&](int x, int y, double level) {
            const double along = ((x - s.camera.cx) * std::cos(angle) + (y - s.camera.cy) * std::sin(angle)) / reach;
            return level * std::exp(-fall * (std::clamp(along, -1.0, 1.0) + 1.0));
        });
    });
}

// A plate whose x and y marker stand so differently far from the corner that the reader refuses them.
TrialImage markerAxes(RandomSource& random) {
    for (;;) {
        Station s = randomStation(random, 8.0);
        s.plate.markerX = std::min(s.plate.maxX, 7);
        s.plate.markerY = std::min(s.plate.maxY, 2);
        const render::Pixel corner = pixelOf(s, 0, 0);
        const render::Pixel x = pixelOf(s, s.plate.markerX, 0);
        const render::Pixel y = pixelOf(s, 0, s.plate.markerY);
        if (std::hypot(x.x - corner.x, x.y - corner.y) - std::hypot(y.x - corner.x, y.y - corner.y) > 103.0) {
            return shoot(s, random);
        }
    }
}

// The image area of a dot, but for a factor.
double areaOf(const Station& s, int column, int row) {
    const render::ProjectedPoint p =
        render::project(s.camera, render::aimedPose(s.camera, s.aim), {column * s.plate.pitchX, row * s.plate.pitchY});
    return std::fabs(p.dxdX * p.dydY - p.dxdY * p.dydX);
}

// A short lens before a tilted plate: its nearest dots look as large as a marker does in the middle.
TrialImage perspective(RandomSource& random) {
    for (;;) {
        Station s = randomStation(random, 7.0);
        s.camera.fx = s.camera.fy = s.camera.width * random.uniform(0.65, 0.9);
        s.camera.k1 = random.uniform(-0.03, 0.0);
        s.aim.tiltDegrees = random.uniform(33.0, 48.0);
        s.aim.scale *= 0.75;
        s.radius *= 0.75;
        s.optics.blurSigma = random.uniform(0.4, 0.9);
        const render::Pose pose = render::aimedPose(s.camera, s.aim);
        if (!render::seesWholePlate(s.plate, s.camera, pose, 3.0)) {
            continue;
        }
        double nearest = 0.0;
        double farthest = 1e300;
        for (const int column : {s.plate.minX, s.plate.maxX}) {
            for (const int row : {s.plate.minY, s.plate.maxY}) {
                nearest = std::max(nearest, areaOf(s, column, row));
                farthest = std::min(farthest, areaOf(s, column, row));
            }
        }
        const double middle = areaOf(s, 0, 0);
        const double q = s.plate.markerDiameter / s.plate.dotDiameter;
        if (nearest > (q * q - 0.8) * middle && s.radius * std::sqrt(farthest / middle) > kMinRadius) {
            return shoot(s, random);
        }
    }
}

ZelmMeasureImage recordOf(const TrialImage& trial) {
    return {trial.image.pixels.data(), trial.image.width, trial.image.height, trial.image.width};
}

bool isRead(const TrialImage& trial) {
    const ZelmMeasureImage image = recordOf(trial);
    std::int64_t placed = 0;
    return zelmMeasurePlateDots(&image, &trial.pattern, nullptr, nullptr, &placed, nullptr) >= 0;
}

// Each fault draws its own numbers, wherever it stands in the list.
std::uint64_t seedOf(const char* name, std::uint64_t seed) {
    std::uint64_t hash = 1469598103934665603ULL;  // FNV-1a
    for (const char* c = name; *c != 0; ++c) {
        hash = (hash ^ static_cast<unsigned char>(*c)) * 1099511628211ULL;
    }
    return hash + seed;
}

}  // namespace

const std::vector<TrialFault>& trialFaults() {
    static const std::vector<TrialFault> list{
        {"no plate", ZELM_MEASURE_IMAGE_NO_PLATE, noPlate},
        {"a marker is missing", ZELM_MEASURE_IMAGE_MARKERS, hiddenMarker},
        {"cut off", ZELM_MEASURE_IMAGE_CUT_OFF, cutOff},
        {"out of focus", ZELM_MEASURE_IMAGE_OUT_OF_FOCUS, outOfFocus},
        {"motion blur", ZELM_MEASURE_IMAGE_MOTION, motion},
        {"saturated", ZELM_MEASURE_IMAGE_SATURATED, saturated},
        {"too dark", ZELM_MEASURE_IMAGE_DARK, dark},
        {"10 or 12 bits in 16", ZELM_MEASURE_IMAGE_DARK, fewBits},
        {"low contrast", ZELM_MEASURE_IMAGE_LOW_CONTRAST, lowContrast},
        {"reflection", ZELM_MEASURE_IMAGE_REFLECTION, reflection},
        {"covered", ZELM_MEASURE_IMAGE_COVERED, covered},
        {"wrong polarity", ZELM_MEASURE_IMAGE_POLARITY, otherPolarity},
        {"another plate", ZELM_MEASURE_IMAGE_OTHER_PLATE, otherPlate},
        {"wrong marker distance", ZELM_MEASURE_IMAGE_MARKER_DISTANCE, markerDistance},
        {"small dots", ZELM_MEASURE_IMAGE_SMALL_DOTS, smallDots},
        {"tilted", ZELM_MEASURE_IMAGE_TILTED, tilted},
        {"not separate", ZELM_MEASURE_IMAGE_NOT_SEPARATE, notSeparate},
        {"uneven light", ZELM_MEASURE_IMAGE_UNEVEN_LIGHT, unevenLight},
        {"unequal marker axes", ZELM_MEASURE_IMAGE_MARKER_AXES, markerAxes},
        {"strong perspective", ZELM_MEASURE_IMAGE_PERSPECTIVE, perspective}};
    return list;
}

TrialImage goodImage(std::uint64_t seed) {
    RandomSource random(seed);
    return shoot(randomStation(random, kMinRadius), random);
}

std::optional<TrialImage> faultyImage(const TrialFault& fault, std::uint64_t seed) {
    RandomSource random(seedOf(fault.name, seed));
    TrialImage trial = fault.make(random);
    return isRead(trial) ? std::nullopt : std::optional(std::move(trial));
}

ZelmMeasureImageDiagnosis diagnosisOf(const TrialImage& trial) {
    ZelmMeasureImageDiagnosis diagnosis{};
    diagnosis.size = static_cast<std::int32_t>(sizeof diagnosis);
    const ZelmMeasureImage image = recordOf(trial);
    zelmMeasureDiagnoseImage(&image, &trial.pattern, nullptr, &diagnosis, nullptr);
    return diagnosis;
}

double directionError(const TrialImage& trial, const ZelmMeasureImageDiagnosis& diagnosis) {
    return std::fabs(std::remainder(diagnosis.direction - trial.direction, std::numbers::pi)) * 180.0 /
           std::numbers::pi;
}

bool isNamed(const TrialFault& fault, const TrialImage& trial, const ZelmMeasureImageDiagnosis& diagnosis) {
    constexpr double kMaxDirectionError = 15.0;  // degrees
    if (diagnosis.cause != fault.cause) {
        return false;
    }
    if (fault.cause == ZELM_MEASURE_IMAGE_MOTION) {
        return directionError(trial, diagnosis) <= kMaxDirectionError;
    }
    return fault.cause != ZELM_MEASURE_IMAGE_CUT_OFF || (diagnosis.sides != 0 && (diagnosis.sides & ~trial.sides) == 0);
}

}  // namespace zelm::accuracy
