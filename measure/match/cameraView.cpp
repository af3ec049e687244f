#include "cameraView.h"

#include <array>

namespace zelm::measure {

std::optional<Point2d> CameraView::undistorted(Point2d raw) const {
    Point2d ideal{};
    if (zelm2ViewUnDistortPoint(calib, side, &raw, &ideal) < 0) {
        return std::nullopt;
    }
    return ideal;
}

Point2d CameraView::distorted(Point2d ideal) const {
    Point2d raw{};
    zelm2ViewDistortPoint(calib, side, &ideal, &raw);
    return raw;
}

bool CameraView::shows(const Matrix3& toIdeal, int width, int height) const {
    constexpr double kRounding = 0.01;  // pixels by which single precision may place a position beside its true one
    const double right = width - 1;
    const double bottom = height - 1;
    const std::array<Point2d, 6> outline{
        {{0.0, 0.0}, {right, 0.0}, {0.0, bottom}, {right, bottom}, {0.5 * right, 0.0}, {0.5 * right, bottom}}};
    for (const Point2d& corner : outline) {
        const Point2d raw = distorted(apply(toIdeal, corner));
        if (!(raw.x >= kRounding && raw.y >= kRounding && raw.x < picture.width() - 1 - kRounding &&
              raw.y < picture.height() - 1 - kRounding)) {
            return false;
        }
    }
    return true;
}

void CameraView::warp(const Matrix3& toIdeal, int width, int height, std::uint8_t* patch) const {
    // The kernel takes the intrinsics as the 22 doubles that the record consists of.
    perspectiveTransAndDistortImage_8uC1(toIdeal.data(), camera.intrinsics.A, picture.pixels(), picture.width(),
                                         picture.width(), picture.height(), patch, width, width, height);
}

}  // namespace zelm::measure
