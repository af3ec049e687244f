// What survives image noise: the share of rays found on dots, as a pattern reader casts them (twenty rays a dot, from 3
// pixels beyond the centre to two radii on the other side), over radius, blur, contrast, tilt, light and noise. A dot
// counts only when all its rays are found. Dots are rendered in closed form, independently of the library.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>

#include "edgeScene.h"

namespace {

using zelmtest::blurredStep;
using zelmtest::Found;
using zelmtest::GrayScene;
using zelmtest::Random;

constexpr double kPi = 3.14159265358979323846;

// An ellipse with semi-axes a, b at an angle, blurred by a Gaussian.
struct Dot {
    double x, y, a, b, angle, blur;

    // Its blurred coverage at a point: along the minor axis in closed form, along the major axis t = a sin(u) by the
    // midpoint rule over u, which converges quickly because the integrand vanishes with all that matters at the ends.
    [[nodiscard]] double coverage(double px, double py) const {
        const double c = std::cos(angle);
        const double s = std::sin(angle);
        const double u = c * (px - x) + s * (py - y);
        const double v = -s * (px - x) + c * (py - y);
        const double reach = 4.5 * blur;
        if (std::fabs(u) > a + reach || std::fabs(v) > b + reach) {
            return 0.0;
        }
        const double low = std::asin(std::clamp((u - reach) / a, -1.0, 1.0));
        const double high = std::asin(std::clamp((u + reach) / a, -1.0, 1.0));
        constexpr int kNodes = 24;
        const double width = (high - low) / kNodes;
        double sum = 0.0;
        for (int i = 0; i < kNodes; ++i) {
            const double w = low + (i + 0.5) * width;
            const double z = (a * std::sin(w) - u) / blur;
            const double half = b * std::cos(w);
            sum += std::exp(-0.5 * z * z) * std::cos(w) * (blurredStep(half - v, blur) - blurredStep(-half - v, blur));
        }
        return sum * width * a / (blur * std::sqrt(2.0 * kPi));
    }
};

struct Shares {
    int rays = 0;
    int raysLost = 0;
    int dots = 0;
    int dotsLost = 0;
    int wild = 0;  // found rays more than a pixel from the dot's outline
};

struct NoiseCase {
    double radius;
    double blur;
    double contrast;
    double gradient;  // relative change of the light a pixel
    double sigma;     // gray levels
};

// Relative distance of a point from the outline in pixels, to first order.
double outlineDistance(const Dot& dot, Point2d p) {
    const double c = std::cos(dot.angle);
    const double s = std::sin(dot.angle);
    const double u = (c * (p.x - dot.x) + s * (p.y - dot.y)) / dot.a;
    const double v = (-s * (p.x - dot.x) + c * (p.y - dot.y)) / dot.b;
    return (u * u + v * v - 1.0) / (2.0 * std::hypot(u / dot.a, v / dot.b));
}

void castRays(const GrayScene& scene, const Dot& dot, Point2d centre, bool light, Shares& shares) {
    const double r = std::sqrt(dot.a * dot.b);
    bool whole = true;
    for (int k = 0; k < 20; ++k) {
        const double dx = std::cos(k * kPi / 10.0);
        const double dy = std::sin(k * kPi / 10.0);
        const Point2d p1 = {centre.x - 3.0 * dx, centre.y - 3.0 * dy};
        const Point2d p2 = {centre.x + 2.0 * r * dx, centre.y + 2.0 * r * dy};
        Point2d edge = {};
        double strength = 0.0;
        ++shares.rays;
        if (zelmEdge1dGenDiffMax(&scene.image, &p1, &p2, light ? -1 : 1, &edge, &strength) != 1) {
            ++shares.raysLost;
            whole = false;
        } else if (std::fabs(outlineDistance(dot, edge)) > 1.0) {
            ++shares.wild;
        }
    }
    ++shares.dots;
    shares.dotsLost += whole ? 0 : 1;
}

Shares readDots(const NoiseCase& c, int dots, std::uint64_t seed) {
    Random random(seed);
    Shares shares;
    const int size = static_cast<int>(4.0 * c.radius) + 24;
    for (int i = 0; i < dots; ++i) {
        const double tilt = random.uniform(0.0, kPi / 4.0);
        const Dot dot = {0.5 * size + random.uniform(-0.5, 0.5),
                         0.5 * size + random.uniform(-0.5, 0.5),
                         c.radius,
                         c.radius * std::cos(tilt),
                         random.uniform(-1.5, 1.5),
                         c.blur};
        const bool light = i % 2 == 0;
        const double direction = random.uniform(0.0, 2.0 * kPi);
        const GrayScene scene(size, size, [&](double x, double y) {
            const double covered = dot.coverage(x, y);
            const double lit =
                1.0 + c.gradient * ((x - dot.x) * std::cos(direction) + (y - dot.y) * std::sin(direction));
            return (20.0 + c.contrast * (light ? covered : 1.0 - covered)) * lit + c.sigma * random.normal();
        });
        const Point2d centre = {dot.x + random.uniform(-0.2, 0.2), dot.y + random.uniform(-0.2, 0.2)};
        castRays(scene, dot, centre, light, shares);
    }
    return shares;
}

Shares readAndPrint(const NoiseCase& c, int dots) {
    const Shares shares = readDots(c, dots, 4711);
    std::printf("radius %4.1f blur %.1f contrast %3.0f gradient %.3f noise %.0f: rays lost %5.2f %%, dots %5.1f %%\n",
                c.radius, c.blur, c.contrast, c.gradient, c.sigma, 100.0 * shares.raysLost / shares.rays,
                100.0 * shares.dotsLost / shares.dots);
    return shares;
}

TEST(EdgeNoise, NoRayIsLostUpToThreeGrayLevelsAtFullContrast) {
    for (const double radius : {6.0, 9.0, 20.0}) {
        for (const double blur : {0.5, 1.0, 1.5}) {
            for (const double sigma : {0.0, 1.0, 2.0, 3.0}) {
                const Shares shares = readAndPrint({radius, blur, 120.0, 0.0, sigma}, radius > 10.0 ? 10 : 30);
                EXPECT_EQ(shares.raysLost, 0);
                EXPECT_EQ(shares.wild, 0);
            }
        }
    }
}

TEST(EdgeNoise, NoRayIsLostWhereTheLightHasFallenToForty) {
    // A contrast of 120 that the light leaves at 48, noise 3, and light that changes by up to 1 % a pixel.
    for (const double radius : {6.0, 9.0, 20.0}) {
        for (const double blur : {0.5, 1.0, 1.5}) {
            for (const double gradient : {0.0, 0.01}) {
                const Shares shares = readAndPrint({radius, blur, 48.0, gradient, 3.0}, radius > 10.0 ? 10 : 40);
                EXPECT_EQ(shares.raysLost, 0);
            }
        }
    }
}

TEST(EdgeNoise, FourToEightGrayLevelsLoseFewRays) {
    // Stated share: at full contrast all but one dot in fifty, even at the smallest radius and the widest blur.
    for (const double sigma : {4.0, 6.0, 8.0}) {
        const Shares worst = readAndPrint({6.0, 1.5, 120.0, 0.0, sigma}, 150);
        EXPECT_LE(worst.dotsLost, 3);
        const Shares usual = readAndPrint({9.0, 1.0, 120.0, 0.0, sigma}, 60);
        EXPECT_EQ(usual.dotsLost, 0);
    }
}

TEST(EdgeNoise, NoiseAloneGivesFewEdges) {
    // A gray image with a noise of 3 levels: what is found there must be weak, at most the noise's own excursions.
    Random random(5);
    int found = 0;
    double strongest = 0.0;
    for (int trial = 0; trial < 500; ++trial) {
        const GrayScene scene(40, 12, [&](double, double) { return 100.0 + 3.0 * random.normal(); });
        const Found edge = zelmtest::findEdge(scene.image, {4.0, 5.0}, {35.0, 6.0}, 0);
        found += edge.result == 1 ? 1 : 0;
        strongest = std::max(strongest, edge.strength);
    }
    std::printf("noise 3 alone: an edge on %d of 500 segments, at most %.2f gray levels a pixel strong\n", found,
                strongest);
    EXPECT_LT(strongest, 3.0);
}

}  // namespace
