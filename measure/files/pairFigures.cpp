#include "pairFigures.h"

#include <algorithm>
#include <cmath>

namespace zelm::measure {
namespace {

CameraFigures figuresOfCamera(const RigCamera& camera) {
    return {camera.width, camera.height, parametersOf(camera.intrinsics), camera.pose()};
}

Matrix3 transposed(const Matrix3& m) {
    return {m[0], m[3], m[6], m[1], m[4], m[7], m[2], m[5], m[8]};
}

// E = [t]x R; F = KR^-T E KL^-1 (Longuet-Higgins 1981; Hartley and Zisserman 2004, 9.6).
void takeEpipolar(PairFigures& f) {
    const Vector3& t = f.motion.t;
    f.E = product({0.0, -t[2], t[1], t[2], 0.0, -t[0], -t[1], t[0], 0.0}, f.motion.R);
    const auto left = inverse(f.left.matrix());
    const auto right = inverse(f.right.matrix());
    if (!left || !right) {
        refuse("a camera matrix is singular: calibrate again");
    }
    f.F = product(transposed(*right), product(f.E, *left));
    if (f.F[8] != 0.0) {
        const double last = f.F[8];
        std::transform(f.F.begin(), f.F.end(), f.F.begin(), [last](double v) { return v / last; });
    }
}

std::optional<RowAlignment> rowsOf(const Rig& rig, bool zeroAtInfinity) {
    try {
        RowOptions options;
        options.zeroAtInfinity = zeroAtInfinity;
        return alignRows(rig, options);
    } catch (const Fault&) {
        return std::nullopt;
    }
}

}  // namespace

double CameraFigures::skewEffect() const {
    return std::abs(p[kSkew]) / p[kFy] * std::max(std::abs(p[kCy]), std::abs(height - 1 - p[kCy]));
}

PairFigures figuresOf(const Rig& rig) {
    if (rig.left.isParallel() || rig.right.isParallel()) {
        refuse("a parallel camera has no place in files of other programs, which know cameras with a centre alone");
    }
    PairFigures f;
    f.left = figuresOfCamera(rig.left);
    f.right = figuresOfCamera(rig.right);
    f.motion = motionBetween(rig.left, rig.right);
    takeEpipolar(f);
    f.rows = rowsOf(rig, false);
    f.rowsOfOnePoint = rowsOf(rig, true);
    return f;
}

double metresOf(double length, double metres) {
    return length * metres;
}

// The quotient is off by a digit where rounding has it so: then one of its neighbours is the length.
double lengthOf(double inMetres, double metres) {
    const double quotient = inMetres / metres;
    for (const double candidate : {quotient, std::nextafter(quotient, HUGE_VAL), std::nextafter(quotient, -HUGE_VAL)}) {
        if (metresOf(candidate, metres) == inMetres) {
            return candidate;
        }
    }
    return quotient;
}

}  // namespace zelm::measure
