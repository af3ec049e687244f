// Radial lens distortion.
#ifndef ZELM_DISTORTION_H
#define ZELM_DISTORTION_H

#include "zelm/calib.h"

namespace zelm {

// Displacement by D = (k2 r^2 + k1) r^2 times the offset (dx, dy) from the principal point, in pixels, where
// r^2 = xn^2 + yn^2, xn = (dx - (gamma / beta) dy) / alpha, yn = (dy / beta) cos(theta).
class LensDistortion {
public:
    // theta is given apart from the record, whose own takes part only under model 1.
    LensDistortion(const ZelmCameraIntrinsics& cam, double theta);

    // The distorted position of an ideal pixel.
    [[nodiscard]] Point2d distort(Point2d ideal) const {
        const Offset at = offsetOf(ideal);
        return {ideal.x + at.D * at.dx, ideal.y + at.D * at.dy};
    }
    // Newton's method from the observed position. Returns the count of steps, or ZELM_ERR_UNDISTORT; the estimate at
    // the end is in ideal either way.
    int32_t undistort(Point2d observed, Point2d* ideal) const;

private:
    struct Offset {
        double dx, dy;  // pixels from the principal point
        double xn, yn;  // normalised
        double r2;
        double D;
    };
    [[nodiscard]] Offset offsetOf(Point2d ideal) const {
        const double dx = ideal.x - cx;
        const double dy = ideal.y - cy;
        const double xn = (dx - shear * dy) / alpha;
        const double yn = (dy / beta) * cosTheta;
        const double r2 = xn * xn + yn * yn;
        return {dx, dy, xn, yn, r2, (k2 * r2 + k1) * r2};
    }

    double alpha, beta, cx, cy, k1, k2;
    double shear;  // gamma / beta
    double cosTheta;
    double xnByY;  // -d xn / dy
    double ynByY;  // d yn / dy
};

}  // namespace zelm

#endif
