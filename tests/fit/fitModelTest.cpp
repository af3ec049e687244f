// The fits of lines and ellipses written out plainly over the matrix functions, one sum after the other: the library
// must give the same bits, whatever it computes side by side, leaves out or keeps in registers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "fitEllipse.h"
#include "fitShapes.h"
#include "isClose.h"
#include "normalizeFitData.h"
#include "random.h"
#include "zelm/fit.h"
#include "zelm/mat.h"

namespace {

using zelmtest::count;
using zelmtest::hasSameBits;
using zelmtest::Random;

struct Frame {
    std::vector<double> points;
    std::vector<double> centre;
    double scale = 1.0;
};

Frame normalised(std::size_t dim, const std::vector<double>& src) {
    const std::size_t n = src.size() / dim;
    Frame frame{src, std::vector<double>(dim), 1.0};
    for (std::size_t c = 0; c < dim; ++c) {
        double sum = 0.0;
        for (std::size_t i = 0; i < n; ++i) {
            sum += src[i * dim + c];
        }
        frame.centre[c] = sum / static_cast<double>(n);
    }
    double sum = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        double squares = 0.0;
        for (std::size_t c = 0; c < dim; ++c) {
            const double d = src[i * dim + c] - frame.centre[c];
            squares += d * d;
        }
        sum += dim == 1 ? std::fabs(src[i] - frame.centre[0]) : std::sqrt(squares);
    }
    const double spread = sum / static_cast<double>(n);
    frame.scale = spread != 0.0 ? 1.4142135623730951 / spread : 1.0;
    for (std::size_t i = 0; i < src.size(); ++i) {
        frame.points[i] = (src[i] - frame.centre[i % dim]) * frame.scale;
    }
    return frame;
}

std::vector<double> flat(const std::vector<Point2d>& points) {
    std::vector<double> result;
    for (const Point2d& p : points) {
        result.push_back(p.x);
        result.push_back(p.y);
    }
    return result;
}

TEST(FitModel, NormalisedPointsHaveTheSameBits) {
    Random random(71);
    for (int trial = 0; trial < 300; ++trial) {
        const auto dim = static_cast<std::size_t>(random.integer(1, 3));
        const int32_t n = random.integer(1, 40);
        std::vector<double> src(dim * static_cast<std::size_t>(n), trial % 20 == 0 ? 3.5 : 0.0);
        for (double& value : src) {
            value += trial % 20 == 0 ? 0.0 : random.normal() * std::pow(10.0, random.integer(-3, 5));
        }
        const Frame expected = normalised(dim, src);
        std::vector<double> points(src.size());
        double centre[3];
        double scale = 0.0;
        zelm::innerNormalizeFitData(static_cast<int32_t>(dim), n, src.data(), points.data(), centre, &scale);
        ASSERT_TRUE(hasSameBits(scale, expected.scale)) << trial;
        for (std::size_t c = 0; c < dim; ++c) {
            ASSERT_TRUE(hasSameBits(centre[c], expected.centre[c])) << trial;
        }
        for (std::size_t i = 0; i < src.size(); ++i) {
            ASSERT_TRUE(hasSameBits(points[i], expected.points[i])) << trial;
        }
    }
}

Line2d lineInOrder(const std::vector<Point2d>& points) {
    const Frame f = normalised(2, flat(points));
    double W = 0.0;
    double m[2] = {};
    for (std::size_t i = 0; i < points.size(); ++i) {
        W += 1.0;
        m[0] += 1.0 * f.points[2 * i];
        m[1] += 1.0 * f.points[2 * i + 1];
    }
    m[0] /= W;
    m[1] /= W;
    double S[4] = {};
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double d[2] = {f.points[2 * i] - m[0], f.points[2 * i + 1] - m[1]};
        for (std::size_t k = 0; k < 4; ++k) {
            S[k] += 1.0 * d[k / 2] * d[k % 2];
        }
    }
    double values[2];
    double axes[4];
    EXPECT_EQ(zelmMatJacobiEigen(2, S, values, axes), ZELM_OK);
    const double c = -(axes[2] * m[0] + axes[3] * m[1]);
    return {axes[2], axes[3], c / f.scale - axes[2] * f.centre[0] - axes[3] * f.centre[1]};
}

TEST(FitModel, PlainLinesHaveTheSameBits) {
    Random random(72);
    for (int trial = 0; trial < 300; ++trial) {
        std::vector<Point2d> points;
        for (int32_t n = random.integer(2, trial % 10 == 0 ? 300 : 40); n > 0; --n) {
            const double t = random.normal();
            points.push_back({700.0 + 50.0 * t + random.normal(), 20.0 * t - 300.0 + random.normal()});
        }
        Line2d line{};
        ASSERT_EQ(zelmFitLine(count(points), points.data(), 0, 3.0, &line), ZELM_OK);
        const Line2d expected = lineInOrder(points);
        ASSERT_TRUE(hasSameBits(line.a, expected.a)) << trial;
        ASSERT_TRUE(hasSameBits(line.b, expected.b)) << trial;
        ASSERT_TRUE(hasSameBits(line.c, expected.c)) << trial;
    }
}

constexpr std::size_t kN = 6;

bool isEllipse(const double* p) {
    const double sign = p[0] < 0.0 ? -1.0 : 1.0;
    return 4.0 * p[0] * p[2] - p[1] * p[1] >= 0.0 && (p[0] + p[2]) * sign >= 0.0;
}

