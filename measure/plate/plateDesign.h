// What the design of a plate lacks, of itself and before cameras that face it square on.
#ifndef ZELM_MEASURE_PLATE_DESIGN_H
#define ZELM_MEASURE_PLATE_DESIGN_H

#include <zelmMeasure.h>

#include <vector>

namespace zelm::measure {

using Pattern = Zelm2ViewPatternDesc;

// A camera as it sees a plate that faces it: pixels a plate unit at either end of the distances.
struct PlateSightScale {
    double nearX = 0.0, nearY = 0.0;  // at the least distance
    double farX = 0.0, farY = 0.0;    // at the greatest one
    double width = 0.0;               // of the image, pixels; 0: not known
    double height = 0.0;              //
};

// Findings of the plate itself, in the order of ZelmMeasurePlateFlaw. Its lengths are greater than 0.
std::vector<ZelmMeasurePlateFinding> plateFindings(const Pattern& plate);

// Findings of the plate before one camera.
std::vector<ZelmMeasurePlateFinding> cameraFindings(const Pattern& plate, const PlateSightScale& sight, int camera);

}  // namespace zelm::measure

#endif
