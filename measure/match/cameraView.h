// A picture and the camera that took it.
#ifndef ZELM_MEASURE_CAMERA_VIEW_H
#define ZELM_MEASURE_CAMERA_VIEW_H

#include <cstdint>
#include <optional>

#include "image.h"
#include "rig.h"
#include "transfer.h"

namespace zelm::measure {

class CameraView {
public:
    // All of them outlive the view.
    CameraView(const Rig& rig, char whichSide, const DenseImage& taken)
        : calib(rig.calib.get()), side(whichSide), camera(rig.camera(whichSide)), picture(taken) {}

    // Nothing where the lens distortion cannot be removed.
    std::optional<Point2d> undistorted(Point2d raw) const;
    Point2d distorted(Point2d ideal) const;

    // Whether the picture shows all of a patch of width x height pixels, which `toIdeal` carries to undistorted ones.
    bool shows(const Matrix3& toIdeal, int width, int height) const;
    // The patch, straight from the picture as taken: one interpolation.
    void warp(const Matrix3& toIdeal, int width, int height, std::uint8_t* patch) const;

    const DenseImage& image() const { return picture; }

private:
    const Zelm2ViewCalib* calib;
    char side;
    const RigCamera& camera;
    const DenseImage& picture;
};

}  // namespace zelm::measure

#endif
