// The projection of plate dots and its derivatives.
#include "cameraProjection.h"

#include <algorithm>
#include <cmath>

#include "zelm/calib.h"
#include "zelm/math.h"

namespace zelm {
namespace {

constexpr double kSeriesAngle = 0.02;  // radians; below it the series' first neglected term is under 1e-16

// The left Jacobian of the rotation vector r (Chirikjian 2012): a I + b [r]x + c r r^T with a = sin(q) / q,
// b = (1 - cos(q)) / q^2, c = (q - sin(q)) / q^3, q = |r|. It is regular for every q below a full turn.
void writeAngularVelocities(const double* r, double* omega) {
    const double q = zelmMathCalcNorm(3, r);
    const double q2 = q * q;
    double a;
    double b;
    double c;
    if (q < kSeriesAngle) {
        a = 1.0 - q2 / 6.0 * (1.0 - q2 / 20.0 * (1.0 - q2 / 42.0));
        b = 0.5 - q2 / 24.0 * (1.0 - q2 / 30.0 * (1.0 - q2 / 56.0));
        c = 1.0 / 6.0 - q2 / 120.0 * (1.0 - q2 / 42.0 * (1.0 - q2 / 72.0));
    } else {
        const double halfSine = std::sin(0.5 * q);
        a = std::sin(q) / q;
        b = 2.0 * halfSine * halfSine / q2;
        c = (1.0 - a) / q2;
    }
    const double cross[9] = {0.0, -r[2], r[1], r[2], 0.0, -r[0], -r[1], r[0], 0.0};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            omega[3 * i + j] = (i == j ? a : 0.0) + b * cross[3 * i + j] + c * r[i] * r[j];
        }
    }
}

// A dot on its way to the image.
struct Trace {
    double q[3];  // R (X, Y, 0)
    double inverseDepth;
    double xn, yn;
    double dx, dy;  // ideal image point, from the principal point
    double r2;
    double stretch;  // 1 + D

    Trace(const double* k, bool parallel, const ViewFrame& frame, Point2d dot) {
        for (std::size_t i = 0; i < 3; ++i) {
            q[i] = frame.R[3 * i] * dot.x + frame.R[3 * i + 1] * dot.y;
        }
        inverseDepth = parallel ? 1.0 : 1.0 / (q[2] + frame.t[2]);
        xn = (q[0] + frame.t[0]) * inverseDepth;
        yn = (q[1] + frame.t[1]) * inverseDepth;
        dx = k[kAlpha] * xn + k[kGamma] * yn;
        dy = k[kBeta] * yn;
        r2 = xn * xn + yn * yn;
        stretch = 1.0 + (k[kK2] * r2 + k[kK1]) * r2;
    }
    [[nodiscard]] Point2d image(const double* k) const { return {k[kCx] + stretch * dx, k[kCy] + stretch * dy}; }
};

void writeIntrinsicDerivatives(const Trace& at, double* du, double* dv) {
    const double ofU[kIntrinsics] = {at.stretch * at.xn,   0.0, at.stretch * at.yn, 1.0, 0.0, at.r2 * at.dx,
                                     at.r2 * at.r2 * at.dx};
    const double ofV[kIntrinsics] = {0.0, at.stretch * at.yn, 0.0, 0.0, 1.0, at.r2 * at.dy, at.r2 * at.r2 * at.dy};
    std::copy_n(ofU, kIntrinsics, du);
    std::copy_n(ofV, kIntrinsics, dv);
}

// Derivatives by the pose, given those by the camera coordinates P.
void writePoseDerivatives(const ViewFrame& frame, const double* q, const double* byP, double* derivatives) {
    const double moment[3] = {q[1] * byP[2] - q[2] * byP[1], q[2] * byP[0] - q[0] * byP[2],
                              q[0] * byP[1] - q[1] * byP[0]};  // byP . (omega x q) = omega . (q x byP)
    for (std::size_t k = 0; k < 3; ++k) {
        derivatives[kRotation + k] =
            frame.omega[k] * moment[0] + frame.omega[3 + k] * moment[1] + frame.omega[6 + k] * moment[2];
        derivatives[kTranslation + k] = byP[k];
    }
}

}  // namespace

ViewFrame::ViewFrame(const double* pose) {
    double r[3];
    std::copy_n(pose + kRotation, 3, r);
    std::copy_n(pose + kTranslation, 3, t);
    zelmCalibRodrigues(0, r, R);
    writeAngularVelocities(r, omega);
}

Point2d DotProjector::project(const ViewFrame& frame, Point2d dot) const {
    return Trace(intrinsics, parallel, frame, dot).image(intrinsics);
}

Point2d DotProjector::project(const ViewFrame& frame, Point2d dot, double* du, double* dv) const {
    const Trace at(intrinsics, parallel, frame, dot);
    writeIntrinsicDerivatives(at, du, dv);
    const double slope = 2.0 * (intrinsics[kK1] + 2.0 * intrinsics[kK2] * at.r2);  // of D, by xn: slope * xn
    const double uByXn = at.stretch * intrinsics[kAlpha] + slope * at.xn * at.dx;
    const double uByYn = at.stretch * intrinsics[kGamma] + slope * at.yn * at.dx;
    const double vByXn = slope * at.xn * at.dy;
    const double vByYn = at.stretch * intrinsics[kBeta] + slope * at.yn * at.dy;
    const double w = at.inverseDepth;
    const double depthShare = parallel ? 0.0 : -w;
    const double uByP[3] = {uByXn * w, uByYn * w, (uByXn * at.xn + uByYn * at.yn) * depthShare};
    const double vByP[3] = {vByXn * w, vByYn * w, (vByXn * at.xn + vByYn * at.yn) * depthShare};
    writePoseDerivatives(frame, at.q, uByP, du + kIntrinsics);
    writePoseDerivatives(frame, at.q, vByP, dv + kIntrinsics);
    return at.image(intrinsics);
}

}  // namespace zelm
