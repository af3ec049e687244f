// Synthetic calibration data: a camera with known parameters looks at the plate from several poses.
#ifndef ZELM_TEST_CAMERA_SCENE_H
#define ZELM_TEST_CAMERA_SCENE_H

#include <cmath>
#include <cstddef>
#include <vector>

#include "random.h"
#include "zelm/calib.h"

namespace zelmtest {

struct CameraScene {
    int32_t model = 0;
    ZelmCameraIntrinsics camera{};
    std::vector<ZelmCameraExtrinsics> poses;
    std::vector<std::vector<Point2d>> planes;
    std::vector<std::vector<Point2d>> images;

    // The views as the estimation takes them; valid as long as the scene.
    std::vector<Zelm2ViewPtnEntry> entries() {
        std::vector<Zelm2ViewPtnEntry> list;
        for (std::size_t v = 0; v < planes.size(); ++v) {
            list.push_back({static_cast<int32_t>(planes[v].size()), planes[v].data(), images[v].data()});
        }
        return list;
    }
    void addView(const std::vector<Point2d>& plane, const ZelmCameraExtrinsics& pose) {
        std::vector<Point2d> image;
        for (const Point2d& dot : plane) {
            const Point3d X{dot.x, dot.y, 0.0};
            Point2d p{};
            zelmCalibChange3Dto2D(&X, &camera, &pose, &p, model);
            image.push_back(p);
        }
        poses.push_back(pose);
        planes.push_back(plane);
        images.push_back(image);
    }
    void addNoise(double sigma, Random& random) {
        for (auto& view : images) {
            for (Point2d& p : view) {
                p.x += sigma * random.normal();
                p.y += sigma * random.normal();
            }
        }
    }
};

// What the estimation makes of a scene.
struct CameraEstimate {
    int32_t status = 0;
    ZelmCameraIntrinsics camera{};
    std::vector<ZelmCameraExtrinsics> poses;
    double error = 0.0;
};

inline CameraEstimate estimateCamera(CameraScene& scene, double threshold = -1.0,
                                     const ZelmCameraIntrinsics& preset = {}) {
    CameraEstimate result;
    result.camera = preset;
    result.poses.resize(scene.planes.size());
    const auto entries = scene.entries();
    result.status = zelmCalibCameraParam(static_cast<int32_t>(entries.size()), entries.data(), threshold,
                                         &result.camera, result.poses.data(), &result.error, scene.model);
    return result;
}

// Calls visit(distance) with the distance in pixels between each dot and the estimate's projection of it.
template <class Visit>
void forEachDistance(const CameraScene& scene, const CameraEstimate& result, Visit visit) {
    for (std::size_t v = 0; v < scene.planes.size(); ++v) {
        for (std::size_t i = 0; i < scene.planes[v].size(); ++i) {
            const Point3d X{scene.planes[v][i].x, scene.planes[v][i].y, 0.0};
            Point2d p{};
            zelmCalibChange3Dto2D(&X, &result.camera, &result.poses[v], &p, scene.model);
            visit(std::hypot(p.x - scene.images[v][i].x, p.y - scene.images[v][i].y));
        }
    }
}

inline double meanDistance(const CameraScene& scene, const CameraEstimate& result) {
    double sum = 0.0;
    double count = 0.0;
    forEachDistance(scene, result, [&](double distance) {
        sum += distance;
        count += 1.0;
    });
    return sum / count;
}

// Intrinsics of models 0 and 1: tilt is the angle of the sheared axes, tan(tilt) = A[0][1] / A[1][1].
inline ZelmCameraIntrinsics perspectiveCamera(double alpha, double a11, double tilt, double cx, double cy, double k1,
                                              double k2, int32_t model) {
    ZelmCameraIntrinsics camera{};
    const double a01 = a11 * std::tan(tilt);
    const double A[9] = {alpha, a01, cx, 0.0, a11, cy, 0.0, 0.0, 1.0};
    for (std::size_t i = 0; i < 9; ++i) {
        camera.A[i] = A[i];
    }
    const double theta = model == 1 ? tilt : 0.0;
    camera.alpha = alpha;
    camera.beta = a11 * std::cos(theta);
    camera.gamma = a01 * std::cos(theta);
    camera.cx = cx;
    camera.cy = cy;
    camera.theta = theta;
    camera.k1 = k1;
    camera.k2 = k2;
    return camera;
}

// scaleX, scaleY in pixels per plane unit; k1, k2 per squared, per fourth power of the plane unit.
inline ZelmCameraIntrinsics parallelCamera(double scaleX, double scaleY, double cx, double cy, double k1, double k2) {
    return perspectiveCamera(scaleX, scaleY, 0.0, cx, cy, k1, k2, 2);
}

// 13 x 11 dots, the origin at the grid's centre dot when centred, else at its corner.
inline std::vector<Point2d> plateDots(double pitchX, double pitchY, bool centred) {
    std::vector<Point2d> dots;
    for (int j = 0; j < 11; ++j) {
        for (int i = 0; i < 13; ++i) {
            dots.push_back({(i - (centred ? 6 : 0)) * pitchX, (j - (centred ? 5 : 0)) * pitchY});
        }
    }
    return dots;
}

// The pose that turns the plate by the rotation vector r and brings its point (px, py, 0) to place.
inline ZelmCameraExtrinsics poseAt(double r0, double r1, double r2, Point3d place, double px = 0.0, double py = 0.0) {
    ZelmCameraExtrinsics pose{};
    pose.r[0] = r0;
    pose.r[1] = r1;
    pose.r[2] = r2;
    zelmCalibRodrigues(0, pose.r, pose.R);
    const double to[3] = {place.x, place.y, place.z};
    for (std::size_t i = 0; i < 3; ++i) {
        pose.t[i] = to[i] - pose.R[3 * i] * px - pose.R[3 * i + 1] * py;
    }
    return pose;
}

// The rotation of a plate first rolled about its normal, then tilted about the camera direction (cos axis, sin axis).
inline ZelmCameraExtrinsics tiltedPose(double roll, double tilt, double axis, Point3d place, double px = 0.0,
                                       double py = 0.0) {
    double rollVector[3] = {0.0, 0.0, roll};
    double tiltVector[3] = {tilt * std::cos(axis), tilt * std::sin(axis), 0.0};
    double rolled[9];
    double tilted[9];
    double R[9];
    double r[3];
    zelmCalibRodrigues(0, rollVector, rolled);
    zelmCalibRodrigues(0, tiltVector, tilted);
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            R[3 * i + j] =
                tilted[3 * i] * rolled[j] + tilted[3 * i + 1] * rolled[3 + j] + tilted[3 * i + 2] * rolled[6 + j];
        }
    }
    zelmCalibRodrigues(1, r, R);
    return poseAt(r[0], r[1], r[2], place, px, py);
}

// views poses around a plate of 13 x 11 dots seen from distance, tilted by 15 to 35 degrees in turning directions.
inline CameraScene perspectiveScene(const ZelmCameraIntrinsics& camera, int32_t model, std::size_t views,
                                    std::uint64_t seed) {
    CameraScene scene;
    scene.model = model;
    scene.camera = camera;
    Random random(seed);
    const std::vector<Point2d> dots = plateDots(10.0, 10.0, false);
    for (std::size_t v = 0; v < views; ++v) {
        const double tilt = random.uniform(0.25, 0.6);
        const double axis = 2.4 * static_cast<double>(v) + random.uniform(-0.3, 0.3);
        const Point3d place{random.uniform(-15.0, 15.0), random.uniform(-12.0, 12.0), random.uniform(260.0, 360.0)};
        scene.addView(dots, tiltedPose(random.uniform(-0.4, 0.4), tilt, axis, place, 60.0, 50.0));
    }
    return scene;
}

}  // namespace zelmtest

#endif
