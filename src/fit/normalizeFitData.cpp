#include "normalizeFitData.h"

#include <cmath>
#include <cstddef>

namespace zelm {
namespace {

constexpr double kMeanDistance = 1.4142135623730951;  // sqrt(2), in normalised units

void meanPoint(size_t dim, size_t n, const double* points, double* centre) {
    for (size_t c = 0; c < dim; ++c) {
        double sum = 0.0;
        for (size_t i = 0; i < n; ++i) {
            sum += points[i * dim + c];
        }
        centre[c] = sum / static_cast<double>(n);
    }
}

double distance(size_t dim, const double* point, const double* centre) {
    if (dim == 1) {
        return std::fabs(point[0] - centre[0]);
    }
    double squares = 0.0;
    for (size_t c = 0; c < dim; ++c) {
        const double d = point[c] - centre[c];
        squares += d * d;
    }
    return std::sqrt(squares);
}

}  // namespace

void innerNormalizeFitData(std::int32_t dim, std::int32_t n, const double* src, double* dst, double* centre,
                           double* scale) {
    const auto d = static_cast<size_t>(dim);
    const auto count = static_cast<size_t>(n);
    meanPoint(d, count, src, centre);
    double sum = 0.0;
    for (size_t i = 0; i < count; ++i) {
        sum += distance(d, src + i * d, centre);
    }
    const double spread = sum / n;
    *scale = spread != 0.0 ? kMeanDistance / spread : 1.0;
    for (size_t i = 0; i < count * d; ++i) {
        dst[i] = (src[i] - centre[i % d]) * *scale;
    }
}

}  // namespace zelm
