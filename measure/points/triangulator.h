// 3-D points of pixel pairs, with figures that tell how good they are.
#ifndef ZELM_MEASURE_TRIANGULATOR_H
#define ZELM_MEASURE_TRIANGULATOR_H

#include <zelmMeasure.h>

#include <cstdint>

#include "rig.h"

namespace zelm::measure {

// What became of a pair; the interface says what each means.
enum class PointStatus : std::int32_t {
    ok = ZELM_MEASURE_POINT_OK,
    behind = ZELM_MEASURE_POINT_BEHIND,
    distortion = ZELM_MEASURE_POINT_DISTORTION,
    parallel = ZELM_MEASURE_POINT_PARALLEL,
    mismatch = ZELM_MEASURE_POINT_MISMATCH,
    outside = ZELM_MEASURE_POINT_OUTSIDE,
};

// Which pairs are refused although their rays can be brought together.
struct PairLimits {
    double maxError = 0.0;  // pixels, of the root sum of squares of both errors; 0: none
    bool isInside = false;  // pixels have to be of the images
};

struct SpacePoint {
    PointStatus status = PointStatus::ok;
    Point3d position{};       // world frame
    double errorLeft = 0.0;   // pixels between the pixel given and the raw projection of the point
    double errorRight = 0.0;  // pixels
    double angle = 0.0;       // between the two rays at the point, radians

    bool hasNumbers() const {
        return status == PointStatus::ok || status == PointStatus::behind || status == PointStatus::mismatch;
    }
};

// Makes points of pairs with one calibration.
class Triangulator {
public:
    // Throws for a rig of two parallel cameras, which cannot triangulate. The rig outlives the triangulator.
    explicit Triangulator(const Rig& rig, const PairLimits& limits = {});

    // Throws when memory runs out; all else ends in the point's status.
    SpacePoint operator()(const Point2d& leftPixel, const Point2d& rightPixel) const;

private:
    // How a camera looks at a point.
    struct View {
        bool parallel = false;
        Vector3 centre{};  // of projection
        Vector3 axis{};    // the direction of view
    };
    static View viewOf(const RigCamera& camera);
    static Vector3 rayTo(const View& view, const Point3d& X);

    const Rig& rig;
    const Zelm2ViewCalib* calib;
    PairLimits limits;
    View left;
    View right;
};

}  // namespace zelm::measure

#endif
