// The projection of plate dots and its derivatives, as the refinement of the camera parameters needs them.
//
// Notation: a dot (X, Y, 0) has camera coordinates P = R (X, Y, 0) + t and normalised coordinates (xn, yn) = (Px / Pz,
// Py / Pz), under parallel projection (Px, Py). With D = (k2 r^2 + k1) r^2, r^2 = xn^2 + yn^2, its image is
//   u = cx + (1 + D) (alpha xn + gamma yn),   v = cy + (1 + D) beta yn.
// Here (alpha, gamma, cx; 0, beta, cy) are the entries of the camera matrix under every model.
#ifndef ZELM_CAMERA_PROJECTION_H
#define ZELM_CAMERA_PROJECTION_H

#include <cstddef>

#include "zelm/base.h"

namespace zelm {

// Order of the intrinsic parameters.
constexpr std::size_t kAlpha = 0;
constexpr std::size_t kBeta = 1;
constexpr std::size_t kGamma = 2;
constexpr std::size_t kCx = 3;
constexpr std::size_t kCy = 4;
constexpr std::size_t kK1 = 5;
constexpr std::size_t kK2 = 6;
constexpr std::size_t kIntrinsics = 7;

// Order of the parameters of a pose: rotation vector, translation.
constexpr std::size_t kRotation = 0;
constexpr std::size_t kTranslation = 3;
constexpr std::size_t kPose = 6;

// A pose made ready for many dots. Column k of omega is the angular velocity of R per unit of rotation vector entry k:
// dR / dr_k = [omega_k]x R.
struct ViewFrame {
    double R[9];
    double t[3];
    double omega[9];

    explicit ViewFrame(const double* pose);
};

// What turns camera coordinates into image points.
struct DotProjector {
    const double* intrinsics;  // kIntrinsics
    bool parallel;

    [[nodiscard]] Point2d project(const ViewFrame& frame, Point2d dot) const;

    // Also the derivatives of u and v, each kIntrinsics, then kPose numbers.
    Point2d project(const ViewFrame& frame, Point2d dot, double* du, double* dv) const;
};

}  // namespace zelm

#endif
