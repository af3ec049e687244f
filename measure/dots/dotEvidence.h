// What the pixels along a dot's outline say for and against it, sector by sector.
#ifndef ZELM_MEASURE_DOT_EVIDENCE_H
#define ZELM_MEASURE_DOT_EVIDENCE_H

#include <array>

#include "dotModel.h"

namespace zelm::measure {

struct SectorEvidence {
    double count = 0.0;          // of samples
    double squares = 0.0;        // of residuals, gray levels
    double shift = 0.0;          // by which the outline lies farther outside here than it should, pixels
    double shiftError = 0.0;     // its standard deviation
    double contrast = 0.0;       // between inside and outside here, over the model's
    double contrastError = 0.0;  //
};

using OutlineEvidence = std::array<SectorEvidence, kDotSectors>;

// Of reviewed pixels, in noise of that standard deviation.
OutlineEvidence evidenceOf(const DotModel& model, const DotPixels& pixels, double noise);

struct DotTolerance {
    double contrast;  // gray levels
    double noise;     //
    double radius;    // pixels
};

// The sectors whose pixels agree with the dot, by what is usual in the fitted ones.
SectorMask agreeingSectors(const OutlineEvidence& evidence, SectorMask fitted, const DotTolerance& tolerance);

// Variances of the gray levels by what the residuals of reviewed pixels are.
DotVariance varianceOf(const DotModel& model, const DotPixels& pixels, SectorMask sectors, double floor);

// Root mean square of the residuals of all pixels, gray levels, and their number.
struct DotResidual {
    double rms = 0.0;
    double count = 0.0;
};
DotResidual residualOf(const DotModel& model, const DotPixels& pixels, SectorMask sectors);

}  // namespace zelm::measure

#endif
