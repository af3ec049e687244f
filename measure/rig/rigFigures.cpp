#include "rigFigures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

namespace zelm::tool {
namespace {

// The homography from the plate's plane to the undistorted image: columns 1, 2 and 4 of the projection matrix.
std::array<double, 9> planeHomography(const RigCamera& camera, const ZelmCameraExtrinsics& pose) {
    double P[12] = {};
    zelmCalibCameraMatrix(camera.intrinsics.A, &pose, P, camera.model);
    return {P[0], P[1], P[3], P[4], P[5], P[7], P[8], P[9], P[11]};
}

// A point without lens distortion; where that cannot be removed, a point without coordinates.
Point2d undistorted(const RigCamera& camera, Point2d p) {
    Point2d ideal{};
    if (zelmCalibUnDistortPoint(&camera.intrinsics, p.x, p.y, &ideal.x, &ideal.y) < 0) {
        return {std::nan(""), std::nan("")};
    }
    return ideal;
}

// The pose tells which dot of the plate each point is.
std::vector<Dot> placedDots(const std::vector<Point2d>& points, const RigCamera& camera,
                            const ZelmCameraExtrinsics& pose, const Plate& plate) {
    const std::array<double, 9> H = planeHomography(camera, pose);
    std::vector<Dot> dots;
    for (const Point2d& point : points) {
        for (Dot dot : indexDots(plate, {undistorted(camera, point)}, H.data())) {
            dot.pixel = point;
            dots.push_back(dot);
        }
    }
    return dots;
}

ImageFigures imageFigures(const std::vector<Point2d>& points, const RigCamera& camera, const ZelmCameraExtrinsics& pose,
                          const Plate& plate) {
    ImageFigures figures;
    figures.found = points.size();
    figures.dots = placedDots(points, camera, pose, plate);
    for (const Dot& dot : figures.dots) {
        const Point3d X{dot.plane.x, dot.plane.y, 0.0};
        Point2d projected{};
        zelmCalibChange3Dto2D(&X, &camera.intrinsics, &pose, &projected, camera.model);
        const Point2d error{dot.pixel.x - projected.x, dot.pixel.y - projected.y};
        figures.errors.push_back(error);
        figures.distances.add(std::hypot(error.x, error.y));
    }
    return figures;
}

CameraFigures cameraFigures(const Zelm2ViewCalib* handle, char side, const RigCamera& camera, const Plate& plate) {
    CameraFigures figures;
    for (std::size_t view = 0; view < camera.poses.size(); ++view) {
        const std::vector<Point2d> points = pointsOf(handle, side, static_cast<std::int32_t>(view));
        figures.views.push_back(imageFigures(points, camera, camera.poses[view], plate));
        for (const Point2d& error : figures.views.back().errors) {
            figures.distances.add(std::hypot(error.x, error.y));
        }
        figures.views.back().distances.finish();
    }
    figures.distances.finish();
    return figures;
}

// From a point to the line l of homogeneous coordinates.
double distanceToLine(Point2d p, const std::array<double, 3>& l) {
    return std::abs(l[0] * p.x + l[1] * p.y + l[2]) / std::hypot(l[0], l[1]);
}

std::array<double, 3> leftLine(const Rig& rig, Point2d right) {
    const auto& F = rig.fundamental;
    return {F[0] * right.x + F[1] * right.y + F[2], F[3] * right.x + F[4] * right.y + F[5],
            F[6] * right.x + F[7] * right.y + F[8]};
}

std::array<double, 3> rightLine(const Rig& rig, Point2d left) {
    const auto& F = rig.fundamental;
    return {F[0] * left.x + F[3] * left.y + F[6], F[1] * left.x + F[4] * left.y + F[7],
            F[2] * left.x + F[5] * left.y + F[8]};
}

// Distances of the view's dot pairs, left image and right image in turn.
std::vector<double> epipolarDistances(const Rig& rig, const ImageFigures& left, const ImageFigures& right) {
    std::map<GridIndex, Point2d> rightPixels;
    for (const Dot& dot : right.dots) {
        rightPixels[dot.index] = dot.pixel;
    }
    std::vector<double> distances;
    for (const Dot& dot : left.dots) {
        const auto other = rightPixels.find(dot.index);
        if (other != rightPixels.end()) {
            const Point2d l = undistorted(rig.left, dot.pixel);
            const Point2d r = undistorted(rig.right, other->second);
            distances.push_back(distanceToLine(l, leftLine(rig, r)));
            distances.push_back(distanceToLine(r, rightLine(rig, l)));
        }
    }
    return distances;
}

}  // namespace

void DistanceFigures::add(double distance) {
    ++count;
    mean += distance;
    rms += distance * distance;
    worst = std::max(worst, distance);
}

void DistanceFigures::finish() {
    if (count > 0) {
        mean /= static_cast<double>(count);
        rms = std::sqrt(rms / static_cast<double>(count));
    }
}

RigFigures rigFigures(const Zelm2ViewCalib* handle, const Rig& rig, const Plate& plate) {
    RigFigures figures;
    figures.left = cameraFigures(handle, 'L', rig.left, plate);
    figures.right = cameraFigures(handle, 'R', rig.right, plate);
    for (std::size_t view = 0; view < rig.views(); ++view) {
        DistanceFigures ofView;
        for (const double distance : epipolarDistances(rig, figures.left.views[view], figures.right.views[view])) {
            ofView.add(distance);
            figures.epipolar.add(distance);
        }
        ofView.finish();
        figures.epipolarViews.push_back(ofView);
    }
    figures.dotPairs = figures.epipolar.count / 2;
    figures.epipolar.finish();
    return figures;
}

}  // namespace zelm::tool
