#include "readingAccuracy.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "randomSource.h"
#include "renderView.h"
#include "zelmLib.h"

namespace zelm::accuracy {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kNearPixels = 0.5;  // a dot farther than this from its truth is wrong

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

void judge(const ReadingCase& setting, const ReadingView& seen, const std::vector<Point2d>& dots,
           ReadingFigures& figures, Sums& sums) {
    std::vector<const render::DotTruth*> taken;
    for (const Point2d& dot : dots) {
        double distance = 0.0;
        const render::DotTruth& truth = nearestTruth(seen.truths, dot, distance);
        if (distance > kNearPixels || std::find(taken.begin(), taken.end(), &truth) != taken.end()) {
            ++figures.wrong;
            continue;
        }
        taken.push_back(&truth);
        ++figures.found;
        figures.worst = std::max(figures.worst, distance);
        const double contrast = setting.contrast * seen.optics.light.at(seen.camera, dot.x, dot.y);
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
        const ReadingView seen = readingView(setting, view, random);
        const render::LevelImage levels = render::renderLevels(seen.plate, seen.camera, seen.pose, seen.optics);
        PlateReader reader(seen);
        for (int draw = 0; draw < setting.noiseDraws; ++draw) {
            const auto seed = setting.seed + 1000U * static_cast<unsigned>(view) + static_cast<unsigned>(draw);
            const render::GrayImage image = render::digitise(levels, setting.noise, seed);
            ++figures.images;
            figures.dots += static_cast<int>(seen.truths.size());
            if (reader.read(image, dots)) {
                ++figures.imagesRead;
                judge(setting, seen, dots, figures, sums);
            }
        }
    }
    if (figures.found > 0) {
        figures.rms = std::sqrt(sums.error / figures.found);
        figures.bound = std::sqrt(sums.bound / figures.found);
        figures.excess = std::sqrt(sums.excess / figures.found);
    }
    return figures;
}

CentreMiss ellipseCentreMiss(double radius, double tiltDegrees, double k1, double k2, bool markers) {
    ReadingCase setting;
    setting.radius = radius;
    setting.k1 = k1;
    setting.k2 = k2;
    render::RandomSource random(7);
    CentreMiss miss;
    int count = 0;
    for (int view = 0; view < 8; ++view) {
        for (const render::DotTruth& truth : uncroppedTruths(setting, tiltDegrees, random)) {
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
