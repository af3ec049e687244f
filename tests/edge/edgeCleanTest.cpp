// Profiles without noise: plateaus and ramps of any slope, set beside a plain walk over runs of flat steps. The walk,
// the choice and the sub-pixel step are written here again, independently of the library.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "edgeScene.h"
#include "edgeSelect.h"
#include "edgeSubpixel.h"

namespace {

using zelmtest::findEdge;
using zelmtest::Found;
using zelmtest::GrayScene;
using zelmtest::kUsual;
using zelmtest::Random;

struct Run {
    int begin;
    int end;
};

// The runs of at least minFlatRun steps that are within the tolerance.
std::vector<Run> flatRuns(const std::vector<int>& q, const ZelmEdge1dParam& param) {
    std::vector<Run> runs;
    const int n = static_cast<int>(q.size());
    for (int i = 0; i < n;) {
        int j = i;
        while (j + 1 < n &&
               std::abs(q[static_cast<std::size_t>(j) + 1] - q[static_cast<std::size_t>(j)]) <= param.flatTolerance) {
            ++j;
        }
        if (j - i >= param.minFlatRun) {
            runs.push_back({i, j});
        }
        i = j + 1;
    }
    return runs;
}

struct Edge {
    bool found = false;
    int a = 0;
    int b = 0;
    int difference = 0;
};

int roundedMean(const std::vector<int>& q, int begin, int end) {
    double sum = 0.0;
    for (int i = begin; i <= end; ++i) {
        sum += q[static_cast<std::size_t>(i)];
    }
    return static_cast<int>(std::floor(sum / (end - begin + 1) + 0.5));
}

bool preferred(const Edge& edge, const Edge& best, int32_t selector, double length) {
    const int difference = std::abs(edge.difference);
    const int bestDifference = std::abs(best.difference);
    switch (selector) {
        case 2:
            return false;
        case 3:
            return difference * (best.b - best.a) > bestDifference * (edge.b - edge.a);
        case 4:
            return std::fabs(0.5 * (edge.a + edge.b) - 0.5 * length) <
                   std::fabs(0.5 * (best.a + best.b) - 0.5 * length);
        default:
            return difference > bestDifference;
    }
}

// The edge between two neighbouring runs that the selector prefers.
Edge plainEdge(const std::vector<int>& q, int32_t sign, const ZelmEdge1dParam& param, double length) {
    const auto [low, high] = std::minmax_element(q.begin(), q.end());
    const int threshold = std::max((*high - *low) * param.contrastPercent / 100, param.minContrast);
    const std::vector<Run> runs = flatRuns(q, param);
    const int reach = param.selector == 0 ? 0 : param.minFlatRun;
    Edge best;
    for (std::size_t k = 1; k < runs.size(); ++k) {
        Edge edge = {true, runs[k - 1].end, runs[k].begin, 0};
        edge.difference = roundedMean(q, edge.b, std::min(edge.b + reach, runs[k].end)) -
                          roundedMean(q, std::max(edge.a - reach, runs[k - 1].begin), edge.a);
        const int sense = (edge.difference > 0) - (edge.difference < 0);
        const bool admissible = sense != 0 && (sign == 0 || sign == sense) && std::abs(edge.difference) >= threshold;
        if (admissible && (!best.found || preferred(edge, best, param.selector, length))) {
            best = edge;
        }
    }
    return best;
}

// The interval as the sub-pixel step takes it. It reaches one step into a plateau that still changes in the sense of
// the transition there: the foot of a rounded transition.
void takeInFeet(const std::vector<int>& q, Edge& edge) {
    const int sense = edge.difference > 0 ? 1 : -1;
    const auto step = [&](int i) {
        const auto at = static_cast<std::size_t>(i);
        return i < 0 || at + 1 >= q.size() ? 0 : sense * (q[at + 1] - q[at]);
    };
    const int before = step(edge.a - 1);
    const int after = step(edge.b);
    edge.a -= before > 0 ? 1 : 0;
    edge.b += after > 0 ? 1 : 0;
}

struct Place {
    bool found = false;
    double position = 0.0;
    bool tied = false;  // another place is as steep, but for the rounding of sums
};

// The steepest place in [a, b], the profile held constant outside.
Place plainPlace(const std::vector<double>& gray, Edge edge) {
    const auto kernel = zelm::edgeKernel(7);  // compared with its formula in edgeSubpixelTest.cpp
    int a = edge.a;
    int b = edge.b;
    if (b + 1 - a < 5) {
        const int c = (a + b + 20) / 2 - 10;
        a = c - 2;
        b = c + 2;
    }
    const int last = static_cast<int>(gray.size()) - 1;
    const auto derivative = [&](int i) {
        double sum = 0.0;
        for (int k = 0; k < 7; ++k) {
            const int at = std::clamp(std::clamp(i + k - 3, a, b), 0, last);
            sum += kernel[static_cast<std::size_t>(k)] * gray[static_cast<std::size_t>(at)];
        }
        return std::fabs(sum);
    };
    int k = a + 1;
    for (int i = a + 1; i < b; ++i) {
        k = derivative(i) > derivative(k) ? i : k;
    }
    Place place;
    for (int i = a + 1; i < b; ++i) {
        place.tied = place.tied || (i != k && derivative(i) > derivative(k) - 1e-9);
    }
    const double f0 = derivative(k);
    const double fm = derivative(k - 1);
    const double fp = derivative(k + 1);
    if (2.0 * f0 - fm - fp < 1e-10) {
        return place;
    }
    const double c = std::log((fm + 1e-10) * (fp + 1e-10) / ((f0 + 1e-10) * (f0 + 1e-10)));
    const double delta = 0.5 * std::log((fm + 1e-10) / (fp + 1e-10)) / c;
    place.position = k + delta;
    place.found = std::fabs(delta) <= 0.5000000001;
    return place;
}

// Plateaus of 3 to 10 samples and between them one to three ramps of one sense, rounded to gray levels.
std::vector<int> plateausAndRamps(Random& random, double gentlest) {
    std::vector<int> q;
    double level = random.uniform(10.0, 240.0);
    const auto put = [&](int count, double slope) {
        for (int i = 0; i < count && level + slope >= 2.0 && level + slope <= 253.0; ++i) {
            level += slope;
            q.push_back(static_cast<int>(level + 0.5));
        }
    };
    put(random.integer(3, 10), 0.0);
    const int edges = random.integer(1, 4);
    for (int edge = 0; edge < edges; ++edge) {
        const double sense = level < 60.0 || (level < 195.0 && random.uniform() < 0.5) ? 1.0 : -1.0;
        const int ramps = random.integer(1, 3);
        for (int ramp = 0; ramp < ramps; ++ramp) {
            put(random.integer(1, 14), sense * gentlest * std::exp(random.uniform(0.0, std::log(40.0 / gentlest))));
        }
        put(random.integer(3, 10), 0.0);
    }
    put(3, 0.0);
    return q;
}

class EdgeClean : public testing::TestWithParam<double> {};

TEST_P(EdgeClean, EverySelectorChoosesTheEdgeOfThePlainWalk) {
    Random random(51);
    int found = 0;
    for (int trial = 0; trial < 100000; ++trial) {
        const std::vector<int> q = plateausAndRamps(random, GetParam());
        ZelmEdge1dParam param = kUsual;
        param.selector = trial % 5;
        const int32_t sign = random.integer(-1, 1);
        const double length = static_cast<double>(q.size()) - 1.0;
        const auto [low, high] = std::minmax_element(q.begin(), q.end());
        const zelm::EdgeRule rule = {.selector = param.selector,
                                     .sign = sign,
                                     .threshold = std::max((*high - *low) * 30 / 100, 5),
                                     .flatTolerance = 1,
                                     .minFlatRun = 2,
                                     .doubledCentre = length};
        Edge expected = plainEdge(q, sign, param, length);
        if (expected.found) {
            ++found;
            zelm::EdgeCandidate edge = {};
            ASSERT_TRUE(zelm::selectEdge(q, rule, edge)) << trial;
            takeInFeet(q, expected);
            ASSERT_EQ(edge.a, expected.a) << trial;
            ASSERT_EQ(edge.b, expected.b) << trial;
            ASSERT_EQ(edge.difference, expected.difference) << trial;
        }
    }
    EXPECT_GT(found, 60000);
}

TEST_P(EdgeClean, ItsPositionIsThatOfThePlainSteps) {
    // Every second segment starts between two pixels, so that its profile is no whole gray levels.
    Random random(52);
    int found = 0;
    for (int trial = 0; trial < 100000; ++trial) {
        const std::vector<int> columns = plateausAndRamps(random, GetParam());
        const double start = trial % 2 == 0 ? 0.0 : random.uniform();
        const double length = static_cast<double>(columns.size()) - 1.0 - start;
        std::vector<double> gray;
        std::vector<int> q;
        for (int i = 0; i <= static_cast<int>(length); ++i) {
            const auto left = static_cast<std::size_t>(i);
            gray.push_back((1.0 - start) * columns[left] + start * columns[std::min(left + 1, columns.size() - 1)]);
            q.push_back(static_cast<int>(gray.back() + 0.5));
        }
        ZelmEdge1dParam param = kUsual;
        param.selector = trial % 5;
        const int32_t sign = random.integer(-1, 1);
        Edge edge = plainEdge(q, sign, param, length);
        if (!edge.found) {
            continue;
        }
        takeInFeet(q, edge);
        const Place place = plainPlace(gray, edge);
        if (start > 0.0 && place.tied) {
            continue;
        }
        const GrayScene scene(columns);
        const Found result = findEdge(scene.image, {start, 3.0}, {start + length, 3.0}, sign, param);
        ASSERT_EQ(result.result, place.found ? 1 : 0) << trial;
        if (place.found) {
            ++found;
            ASSERT_NEAR(result.point.x, start + place.position, 1e-9) << trial;
        }
    }
    EXPECT_GT(found, 60000);
}

// The gentlest slope in gray levels a sample: all of them changing, or some of them within the tolerance.
INSTANTIATE_TEST_SUITE_P(Slopes, EdgeClean, testing::Values(2.01, 0.3));

}  // namespace
