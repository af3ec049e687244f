// What an adjustment works on: what was seen, what is looked for, and how it came out.
#ifndef ZELM_MEASURE_ADJUST_PROBLEM_H
#define ZELM_MEASURE_ADJUST_PROBLEM_H

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "plateDots.h"
#include "projection.h"

namespace zelm::measure {

// X_to = exp(r) X_from + t: r and t.
using MotionParameters = std::array<double, 6>;

enum Side : std::size_t { kLeft, kRight, kSides };
enum DotKind : std::size_t { kPlainDot, kMarkerDot, kDotKinds };

// Why an observation takes no part; ZelmMeasureAdjustedStatus of the interface.
enum class DotFate { used, outlier, viewLeftOut, notConfirmed };

struct DotObservation {
    GridIndex index{};
    DotKind kind = kPlainDot;
    Vector3 place{};                     // on the plate, plate units
    double radius = 0.0;                 // as printed, plate units
    Point2d pixel{};                     // measured centre of the ellipse
    std::array<double, 3> covariance{};  // xx, xy, yy as measured, pixels^2; 0 where nothing is known
    DotFate fate = DotFate::used;
    Point2d residual{};  // measured minus predicted, pixels
};

struct AdjustView {
    std::array<std::vector<DotObservation>, kSides> dots;
    std::string leftOut;  // why the view takes no part; empty: it does
};

// Bend of the plate: z = b0 x^2 + b1 x y + b2 y^2 with x and y over `extent`.
struct PlateBow {
    std::array<double, 3> b{};  // plate units
    double extent = 1.0;        // plate units
};

// All that is estimated. The poses are those of the base camera; the other one's follow by the relative pose.
struct AdjustState {
    std::array<ProjectionCamera, kSides> cameras;
    Side base = kLeft;
    MotionParameters relative{};                      // from the base camera to the other one
    std::vector<MotionParameters> poses;              // from the plate to the base camera, a view each
    std::array<double, kDotKinds> factors{1.0, 1.0};  // of the diameters
    PlateBow bow;

    // A parallel camera with fewer views than tell its tilt: its skew and direction are held.
    bool isTiltHeld = false;

    Side other() const { return base == kLeft ? kRight : kLeft; }
};

// What is held, and what is estimated besides the cameras and poses.
struct AdjustOptions {
    bool holdSkew = false;      // at 0
    bool squarePixels = false;  // one focal length
    bool estimateFactors = false;
    bool estimateBow = false;
    double knownNoise = 0.0;  // standard deviation of a coordinate where it is known; 0: from the residuals
};

}  // namespace zelm::measure

#endif
