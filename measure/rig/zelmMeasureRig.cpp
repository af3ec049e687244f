// The exported functions of rigs.
#include <algorithm>
#include <cmath>

#include "openRig.h"
#include "records.h"
#include "rig.h"
#include "rigCentre.h"
#include "rigTilt.h"

using namespace zelm::measure;

namespace {

bool isOpen(const ZelmMeasureRig* rig) {
    return rig != nullptr && rig->isOpen;
}

bool isSide(std::int32_t side) {
    return side == 'L' || side == 'R';
}

}  // namespace

std::int32_t zelmMeasureRigOpen(const void* block, std::int64_t size, ZelmMeasureRig** rig) {
    if (block == nullptr || size < 0 || rig == nullptr || *rig != nullptr) {
        return ZELM_ERR_PARAM;
    }
    return openRig(rig, [&] {
        return rigOfBlock({static_cast<const unsigned char*>(block), static_cast<std::size_t>(size)});
    });
}

std::int32_t zelmMeasureRigOfCalib(const Zelm2ViewCalib* calib, ZelmMeasureRig** rig) {
    if (calib == nullptr || rig == nullptr || *rig != nullptr) {
        return ZELM_ERR_PARAM;
    }
    return openRig(rig, [&] { return rigOfCalib(calib); });
}

void zelmMeasureRigClose(ZelmMeasureRig** rig) {
    if (rig != nullptr) {
        delete *rig;
        *rig = nullptr;
    }
}

const char* zelmMeasureRigError(const ZelmMeasureRig* rig) {
    return rig == nullptr ? "" : rig->error.c_str();
}

const Zelm2ViewCalib* zelmMeasureRigCalib(const ZelmMeasureRig* rig) {
    return isOpen(rig) ? rig->rig.calib.get() : nullptr;
}

std::int32_t zelmMeasureRigViews(const ZelmMeasureRig* rig, std::int32_t* views) {
    if (!isOpen(rig) || views == nullptr) {
        return ZELM_ERR_PARAM;
    }
    *views = static_cast<std::int32_t>(rig->rig.views());
    return ZELM_OK;
}

std::int32_t zelmMeasureRigCamera(const ZelmMeasureRig* rig, std::int32_t side, ZelmMeasureCamera* camera) {
    if (!isOpen(rig) || !isSide(side)) {
        return ZELM_ERR_PARAM;
    }
    return guarded(nullptr, [&] {
        const RigCamera& c = rig->rig.camera(static_cast<char>(side));
        giveRecord({0, c.model, c.width, c.height, c.intrinsics}, camera);
    });
}

std::int32_t zelmMeasureRigPose(const ZelmMeasureRig* rig, std::int32_t side, std::int32_t view,
                                ZelmCameraExtrinsics* pose) {
    if (!isOpen(rig) || !isSide(side) || pose == nullptr || view < 0 ||
        static_cast<std::size_t>(view) >= rig->rig.views()) {
        return ZELM_ERR_PARAM;
    }
    *pose = rig->rig.camera(static_cast<char>(side)).poses[static_cast<std::size_t>(view)];
    return ZELM_OK;
}

std::int32_t zelmMeasureRigFundamental(const ZelmMeasureRig* rig, double* F) {
    if (!isOpen(rig) || F == nullptr) {
        return ZELM_ERR_PARAM;
    }
    std::copy(rig->rig.fundamental.begin(), rig->rig.fundamental.end(), F);
    return ZELM_OK;
}

std::int32_t zelmMeasureRigRelativePose(ZelmMeasureRig* handle, ZelmMeasureRelativePose* pose) {
    return withRig(handle, [&](const Rig& rig) {
        if (rig.left.isParallel() || rig.right.isParallel()) {
            refuse("no baseline: a parallel camera has no centre");
        }
        const Motion motion = motionBetween(rig.left, rig.right);
        ZelmMeasureRelativePose filled{};
        std::copy(motion.R.begin(), motion.R.end(), filled.R);
        std::copy(motion.t.begin(), motion.t.end(), filled.t);
        filled.baseline = std::hypot(motion.t[0], motion.t[1], motion.t[2]);
        // The optical axes are the third rows of both rotations; their cosine is the last element of the product.
        filled.convergence = std::acos(std::clamp(motion.R[8], -1.0, 1.0));
        giveRecord(filled, pose);
    });
}

std::int32_t zelmMeasureRigTilt(ZelmMeasureRig* handle, std::int32_t side, double* tilt) {
    return withRig(handle, [&](const Rig& rig) {
        require(tilt != nullptr, "the tilt's place is NULL");
        *tilt = tiltOfFirstView(rig.camera(sideOf(side)));
    });
}

std::int32_t zelmMeasureRigCentre(const ZelmMeasureRig* rig, double* left, double* right, std::int32_t* origin) {
    if (!isOpen(rig) || left == nullptr || right == nullptr) {
        return ZELM_ERR_PARAM;
    }
    return guarded(nullptr, [&] {
        const RigCentre centre = rigCentre(rig->rig);
        left[0] = centre.left.x;
        left[1] = centre.left.y;
        right[0] = centre.right.x;
        right[1] = centre.right.y;
        if (origin != nullptr) {
            *origin = centre.origin;
        }
    });
}
