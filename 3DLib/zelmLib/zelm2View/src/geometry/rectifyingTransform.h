// The transform between a camera's undistorted image and its rectified image.
#ifndef ZELM_RECTIFYING_TRANSFORM_H
#define ZELM_RECTIFYING_TRANSFORM_H

#include <cstdint>
#include <initializer_list>

#include "calibBlock.h"
#include "calibratedCamera.h"
#include "zelm/twoViewGeometry.h"

namespace zelm {

// A camera's rectifying matrix with s times column 3 of its projection matrix added to column 3, and the inverse.
struct DepthMatrix {
    double A[9];
    double Ainv[9];
};

// False when the projection matrix cannot be built or the sum is singular.
bool makeDepthMatrix(const unsigned char* data, Camera camera, double s, DepthMatrix* out);

// Divides T by its last element when that exceeds 1e-9.
void normaliseTransform(double T[9]);

enum class RectifyingDirection { toUnrectified, toRectified };

// T, 3x3 row-major, on undistorted pixel coordinates; divided by its last element when that exceeds 1e-9.
// Returns ZELM_OK, or ZELM_ERR_DEGENERATE when a matrix cannot be built or inverted.
std::int32_t innerCalcHomMatrix(const unsigned char* data, Camera camera, const Zelm2ViewHomParam& params,
                                RectifyingDirection direction, double T[9]);

// What an operation on a rectified image works with.
struct Rectification {
    Camera camera{};
    double T[9];
};

// How these operations begin: ZELM_ERR_PARAM for a NULL handle, a NULL among the record and the further pointers, or a
// selector that names no camera; then the transform, with the statuses of innerCalcHomMatrix.
std::int32_t beginRectification(const Zelm2ViewCalib* calib, std::int32_t selector, const Zelm2ViewHomParam* params,
                                std::initializer_list<const void*> pointers, RectifyingDirection direction,
                                Rectification* out);

// (x, y) carried by T.
Point2d transformPoint(const double T[9], double x, double y);

// What T moves the reference point away from the middle of an image of this size; halves of its size are truncated.
Point2d centringOffset(const double T[9], const Point2d& reference, const ImageSize& size);

}  // namespace zelm

#endif
