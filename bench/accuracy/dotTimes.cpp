// What placing a dot by all its pixels takes, through the interface.
#include <zelmMeasure.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <stdexcept>
#include <vector>

#include "dotShapes.h"
#include "dotTables.h"
#include "readingViews.h"

namespace zelm::accuracy {
namespace {

constexpr int kRepeats = 20;

double cpuSeconds() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

// The least of some runs over the dots of a view, which are half a pixel aside of where they are predicted.
double microsecondsOf(double radius, double blur) {
    ReadingCase setting;
    setting.radius = radius;
    setting.blur = blur;
    setting.noise = 2.0;
    render::RandomSource random(setting.seed);
    const ReadingView seen = readingView(setting, 0, random);
    const render::LevelImage levels = render::renderLevels(seen.plate, seen.camera, seen.pose, seen.optics);
    const render::GrayImage image = render::digitise(levels, setting.noise, setting.seed);
    std::vector<double> shapes;
    std::vector<double> neighbours;
    for (const render::DotTruth& dot : seen.truths) {
        const measure::DotShape s = zelmtest::shapeOf(dot.ellipse, 0.4, -0.3, 1.02);
        shapes.insert(shapes.end(), {s.centre.x, s.centre.y, s.axes[0], s.axes[1], s.axes[2], s.axes[3]});
        neighbours.push_back(3.0 * dot.radius);
    }
    const std::size_t n = neighbours.size();
    std::vector<double> centres(2 * n);
    ZelmMeasureRefinedDots dots{};
    dots.size = sizeof dots;
    dots.centres = centres.data();
    const ZelmMeasureImage record = zelmtest::imageOf(image);
    const std::int32_t polarity = zelmtest::polarityOf(seen.plate) == measure::DotPolarity::bright ? 1 : 0;
    double least = HUGE_VAL;
    for (int k = 0; k < kRepeats; ++k) {
        const double start = cpuSeconds();
        if (zelmMeasureRefineDots(&record, static_cast<std::int64_t>(n), shapes.data(), neighbours.data(), polarity,
                                  &dots) != ZELM_OK) {
            throw std::runtime_error("the dots cannot be refined");
        }
        least = std::min(least, cpuSeconds() - start);
    }
    return 1e6 * least / static_cast<double>(n);
}

}  // namespace

void printDotTimes() {
    std::printf("\n### Microseconds of one core, a dot\n\n");
    std::printf("| radius | blur 0.5 | blur 0.8 | blur 1.2 |\n|---:|---:|---:|---:|\n");
    for (const double radius : {5.0, 10.0, 15.0, 20.0}) {
        std::printf("| %.0f |", radius);
        for (const double blur : {0.5, 0.8, 1.2}) {
            std::printf(" %.0f |", microsecondsOf(radius, blur));
            std::fflush(stdout);
        }
        std::printf("\n");
    }
}

}  // namespace zelm::accuracy
