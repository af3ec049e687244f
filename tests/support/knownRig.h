// A rig with the covariance of a simulated calibration, and pixels of points as it sees them.
#ifndef ZELM_TEST_KNOWN_RIG_H
#define ZELM_TEST_KNOWN_RIG_H

#include <gtest/gtest.h>

#include <vector>

#include "calibrationDraws.h"

namespace zelmtest {

struct KnownRig {
    KnownRig(const TruePair& truth, double noise)
        : pair(truth), covariance(simulatedCovariance(truth, noise)), rig(blockOf(truth)) {
        give(covariance);
    }
    void give(const ZelmMeasureCovariance& other) {
        EXPECT_EQ(zelmMeasureRigSetCovariance(rig.get(), &other), ZELM_OK) << rig.error();
    }

    TruePair pair;
    ZelmMeasureCovariance covariance;
    OpenedRig rig;
};

struct PairPixels {
    std::vector<double> left;
    std::vector<double> right;

    [[nodiscard]] std::int64_t count() const { return static_cast<std::int64_t>(left.size() / 2); }
    void add(Point2d l, Point2d r) {
        left.insert(left.end(), {l.x, l.y});
        right.insert(right.end(), {r.x, r.y});
    }
    void addNoise(Random& random, double sigma) {
        for (auto* list : {&left, &right}) {
            for (double& p : *list) {
                p += sigma * random.normal();
            }
        }
    }
};

inline PairPixels pixelsOf(const TruePair& pair, const std::vector<Point3d>& points) {
    PairPixels pixels;
    for (const Point3d& X : points) {
        pixels.add(pair.project('L', X), pair.project('R', X));
    }
    return pixels;
}

// Positions, 3 a pair, as the pair triangulates.
inline std::vector<double> triangulated(const TruePair& pair, const PairPixels& pixels) {
    const OpenedRig rig(blockOf(pair));
    std::vector<double> positions(3 * static_cast<std::size_t>(pixels.count()));
    auto points = emptyRecord<ZelmMeasurePoints>();
    points.positions = positions.data();
    EXPECT_EQ(zelmMeasureTriangulate(rig.get(), pixels.count(), pixels.left.data(), pixels.right.data(), &points),
              ZELM_OK);
    return positions;
}

}  // namespace zelmtest

#endif
