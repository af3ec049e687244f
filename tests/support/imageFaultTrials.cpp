#include "imageFaultTrials.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>

#include "imageFaults.h"
#include "randomSource.h"

namespace zelm::accuracy {
namespace {

using render::RandomSource;

int between(RandomSource& random, int low, int high) {
    return low + std::min(static_cast<int>(random.uniform() * (high - low + 1)), high - low);
}

bool chance(RandomSource& random, double share) {
    return random.uniform() < share;
}

// A plate, a camera that sees it, and what the image suffers.
struct Station {
    render::Plate plate;
    render::Camera camera;
    render::Aim aim;
    render::Optics optics;
    double radius = 0.0;  // of the dots, pixels
};

render::Plate randomPlate(RandomSource& random) {
    render::Plate plate;
    plate.maxX = between(random, 3, 8);
    plate.maxY = between(random, 3, 7);
    plate.minX = -plate.maxX;
    plate.minY = -plate.maxY;
    plate.pitchX = random.uniform(2.0, 20.0);
    plate.pitchY = chance(random, 0.7) ? plate.pitchX : plate.pitchX * random.uniform(0.8, 1.25);
    const double pitch = std::min(plate.pitchX, plate.pitchY);
    plate.dotDiameter = pitch * random.uniform(0.35, 0.5);
    plate.markerDiameter = plate.dotDiameter * random.uniform(1.6, 1.85);
    // The reader takes markers whose distances from the corner differ by less than 100 pixels, and that are no next
    // neighbours.
    plate.markerX = between(random, 2, std::min({plate.maxX, plate.maxY, 5}) - 1);
    plate.markerY = plate.markerX;
    plate.marginX = plate.marginY = plate.pitchX * random.uniform(1.0, 1.6);
    plate.polarity = chance(random, 0.7) ? render::Polarity::darkDots : render::Polarity::lightDots;
    return plate;
}

// Half the plate's diagonal, plate units.
double reachOf(const render::Plate& plate) {
    const render::PlateBounds b = render::plateBounds(plate);
    return 0.5 * std::hypot(b.right - b.left, b.bottom - b.top);
}

Station randomStation(RandomSource& random) {
    Station s;
    s.plate = randomPlate(random);
    const int sizes[][2] = {{640, 480}, {640, 480}, {800, 600}, {1024, 768}};
    const auto& size = sizes[between(random, 0, 3)];
    s.camera.width = size[0];
    s.camera.height = size[1];
    s.camera.fx = size[0] * random.uniform(1.5, 3.0);
    s.camera.fy = s.camera.fx * random.uniform(0.99, 1.01);
    s.camera.cx = 0.5 * (size[0] - 1) + random.uniform(-10.0, 10.0);
    s.camera.cy = 0.5 * (size[1] - 1) + random.uniform(-10.0, 10.0);
    s.camera.k1 = random.uniform(-0.12, 0.05);
    s.aim.rollDegrees = random.uniform(-180.0, 180.0);
    s.aim.tiltDegrees = random.uniform(0.0, 35.0);
    s.aim.tiltAxisDegrees = random.uniform(0.0, 360.0);
    // The plate's diagonal takes most of the image's height.
    s.aim.scale = random.uniform(0.68, 0.98) * 0.5 * size[1] / reachOf(s.plate);
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
    s.optics.blurSigma = std::min(random.uniform(0.4, 1.1), 0.16 * s.radius);
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

using Change = std::function<void(render::LevelImage&)>;

TrialImage shoot(const Station& s, RandomSource& random, const Change& change = {}) {
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

// A station whose dots have at least that radius.
Station stationOf(RandomSource& random, double minRadius) {
    Station s = randomStation(random);
    while (s.radius * std::cos(s.aim.tiltDegrees * std::numbers::pi / 180.0) < minRadius) {
        s = randomStation(random);
    }
    return s;
}

double& levelOf(render::LevelImage& image, int x, int y) {
    return image
        .levels[static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) + static_cast<std::size_t>(x)];
}

void forEach(render::LevelImage& image, const std::function<void(int, int, double&)>& change) {
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            change(x, y, levelOf(image, x, y));
        }
    }
}

render::Pixel pixelOf(const Station& s, int column, int row) {
    return render::project(s.camera, render::aimedPose(s.camera, s.aim),
                           {column * s.plate.pitchX, row * s.plate.pitchY})
        .pixel;
}

render::Pixel randomMarker(const Station& s, RandomSource& random) {
    const int which = between(random, 0, 2);
    return pixelOf(s, which == 1 ? s.plate.markerX : 0, which == 2 ? s.plate.markerY : 0);
}

// Random bright and dark shapes that are no dots of a plate.
void clutter(render::LevelImage& image, RandomSource& random) {
    const double base = random.uniform(30.0, 180.0);
    forEach(image, [&](int, int, double& level) { level = base; });
    const int shapes = between(random, 6, 25);
    for (int k = 0; k < shapes; ++k) {
        const double x = random.uniform(0.0, image.width);
        const double y = random.uniform(0.0, image.height);
        const double a = random.uniform(3.0, 0.2 * image.width);
        const double b = a * random.uniform(0.2, 1.0);
        const double turn = random.uniform(0.0, 3.14);
        const double gray = random.uniform(10.0, 230.0);
        const bool isRound = chance(random, 0.5);
        forEach(image, [&](int px, int py, double& level) {
            const double u = ((px - x) * std::cos(turn) + (py - y) * std::sin(turn)) / a;
            const double v = ((py - y) * std::cos(turn) - (px - x) * std::sin(turn)) / b;
            if (isRound ? u * u + v * v < 1.0 : std::max(std::fabs(u), std::fabs(v)) < 1.0) {
                level = gray;
            }
        });
    }
    image = zelmtest::smeared(image, 1.2, random.uniform(0.0, 3.0));  // edges of images are not sharp to the pixel
}

TrialImage noPlate(RandomSource& random) {
    Station s = stationOf(random, 5.0);
    return shoot(s, random, [&](render::LevelImage& image) { clutter(image, random); });
}

TrialImage hiddenMarker(RandomSource& random) {
    Station s = stationOf(random, 5.0);
    if (chance(random, 0.3)) {
        s.plate.shrunkMarkers = {{0, 0}};
        return shoot(s, random);
    }
    const render::Pixel p = randomMarker(s, random);
    const double reach = s.radius * random.uniform(1.9, 2.3);
    const double gray = s.optics.levels.plate + random.uniform(-20.0, 6.0);
    return shoot(s, random, [&](render::LevelImage& image) {
        forEach(image,
                [&](int x, int y, double& level) { level = std::hypot(x - p.x, y - p.y) < reach ? gray : level; });
    });
}

// The plate moved over an edge or a corner of the image, so far that a marker is lost.
TrialImage cutOff(RandomSource& random) {
    Station s = stationOf(random, 5.0);
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
    return shoot(s, random);
}

TrialImage outOfFocus(RandomSource& random) {
    Station s = stationOf(random, 5.0);
    s.optics.blurSigma = std::max(s.radius * random.uniform(0.36, 1.1), 1.8);
    return shoot(s, random);
}

TrialImage motion(RandomSource& random) {
    Station s = stationOf(random, 5.0);
    const double length = s.radius * random.uniform(1.5, 4.0);
    const double direction = random.uniform(-1.57, 1.57);
    return shoot(s, random, [&](render::LevelImage& image) { image = zelmtest::smeared(image, length, direction); });
}

TrialImage saturated(RandomSource& random) {
    Station s = stationOf(random, 5.0);
    const double darkest = std::min({s.optics.levels.dots, s.optics.levels.plate});
    const double gain = 255.0 / darkest * random.uniform(1.0, 2.0);
    return shoot(s, random,
                 [&](render::LevelImage& image) { forEach(image, [&](int, int, double& level) { level *= gain; }); });
}

TrialImage dark(RandomSource& random) {
    Station s = stationOf(random, 5.0);
    const double gain = random.uniform(4.0, 14.0) / std::max(s.optics.levels.dots, s.optics.levels.plate);
    s.optics.noiseSigma = random.uniform(0.3, 1.2);
    return shoot(s, random,
                 [&](render::LevelImage& image) { forEach(image, [&](int, int, double& level) { level *= gain; }); });
}

TrialImage lowContrast(RandomSource& random) {
    Station s = stationOf(random, 5.0);
    const double contrast = std::fabs(s.optics.levels.dots - s.optics.levels.plate);
    const double gain = random.uniform(3.0, 11.0) / contrast;
    const double base = random.uniform(80.0, 200.0);
    s.optics.noiseSigma = random.uniform(0.3, 1.5);
    return shoot(s, random, [&](render::LevelImage& image) {
        forEach(image, [&](int, int, double& level) { level = base + gain * level; });
    });
}

TrialImage reflection(RandomSource& random) {
    Station s = stationOf(random, 5.0);
    const render::Pixel p = randomMarker(s, random);
    const double reach = s.radius * random.uniform(5.0, 14.0);
    const double x = p.x + random.uniform(-0.4, 0.4) * reach;
    const double y = p.y + random.uniform(-0.4, 0.4) * reach;
    return shoot(s, random, [&](render::LevelImage& image) {
        forEach(image, [&](int px, int py, double& level) {
            const double r = std::hypot(px - x, py - y) / reach;
            level += 500.0 / (1.0 + std::exp(12.0 * (r - 1.0)));
        });
    });
}

TrialImage covered(RandomSource& random) {
    Station s = stationOf(random, 5.0);
    const double turn = random.uniform(0.0, 2.0 * std::numbers::pi);
    const render::Pixel p = randomMarker(s, random);
    const double gray = random.uniform(10.0, 110.0);
    const double slope = random.uniform(-0.1, 0.1);
    const double cover = s.radius * random.uniform(2.2, 6.0);
    return shoot(s, random, [&](render::LevelImage& image) {
        forEach(image, [&](int x, int y, double& level) {
            const double across = (x - p.x) * std::cos(turn) + (y - p.y) * std::sin(turn);
            const double along = (y - p.y) * std::cos(turn) - (x - p.x) * std::sin(turn);
            level = across > -cover ? gray + slope * along : level;
        });
    });
}

TrialImage otherPolarity(RandomSource& random) {
    TrialImage trial = shoot(stationOf(random, 5.0), random);
    trial.pattern.polarity = 1 - trial.pattern.polarity;
    return trial;
}

TrialImage otherPlate(RandomSource& random) {
    Station s = stationOf(random, 5.0);
    const int kind = between(random, 0, 2);
    if (kind == 0) {
        s.plate.shrunkMarkers = {{0, 0}, {s.plate.markerX, 0}, {0, s.plate.markerY}};
    }
    TrialImage trial = shoot(s, random);
    if (kind == 1) {
        trial.pattern.d3 *= random.uniform(1.3, 1.7);
    }
    if (kind == 2) {  // of many more dots
        const int more = between(random, 4, 8);
        trial.pattern.d0 += 2 * more * trial.pattern.d4;
        trial.pattern.d1 += 2 * more * trial.pattern.d5;
        trial.pattern.minDots = static_cast<std::int32_t>((trial.pattern.d0 / trial.pattern.d4 + 1.0) *
                                                          (trial.pattern.d1 / trial.pattern.d5 + 1.0) / 2.0);
    }
    return trial;
}

TrialImage markerDistance(RandomSource& random) {
    TrialImage trial = shoot(stationOf(random, 5.0), random);
    const bool isX = chance(random, 0.5);
    const double more = (chance(random, 0.5) ? 1.0 : 2.0) * (isX ? trial.pattern.d4 : trial.pattern.d5);
    double& distance = isX ? trial.pattern.d6 : trial.pattern.d7;
    distance += distance > 2.5 * more && chance(random, 0.5) ? -more : more;
    return trial;
}

TrialImage smallDots(RandomSource& random) {
    Station s = stationOf(random, 5.0);
    const double factor = random.uniform(1.5, 2.4) / s.radius;
    s.aim.scale *= factor;
    s.radius *= factor;
    s.optics.blurSigma = random.uniform(0.35, 0.55);
    s.optics.noiseSigma = random.uniform(0.3, 2.0);
    return shoot(s, random);
}

TrialImage tilted(RandomSource& random) {
    Station s = stationOf(random, 7.0);
    s.aim.tiltDegrees = random.uniform(72.0, 77.0);
    return shoot(s, random);
}

// A small plate in a large image, as bright a ground elsewhere.
TrialImage notSeparate(RandomSource& random) {
    Station s = stationOf(random, 10.0);
    const double factor = 5.8 / s.radius;
    s.aim.scale *= factor;
    s.radius *= factor;
    s.optics.blurSigma = random.uniform(0.4, 0.7);
    return shoot(s, random);
}

// Light that falls off so far that the ground here is darker than the dots there.
TrialImage unevenLight(RandomSource& random) {
    Station s = stationOf(random, 6.0);
    const double angle = random.uniform(0.0, 2.0 * std::numbers::pi);
    const bool isLight = s.plate.polarity == render::Polarity::lightDots;
    s.optics.levels = {isLight ? 230.0 : 100.0, isLight ? 100.0 : 230.0, isLight ? 230.0 : 100.0};
    s.optics.light = {};
    s.optics.noiseSigma = random.uniform(0.3, 1.0);
    const double reach = reachOf(s.plate) * s.aim.scale;
    return shoot(s, random, [&](render::LevelImage& image) {
        forEach(image, [&](int x, int y, double& level) {
            const double along = ((x - s.camera.cx) * std::cos(angle) + (y - s.camera.cy) * std::sin(angle)) / reach;
            level *= std::exp(-1.4 * (std::clamp(along, -1.0, 1.0) + 1.0));
        });
    });
}

struct Fault {
    ZelmMeasureImageCause cause;
    TrialImage (*make)(RandomSource&);
};

const std::vector<Fault>& faults() {
    static const std::vector<Fault> list{{ZELM_MEASURE_IMAGE_NO_PLATE, noPlate},
                                         {ZELM_MEASURE_IMAGE_MARKERS, hiddenMarker},
                                         {ZELM_MEASURE_IMAGE_CUT_OFF, cutOff},
                                         {ZELM_MEASURE_IMAGE_OUT_OF_FOCUS, outOfFocus},
                                         {ZELM_MEASURE_IMAGE_MOTION, motion},
                                         {ZELM_MEASURE_IMAGE_SATURATED, saturated},
                                         {ZELM_MEASURE_IMAGE_DARK, dark},
                                         {ZELM_MEASURE_IMAGE_LOW_CONTRAST, lowContrast},
                                         {ZELM_MEASURE_IMAGE_REFLECTION, reflection},
                                         {ZELM_MEASURE_IMAGE_COVERED, covered},
                                         {ZELM_MEASURE_IMAGE_POLARITY, otherPolarity},
                                         {ZELM_MEASURE_IMAGE_OTHER_PLATE, otherPlate},
                                         {ZELM_MEASURE_IMAGE_MARKER_DISTANCE, markerDistance},
                                         {ZELM_MEASURE_IMAGE_SMALL_DOTS, smallDots},
                                         {ZELM_MEASURE_IMAGE_TILTED, tilted},
                                         {ZELM_MEASURE_IMAGE_NOT_SEPARATE, notSeparate},
                                         {ZELM_MEASURE_IMAGE_UNEVEN_LIGHT, unevenLight}};
    return list;
}

ZelmMeasureImage recordOf(const TrialImage& trial) {
    return {trial.image.pixels.data(), trial.image.width, trial.image.height, trial.image.width};
}

bool isRead(const TrialImage& trial) {
    const ZelmMeasureImage image = recordOf(trial);
    std::int64_t placed = 0;
    return zelmMeasurePlateDots(&image, &trial.pattern, nullptr, nullptr, &placed, nullptr) >= 0;
}

}  // namespace

