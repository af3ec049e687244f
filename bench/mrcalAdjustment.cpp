#include "mrcalAdjustment.h"

#include <array>
#include <cmath>
#include <cstddef>

extern "C" {
#include <mrcal/mrcal.h>
}

namespace zelmbench {
namespace {

using namespace zelm::measure;

constexpr int kColumns = 13;
constexpr int kRows = 11;
constexpr int kDots = kColumns * kRows;
constexpr int kParameters = 8;    // of a camera
constexpr double kUnit = 1e-3;    // metres, for which its solver is scaled, in a plate unit
constexpr double kPitch = 10.0;   // plate units
constexpr double kAbsent = -1.0;  // weight of a dot that was not seen

// Moved by an offset of the plate's origin.
mrcal_pose_t poseOf(const MotionParameters& m, double x, double y) {
    const Matrix3 R = rotationOf({m[0], m[1], m[2]});
    mrcal_pose_t pose{};
    pose.r.x = m[0];
    pose.r.y = m[1];
    pose.r.z = m[2];
    pose.t.x = kUnit * (m[3] + R[0] * x + R[1] * y);
    pose.t.y = kUnit * (m[4] + R[3] * x + R[4] * y);
    pose.t.z = kUnit * (m[5] + R[6] * x + R[7] * y);
    return pose;
}

std::array<double, kParameters> intrinsicsOf(const CameraParameters& p) {
    return {p[kFx], p[kFy], p[kCx], p[kCy], p[kK1], p[kK2], 0.0, 0.0};
}

// All places of the plate, with those that were seen.
void addPixels(const std::vector<DotObservation>& dots, std::vector<mrcal_point3_t>& pool) {
    const std::size_t first = pool.size();
    mrcal_point3_t none{};
    none.z = kAbsent;
    pool.resize(first + kDots, none);
    for (const DotObservation& dot : dots) {
        const int place = (dot.index.y + kRows / 2) * kColumns + dot.index.x + kColumns / 2;
        mrcal_point3_t& pixel = pool[first + static_cast<std::size_t>(place)];
        pixel.x = dot.pixel.x;
        pixel.y = dot.pixel.y;
        pixel.z = 1.0;
    }
}

mrcal_problem_selections_t selections() {
    mrcal_problem_selections_t s{};
    s.do_optimize_intrinsics_core = true;
    s.do_optimize_intrinsics_distortions = true;
    s.do_optimize_extrinsics = true;
    s.do_optimize_frames = true;
    return s;
}

}  // namespace

double adjustByMrcal(const AdjustState& start, const std::vector<AdjustView>& views) {
    std::vector<double> intrinsics;
    for (const ProjectionCamera& camera : start.cameras) {
        const auto p = intrinsicsOf(camera.p);
        intrinsics.insert(intrinsics.end(), p.begin(), p.end());
    }
    mrcal_pose_t relative = poseOf(start.relative, 0.0, 0.0);
    std::vector<mrcal_pose_t> frames;
    std::vector<mrcal_observation_board_t> boards;
    std::vector<mrcal_point3_t> pool;
    double seen = 0.0;
    for (std::size_t view = 0; view < views.size(); ++view) {
        frames.push_back(poseOf(start.poses[view], -kPitch * (kColumns / 2), -kPitch * (kRows / 2)));
        for (const int side : {0, 1}) {
            boards.push_back({{side, side - 1}, static_cast<int>(view)});
            const auto& dots = views[view].dots[static_cast<std::size_t>(side)];
            addPixels(dots, pool);
            seen += static_cast<double>(dots.size());
        }
    }
    mrcal_lensmodel_t model{};
    model.type = MRCAL_LENSMODEL_OPENCV4;
    const mrcal_problem_constants_t constants{};
    const int sizes[] = {zelmtest::kSceneWidth, zelmtest::kSceneHeight, zelmtest::kSceneWidth, zelmtest::kSceneHeight};
    const int frameCount = static_cast<int>(frames.size());
    const int boardCount = static_cast<int>(boards.size());
    const int states = mrcal_num_states(2, 1, frameCount, 0, 0, boardCount, selections(), &model);
    const int measurements =
        mrcal_num_measurements(boardCount, 0, kColumns, kRows, 2, 1, frameCount, 0, 0, selections(), &model);
    std::vector<double> b(static_cast<std::size_t>(states));
    std::vector<double> x(static_cast<std::size_t>(measurements));
    const mrcal_stats_t stats =
        mrcal_optimize(b.data(), states * static_cast<int>(sizeof(double)), x.data(),
                       measurements * static_cast<int>(sizeof(double)), intrinsics.data(), &relative, frames.data(),
                       nullptr, nullptr, 2, 1, frameCount, 0, 0, boards.data(), nullptr, boardCount, 0, pool.data(),
                       &model, sizes, selections(), &constants, kUnit * kPitch, kColumns, kRows, false, false);
    if (!(stats.rms_reproj_error__pixels >= 0.0)) {
        return -1.0;
    }
    double squares = 0.0;
    for (const double residual : x) {
        squares += residual * residual;
    }
    return std::sqrt(squares / (2.0 * seen));
}

}  // namespace zelmbench