template <class Filter>
int32_t ellipseAmong(const double* vectors, Filter isCandidate, double* p) {
    for (std::size_t i = kN; i-- > 0;) {
        const double* const e = vectors + i * kN;
        if (isCandidate(i) && isEllipse(e)) {
            const double length = std::sqrt(4.0 * e[0] * e[2] - e[1] * e[1]);
            std::transform(e, e + kN, p, [length](double v) { return v / length; });
            return ZELM_OK;
        }
    }
    return ZELM_ERR_FIT_NOT_ELLIPSE;
}

// By the eigenvalues of the scatter matrix, its factor and the general inverse, in every case.
int32_t ellipseInOrder(const std::vector<double>& weights, const std::vector<double>& points, double* p) {
    double S[kN * kN] = {};
    int used = 0;
    for (std::size_t i = 0; i < weights.size(); ++i) {
        if (weights[i] == 0.0) {
            continue;
        }
        ++used;
        const double x = points[2 * i];
        const double y = points[2 * i + 1];
        const double z[kN] = {x * x, x * y, y * y, x, y, 1.0};
        for (std::size_t r = 0; r < kN; ++r) {
            for (std::size_t c = r; c < kN; ++c) {
                S[r * kN + c] += weights[i] * z[r] * z[c];
            }
        }
    }
    if (used < 5) {
        return ZELM_ERR_FIT_DATA;
    }
    for (std::size_t r = 0; r < kN; ++r) {
        for (std::size_t c = 0; c < r; ++c) {
            S[r * kN + c] = S[c * kN + r];
        }
    }
    double values[kN];
    double vectors[kN * kN];
    if (const auto s = zelmMatJacobiEigen(kN, S, values, vectors); s < 0) {
        return s;
    }
    const auto isNull = [](double value) { return std::fabs(value) < 1e-12; };
    if (std::any_of(values, values + kN, isNull)) {
        return ellipseAmong(
            vectors, [&](std::size_t i) { return isNull(values[i]); }, p);
    }
    double U[kN * kN];
    if (zelmMatCholeskyDecomp(kN, S, U) < 0) {
        return ellipseAmong(
            vectors, [](std::size_t i) { return i == kN - 1; }, p);
    }
    double V[kN * kN];
    if (const auto s = zelmMatInvert(kN, U, V); s < 0) {
        return s;
    }
    double M[kN * kN];
    for (std::size_t r = 0; r < kN; ++r) {
        for (std::size_t c = 0; c < kN; ++c) {
            M[r * kN + c] = 2.0 * (V[r] * V[2 * kN + c] + V[2 * kN + r] * V[c]) - V[kN + r] * V[kN + c];
        }
    }
    if (const auto s = zelmMatJacobiEigen(kN, M, values, vectors); s < 0) {
        return s;
    }
    if (!(values[0] > 0.0)) {
        return ZELM_ERR_FIT_NOT_ELLIPSE;
    }
    for (std::size_t i = kN; i-- > 0;) {
        double rest = vectors[i];
        for (std::size_t j = i + 1; j < kN; ++j) {
            rest -= U[i * kN + j] * p[j];
        }
        p[i] = rest / U[i * kN + i];
    }
    return isEllipse(p) ? ZELM_OK : ZELM_ERR_FIT_NOT_ELLIPSE;
}

void expectSameEllipse(const std::vector<double>& weights, const std::vector<double>& points, int trial) {
    double expected[kN] = {7, 7, 7, 7, 7, 7};
    double actual[kN] = {7, 7, 7, 7, 7, 7};
    const int32_t status = ellipseInOrder(weights, points, expected);
    ASSERT_EQ(zelm::fitEllipseSolve(count(weights), weights.data(), points.data(), actual), status) << trial;
    for (std::size_t i = 0; status >= 0 && i < kN; ++i) {
        ASSERT_TRUE(hasSameBits(actual[i], expected[i])) << trial << ": " << i;
    }
}

// From exact points, whose scatter matrix is singular, over noise of every size to points that lie on no ellipse;
// whole outlines and short arcs; weights of one, of a robust fit, and tiny.
TEST(FitModel, EllipsesHaveTheSameBits) {
    Random random(73);
    for (int trial = 0; trial < 6000; ++trial) {
        const double sigma = trial % 9 == 0 ? 0.0 : std::pow(10.0, random.uniform(-9.0, 1.0));
        const double span = random.uniform() < 0.5 ? 6.2 : random.uniform(0.05, 6.2);
        const auto outline = zelmtest::ellipsePoints(zelmtest::randomEllipse(random), random.integer(5, 40), sigma,
                                                     random, random.uniform(0.0, 6.0), span);
        const Frame frame = normalised(2, flat(outline));
        std::vector<double> weights(outline.size(), 1.0);
        if (trial % 3 == 1) {
            std::generate(weights.begin(), weights.end(), [&] {
                const double w = random.uniform(-0.2, 1.0);
                return w < 0.0 ? 0.0 : w;
            });
        } else if (trial % 30 == 2) {
            std::fill(weights.begin(), weights.end(), std::pow(10.0, random.uniform(-14.0, 3.0)));
        }
        expectSameEllipse(weights, frame.points, trial);
    }
}

// Unnormalised points, whose monomials differ by many powers of ten, and points on a grid, which have ties.
TEST(FitModel, OddScatterHasTheSameBits) {
    Random random(74);
    for (int trial = 0; trial < 1500; ++trial) {
        const auto n = static_cast<std::size_t>(random.integer(5, 20));
        std::vector<double> points(2 * n);
        const double size = std::pow(10.0, random.uniform(-6.0, 6.0));
        for (double& value : points) {
            value = trial % 2 == 0 ? size * random.normal() : random.integer(-2, 2);
        }
        expectSameEllipse(std::vector<double>(n, 1.0), points, trial);
    }
}

}  // namespace
