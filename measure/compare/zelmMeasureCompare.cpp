// The exported functions that set two calibrations beside each other.
#include <algorithm>
#include <cmath>
#include <limits>

#include "imageDifference.h"
#include "parameterDifference.h"
#include "records.h"
#include "volumeDifference.h"

using namespace zelm::measure;

namespace {

DepthRange depthsOf(const Rig& rig, const ZelmMeasureCompareOptions* given) {
    ZelmMeasureCompareOptions o{};
    if (given != nullptr) {
        o = recordOf(given);
    }
    require(o.nearest >= 0.0 && o.farthest >= 0.0 && std::isfinite(o.nearest + o.farthest),
            "a depth is negative or not finite");
    DepthRange range = plateDepths(rig.left).value_or(DepthRange{});
    range.nearest = o.nearest > 0.0 ? o.nearest : range.nearest;
    range.farthest = o.farthest > 0.0 ? o.farthest : range.farthest;
    if (!(range.nearest > 0.0) || !(range.farthest > range.nearest)) {
        refuse("the volume has no depths: the first calibration was imported without plates, so name them");
    }
    return range;
}

void requireAlike(const Rig& first, const Rig& second) {
    for (const Rig* rig : {&first, &second}) {
        if (rig->left.isParallel() || rig->right.isParallel()) {
            refuse("calibrations are compared of two perspective cameras");
        }
    }
    for (const char side : {'L', 'R'}) {
        const RigCamera& a = first.camera(side);
        const RigCamera& b = second.camera(side);
        if (a.width != b.width || a.height != b.height) {
            refuse("the images of the two calibrations are of different sizes: are these the same cameras?");
        }
    }
}

ZelmMeasureImageDifference recordOfImage(const ImageDifference& d) {
    return {d.rms, d.worst, {d.worstAt.x, d.worstAt.y}, d.unturned, {d.turn[0], d.turn[1], d.turn[2]}};
}

Matrix3 transposed(const Matrix3& m) {
    return {m[0], m[3], m[6], m[1], m[4], m[7], m[2], m[5], m[8]};
}

// The second pair's relative pose in the first one's frames, against the first one's.
void givePair(const Rig& first, const Rig& second, const Vector3& leftTurn, const Vector3& rightTurn,
              ZelmMeasureComparison& c) {
    const Motion a = motionBetween(first.left, first.right);
    const Motion b = motionBetween(second.left, second.right);
    const Matrix3 back = transposed(rotationOf(rightTurn));
    const Matrix3 R = product(back, product(b.R, rotationOf(leftTurn)));
    const Vector3 t = times(back, b.t);
    Matrix3 turn = product(R, transposed(a.R));
    zelmCalibRodrigues(1, c.pairTurn, turn.data());
    for (std::size_t i = 0; i < 3; ++i) {
        c.pairShift[i] = t[i] - a.t[i];
    }
    c.baseline = std::hypot(b.t[0], b.t[1], b.t[2]) - std::hypot(a.t[0], a.t[1], a.t[2]);
}

bool isOpen(const ZelmMeasureRig* rig) {
    return rig != nullptr && rig->isOpen;
}

}  // namespace

std::int32_t zelmMeasureCompare(ZelmMeasureRig* first, ZelmMeasureRig* second, const ZelmMeasureCompareOptions* options,
                                ZelmMeasureComparison* comparison) {
    if (!isOpen(second)) {
        return ZELM_ERR_PARAM;
    }
    return withRig(first, [&](const Rig& a) {
        const Rig& b = second->rig;
        requireAlike(a, b);
        const DepthRange depths = depthsOf(a, options);
        const ImageDifference left = imageDifference(a, b, 'L');
        const ImageDifference right = imageDifference(a, b, 'R');
        const VolumeDifference v = volumeDifference(a, b, depths);
        const ParameterDifference p = parameterDifference(a, b);
        ZelmMeasureComparison c{};
        c.covariances = (a.covariance ? 1 : 0) + (b.covariance ? 1 : 0);
        c.left = recordOfImage(left);
        c.right = recordOfImage(right);
        givePair(a, b, left.turn, right.turn, c);
        c.volume = {v.count, depths.nearest, depths.farthest, v.rms,
                    v.worst, v.alignedRms,   v.alignedWorst,  {v.worstAt[0], v.worstAt[1], v.worstAt[2]},
                    v.scale, v.lengthRms,    v.lengthWorst};
        c.chiSquare = p.chiSquare;
        c.freedom = p.freedom;
        c.probability = p.probability;
        giveRecord(c, comparison);
    });
}

std::int32_t zelmMeasureCompareImage(ZelmMeasureRig* first, ZelmMeasureRig* second, std::int32_t side,
                                     std::int64_t count, const double* pixels, double* differences) {
    if (!isOpen(second)) {
        return ZELM_ERR_PARAM;
    }
    return withRig(first, [&](const Rig& a) {
        const char camera = sideOf(side);
        require(count >= 0 && (count == 0 || (pixels != nullptr && differences != nullptr)), "the pixels are NULL");
        requireAlike(a, second->rig);
        const Matrix3 turn = rotationOf(imageDifference(a, second->rig, camera).turn);
        const ProjectionCamera other = projectionOf(second->rig.camera(camera));
        constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
        for (std::int64_t i = 0; i < count; ++i) {
            const Point2d pixel{pixels[2 * i], pixels[2 * i + 1]};
            const auto sight = sightOf(a, camera, pixel);
            const Point2d seen = sight ? pixelOf(other, times(turn, *sight)) : Point2d{kNone, kNone};
            differences[2 * i] = seen.x - pixel.x;
            differences[2 * i + 1] = seen.y - pixel.y;
        }
    });
}
