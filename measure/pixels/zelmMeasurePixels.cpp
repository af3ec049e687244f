// The exported functions of many pixels and points of one camera.
#include <algorithm>
#include <array>
#include <vector>

#include "cameraPixels.h"
#include "records.h"

using namespace zelm::measure;

namespace {

// Calls `each` with the camera and the numbers of every pixel or point, `in` of them, and writes the `out` numbers that
// it gives, at the end alone: a failure leaves the caller's array untouched.
template <std::size_t in, std::size_t out, class Each>
std::int32_t withPixels(ZelmMeasureRig* handle, std::int32_t side, std::int64_t count, const double* given,
                        double* written, Each each) {
    return withRig(handle, [&](const Rig& rig) {
        const CameraPixels camera(rig, sideOf(side));
        require(count >= 0 && ((given != nullptr && written != nullptr) || count == 0),
                "the numbers are NULL, or their count is negative");
        const auto number = static_cast<std::size_t>(count);
        std::vector<std::array<double, out>> results(number);
        for (std::size_t i = 0; i < number; ++i) {
            results[i] = each(camera, given + in * i);
        }
        for (std::size_t i = 0; i < number; ++i) {
            std::copy(results[i].begin(), results[i].end(), written + out * i);
        }
    });
}

std::array<double, 2> numbersOf(const Point2d& pixel) {
    return {pixel.x, pixel.y};
}

}  // namespace

std::int32_t zelmMeasureProject(ZelmMeasureRig* handle, std::int32_t side, std::int64_t count, const double* points,
                                double* pixels) {
    return withPixels<3, 2>(handle, side, count, points, pixels, [](const CameraPixels& camera, const double* X) {
        return numbersOf(camera.project({X[0], X[1], X[2]}));
    });
}

std::int32_t zelmMeasureUndistort(ZelmMeasureRig* handle, std::int32_t side, std::int64_t count, const double* raw,
                                  double* undistorted) {
    return withPixels<2, 2>(handle, side, count, raw, undistorted, [](const CameraPixels& camera, const double* p) {
        return numbersOf(camera.undistort({p[0], p[1]}));
    });
}

std::int32_t zelmMeasureDistort(ZelmMeasureRig* handle, std::int32_t side, std::int64_t count,
                                const double* undistorted, double* raw) {
    return withPixels<2, 2>(handle, side, count, undistorted, raw, [](const CameraPixels& camera, const double* p) {
        return numbersOf(camera.distort({p[0], p[1]}));
    });
}

std::int32_t zelmMeasureEpipolarLines(ZelmMeasureRig* handle, std::int32_t side, std::int64_t count, const double* raw,
                                      double* lines) {
    return withPixels<2, 3>(handle, side, count, raw, lines, [](const CameraPixels& camera, const double* p) {
        return camera.epipolarLine({p[0], p[1]});
    });
}
