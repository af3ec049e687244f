// The centre of a plate's dot in an image, with its derivatives by all that an adjustment estimates.
#ifndef ZELM_MEASURE_PREDICTED_DOT_H
#define ZELM_MEASURE_PREDICTED_DOT_H

#include <array>
#include <cstddef>

#include "adjustProblem.h"
#include "dotOutline.h"

namespace zelm::measure {

// The parameters that one image of one view depends on.
struct ImageParameters {
    ProjectionCamera camera;
    const double* relative = nullptr;  // 6; NULL: the image is of the base camera
    const double* pose = nullptr;      // 6
    double factor = 1.0;
    const double* bow = nullptr;  // 3
    double bowExtent = 1.0;
};

template <std::size_t n>
using Rows2 = std::array<std::array<double, n>, 2>;

struct PredictedDot {
    Point2d centre{};
    Rows2<kCameraParameters> byCamera{};
    Rows2<6> byRelative{};
    Rows2<6> byPose{};
    Rows2<1> byFactor{};
    Rows2<3> byBow{};
};

// Derivatives by rotations: by the rotation vectors themselves, or by small turns d with exp(d) R.
enum class RotationDerivative { byVector, byTurn };

// The circle in the frame of the image's camera.
CircleInCamera circleOf(const ImageParameters& image, const Vector3& place, double radius);
PredictedDot predictDot(const ImageParameters& image, const Vector3& place, double radius, RotationDerivative kind);
// The image of one side and view of a state.
ImageParameters imageParameters(const AdjustState& state, Side side, std::size_t view, DotKind kind);

}  // namespace zelm::measure

#endif
