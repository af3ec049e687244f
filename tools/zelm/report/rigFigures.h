// How well a calibration fits the dots that it was made from.
#ifndef ZELM_TOOL_RIG_FIGURES_H
#define ZELM_TOOL_RIG_FIGURES_H

#include <cstddef>
#include <vector>

#include "dots.h"
#include "rigFile.h"

namespace zelm::tool {

// Figures of distances as the measuring library tells them.
using DistanceFigures = ZelmMeasureFigures;
DistanceFigures figuresOf(const std::vector<double>& distances);

// The dots of one image and how far their projections are from them.
struct ImageFigures {
    std::size_t found = 0;  // dots read; all but damaged data have a place on the grid
    std::vector<Dot> dots;
    DistanceFigures distances{};  // pixels
};

struct CameraFigures {
    std::vector<ImageFigures> views;  // a parallel camera has dots in the first alone
    DistanceFigures distances{};      // over all views, pixels
};

struct RigFigures {
    CameraFigures left;
    CameraFigures right;
    std::vector<DistanceFigures> epipolarViews;  // from points to epipolar lines, both images, undistorted pixels
    DistanceFigures epipolar{};                  // over all dot pairs of all views
    std::size_t dotPairs = 0;
};

// Figures of a rig with the dots that it was calibrated from.
RigFigures rigFigures(const LoadedRig& rig, const Plate& plate);

}  // namespace zelm::tool

#endif
