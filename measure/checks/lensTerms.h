// What a lens may do that the model of an adjustment lacks.
#ifndef ZELM_MEASURE_LENS_TERMS_H
#define ZELM_MEASURE_LENS_TERMS_H

#include <array>
#include <cstddef>

#include "projection.h"

namespace zelm::measure {

// Groups of terms that are tested together. With x and y the normalised coordinates and r their distance from the axis:
// radial: k3 r^6 (x, y); decentring: p1, p2 (Brown, 1966); prism: s1, s2 times r^2 (Weng, 1992); pattern: what products
// of powers of x and y up to the fourth degree describe besides.
enum LensGroup : std::size_t { kRadial, kDecentring, kPrism, kPattern, kLensGroups };

constexpr std::size_t kLensTerms = 25;
constexpr std::array<std::size_t, kLensGroups + 1> kLensGroupAt{0, 1, 3, 5, kLensTerms};

// How far a unit of each term moves the pixel of a point in the camera's frame.
std::array<std::array<double, kLensTerms>, 2> lensTerms(const ProjectionCamera& camera, const Vector3& point);

}  // namespace zelm::measure

#endif
