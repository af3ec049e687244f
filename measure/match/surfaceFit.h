// The plane through a point that makes the surroundings of its two pictures agree.
#ifndef ZELM_MEASURE_SURFACE_FIT_H
#define ZELM_MEASURE_SURFACE_FIT_H

#include <cstdint>
#include <optional>
#include <vector>

#include "cameraView.h"
#include "transfer.h"

namespace zelm::measure {

struct FittedSurface {
    Surface surface;
    double score = 0.0;        // correlation of the two windows over the pixels that take part, noise taken out
    double share = 0.0;        // of the window that takes part, 0 to 1
    double centreShare = 0.0;  // and of its middle
    double deviation = 0.0;    // expected, of the place along the epipolar line, in pixels of the first camera
    double pixelsPerRho = 0.0;
};

// Least-squares matching of square windows, (2 half + 1) pixels a side about the surface's pixel (Gruen, 1985): depth
// and both slopes of the plane, with a gain and an offset of gray levels.
class SurfaceFitter {
public:
    // All of them outlive the fitter. `deviation`: of a gray level by noise.
    SurfaceFitter(const CameraView& first, const CameraView& second, const Transfer& firstToSecond, int half,
                  double deviation);

    // Nothing when a window leaves its picture, has no texture, or the fit goes astray.
    std::optional<FittedSurface> operator()(const Surface& start);

private:
    const CameraView& from;
    const CameraView& to;
    const Transfer& transfer;
    int half;
    int side;  // of a patch: of a window with a border of one pixel
    double noise;
    std::vector<std::vector<float>> weights;  // of a window's pixels, narrow to wide
    std::vector<double> weightSums;
    std::vector<std::uint8_t> patch;
    std::vector<std::uint8_t> counterpart;
};

}  // namespace zelm::measure

#endif
