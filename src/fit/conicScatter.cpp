#include "conicScatter.h"

namespace zelm {

void fitConicResidual(std::int32_t n, const double* points, const double* conic, double* residuals) {
    for (size_t i = 0; i < static_cast<size_t>(n); ++i) {
        const double x = points[2 * i];
        const double y = points[2 * i + 1];
        residuals[i] = conic[0] * x * x + conic[1] * x * y + conic[2] * y * y + conic[3] * x + conic[4] * y + conic[5];
    }
}

}  // namespace zelm
