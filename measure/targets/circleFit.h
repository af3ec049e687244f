// The circle in space whose images are the outlines of a dot in both pictures.
#ifndef ZELM_MEASURE_CIRCLE_FIT_H
#define ZELM_MEASURE_CIRCLE_FIT_H

#include <array>
#include <optional>
#include <span>

#include "outlineEdges.h"
#include "space3.h"
#include "targetCamera.h"

namespace zelm::measure {

struct SpaceCircle {
    Vector3 centre{};
    Vector3 normal{};  // of unit length
    double radius = 0.0;
};

struct CircleFit {
    SpaceCircle circle;
    double cost = 0.0;            // sum of the squared distances over their deviations
    std::array<double, 2> rms{};  // pixels between the edges and the circle's image: left, right
    Matrix3 covariance{};         // of the centre: scaled by what the fit leaves
};

// Least squares over the distances of all edges from the images of the circle, through both lenses, each measured by
// its deviation: orthogonal distance regression (Ahn, Rauh and Warnecke 2001) of what Quan (1996) solves in closed form
// for two conics, by the method of Levenberg (1944) and Marquardt (1963). Nothing when the fit ends nowhere.
std::optional<CircleFit> fitCircle(const std::array<TargetCamera, 2>& cameras,
                                   const std::array<std::span<const OutlineEdge>, 2>& edges, const SpaceCircle& start);

}  // namespace zelm::measure

#endif
