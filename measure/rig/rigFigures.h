// How well a calibration fits the dots that it was made from.
#ifndef ZELM_MEASURE_RIG_FIGURES_H
#define ZELM_MEASURE_RIG_FIGURES_H

#include <cstddef>
#include <vector>

#include "dots.h"
#include "rigFile.h"

namespace zelm::tool {

// Distances in pixels.
struct DistanceFigures {
    std::size_t count = 0;
    double mean = 0.0;
    double rms = 0.0;
    double worst = 0.0;

    void add(double distance);
    void finish();  // turns the sums into mean and RMS
};

// The dots of one image and how far their projections are from them.
struct ImageFigures {
    std::size_t found = 0;        // dots read; all but damaged data have a place on the grid
    std::vector<Dot> dots;        //
    std::vector<Point2d> errors;  // measured minus projected, a dot each
    DistanceFigures distances;
};

struct CameraFigures {
    std::vector<ImageFigures> views;  // a parallel camera has dots in the first alone
    DistanceFigures distances;        // over all views
};

struct RigFigures {
    CameraFigures left;
    CameraFigures right;
    std::vector<DistanceFigures> epipolarViews;  // from points to epipolar lines, both images, undistorted
    DistanceFigures epipolar;                    // over all dot pairs of all views
    std::size_t dotPairs = 0;
};

// Figures of a calibrated handle and its dots.
RigFigures rigFigures(const Zelm2ViewCalib* handle, const Rig& rig, const Plate& plate);

}  // namespace zelm::tool

#endif
