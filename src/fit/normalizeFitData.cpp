#include "normalizeFitData.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace zelm {
namespace {

constexpr double kMeanDistance = 1.4142135623730951;  // sqrt(2), in normalised units

// The sums of all coordinates side by side, each in the order of the points.
template <size_t dim>
void meanPoint(size_t n, const double* points, double* centre) {
    double sum[dim] = {};
    for (size_t i = 0; i < n; ++i) {
        for (size_t c = 0; c < dim; ++c) {
            sum[c] += points[i * dim + c];
        }
    }
    for (size_t c = 0; c < dim; ++c) {
        centre[c] = sum[c] / static_cast<double>(n);
    }
}

template <size_t dim>
double distance(const double* point, const double* centre) {
    if constexpr (dim == 1) {
        return std::fabs(point[0] - centre[0]);
    } else {
        double squares = 0.0;
        for (size_t c = 0; c < dim; ++c) {
            const double d = point[c] - centre[c];
            squares += d * d;
        }
        return std::sqrt(squares);
    }
}

// Roots of several points at a time, which need not wait for the sum.
template <size_t dim>
double sumOfDistances(size_t n, const double* points, const double* centre) {
    constexpr size_t kAtOnce = 4;
    double sum = 0.0;
    size_t i = 0;
    for (; i + kAtOnce <= n; i += kAtOnce) {
        double distances[kAtOnce];
        for (size_t k = 0; k < kAtOnce; ++k) {
            distances[k] = distance<dim>(points + (i + k) * dim, centre);
        }
        for (const double d : distances) {
            sum += d;
        }
    }
    for (; i < n; ++i) {
        sum += distance<dim>(points + i * dim, centre);
    }
    return sum;
}

template <size_t dim>
void normalize(size_t n, const double* src, double* __restrict dst, double* centre, double* scale) {
    meanPoint<dim>(n, src, centre);
    const double spread = sumOfDistances<dim>(n, src, centre) / static_cast<double>(n);
    const double s = spread != 0.0 ? kMeanDistance / spread : 1.0;
    double origin[dim];
    std::copy_n(centre, dim, origin);
    for (size_t i = 0; i < n; ++i) {
        for (size_t c = 0; c < dim; ++c) {
            dst[i * dim + c] = (src[i * dim + c] - origin[c]) * s;
        }
    }
    *scale = s;
}

}  // namespace

void innerNormalizeFitData(std::int32_t dim, std::int32_t n, const double* src, double* dst, double* centre,
                           double* scale) {
    const auto count = static_cast<size_t>(n);
    if (dim == 1) {
        normalize<1>(count, src, dst, centre, scale);
    } else if (dim == 2) {
        normalize<2>(count, src, dst, centre, scale);
    } else {
        normalize<3>(count, src, dst, centre, scale);
    }
}

}  // namespace zelm
