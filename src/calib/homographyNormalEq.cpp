// Normal equations of the homography refinement.
#include "homographyNormalEq.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "robustStatistics.h"
#include "workBuffer.h"

namespace zelm {
namespace {

using Index = std::ptrdiff_t;

constexpr Index kParameters = 9;

// One pair under H: q = H (x, y, 1), r = dst - q / q2, e2 = |r|^2.
struct Residual {
    double q0, q1, q2;
    double rx, ry;
    double e2;

    Residual(const double* H, const Point2d& src, const Point2d& dst)
        : q0(H[0] * src.x + H[1] * src.y + H[2]),
          q1(H[3] * src.x + H[4] * src.y + H[5]),
          q2(H[6] * src.x + H[7] * src.y + H[8]),
          rx(dst.x - q0 / q2),
          ry(dst.y - q1 / q2),
          e2(rx * rx + ry * ry) {}
};

std::int32_t squaredCutOff(std::int32_t n, const Point2d* src, const Point2d* dst, const double* H, double robustK,
                           double* c2) {
    WorkBuffer<double> squares(static_cast<std::size_t>(n));
    if (!squares.ok()) {
        return ZELM_ERR_MEMORY;
    }
    for (Index i = 0; i < n; ++i) {
        squares[static_cast<std::size_t>(i)] = Residual(H, src[i], dst[i]).e2;
    }
    *c2 = innerSquaredCutOff(n, squares.data(), robustK);
    return ZELM_OK;
}

// N += w d d^T (lower triangle), g -= w e d, with d the gradient of e^2 with respect to H.
void accumulate(const Residual& res, const Point2d& src, double w, double* N, double* g) {
    const double a = -2.0 * res.rx / res.q2;
    const double b = -2.0 * res.ry / res.q2;
    const double c = 2.0 * (res.q0 * res.rx + res.q1 * res.ry) / (res.q2 * res.q2);
    const double d[kParameters] = {a * src.x, a * src.y, a, b * src.x, b * src.y, b, c * src.x, c * src.y, c};
    const double we = w * std::sqrt(res.e2);
    for (Index i = 0; i < kParameters; ++i) {
        const double wd = w * d[i];
        for (Index j = 0; j <= i; ++j) {
            N[i * kParameters + j] += wd * d[j];
        }
        g[i] -= we * d[i];
    }
}

void mirrorLowerTriangle(double* N) {
    for (Index i = 0; i < kParameters; ++i) {
        for (Index j = i + 1; j < kParameters; ++j) {
            N[i * kParameters + j] = N[j * kParameters + i];
        }
    }
}

}  // namespace

std::int32_t innerCalcHomographyNormalEq(std::int32_t n, const Point2d* src, const Point2d* dst, const double* H,
                                         double* cost, double* N, double* g, double robustK) {
    const bool robust = robustK > 0.0;
    double c2 = 0.0;
    if (robust) {
        if (const std::int32_t status = squaredCutOff(n, src, dst, H, robustK, &c2); status < 0) {
            return status;
        }
    }
    std::fill_n(N, kParameters * kParameters, 0.0);
    std::fill_n(g, kParameters, 0.0);
    double squares = 0.0;
    double weights = 0.0;
    for (Index i = 0; i < n; ++i) {
        const Residual res(H, src[i], dst[i]);
        const double w = robust ? tukeyWeightOfSquare(res.e2, c2) : 1.0;
        accumulate(res, src[i], w, N, g);
        squares += w * res.e2;
        weights += w;
    }
    mirrorLowerTriangle(N);
    *cost = squares / weights;
    return ZELM_OK;
}

}  // namespace zelm
