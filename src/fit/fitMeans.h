// The means as models of the robust driver.
#ifndef ZELM_FIT_MEANS_H
#define ZELM_FIT_MEANS_H

#include <cstdint>

namespace zelm {

// ZelmFitSolveFn: m = sum w p / sum w, coordinate by coordinate. Return ZELM_OK.
std::int32_t fitMean1dimSolve(std::int32_t n, const double* weights, const double* points, double* m);
std::int32_t fitMean2dimSolve(std::int32_t n, const double* weights, const double* points, double* m);
std::int32_t fitMean3dimSolve(std::int32_t n, const double* weights, const double* points, double* m);

// ZelmFitResidualFn: each point's distance from the mean.
void fitMean1dimResidual(std::int32_t n, const double* points, const double* m, double* residuals);
void fitMean2dimResidual(std::int32_t n, const double* points, const double* m, double* residuals);
void fitMean3dimResidual(std::int32_t n, const double* points, const double* m, double* residuals);

}  // namespace zelm

#endif
