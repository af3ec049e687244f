#include <cmath>

#include "closedFormMotion.h"
#include "minimaxCost.h"
#include "motion.h"
#include "robustMotion.h"
#include "zelm/match.h"

namespace zelm {
namespace {

bool estimatesScale(int32_t mode) {
    return mode == ZELM_MATCH_SIMILARITY || mode == ZELM_MATCH_SIMILARITY_ROBUST ||
           mode == ZELM_MATCH_SIMILARITY_MINIMAX;
}

bool isRobust(int32_t mode) {
    return mode == ZELM_MATCH_RIGID_ROBUST || mode == ZELM_MATCH_SIMILARITY_ROBUST;
}

// Starts from the closed form, which needs no memory, and refines it as the mode asks.
int32_t estimate(const PointPairs& pairs, int32_t mode, double threshold, Motion* motion) {
    *motion = closedFormMotion(pairs, estimatesScale(mode));
    switch (mode) {
        case ZELM_MATCH_RIGID_ROBUST:
        case ZELM_MATCH_SIMILARITY_ROBUST:
            return robustMotion(pairs, estimatesScale(mode), threshold, motion);
        case ZELM_MATCH_RIGID_MINIMAX:
            return minimaxRigidMotion(pairs, motion);
        case ZELM_MATCH_SIMILARITY_MINIMAX:
            return minimaxSimilarity(pairs, motion);
        default:
            return ZELM_OK;
    }
}

}  // namespace
}  // namespace zelm

int32_t zelmMatchBasic(int32_t iN, const Point2d* taRef, const Point2d* taModel, const ZelmMatchPose* tModelPose,
                       int32_t iMode, double dThreshold, ZelmMatchPose* tResult) {
    if (iMode < ZELM_MATCH_RIGID || iMode > ZELM_MATCH_SIMILARITY_MINIMAX || iN < 2 || taRef == nullptr ||
        taModel == nullptr || tModelPose == nullptr || tResult == nullptr ||
        (zelm::isRobust(iMode) && !(dThreshold > 0.0))) {
        return ZELM_ERR_PARAM;
    }
    const double modelAngle = tModelPose->angle;
    const zelm::PointPairs pairs{static_cast<std::size_t>(iN), taRef, taModel, {tModelPose->x, tModelPose->y}};
    zelm::Motion motion;
    const int32_t status = zelm::estimate(pairs, iMode, dThreshold, &motion);
    const double angle = motion.angle + modelAngle;
    *tResult = {motion.shift.x, motion.shift.y, std::atan2(std::sin(angle), std::cos(angle)), motion.scale};
    return status;
}

int32_t zelmMatchPoints(int32_t iN, const Point2d* taRef, const Point2d* taModel, const ZelmMatchPose* tModelPose,
                        const ZelmMatchPose* tResult, Point2d* taMoved, double* daDistance) {
    if (iN < 2 || taRef == nullptr || taModel == nullptr || tModelPose == nullptr || tResult == nullptr ||
        taMoved == nullptr || daDistance == nullptr) {
        return ZELM_ERR_PARAM;
    }
    const zelm::PointPairs pairs{static_cast<std::size_t>(iN), taRef, taModel, {tModelPose->x, tModelPose->y}};
    const zelm::MotionOfPoints move({tResult->angle - tModelPose->angle, tResult->scale, {tResult->x, tResult->y}});
    for (std::size_t i = 0; i < pairs.n; ++i) {
        const Point2d moved = move(pairs.model(i));
        const Point2d d{moved.x - taRef[i].x, moved.y - taRef[i].y};
        taMoved[i] = moved;
        daDistance[i] = std::sqrt(d.x * d.x + d.y * d.y);
    }
    return ZELM_OK;
}

int32_t zelmMatchDelta(const ZelmMatchPose* tA, const ZelmMatchPose* tB, double* dDx, double* dDy, double* dAngle,
                       double* dScale) {
    if (tA == nullptr || tB == nullptr || dDx == nullptr || dDy == nullptr || dAngle == nullptr || dScale == nullptr) {
        return ZELM_ERR_PARAM;
    }
    *dDx = tB->x - tA->x;
    *dDy = tB->y - tA->y;
    *dAngle = tB->angle - tA->angle;
    *dScale = tB->scale;
    return ZELM_OK;
}
