// Circles to start the fit from: what the ellipses of the outlines say, one image at a time.
#ifndef ZELM_MEASURE_CIRCLE_START_H
#define ZELM_MEASURE_CIRCLE_START_H

#include <zelmLib.h>

#include <array>
#include <vector>

#include "circleFit.h"
#include "space3.h"
#include "targetCamera.h"

namespace zelm::measure {

// Circles about a point. An ellipse has two normals, one to either side of the direction of view (Kanatani and Liu
// 1993); their images differ too little to tell them apart in one picture, and the other picture decides.
std::vector<SpaceCircle> startCircles(const std::array<TargetCamera, 2>& cameras,
                                      const std::array<Ellipse2d, 2>& ellipses, const Vector3& centre);

}  // namespace zelm::measure

#endif
