// The driver that every fit but the circle's runs through: normalise, fit, and re-weight until the weights settle.
#ifndef ZELM_ROBUST_DRIVER_H
#define ZELM_ROBUST_DRIVER_H

#include <cstdint>

namespace zelm {

// Fits the model to n normalised points by weighted least squares; writes its parameters, in the normalised frame.
using ZelmFitSolveFn = std::int32_t (*)(std::int32_t n, const double* weights, const double* points,
                                        double* parameters);
// Writes each point's distance from the model; its magnitude is what counts.
using ZelmFitResidualFn = void (*)(std::int32_t n, const double* points, const double* parameters, double* residuals);

// Iteratively re-weighted least squares (Holland and Welsch 1977). Points are n x dim doubles in the caller's frame;
// result receives the model's parameters in the normalised frame, centre (dim doubles) and scale that frame.
// Returns ZELM_OK, also when the 20 re-weighted solves are used up; ZELM_ERR_PARAM before anything is written;
// ZELM_ERR_MEMORY; ZELM_ERR_FIT_DATA; or what solve returned.
std::int32_t innerFitRobust(std::int32_t dim, std::int32_t minPoints, std::int32_t n, const double* points,
                            std::int32_t robust, double* result, double* centre, double* scale, ZelmFitSolveFn solve,
                            ZelmFitResidualFn residual, double threshold);

}  // namespace zelm

#endif
