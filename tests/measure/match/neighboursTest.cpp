// Neighbours by their place against brute force.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "neighbours.h"
#include "random.h"

namespace zelm::measure {
namespace {

using zelmtest::Random;

constexpr int kWidth = 200;
constexpr int kHeight = 120;
constexpr std::size_t kNobody = static_cast<std::size_t>(-1);

std::vector<std::size_t> bruteForce(const std::vector<Point2d>& points, Point2d place, std::size_t self,
                                    std::size_t most, const std::vector<char>& usable, double reach) {
    const auto squared = [&](std::size_t i) {
        const double dx = points[i].x - place.x;
        const double dy = points[i].y - place.y;
        return dx * dx + dy * dy;
    };
    std::vector<std::size_t> near;
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (i != self && usable[i] != 0 && squared(i) <= reach * reach) {
            near.push_back(i);
        }
    }
    std::stable_sort(near.begin(), near.end(), [&](std::size_t a, std::size_t b) { return squared(a) < squared(b); });
    near.resize(std::min(most, near.size()));
    return near;
}

// Points anywhere, some outside the image, some twice, some on a grid, where many are equally far.
std::vector<Point2d> manyPoints() {
    Random random(31);
    std::vector<Point2d> points;
    for (int i = 0; i < 300; ++i) {
        points.push_back({random.uniform(-20.0, kWidth + 20.0), random.uniform(-20.0, kHeight + 20.0)});
    }
    for (int y = 10; y < 60; y += 5) {
        for (int x = 10; x < 60; x += 5) {
            points.push_back({static_cast<double>(x), static_cast<double>(y)});
        }
    }
    points.push_back(points[7]);
    points.push_back(points[7]);
    points.push_back({1e9, -1e9});
    return points;
}

std::vector<char> someUsable(std::size_t count) {
    Random random(32);
    std::vector<char> usable(count);
    std::generate(usable.begin(), usable.end(), [&] { return static_cast<char>(random.uniform() < 0.7); });
    return usable;
}

TEST(MeasureNeighbours, AreThoseOfBruteForce) {
    const std::vector<Point2d> points = manyPoints();
    const std::vector<char> usable = someUsable(points.size());
    std::vector<std::size_t> found;
    for (const double reach : {0.5, 5.0, 7.3, 40.0, 1000.0}) {
        SCOPED_TRACE(reach);
        const Neighbours neighbours(points, kWidth, kHeight, reach);
        for (const std::size_t most : {std::size_t{1}, std::size_t{6}, std::size_t{1000}}) {
            for (std::size_t i = 0; i < points.size(); ++i) {
                neighbours.around(i, most, usable, found);
                ASSERT_EQ(found, bruteForce(points, points[i], i, most, usable, reach)) << i;
            }
            Random random(33);
            for (int i = 0; i < 200; ++i) {
                const Point2d place{random.uniform(-40.0, kWidth + 40.0), random.uniform(-40.0, kHeight + 40.0)};
                neighbours.around(place, most, usable, found);
                ASSERT_EQ(found, bruteForce(points, place, kNobody, most, usable, reach)) << place.x << ' ' << place.y;
            }
        }
    }
}

TEST(MeasureNeighbours, EquallyNearOnesComeInTheirOrder) {
    const std::vector<Point2d> points{{10.0, 10.0}, {11.0, 10.0}, {10.0, 11.0}, {9.0, 10.0}, {10.0, 9.0}, {10.0, 10.0}};
    const Neighbours neighbours(points, 20, 20, 4.0);
    std::vector<std::size_t> found;
    neighbours.around(std::size_t{0}, 3, std::vector<char>(6, 1), found);
    EXPECT_EQ(found, (std::vector<std::size_t>{5, 1, 2}));
}

TEST(MeasureNeighbours, NoneAreFoundAmongNone) {
    const std::vector<Point2d> points;
    const Neighbours neighbours(points, kWidth, kHeight, 10.0);
    std::vector<std::size_t> found{1, 2};
    neighbours.around(Point2d{5.0, 5.0}, 3, {}, found);
    EXPECT_TRUE(found.empty());
}

TEST(MeasureNeighbours, PlacesThatAreNoNumbersHaveNone) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    const double infinite = std::numeric_limits<double>::infinity();
    const std::vector<Point2d> points{{none, 5.0}, {5.0, none}, {infinite, -infinite}, {5.0, 5.0}, {6.0, 5.0}};
    const std::vector<char> usable(points.size(), 1);
    const Neighbours neighbours(points, kWidth, kHeight, 10.0);
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < 3; ++i) {
        neighbours.around(i, 5, usable, found);
        EXPECT_TRUE(found.empty());
    }
    neighbours.around(std::size_t{3}, 5, usable, found);
    EXPECT_EQ(found, (std::vector<std::size_t>{4}));
}

TEST(MeasureNeighbours, TinyReachesTakeNoMoreMemory) {
    const std::vector<Point2d> points = manyPoints();
    const std::vector<char> usable(points.size(), 1);
    for (const double reach : {1e-3, 1e-9, 1e-300}) {
        const Neighbours neighbours(points, 1280, 960, reach);
        std::vector<std::size_t> found;
        for (std::size_t i = 0; i < points.size(); ++i) {
            neighbours.around(i, 5, usable, found);
            ASSERT_EQ(found, bruteForce(points, points[i], i, 5, usable, reach)) << i;
        }
    }
}

}  // namespace
}  // namespace zelm::measure
