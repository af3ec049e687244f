// What the readers of several formats share: camera matrices and lenses by their published names.
#ifndef ZELM_MEASURE_FOREIGN_CAMERAS_H
#define ZELM_MEASURE_FOREIGN_CAMERAS_H

#include <span>
#include <string>

#include "foreignPair.h"

namespace zelm::measure {

// Takes the camera matrix [fx skew cx; 0 fy cy; 0 0 1]; refuses another, naming `name`.
void takeCameraMatrix(ForeignCamera& camera, const Matrix3& K, const std::string& name);

// OpenCV's order: k1 k2 p1 p2 [k3 [k4 k5 k6 [s1 s2 s3 s4 [tx ty]]]]. A tilted sensor is refused.
ForeignLens radialTangentialLens(std::span<const double> coefficients, const std::string& name);
ForeignLens equidistantLens(std::span<const double> coefficients, const std::string& name);

}  // namespace zelm::measure

#endif
