// Calibration blocks of cameras that the measuring library estimated: written as the core writes its own.
#ifndef ZELM_MEASURE_RIG_BLOCK_H
#define ZELM_MEASURE_RIG_BLOCK_H

#include <zelmLib.h>

#include <vector>

#include "projection.h"
#include "rig.h"
#include "space3.h"

namespace zelm::measure {

// The record whose parts agree with each other under a model, as zelmCalibCameraParam() leaves it.
ZelmCameraIntrinsics intrinsicsRecord(int model, const CameraParameters& parameters);

// R: a rotation.
ZelmCameraExtrinsics poseRecord(const Matrix3& R, const Vector3& t);
ZelmCameraExtrinsics poseRecordOfVector(const Vector3& rotationVector, const Vector3& t);

// The block of two cameras: models, image sizes, intrinsics, poses, and what follows from them. It has as many views as
// the camera with more poses; a parallel camera may have fewer, the others are then zeros. Throws Fault when the two do
// not make a pair.
std::vector<unsigned char> blockOf(const RigCamera& left, const RigCamera& right);
// The two as a rig, without dots.
Rig rigOfCameras(const RigCamera& left, const RigCamera& right);

}  // namespace zelm::measure

#endif
