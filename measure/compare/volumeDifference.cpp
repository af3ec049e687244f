#include "volumeDifference.h"

#include <Eigen/Geometry>
#include <algorithm>
#include <cmath>
#include <vector>

#include "imageDifference.h"
#include "triangulator.h"

namespace zelm::measure {
namespace {

constexpr int kColumns = 11;           // of the grid of left pixels
constexpr int kRows = 9;               //
constexpr int kDepths = 7;             // evenly spaced in the inverse, as disparities are
constexpr std::size_t kMinPoints = 8;  // fewer tell nothing of a volume
constexpr double kLengthPart = 0.3;    // of the volume's diagonal: shorter lengths are left out

// The same pixels' points by both rigs, in the left cameras' frames.
struct PointPairs {
    std::vector<Vector3> first;
    std::vector<Vector3> second;
};

Vector3 inLeft(const Rig& rig, const Point3d& X) {
    const ZelmCameraExtrinsics& p = rig.left.pose();
    return {p.R[0] * X.x + p.R[1] * X.y + p.R[2] * X.z + p.t[0], p.R[3] * X.x + p.R[4] * X.y + p.R[5] * X.z + p.t[1],
            p.R[6] * X.x + p.R[7] * X.y + p.R[8] * X.z + p.t[2]};
}

class Pairer {
public:
    Pairer(const Rig& firstRig, const Rig& secondRig)
        : first(firstRig),
          second(secondRig),
          triangulate(secondRig),
          motion(motionBetween(firstRig.left, firstRig.right)),
          left(projectionOf(firstRig.left)),
          right(projectionOf(firstRig.right)) {}

    void add(Point2d leftPixel, double depth, PointPairs& pairs) const {
        const auto sight = sightOf(first, 'L', leftPixel);
        if (!sight) {
            return;
        }
        const Vector3 X{(*sight)[0] * depth, (*sight)[1] * depth, depth};
        Vector3 seen = times(motion.R, X);
        for (std::size_t i = 0; i < 3; ++i) {
            seen[i] += motion.t[i];
        }
        const Point2d rightPixel = pixelOf(right, seen);
        Point2d ideal{};
        if (!(seen[2] > 0.0) || !first.right.holds(rightPixel) ||
            zelm2ViewUnDistortPoint(first.calib.get(), 'R', &rightPixel, &ideal) < 0) {
            return;
        }
        // The pixel of the point itself, as the removal of the distortion ends within a small tolerance.
        const SpacePoint point = triangulate(pixelOf(left, X), rightPixel);
        if (point.status == PointStatus::ok) {
            pairs.first.push_back(X);
            pairs.second.push_back(inLeft(second, point.position));
        }
    }

private:
    const Rig& first;
    const Rig& second;
    Triangulator triangulate;
    Motion motion;
    ProjectionCamera left;
    ProjectionCamera right;
};

PointPairs pairsOf(const Rig& first, const Rig& second, const DepthRange& depths) {
    const Pairer pairer(first, second);
    PointPairs pairs;
    for (int k = 0; k < kDepths; ++k) {
        const double part = k / (kDepths - 1.0);
        const double depth = 1.0 / ((1.0 - part) / depths.nearest + part / depths.farthest);
        for (int row = 0; row < kRows; ++row) {
            for (int column = 0; column < kColumns; ++column) {
                pairer.add(
                    {(first.left.width - 1) * column / (kColumns - 1.0), (first.left.height - 1) * row / (kRows - 1.0)},
                    depth, pairs);
            }
        }
    }
    if (pairs.first.size() < kMinPoints) {
        refuse("the cameras see no volume together between these depths: give others");
    }
    return pairs;
}

double distance(const Vector3& a, const Vector3& b) {
    return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

using Columns = Eigen::Matrix<double, 3, Eigen::Dynamic>;

Columns columnsOf(const std::vector<Vector3>& points) {
    Columns columns(3, static_cast<Eigen::Index>(points.size()));
    for (std::size_t i = 0; i < points.size(); ++i) {
        columns.col(static_cast<Eigen::Index>(i)) = Eigen::Vector3d(points[i][0], points[i][1], points[i][2]);
    }
    return columns;
}

// The rigid motion of least squares (Umeyama 1991), and the scale that the similar one would have.
void takeAligned(const PointPairs& pairs, VolumeDifference& d) {
    const Columns first = columnsOf(pairs.first);
    const Columns second = columnsOf(pairs.second);
    const Eigen::Matrix4d motion = Eigen::umeyama(second, first, false);
    const Eigen::Matrix4d similar = Eigen::umeyama(first, second, true);
    d.scale = std::cbrt(similar.topLeftCorner<3, 3>().determinant()) - 1.0;
    const Columns moved = (motion.topLeftCorner<3, 3>() * second).colwise() + motion.topRightCorner<3, 1>();
    double sum = 0.0;
    for (std::size_t i = 0; i < pairs.first.size(); ++i) {
        const auto column = static_cast<Eigen::Index>(i);
        const double error = (moved.col(column) - first.col(column)).norm();
        sum += error * error;
        if (error > d.alignedWorst) {
            d.alignedWorst = error;
            d.worstAt = pairs.first[i];
        }
    }
    d.alignedRms = std::sqrt(sum / static_cast<double>(pairs.first.size()));
}

void takeLengths(const PointPairs& pairs, VolumeDifference& d) {
    double diagonal = 0.0;
    for (std::size_t i = 0; i < pairs.first.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            diagonal = std::max(diagonal, distance(pairs.first[i], pairs.first[j]));
        }
    }
    double sum = 0.0;
    std::size_t count = 0;
    for (std::size_t i = 0; i < pairs.first.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            const double length = distance(pairs.first[i], pairs.first[j]);
            if (length >= kLengthPart * diagonal) {
                const double error = distance(pairs.second[i], pairs.second[j]) / length - 1.0;
                sum += error * error;
                count += 1;
                d.lengthWorst = std::abs(error) > std::abs(d.lengthWorst) ? error : d.lengthWorst;
            }
        }
    }
    d.lengthRms = std::sqrt(sum / static_cast<double>(count));
}

}  // namespace

VolumeDifference volumeDifference(const Rig& first, const Rig& second, const DepthRange& depths) {
    const PointPairs pairs = pairsOf(first, second, depths);
    VolumeDifference d;
    d.count = static_cast<std::int64_t>(pairs.first.size());
    double sum = 0.0;
    for (std::size_t i = 0; i < pairs.first.size(); ++i) {
        const double error = distance(pairs.first[i], pairs.second[i]);
        sum += error * error;
        d.worst = std::max(d.worst, error);
    }
    d.rms = std::sqrt(sum / static_cast<double>(pairs.first.size()));
    takeAligned(pairs, d);
    takeLengths(pairs, d);
    return d;
}

}  // namespace zelm::measure
