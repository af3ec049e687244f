// The exported functions of plans.
#include <cmath>
#include <new>

#include "adjustStart.h"
#include "planner.h"
#include "records.h"

using namespace zelm::measure;

namespace {

constexpr std::int32_t kLeastMost = 3;
constexpr std::int32_t kGreatestMost = 1000;

// Opens a handle with the planner that make() gives; keeps it, with the reason, when the data do not allow it.
template <class Make>
std::int32_t openPlan(ZelmMeasurePlan** handle, Make make) {
    if (handle == nullptr || *handle != nullptr) {
        return ZELM_ERR_PARAM;
    }
    auto* const opened = new (std::nothrow) ZelmMeasurePlan;
    if (opened == nullptr) {
        return ZELM_ERR_MEMORY;
    }
    const std::int32_t status = guarded(&opened->error, [&] { make(opened->planner); });
    if (status >= 0 || status == ZELM_MEASURE_ERR_DATA) {
        *handle = opened;
    } else {
        delete opened;
    }
    return status;
}

ZelmMeasurePlanOptions optionsOf(const ZelmMeasurePlanOptions* options) {
    const ZelmMeasurePlanOptions o = recordOf(options);
    require(o.criterion == ZELM_MEASURE_PLAN_WORST || o.criterion == ZELM_MEASURE_PLAN_RMS,
            "criterion is one of ZelmMeasurePlanCriterion");
    require((o.holdSkew == 0 || o.holdSkew == 1) && (o.squarePixels == 0 || o.squarePixels == 1),
            "holdSkew and squarePixels are 0 or 1");
    return o;
}

Matrix3 rotation(const double* R) {
    Matrix3 m{};
    std::copy_n(R, 9, m.begin());
    return m;
}

template <class Handle, class Work>
std::int32_t withPlan(Handle* handle, Work work) noexcept {
    if (handle == nullptr || !handle->planner) {
        return ZELM_ERR_PARAM;
    }
    return guarded(&handle->error, [&] { work(*handle->planner); });
}

ZelmMeasureCamera cameraOf(const RigCamera& camera) {
    return {sizeof(ZelmMeasureCamera), camera.model, camera.width, camera.height, camera.intrinsics};
}

}  // namespace

std::int32_t zelmMeasurePlanOpen(const ZelmMeasureCamera* left, const ZelmMeasureCamera* right,
                                 const ZelmMeasureRelativePose* relative, const Zelm2ViewPatternDesc* plate,
                                 const ZelmMeasurePlanOptions* options, ZelmMeasurePlan** plan) {
    return openPlan(plan, [&](std::optional<Planner>& planner) {
        const ZelmMeasureCamera l = recordOf(left);
        const ZelmMeasureCamera r = recordOf(right);
        const ZelmMeasureRelativePose pose = recordOf(relative);
        require(plate != nullptr, "the plate is NULL");
        const ZelmMeasurePlanOptions o = optionsOf(options);
        const Motion motion{rotation(pose.R), {pose.t[0], pose.t[1], pose.t[2]}};
        planner.emplace(planPair(l, r, motion, {o.focusNear, o.focusFar}), *plate, o);
    });
}

std::int32_t zelmMeasurePlanOfRig(const ZelmMeasureRig* rig, const Zelm2ViewPatternDesc* plate,
                                  const ZelmMeasurePlanOptions* options, ZelmMeasurePlan** plan) {
    return openPlan(plan, [&](std::optional<Planner>& planner) {
        require(rig != nullptr && rig->isOpen, "the rig is NULL or was refused");
        require(plate != nullptr, "the plate is NULL");
        const ZelmMeasurePlanOptions o = optionsOf(options);
        const Rig& r = rig->rig;
        if (r.views() == 1) {
            refuse("the calibration was imported: it tells of no views to plan from; calibrate with zelm calibrate");
        }
        planner.emplace(
            planPair(cameraOf(r.left), cameraOf(r.right), motionBetween(r.left, r.right), {o.focusNear, o.focusFar}),
            *plate, o);
        std::vector<MotionParameters> poses;
        poses.reserve(r.views());
        for (const ZelmCameraExtrinsics& pose : r.left.poses) {
            poses.push_back(motionParameters(rotation(pose.R), {pose.t[0], pose.t[1], pose.t[2]}));
        }
        try {
            planner->take(poses);
        } catch (...) {
            planner.reset();
            throw;
        }
    });
}

void zelmMeasurePlanClose(ZelmMeasurePlan** plan) {
    if (plan != nullptr) {
        delete *plan;
        *plan = nullptr;
    }
}

const char* zelmMeasurePlanError(const ZelmMeasurePlan* plan) {
    return plan == nullptr ? "" : plan->error.c_str();
}

std::int32_t zelmMeasurePlanTake(ZelmMeasurePlan* plan, std::int64_t count, const ZelmCameraExtrinsics* poses) {
    return withPlan(plan, [&](Planner& planner) {
        require(count >= 0 && (poses != nullptr || count == 0), "the poses are NULL, or their number is negative");
        std::vector<MotionParameters> list;
        list.reserve(static_cast<std::size_t>(count));
        for (std::int64_t i = 0; i < count; ++i) {
            const Matrix3 R = rotation(poses[i].R);
            const Vector3 t{poses[i].t[0], poses[i].t[1], poses[i].t[2]};
            if (!isRotation(R) || !std::isfinite(dot(t, t))) {
                refuse("pose " + std::to_string(i) + " is none: R is no rotation, or t is not finite");
            }
            list.push_back(motionParameters(R, t));
        }
        planner.take(list);
    });
}

std::int32_t zelmMeasurePlanNext(ZelmMeasurePlan* plan, ZelmMeasurePlanView* view) {
    return withPlan(plan, [&](const Planner& planner) {
        recordOf(view);
        giveRecord(planner.next(), view);
    });
}

std::int32_t zelmMeasurePlanFewest(ZelmMeasurePlan* plan, double tolerance, std::int32_t most) {
    return withPlan(plan, [&](Planner& planner) {
        require(tolerance >= 0.0 && std::isfinite(tolerance), "the tolerance is negative or not finite");
        require(most >= kLeastMost && most <= kGreatestMost, "the number of views is not from 3 to 1000");
        planner.fewest(tolerance, static_cast<std::size_t>(most));
    });
}

std::int32_t zelmMeasurePlanViews(const ZelmMeasurePlan* plan, std::int32_t* views) {
    if (plan == nullptr || !plan->planner || views == nullptr) {
        return ZELM_ERR_PARAM;
    }
    *views = static_cast<std::int32_t>(plan->planner->views());
    return ZELM_OK;
}

std::int32_t zelmMeasurePlanView(ZelmMeasurePlan* plan, std::int32_t index, ZelmMeasurePlanView* view) {
    return withPlan(plan, [&](const Planner& planner) {
        require(index >= 0 && static_cast<std::size_t>(index) < planner.views(), "there is no such view");
        recordOf(view);
        giveRecord(planner.view(static_cast<std::size_t>(index)), view);
    });
}

std::int32_t zelmMeasurePlanFigures(ZelmMeasurePlan* plan, ZelmMeasurePlanFigures* figures) {
    return withPlan(plan, [&](const Planner& planner) {
        recordOf(figures);
        giveRecord(planner.figures(), figures);
    });
}
