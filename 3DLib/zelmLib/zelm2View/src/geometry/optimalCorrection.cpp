// In the paper's symbols: x, x' the observed points over f0, xh, xh' the corrected ones, xt, xt' the corrections, u the
// nine elements of F' = D F D, xi the monomials of the constraint u . xi = 0 and V0 their covariance.
#include "optimalCorrection.h"

#include <cmath>

namespace zelm {
namespace {

constexpr double kScale = 600.0;           // f0: pixels are divided by it
constexpr double kEpipoleSquared = 1e-13;  // squared length of an epipolar line that counts as none
constexpr double kSettled = 1e-9;          // relative change of the sum of squared corrections
constexpr double kFirstResidual = 1e20;    // E0 before the first round
constexpr int kMaxRounds = 20;             // of correction; a pixel pair that takes more is used as it is

// u . xi*
double constraint(const double u[9], const PointPair& h, const PointPair& t) {
    const Point2d& x = h.left;
    const Point2d& y = h.right;
    const Point2d& dx = t.left;
    const Point2d& dy = t.right;
    return u[0] * (x.x * y.x + y.x * dx.x + x.x * dy.x) + u[1] * (x.x * y.y + y.y * dx.x + x.x * dy.y) +
           u[2] * (x.x + dx.x) + u[3] * (x.y * y.x + y.x * dx.y + x.y * dy.x) +
           u[4] * (x.y * y.y + y.y * dx.y + x.y * dy.y) + u[5] * (x.y + dx.y) + u[6] * (y.x + dy.x) +
           u[7] * (y.y + dy.y) + u[8];
}

// u . V0 u, from the non-zero elements of V0 alone.
double variance(const double u[9], const PointPair& h) {
    const Point2d& x = h.left;
    const Point2d& y = h.right;
    const double xx = x.x * x.x;
    const double xy = x.y * x.y;
    const double yx = y.x * y.x;
    const double yy = y.y * y.y;
    const double diagonal = u[0] * u[0] * (xx + yx) + u[1] * u[1] * (xx + yy) + u[3] * u[3] * (xy + yx) +
                            u[4] * u[4] * (xy + yy) + u[2] * u[2] + u[5] * u[5] + u[6] * u[6] + u[7] * u[7];
    const double mixed = y.x * y.y * (u[0] * u[1] + u[3] * u[4]) + x.x * x.y * (u[0] * u[3] + u[1] * u[4]) +
                         y.x * (u[0] * u[2] + u[3] * u[5]) + y.y * (u[1] * u[2] + u[4] * u[5]) +
                         x.x * (u[0] * u[6] + u[1] * u[7]) + x.y * (u[3] * u[6] + u[4] * u[7]);
    return diagonal + 2.0 * mixed;
}

struct Epipolar {
    double v[3];
    [[nodiscard]] double squared() const { return v[0] * v[0] + v[1] * v[1] + v[2] * v[2]; }
};

Epipolar leftLine(const double u[9], const Point2d& right) {
    return {{u[0] * right.x + u[1] * right.y + u[2], u[3] * right.x + u[4] * right.y + u[5],
             u[6] * right.x + u[7] * right.y + u[8]}};
}

Epipolar rightLine(const double u[9], const Point2d& left) {
    return {{u[0] * left.x + u[3] * left.y + u[6], u[1] * left.x + u[4] * left.y + u[7],
             u[2] * left.x + u[5] * left.y + u[8]}};
}

PointPair moved(const PointPair& from, const PointPair& by) {
    return {{from.left.x - by.left.x, from.left.y - by.left.y}, {from.right.x - by.right.x, from.right.y - by.right.y}};
}

PointPair scaled(const PointPair& pair, double factor) {
    return {{pair.left.x * factor, pair.left.y * factor}, {pair.right.x * factor, pair.right.y * factor}};
}

double squaredLength(const PointPair& t) {
    return t.left.x * t.left.x + t.left.y * t.left.y + t.right.x * t.right.x + t.right.y * t.right.y;
}

}  // namespace

PointPair correctOptimally(const double F[9], const PointPair& observed) {
    const double u[9] = {F[0] * kScale * kScale, F[1] * kScale * kScale, F[2] * kScale,
                         F[3] * kScale * kScale, F[4] * kScale * kScale, F[5] * kScale,
                         F[6] * kScale,          F[7] * kScale,          F[8]};
    const PointPair x{{observed.left.x / kScale, observed.left.y / kScale},
                      {observed.right.x / kScale, observed.right.y / kScale}};
    PointPair corrected = x;
    PointPair correction{{0.0, 0.0}, {0.0, 0.0}};
    double residual = kFirstResidual;
    for (int round = 0; round < kMaxRounds; ++round) {
        const Epipolar left = leftLine(u, corrected.right);
        const Epipolar right = rightLine(u, corrected.left);
        if (left.squared() < kEpipoleSquared && right.squared() < kEpipoleSquared) {
            break;
        }
        const double s = constraint(u, corrected, correction) / variance(u, corrected);
        correction = {{s * left.v[0], s * left.v[1]}, {s * right.v[0], s * right.v[1]}};
        corrected = moved(x, correction);
        const double now = squaredLength(correction);
        // An exact pair gives 0 / 0 here, never settles and is used as it is.
        if (std::fabs(now - residual) / now < kSettled) {
            return scaled(corrected, kScale);
        }
        residual = now;
    }
    return scaled(x, kScale);
}

}  // namespace zelm
