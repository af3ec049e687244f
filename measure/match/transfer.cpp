#include "transfer.h"

#include <algorithm>
#include <cmath>

#include "fault.h"
#include "plateDepths.h"

namespace zelm::measure {
namespace {

constexpr int kBorderSteps = 16;  // pixels of each side of an image that are undistorted to find its extent

// The smallest rectangle around the undistorted image.
struct Extent {
    double x0, y0, x1, y1;
};

Extent undistortedExtent(const Rig& rig, char side) {
    const RigCamera& camera = rig.camera(side);
    const double width = camera.width - 1;
    const double height = camera.height - 1;
    Extent extent{width / 2, height / 2, width / 2, height / 2};
    for (int i = 0; i <= kBorderSteps; ++i) {
        const double part = static_cast<double>(i) / kBorderSteps;
        for (const Point2d p : {Point2d{part * width, 0.0}, Point2d{part * width, height}, Point2d{0.0, part * height},
                                Point2d{width, part * height}}) {
            Point2d ideal{};
            if (zelm2ViewUnDistortPoint(rig.calib.get(), side, &p, &ideal) >= 0) {
                extent = {std::min(extent.x0, ideal.x), std::min(extent.y0, ideal.y), std::max(extent.x1, ideal.x),
                          std::max(extent.y1, ideal.y)};
            }
        }
    }
    return extent;
}

}  // namespace

DepthLimits calibratedLimits(const Rig& rig) {
    DepthLimits limits;
    const auto limit = [](const RigCamera& camera, double& nearest, double& farthest) {
        if (camera.isParallel()) {
            nearest = -std::numeric_limits<double>::infinity();
            return;
        }
        if (const auto depths = plateDepths(camera)) {
            nearest = depths->nearest;
            farthest = depths->farthest;
        }
    };
    limit(rig.left, limits.leftNearest, limits.leftFarthest);
    limit(rig.right, limits.rightNearest, limits.rightFarthest);
    return limits;
}

Transfer::Transfer(const Rig& rig, char from, const DepthLimits& limits) {
    const RigCamera& source = rig.camera(from);
    const RigCamera& target = rig.camera(from == 'L' ? 'R' : 'L');
    const auto inverted = inverse(source.matrix());
    if (!inverted) {
        refuse("the calibration's camera matrix is singular: calibrate again");
    }
    inverseCamera = *inverted;
    parallel = source.isParallel();
    otherParallel = target.isParallel();
    const Matrix3& K = inverseCamera;
    // A perspective pixel's point is (ray, rho), a parallel one's (x, y, rho, 1) with (x, y, 1) = K pixel.
    spaceOfPixel = {{{K[0], K[1], K[2]}, {K[3], K[4], K[5]}, {K[6], K[7], K[8]}, {0.0, 0.0, 0.0}}};
    spaceOfRho = {0.0, 0.0, 0.0, 1.0};
    if (parallel) {
        std::swap(spaceOfPixel[2], spaceOfPixel[3]);
        std::swap(spaceOfRho[2], spaceOfRho[3]);
    }
    const Motion motion = motionBetween(source, target);
    const Vector3 back = timesTransposed(motion.R, motion.t);
    otherCentre = {-back[0], -back[1], -back[2]};
    otherAxis = {motion.R[6], motion.R[7], motion.R[8]};

    // Rows of the motion, or of its first two and w, applied to the point, then the camera.
    Matrix3 pixelPart{};
    Vector3 rhoPart{};
    for (std::size_t i = 0; i < 3; ++i) {
        const bool isDropped = otherParallel && i == 2;
        const std::array<double, 4> row =
            isDropped ? std::array<double, 4>{0.0, 0.0, 0.0, 1.0}
                      : std::array<double, 4>{motion.R[3 * i], motion.R[3 * i + 1], motion.R[3 * i + 2], motion.t[i]};
        for (std::size_t k = 0; k < 4; ++k) {
            for (std::size_t j = 0; j < 3; ++j) {
                pixelPart[3 * i + j] += row[k] * spaceOfPixel[k][j];
            }
            rhoPart[i] += row[k] * spaceOfRho[k];
        }
    }
    M = product(target.matrix(), pixelPart);
    m = times(target.matrix(), rhoPart);
    addConditions(rig, from, limits);
}

void Transfer::addDepthLimits(const std::array<double, 4>& axis, double nearest, double farthest) {
    // Depth = axis . point / w, and w is positive.
    const auto add = [&](double sign, double limit) {
        if (!std::isfinite(limit)) {
            return;
        }
        Condition condition{};
        for (std::size_t k = 0; k < 4; ++k) {
            const double factor = sign * (axis[k] - (k == 3 ? limit : 0.0));
            for (std::size_t j = 0; j < 3; ++j) {
                condition.pixel[j] += factor * spaceOfPixel[k][j];
            }
            condition.rho += factor * spaceOfRho[k];
        }
        conditions.push_back(condition);
    };
    add(1.0, nearest);
    add(-1.0, farthest);
}

void Transfer::addConditions(const Rig& rig, char from, const DepthLimits& limits) {
    const char to = from == 'L' ? 'R' : 'L';
    const Motion motion = motionBetween(rig.camera(from), rig.camera(to));
    const std::array<double, 4> own{0.0, 0.0, 1.0, 0.0};
    const std::array<double, 4> other{motion.R[6], motion.R[7], motion.R[8], motion.t[2]};
    const bool fromLeft = from == 'L';
    addDepthLimits(fromLeft ? own : other, limits.leftNearest, limits.leftFarthest);
    addDepthLimits(fromLeft ? other : own, limits.rightNearest, limits.rightFarthest);
    const Extent extent = undistortedExtent(rig, to);
    const auto addSide = [&](std::size_t row, double sign, double limit) {
        Condition condition{};
        for (std::size_t j = 0; j < 3; ++j) {
            condition.pixel[j] = sign * (M[3 * row + j] - limit * M[6 + j]);
        }
        condition.rho = sign * (m[row] - limit * m[2]);
        conditions.push_back(condition);
    };
    addSide(0, 1.0, extent.x0);
    addSide(0, -1.0, extent.x1);
    addSide(1, 1.0, extent.y0);
    addSide(1, -1.0, extent.y1);
    conditions.push_back({{M[6], M[7], M[8]}, m[2]});  // in front of the other camera
    if (!parallel) {
        conditions.push_back({{0.0, 0.0, 0.0}, 1.0});  // and of this one
    }
}

Point2d Transfer::targetOf(Point2d p, double rho) const {
    const double w = M[6] * p.x + M[7] * p.y + M[8] + m[2] * rho;
    return {(M[0] * p.x + M[1] * p.y + M[2] + m[0] * rho) / w, (M[3] * p.x + M[4] * p.y + M[5] + m[1] * rho) / w};
}

Point2d Transfer::motionOf(Point2d p, double rho) const {
    const double w = M[6] * p.x + M[7] * p.y + M[8] + m[2] * rho;
    const Point2d q = targetOf(p, rho);
    return {(m[0] - m[2] * q.x) / w, (m[1] - m[2] * q.y) / w};
}

double Transfer::rhoFor(Point2d p, Point2d target, Point2d direction) const {
    const Vector3 a{M[0] * p.x + M[1] * p.y + M[2], M[3] * p.x + M[4] * p.y + M[5], M[6] * p.x + M[7] * p.y + M[8]};
    // (a + m rho) - (a2 + m2 rho) target has no part along the direction.
    const double constant = (a[0] - a[2] * target.x) * direction.x + (a[1] - a[2] * target.y) * direction.y;
    const double slope = (m[0] - m[2] * target.x) * direction.x + (m[1] - m[2] * target.y) * direction.y;
    return -constant / slope;
}

Interval Transfer::searchInterval(Point2d p) const {
    constexpr double kEndless = 1e30;
    Interval interval{-kEndless, kEndless};
    for (const Condition& c : conditions) {
        const double constant = c.pixel[0] * p.x + c.pixel[1] * p.y + c.pixel[2];
        if (c.rho > 0.0) {
            interval.low = std::max(interval.low, -constant / c.rho);
        } else if (c.rho < 0.0) {
            interval.high = std::min(interval.high, -constant / c.rho);
        } else if (constant < 0.0) {
            return {};
        }
    }
    if (interval.low <= -kEndless || interval.high >= kEndless || interval.isEmpty()) {
        return {};
    }
    return interval;
}

Matrix3 Transfer::homographyOf(const Surface& s) const {
    const Vector3 plane{s.slopeX, s.slopeY, s.rho - s.slopeX * s.at.x - s.slopeY * s.at.y};
    Matrix3 H = M;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            H[3 * i + j] += m[i] * plane[j];
        }
    }
    return H;
}

Surface Transfer::facingSurface(Point2d p, double rho) const {
    const Vector3 ray = times(inverseCamera, {p.x, p.y, 1.0});
    const Vector3 X = parallel ? Vector3{ray[0], ray[1], rho} : Vector3{ray[0] / rho, ray[1] / rho, ray[2] / rho};
    const Vector3 own = parallel ? Vector3{0.0, 0.0, 1.0} : unit(X);
    const Vector3 other =
        otherParallel ? otherAxis : unit({X[0] - otherCentre[0], X[1] - otherCentre[1], X[2] - otherCentre[2]});
    const Vector3 n{own[0] + other[0], own[1] + other[1], own[2] + other[2]};
    const double c = dot(n, X);
    // rho over pixels: n . ray / c, or the z of the plane at (x, y).
    const Vector3 overRay =
        parallel ? Vector3{-n[0] / n[2], -n[1] / n[2], c / n[2]} : Vector3{n[0] / c, n[1] / c, n[2] / c};
    const Vector3 plane = timesTransposed(inverseCamera, overRay);
    return {p, rho, plane[0], plane[1]};
}

}  // namespace zelm::measure
