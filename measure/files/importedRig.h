// Rigs of what files of other programs tell.
#ifndef ZELM_MEASURE_IMPORTED_RIG_H
#define ZELM_MEASURE_IMPORTED_RIG_H

#include "foreignPair.h"
#include "lensFit.h"

namespace zelm::measure {

struct ImportedRig {
    Rig rig;
    OwnCamera left;  // how close its camera comes to the file's
    OwnCamera right;
};

// A rig with one pose a camera. Throws Fault for cameras without an image size, or lenses that differ from the file's
// by more than the tolerance, pixels.
ImportedRig importedRig(const ForeignPair& pair, double tolerance);

}  // namespace zelm::measure

#endif
