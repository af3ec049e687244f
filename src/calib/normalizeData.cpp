// Centring and scaling of point sets.
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "zelm/calib.h"

namespace zelm {
namespace {

using Index = std::ptrdiff_t;

constexpr double kMeanDistance = 1.4142135623730951;  // sqrt(2): docs/decisions.md#mean-distance

struct Scaling {
    double mean[3];
    double s;
};

Scaling scalingOf(Index dim, Index n, const double* src) {
    Scaling scaling{};
    for (Index i = 0; i < n; ++i) {
        for (Index k = 0; k < dim; ++k) {
            scaling.mean[k] += src[i * dim + k];
        }
    }
    for (Index k = 0; k < dim; ++k) {
        scaling.mean[k] /= static_cast<double>(n);
    }
    double distances = 0.0;
    for (Index i = 0; i < n; ++i) {
        double square = 0.0;
        for (Index k = 0; k < dim; ++k) {
            const double d = src[i * dim + k] - scaling.mean[k];
            square += d * d;
        }
        distances += std::sqrt(square);
    }
    scaling.s = kMeanDistance / (distances / static_cast<double>(n));
    return scaling;
}

// The (dim + 1) x (dim + 1) transform that scales by s, then shifts.
void writeTransform(Index dim, double s, const double* shift, double* t) {
    const Index size = dim + 1;
    std::fill_n(t, size * size, 0.0);
    for (Index k = 0; k < dim; ++k) {
        t[k * size + k] = s;
        t[k * size + dim] = shift[k];
    }
    t[size * size - 1] = 1.0;
}

}  // namespace
}  // namespace zelm

int32_t zelmCalibNormalizeData(int32_t iDim, int32_t iN, const double* daSrc, double* daDst, double* daT,
                               double* daTinv) {
    if ((iDim != 2 && iDim != 3) || iN < 1 || daSrc == nullptr || daDst == nullptr) {
        return ZELM_ERR_PARAM;
    }
    const std::ptrdiff_t dim = iDim;
    const zelm::Scaling scaling = zelm::scalingOf(dim, iN, daSrc);
    double shift[3] = {};
    for (std::ptrdiff_t k = 0; k < dim; ++k) {
        shift[k] = -scaling.s * scaling.mean[k];
    }
    for (std::ptrdiff_t i = 0; i < iN; ++i) {
        for (std::ptrdiff_t k = 0; k < dim; ++k) {
            daDst[i * dim + k] = scaling.s * daSrc[i * dim + k] + shift[k];
        }
    }
    if (daT != nullptr) {
        zelm::writeTransform(dim, scaling.s, shift, daT);
    }
    if (daTinv != nullptr) {
        zelm::writeTransform(dim, 1.0 / scaling.s, scaling.mean, daTinv);
    }
    return ZELM_OK;
}
