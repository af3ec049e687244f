// Joint refinement of camera intrinsics and view poses.
#include "cameraRefine.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>

#include "cameraNormalEq.h"
#include "settled.h"
#include "workBuffer.h"
#include "zelm/mat.h"

namespace zelm {
namespace {

constexpr int kMaxSteps = 200;
constexpr double kStartDamping = 0.001;

constexpr double kInfinite = std::numeric_limits<double>::infinity();

constexpr std::int32_t kP = kIntrinsics;
constexpr std::int32_t kQ = kPose;

void damp(std::size_t n, double lambda, double* N) {
    for (std::size_t i = 0; i < n; ++i) {
        N[i * n + i] *= 1.0 + lambda;
    }
}

// A point of the parameter space with its normal equations.
struct State {
    CameraUnknowns unknowns;
    CameraNormalEq equations;
};

// All memory of the refinement.
class Refinement {
public:
    Refinement(const CameraData& measured, double threshold)
        : data(measured),
          robustThreshold(threshold),
          poses(3 * measured.views(), kPose),
          viewEquations(2, measured.views()),
          inverses(measured.views(), kPose * kPose),
          squares(threshold > 0.0 ? measured.dots() : 0) {}

    [[nodiscard]] bool ok() const { return poses.ok() && viewEquations.ok() && inverses.ok() && squares.ok(); }

    std::int32_t run(CameraUnknowns* unknowns) {
        const std::size_t n = data.views();
        State states[2];
        for (std::size_t k = 0; k < 2; ++k) {
            states[k].unknowns.poses = poses.data() + k * n * kPose;
            states[k].equations.views = viewEquations.data() + k * n;
        }
        State* present = &states[0];
        State* trial = &states[1];
        copy(*unknowns, &present->unknowns);
        if (!evaluate(present)) {
            return ZELM_ERR_CALIB_NOT_CONVERGED;
        }
        double lambda = kStartDamping;
        bool converged = false;
        for (int step = 0; step < kMaxSteps && !converged; ++step) {
            if (const std::int32_t status = solve(present->equations, lambda); status < 0) {
                return status;
            }
            move(present->unknowns, &trial->unknowns);
            const double cost = evaluate(trial) ? comparable(*trial, *present) : kInfinite;
            converged = isConverged(*present, *trial, cost);
            if (cost < present->equations.cost) {
                lambda *= 0.1;
                std::swap(present, trial);
            } else {
                lambda *= 10.0;
            }
        }
        copy(present->unknowns, unknowns);
        return converged ? ZELM_OK : ZELM_ERR_CALIB_NOT_CONVERGED;
    }

private:
    void copy(const CameraUnknowns& from, CameraUnknowns* to) const {
        std::copy_n(from.intrinsics, kIntrinsics, to->intrinsics);
        std::copy_n(from.poses, data.views() * kPose, to->poses);
    }

    bool evaluate(State* state) {
        return innerCalcCameraNormalEq(data, state->unknowns, robustThreshold, squares.data(), &state->equations);
    }

    // The cost of the trial, evaluated just now, by the measure of the present state: with weighting its cut-off.
    // Costs under two cut-offs would say more of the cut-offs than of the fit.
    double comparable(const State& trial, const State& present) const {
        return robustThreshold > 0.0 ? tukeyCost(squares.data(), data.dots(), present.equations.cutOff2)
                                     : trial.equations.cost;
    }

    double* poseStep(std::size_t view) { return poses.data() + (2 * data.views() + view) * kPose; }
    double* inverse(std::size_t view) { return inverses.data() + view * kPose * kPose; }

    // S = N - sum cross Nv^-1 cross^T and the right-hand side to go with it; keeps the inverses.
    std::int32_t reduce(const CameraNormalEq& eq, double lambda, double* S, double* rhs) {
        std::copy_n(eq.N, kIntrinsics * kIntrinsics, S);
        std::copy_n(eq.g, kIntrinsics, rhs);
        for (std::size_t v = 0; v < data.views(); ++v) {
            const CameraNormalEq::View& view = eq.views[v];
            double damped[kPose * kPose];
            std::copy_n(view.N, kPose * kPose, damped);
            damp(kPose, lambda, damped);
            if (const std::int32_t status = zelmMatInvert(kQ, damped, inverse(v)); status < 0) {
                return status;
            }
            double crossInverse[kIntrinsics * kPose];
            double product[kIntrinsics * kIntrinsics];
            zelmMatMul(kP, kQ, view.cross, kQ, kQ, inverse(v), crossInverse);
            zelmMatMulTransposed2(0, kP, kQ, crossInverse, kP, kQ, view.cross, product);
            zelmMatSub(kP, kP, S, product, S);
            zelmMatGenMul(-1.0, kP, kQ, crossInverse, kQ, 1, view.g, 1.0, rhs, rhs);
        }
        return ZELM_OK;
    }

    // The damped step of all unknowns, into intrinsicStep and poseStep().
    std::int32_t solve(const CameraNormalEq& eq, double lambda) {
        double S[kIntrinsics * kIntrinsics];
        double rhs[kIntrinsics];
        std::int32_t status = reduce(eq, lambda, S, rhs);
        if (status == ZELM_OK) {
            damp(kIntrinsics, lambda, S);
            status = zelmMatSolveLU(kP, S, rhs, intrinsicStep);
        }
        if (status < 0) {
            return status == ZELM_ERR_MEMORY ? status : ZELM_ERR_CALIB_NOT_CONVERGED;
        }
        for (std::size_t v = 0; v < data.views(); ++v) {
            double rest[kPose];  // g - cross^T * step
            zelmMatMulTransposed2(1, kP, kQ, eq.views[v].cross, kP, 1, intrinsicStep, rest);
            zelmMatSub(1, kQ, eq.views[v].g, rest, rest);
            zelmMatMul(kQ, kQ, inverse(v), kQ, 1, rest, poseStep(v));
        }
        return ZELM_OK;
    }

    void move(const CameraUnknowns& from, CameraUnknowns* to) {
        zelmMatAdd(1, kP, from.intrinsics, intrinsicStep, to->intrinsics);
        for (std::size_t v = 0; v < data.views(); ++v) {
            zelmMatAdd(1, kQ, from.poses + v * kPose, poseStep(v), to->poses + v * kPose);
        }
    }

    bool isConverged(const State& before, const State& after, double newCost) const {
        return costSettled(before.equations.cost, newCost) ||
               (parametersSettled(kIntrinsics, before.unknowns.intrinsics, after.unknowns.intrinsics) &&
                parametersSettled(data.views() * kPose, before.unknowns.poses, after.unknowns.poses));
    }

    const CameraData& data;
    double robustThreshold;
    WorkBuffer<double> poses;  // of both states, then the step
    WorkBuffer<CameraNormalEq::View> viewEquations;
    WorkBuffer<double> inverses;
    WorkBuffer<double> squares;
    double intrinsicStep[kIntrinsics];
};

}  // namespace

// With weighting, plain least squares comes first: docs/decisions.md#plain-first.
std::int32_t refineCamera(const CameraData& data, double robustThreshold, CameraUnknowns* unknowns) {
    if (robustThreshold > 0.0) {
        Refinement plain(data, 0.0);
        if (!plain.ok()) {
            return ZELM_ERR_MEMORY;
        }
        if (const std::int32_t status = plain.run(unknowns); status == ZELM_ERR_MEMORY) {
            return status;
        }
    }
    Refinement refinement(data, robustThreshold);
    return refinement.ok() ? refinement.run(unknowns) : ZELM_ERR_MEMORY;
}

}  // namespace zelm
