// The dots of a plate in space, from one view.
#ifndef ZELM_MEASURE_PLATE_POINTS_H
#define ZELM_MEASURE_PLATE_POINTS_H

#include <vector>

#include "plateDots.h"
#include "rig.h"
#include "triangulator.h"

namespace zelm::measure {

// A dot that both images show: the centres of its ellipses.
struct DotPair {
    GridIndex index;
    Point2d left{};
    Point2d right{};
};

// How the measured dots fit the plate; ZelmMeasurePlateFit says what each is.
struct PlateFit {
    std::size_t count = 0;
    Motion pose;
    double rms = 0.0;
    double flatnessRms = 0.0;
    double flatnessMax = 0.0;
    double scale = 0.0;
    double scaleDeviation = 0.0;
    double maxOffset = 0.0;
};

struct PlatePoints {
    std::vector<SpacePoint> points;  // a dot each
    std::vector<DotPair> centres;    // the images of the dots' centres
    PlateFit fit;
};

// Throws Fault when fewer than four dots have a point, or all lie in a row.
PlatePoints platePoints(const Rig& rig, const Pattern& plate, const std::vector<DotPair>& dots);

}  // namespace zelm::measure

#endif
