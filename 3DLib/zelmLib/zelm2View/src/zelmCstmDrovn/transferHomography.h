// The transfer between a camera's undistorted image and its expanded image in the other camera's plane.
#ifndef ZELM_TRANSFER_HOMOGRAPHY_H
#define ZELM_TRANSFER_HOMOGRAPHY_H

#include <cstdint>

#include "calibratedCamera.h"
#include "zelm/cstmGeometry.h"

namespace zelm {

enum class ExpDirection { toSource = 0, toExpanded = 1 };

// Whether the sizes are not negative and the magnification is at least 1.
inline bool isExpansion(const ZelmCstmExpPrm& tExpPrm) {
    return tExpPrm.iWidth >= 0 && tExpPrm.iHeight >= 0 && tExpPrm.dVal >= 1.0;
}

// The homography for magnification m, 3x3 row-major, divided by its last element when that exceeds 1e-9.
// Returns ZELM_OK, or ZELM_ERR_DEGENERATE for another camera than 'L' or 'R' and when a matrix cannot be built or
// inverted; hom is written on success.
std::int32_t innerCalcExpHomography(const unsigned char* data, std::int32_t iCamera, const ZelmCstmExpPrm& tHomPrm,
                                    ExpDirection direction, double hom[9], double m);

// What the image-making functions prepare: the homography to the source, the source camera's intrinsics and both image
// sizes. Checks handle, records and camera (ZELM_ERR_PARAM); the outputs are asserted.
std::int32_t innerCalcHomTransParams(const Zelm2ViewCalib* tHandle, std::int32_t iCamera, const ZelmCstmExpPrm* tHomPrm,
                                     const ZelmCstmExpPrm* tExpPrm, double* daHom, KernelCamera* tPrmA,
                                     std::int32_t* iSrcWidth, std::int32_t* iSrcHeight, std::int32_t* iDstWidth,
                                     std::int32_t* iDstHeight);

}  // namespace zelm

#endif
