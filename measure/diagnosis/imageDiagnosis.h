// Why the plate in an image cannot be read.
#ifndef ZELM_MEASURE_IMAGE_DIAGNOSIS_H
#define ZELM_MEASURE_IMAGE_DIAGNOSIS_H

#include <zelmMeasure.h>

#include <vector>

#include "dotLattice.h"
#include "imageLevels.h"
#include "latticeTraits.h"
#include "sharpness.h"

namespace zelm::measure {

// All that the decision rests on.
struct ImageEvidence {
    std::int32_t status = ZELM_OK;  // of the reader
    int read = 0;                   // dots
    ImageLevels levels;
    std::vector<Spot> spots;
    DotLattice lattice;  // an even one, or empty
    Sharpness sharpness;
    LatticeTraits traits;
    std::vector<double> strengths;  // weakest edge of each spot, as the reader sees it
    int strong = 0;                 // dots of the lattice whose edges are strong enough all round
    int oppositeDots = 0;           // of a lattice of the other polarity
    double oppositeFill = 1.0;      // median of their pixels over those of their ellipses: 0.96 of squares
    ZelmRect dotsRegion{};          // about the dots of the lattice
    double axisDifference = 0.0;  // pixels between the distances of the x and the y marker from the corner, of a frame
    bool isReadInRegion = false;  // the reader finds the plate when it is told that region
};

ImageEvidence evidenceOf(const DenseImage& image, const Pattern& plate, const ZelmRect* region);

// Gray levels a pixel of an edge between the dots' levels, as the reader's filter sees it.
double edgeStrength(const Sharpness& sharpness);

// The dots of the described field.
int describedDots(const Pattern& plate);

ZelmMeasureImageCause causeOf(const ImageEvidence& evidence, const Pattern& plate);

}  // namespace zelm::measure

#endif
