// Motions by least squares in closed form.
#ifndef ZELM_CLOSED_FORM_MOTION_H
#define ZELM_CLOSED_FORM_MOTION_H

#include "motion.h"

namespace zelm {

// All points count alike. The scale is 1 unless withScale, and for model points that coincide.
Motion closedFormMotion(const PointPairs& pairs, bool withScale);

// The same with a weight a point.
Motion weightedMotion(const PointPairs& pairs, const double* weights, bool withScale);

}  // namespace zelm

#endif
