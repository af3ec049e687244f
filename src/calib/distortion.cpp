// Radial lens distortion and its inverse.
#include "distortion.h"

#include <cmath>

#include "solve2x2.h"

namespace zelm {
namespace {

constexpr int32_t kMaxSteps = 20;
constexpr double kConverged = 0.0001;  // pixels, of a Newton step in x and in y

}  // namespace

LensDistortion::LensDistortion(const ZelmCameraIntrinsics& cam, double theta)
    : alpha(cam.alpha),
      beta(cam.beta),
      cx(cam.cx),
      cy(cam.cy),
      k1(cam.k1),
      k2(cam.k2),
      shear(cam.gamma / cam.beta),
      cosTheta(theta == 0.0 ? 1.0 : std::cos(theta)),
      xnByY(cam.gamma / (cam.alpha * cam.beta)),
      ynByY(cosTheta / cam.beta) {}

int32_t LensDistortion::undistort(Point2d observed, Point2d* ideal) const {
    *ideal = observed;
    for (int32_t step = 1; step <= kMaxSteps; ++step) {
        const Offset at = offsetOf(*ideal);
        const double F[2] = {ideal->x + at.D * at.dx - observed.x, ideal->y + at.D * at.dy - observed.y};
        const double slope = 2.0 * (k1 + 2.0 * k2 * at.r2);
        const double gx = at.xn / alpha;
        const double gy = ynByY * at.yn - xnByY * at.xn;
        const double J[4] = {1.0 + at.D + at.dx * slope * gx, at.dx * slope * gy,  //
                             at.dy * slope * gx, 1.0 + at.D + at.dy * slope * gy};
        double delta[2];
        if (!innerSolve2x2(J, F, delta)) {
            return ZELM_ERR_UNDISTORT;
        }
        ideal->x -= delta[0];
        ideal->y -= delta[1];
        if (std::fabs(delta[0]) <= kConverged && std::fabs(delta[1]) <= kConverged) {
            return step;
        }
    }
    return ZELM_ERR_UNDISTORT;
}

}  // namespace zelm

int32_t zelmCalibDistortPoint(const ZelmCameraIntrinsics* tCam, double dX, double dY, double* dXd, double* dYd) {
    if (tCam == nullptr || dXd == nullptr || dYd == nullptr) {
        return ZELM_ERR_PARAM;
    }
    const Point2d distorted = zelm::LensDistortion(*tCam, tCam->theta).distort({dX, dY});
    *dXd = distorted.x;
    *dYd = distorted.y;
    return ZELM_OK;
}

int32_t zelmCalibUnDistortPoint(const ZelmCameraIntrinsics* tCam, double dXd, double dYd, double* dX, double* dY) {
    if (tCam == nullptr || dX == nullptr || dY == nullptr) {
        return ZELM_ERR_PARAM;
    }
    Point2d ideal;
    const int32_t steps = zelm::LensDistortion(*tCam, tCam->theta).undistort({dXd, dYd}, &ideal);
    *dX = ideal.x;
    *dY = ideal.y;
    return steps;
}