const std::vector<ZelmMeasureImageCause>& trialCauses() {
    static const std::vector<ZelmMeasureImageCause> causes = [] {
        std::vector<ZelmMeasureImageCause> list;
        list.reserve(faults().size());
        std::transform(faults().begin(), faults().end(), std::back_inserter(list),
                       [](const Fault& fault) { return fault.cause; });
        return list;
    }();
    return causes;
}

TrialImage goodImage(std::uint64_t seed) {
    RandomSource random(seed);
    return shoot(stationOf(random, 5.0), random);
}

std::optional<TrialImage> faultyImage(ZelmMeasureImageCause cause, std::uint64_t seed) {
    RandomSource random(seed * 1000 + static_cast<std::uint64_t>(cause));
    const auto fault =
        std::find_if(faults().begin(), faults().end(), [cause](const Fault& f) { return f.cause == cause; });
    TrialImage trial = fault->make(random);
    return isRead(trial) ? std::nullopt : std::optional(std::move(trial));
}

ZelmMeasureImageDiagnosis diagnosisOf(const TrialImage& trial) {
    ZelmMeasureImageDiagnosis diagnosis{};
    diagnosis.size = static_cast<std::int32_t>(sizeof diagnosis);
    const ZelmMeasureImage image = recordOf(trial);
    zelmMeasureDiagnoseImage(&image, &trial.pattern, nullptr, &diagnosis, nullptr);
    return diagnosis;
}

}  // namespace zelm::accuracy
