// Cameras with every parameter set, for tests of the camera model.
#ifndef ZELM_TEST_RANDOM_CAMERA_H
#define ZELM_TEST_RANDOM_CAMERA_H

#include <algorithm>

#include "random.h"
#include "zelm/calib.h"

namespace zelmtest {

struct Camera {
    ZelmCameraIntrinsics cam{};
    ZelmCameraExtrinsics ext{};
};

inline Camera randomCamera(Random& random) {
    Camera camera;
    ZelmCameraIntrinsics& cam = camera.cam;
    cam.alpha = random.uniform(800, 2000);
    cam.beta = cam.alpha * random.uniform(0.95, 1.05);
    cam.gamma = random.uniform(-5, 5);
    cam.cx = random.uniform(540, 740);
    cam.cy = random.uniform(400, 560);
    cam.theta = random.uniform(-0.05, 0.05);
    cam.k1 = random.uniform(-0.1, 0.1);
    cam.k2 = random.uniform(-0.1, 0.1);
    const double A[9] = {cam.alpha, cam.gamma, cam.cx, 0, cam.beta, cam.cy, 0, 0, 1};
    std::copy_n(A, 9, cam.A);
    for (double& component : camera.ext.r) {
        component = random.uniform(-0.5, 0.5);
    }
    zelmCalibRodrigues(0, camera.ext.r, camera.ext.R);
    camera.ext.t[0] = random.uniform(-50, 50);
    camera.ext.t[1] = random.uniform(-50, 50);
    camera.ext.t[2] = random.uniform(400, 600);
    return camera;
}

// The point in camera coordinates.
inline Point3d inCamera(const ZelmCameraExtrinsics& ext, const Point3d& X) {
    const double* const R = ext.R;
    return {R[0] * X.x + R[1] * X.y + R[2] * X.z + ext.t[0], R[3] * X.x + R[4] * X.y + R[5] * X.z + ext.t[1],
            R[6] * X.x + R[7] * X.y + R[8] * X.z + ext.t[2]};
}

}  // namespace zelmtest

#endif
