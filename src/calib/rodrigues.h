// What stands in for the decomposition where a rotation vector is taken from a matrix.
#ifndef ZELM_RODRIGUES_H
#define ZELM_RODRIGUES_H

namespace zelm {

// The rotation vector r (3) of R (9) by acos, for matrices whose decomposition fails, as of entries that are no finite
// numbers. Right to 1e-5 radian only near 0 and pi; takes y and z of one sign for half turns about an axis with no x
// component.
void rotationVectorInClosedForm(const double* R, double* r);

}  // namespace zelm

#endif
