// Lenses of other programs as the library's own.
#ifndef ZELM_MEASURE_LENS_FIT_H
#define ZELM_MEASURE_LENS_FIT_H

#include "foreignPair.h"

namespace zelm::measure {

struct OwnCamera {
    CameraParameters parameters{};
    Matrix3 turn{1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0};  // X_own = turn X_foreign
    double worst = 0.0;                                         // pixels between the two at the same direction
    double rms = 0.0;
};

// The library's camera that comes closest over the image. Throws Fault where the foreign lens cannot be inverted over
// the image, or the library's lens would fold it.
OwnCamera ownCamera(const ForeignCamera& camera, const char* side);

}  // namespace zelm::measure

#endif
