#include "planInformation.h"

#include <Eigen/Cholesky>
#include <cmath>
#include <numbers>

#include "predictedDot.h"

namespace zelm::measure {
namespace {

constexpr int kRight13 = kPlanParameters - kPlanRight;  // what the right image depends on
constexpr std::array<double, 3> kFlat{};

using Pose = Eigen::Matrix<double, 6, 6>;
using Mixed = Eigen::Matrix<double, 6, kPlanParameters>;

// The normal equations of one view.
struct Normal {
    PlanMatrix shared = PlanMatrix::Zero();
    Mixed mixed = Mixed::Zero();
    Pose own = Pose::Zero();
};

template <int n>
void addRow(const Eigen::Matrix<double, n, 1>& byShared, int at, const std::array<double, 6>& byPose, double weight,
            Normal& normal) {
    const Eigen::Map<const Eigen::Matrix<double, 6, 1>> p(byPose.data());
    normal.shared.block<n, n>(at, at).noalias() += weight * byShared * byShared.transpose();
    normal.mixed.block<6, n>(0, at).noalias() += weight * p * byShared.transpose();
    normal.own.noalias() += weight * p * p.transpose();
}

void addDot(Side side, const PredictedDot& model, double weight, Normal& normal) {
    for (std::size_t row = 0; row < 2; ++row) {
        const Eigen::Map<const Eigen::Matrix<double, kCameraParameters, 1>> byCamera(model.byCamera[row].data());
        if (side == kLeft) {
            addRow<kCameraParameters>(byCamera, 0, model.byPose[row], weight, normal);
            continue;
        }
        Eigen::Matrix<double, kRight13, 1> both;
        both << byCamera, Eigen::Map<const Eigen::Matrix<double, 6, 1>>(model.byRelative[row].data());
        addRow<kRight13>(both, kPlanRight, model.byPose[row], weight, normal);
    }
}

}  // namespace

PlanBasis::PlanBasis(const PlanPair& pair, double distance, bool holdSkew, bool squarePixels) {
    constexpr double kFirst = 0.02;  // of k1: with a focal length of 2000 it moves a pixel 600 from the middle by one
    constexpr double kSecond = 0.2;  // and k2
    const double turn = 1.0 / pair.cameras[kRight].focalLength();
    for (const int camera : {0, kPlanRight}) {
        for (int i = 0; i < static_cast<int>(kCameraParameters); ++i) {
            basis(camera + i, camera + i) = i == static_cast<int>(kK1)   ? kFirst
                                            : i == static_cast<int>(kK2) ? kSecond
                                                                         : 1.0;
        }
        if (squarePixels) {
            basis(camera + static_cast<int>(kFy), camera + static_cast<int>(kFx)) = 1.0;
            hold(camera + static_cast<int>(kFy));
        }
        if (holdSkew) {
            hold(camera + static_cast<int>(kSkew));
        }
    }
    for (int i = 0; i < 3; ++i) {
        basis(kPlanRelative + i, kPlanRelative + i) = turn;
        basis(kPlanRelative + 3 + i, kPlanRelative + 3 + i) = turn * distance;
    }
}

void PlanBasis::hold(int parameter) {
    basis(parameter, parameter) = 0.0;
    isHeld[parameter] = 1.0;
}

std::string PlanBasis::nameOf(const PlanVector& direction) const {
    static constexpr std::array kCameraNames{
        "horizontal focal length", "skew",          "vertical focal length", "principal point's x",
        "principal point's y",     "distortion k1", "distortion k2"};
    Eigen::Index largest = 0;
    direction.cwiseAbs().maxCoeff(&largest);
    if (largest < kPlanRelative) {
        const bool isLeft = largest < kPlanRight;
        const auto i = static_cast<std::size_t>(largest - (isLeft ? 0 : kPlanRight));
        return std::string("the ") + (isLeft ? "left" : "right") + " camera's " + kCameraNames[i];
    }
    return largest < kPlanRelative + 3 ? "the rotation between the cameras" : "the shift between the cameras";
}

ViewInformation informationOf(const PlanPair& pair, const PlanPlate& plate, const PlanBasis& basis,
                              const MotionParameters& pose, double noise) {
    Normal normal;
    const Motion motion = motionOf(pose);
    const double weight = plate.weight / (noise * noise);
    bool any = false;
    for (const Side side : {kLeft, kRight}) {
        const ImageParameters image{pair.cameras[side].projection,
                                    side == kLeft ? nullptr : pair.relativeParameters.data(),
                                    pose.data(),
                                    1.0,
                                    kFlat.data(),
                                    1.0};
        for (const Vector3& place : plate.dots) {
            const Vector3 X = moved(motion, place);
            if (pair.seen(side, X, marginOf(pair, side, X, plate.radius))) {
                addDot(side, predictDot(image, place, plate.radius, RotationDerivative::byTurn), weight, normal);
                any = true;
            }
        }
    }
    ViewInformation result;
    if (any) {
        const PlanMatrix reduced = normal.shared - normal.mixed.transpose() * normal.own.ldlt().solve(normal.mixed);
        result.reduced = basis.matrix(0.5 * (reduced + reduced.transpose()));
        result.all = basis.matrix(normal.shared).diagonal();
    }
    return result;
}

}  // namespace zelm::measure
