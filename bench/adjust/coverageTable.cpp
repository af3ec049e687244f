#include "coverageTable.h"

#include <zelmMeasure.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "adjustScene.h"
#include "adjuster.h"
#include "expandedUncertainty.h"
#include "fault.h"

namespace zelmbench {
namespace {

using namespace zelm::measure;
using zelmtest::AdjustScene;
using zelmtest::AdjustSceneOptions;
using zelmtest::Random;

constexpr int kPoints = 10;          // of a rig, and half as many lengths
constexpr double kMinInImage = 4.0;  // pixels from the edge

struct Share {
    long count = 0;
    long held = 0;
    void add(bool isHeld) {
        ++count;
        held += isHeld ? 1 : 0;
    }
    [[nodiscard]] double percent() const { return 100.0 * static_cast<double>(held) / static_cast<double>(count); }
};

struct Coverage {
    Share intrinsics, points, lengths;
    int rigs = 0;
    int refused = 0;
};

AdjustSceneOptions randomRig(std::uint64_t seed, Random& random) {
    static constexpr std::array<std::array<int, 2>, 4> kModels{{{0, 0}, {1, 1}, {0, 1}, {1, 0}}};
    AdjustSceneOptions o;
    o.seed = seed;
    o.models = kModels[static_cast<std::size_t>(random.integer(0, 3))];
    const double focal = random.uniform(900.0, 3500.0);
    o.focal = {focal, focal * random.uniform(0.9, 1.1)};
    // The plate of 120 units takes 45 to 65 % of the image's width.
    o.distance = 120.0 * focal / (zelmtest::kSceneWidth * random.uniform(0.45, 0.65));
    o.convergence = random.uniform(0.15, 0.8);
    o.views = random.integer(6, 30);
    o.maxTilt = random.uniform(0.45, 0.8);
    o.k1 = random.uniform(-0.25, 0.1);
    o.k2 = random.uniform(-0.05, 0.08);
    o.skewed = random.uniform() < 0.5;
    return o;
}

// Every second dot, for time.
void thin(AdjustScene& scene) {
    for (AdjustView& view : scene.views) {
        for (auto& list : view.dots) {
            std::erase_if(list, [](const DotObservation& dot) {
                return dot.kind == kPlainDot && (dot.index.x + dot.index.y) % 2 != 0;
            });
        }
    }
}

bool isInside(Point2d p) {
    return p.x > kMinInImage && p.y > kMinInImage && p.x < zelmtest::kSceneWidth - kMinInImage &&
           p.y < zelmtest::kSceneHeight - kMinInImage;
}

void addPoints(const Rig& truth, ZelmMeasureRig* rig, double noise, bool isKnown, Random& random, Coverage& c) {
    std::vector<Point3d> points;
    std::vector<double> left;
    std::vector<double> right;
    for (int tries = 0; points.size() < kPoints && tries < 1000; ++tries) {
        const Point3d X{random.uniform(-60.0, 60.0), random.uniform(-50.0, 50.0), random.uniform(-40.0, 40.0)};
        Point2d l{};
        Point2d r{};
        zelm2ViewChange3Dto2D(truth.calib.get(), 'L', &X, &l);
        zelm2ViewChange3Dto2D(truth.calib.get(), 'R', &X, &r);
        if (isInside(l) && isInside(r)) {
            points.push_back(X);
            left.insert(left.end(), {l.x + noise * random.normal(), l.y + noise * random.normal()});
            right.insert(right.end(), {r.x + noise * random.normal(), r.y + noise * random.normal()});
        }
    }
    const std::size_t count = points.size();
    std::vector<double> positions(3 * count), image(6 * count), calibration(6 * count), lengths(count), expanded(count);
    std::vector<std::int32_t> statuses(count);
    ZelmMeasurePixelNoise pixels{};
    pixels.size = sizeof pixels;
    pixels.sigma = isKnown ? noise : 0.0;
    ZelmMeasurePointCovariances record{};
    record.size = sizeof record;
    record.statuses = statuses.data();
    record.positions = positions.data();
    record.image = image.data();
    record.calibration = calibration.data();
    if (zelmMeasurePointCovariance(rig, static_cast<std::int64_t>(count), left.data(), right.data(), &pixels,
                                   &record) != ZELM_OK) {
        return;
    }
    const double k = coverageFactor(rig->rig.covariance->freedom);
    static constexpr std::array<std::size_t, 3> kDiagonal{0, 3, 5};
    for (std::size_t i = 0; i < count; ++i) {
        const std::array<double, 3> X{points[i].x, points[i].y, points[i].z};
        for (std::size_t axis = 0; axis < 3 && statuses[i] == ZELM_MEASURE_POINT_OK; ++axis) {
            const std::size_t at = 6 * i + kDiagonal[axis];
            c.points.add(std::fabs(positions[3 * i + axis] - X[axis]) <= k * std::sqrt(image[at] + calibration[at]));
        }
    }
    std::vector<std::int64_t> ends;
    for (std::size_t i = 0; i + 1 < count; i += 2) {
        ends.insert(ends.end(), {static_cast<std::int64_t>(i), static_cast<std::int64_t>(i + 1)});
    }
    ZelmMeasureLengths out{};
    out.size = sizeof out;
    out.statuses = statuses.data();
    out.lengths = lengths.data();
    out.expanded = expanded.data();
    const auto number = static_cast<std::int64_t>(ends.size() / 2);
    if (zelmMeasureLengths(rig, static_cast<std::int64_t>(count), left.data(), right.data(), &pixels, number,
                           ends.data(), &out) != ZELM_OK) {
        return;
    }
    for (std::size_t i = 0; i < ends.size() / 2; ++i) {
        const Point3d& a = points[2 * i];
        const Point3d& b = points[2 * i + 1];
        if (statuses[i] == ZELM_MEASURE_LENGTH_OK) {
            c.lengths.add(std::fabs(lengths[i] - std::hypot(a.x - b.x, a.y - b.y, a.z - b.z)) <= expanded[i]);
        }
    }
}

void addRig(std::uint64_t seed, bool isKnown, Coverage& c) {
    Random random(seed);
    AdjustScene scene = zelmtest::makeAdjustScene(randomRig(seed, random));
    thin(scene);
    const double noise = std::exp(random.uniform(std::log(0.005), std::log(0.1)));
    AdjustOptions options;
    options.knownNoise = isKnown ? noise : 0.0;
    AdjustState state = scene.start(random);
    std::vector<AdjustView> views = scene.noisy(noise, random);
    try {
        const AdjustSummary summary = adjust(state, views, options);
        ZelmMeasureRig rig;
        rig.rig = rigOfState(scene, state);
        rig.rig.covariance = covarianceOf(state, views, options, summary).rig;
        rig.isOpen = true;
        const Rig truth = rigOfState(scene, scene.truth);
        const auto errors = zelmtest::rigErrors(truth, rig.rig);
        const double k = coverageFactor(rig.rig.covariance->freedom);
        for (std::size_t i = 0; i < kRelativeRotation; ++i) {
            c.intrinsics.add(std::fabs(errors[i]) <=
                             k * std::sqrt(rig.rig.covariance->matrix[i * (kRigParameters + 1)]));
        }
        addPoints(truth, &rig, noise, isKnown, random, c);
        ++c.rigs;
    } catch (const Fault& fault) {
        ++c.refused;
        std::fprintf(stderr, "rig %llu: %s\n", static_cast<unsigned long long>(seed), fault.what());
    }
}

}  // namespace

void printCoverage(int rigs) {
    std::printf("| noise | rigs | intrinsics | points | lengths |\n|---|---:|---:|---:|---:|\n");
    for (const bool isKnown : {true, false}) {
        Coverage c;
        for (int i = 0; i < rigs; ++i) {
            addRig(static_cast<std::uint64_t>(i + 1), isKnown, c);
        }
        std::printf("| %s | %d | %.1f %% of %ld | %.1f %% of %ld | %.1f %% of %ld |\n",
                    isKnown ? "known" : "from the residuals", c.rigs, c.intrinsics.percent(), c.intrinsics.count,
                    c.points.percent(), c.points.count, c.lengths.percent(), c.lengths.count);
        std::fflush(stdout);
        if (c.refused > 0) {
            std::printf("\n%d rigs were refused.\n\n", c.refused);
        }
    }
}

}  // namespace zelmbench
