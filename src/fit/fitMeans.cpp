// Means of points on a line, in the plane and in space.
#include "fitMeans.h"

#include <cmath>
#include <cstddef>

#include "principalAxes.h"
#include "robustDriver.h"
#include "zelm/fit.h"

namespace zelm {
namespace {

constexpr int32_t kMinPoints = 2;

template <size_t dim>
int32_t meanSolve(int32_t n, const double* weights, const double* points, double* m) {
    weightedCentroid<dim>(n, weights, points, m);
    return ZELM_OK;
}

template <size_t dim>
void distancesFromMean(int32_t n, const double* points, const double* m, double* residuals) {
    for (size_t i = 0; i < static_cast<size_t>(n); ++i) {
        double squares = 0.0;
        for (size_t c = 0; c < dim; ++c) {
            const double d = points[i * dim + c] - m[c];
            squares += d * d;
        }
        residuals[i] = std::sqrt(squares);
    }
}

}  // namespace

int32_t fitMean1dimSolve(int32_t n, const double* weights, const double* points, double* m) {
    return meanSolve<1>(n, weights, points, m);
}

int32_t fitMean2dimSolve(int32_t n, const double* weights, const double* points, double* m) {
    return meanSolve<2>(n, weights, points, m);
}

int32_t fitMean3dimSolve(int32_t n, const double* weights, const double* points, double* m) {
    return meanSolve<3>(n, weights, points, m);
}

void fitMean1dimResidual(int32_t n, const double* points, const double* m, double* residuals) {
    for (int32_t i = 0; i < n; ++i) {
        residuals[i] = std::fabs(points[i] - m[0]);
    }
}

void fitMean2dimResidual(int32_t n, const double* points, const double* m, double* residuals) {
    distancesFromMean<2>(n, points, m, residuals);
}

void fitMean3dimResidual(int32_t n, const double* points, const double* m, double* residuals) {
    distancesFromMean<3>(n, points, m, residuals);
}

namespace {

template <size_t dim>
int32_t fitMean(int32_t n, const double* points, int32_t robust, double threshold, ZelmFitSolveFn solve,
                ZelmFitResidualFn residual, double* result) {
    double m[dim];
    double centre[dim];
    double scale;
    if (const auto s = innerFitRobust(dim, kMinPoints, n, points, robust, result != nullptr ? m : nullptr, centre,
                                      &scale, solve, residual, threshold);
        s < 0) {
        return s;
    }
    for (size_t c = 0; c < dim; ++c) {
        result[c] = m[c] / scale + centre[c];
    }
    return ZELM_OK;
}

}  // namespace
}  // namespace zelm

int32_t zelmFitMean1dim(int32_t iN, const double* daPoints, int32_t iRobust, double dThreshold, double* dResult) {
    return zelm::fitMean<1>(iN, daPoints, iRobust, dThreshold, zelm::fitMean1dimSolve, zelm::fitMean1dimResidual,
                            dResult);
}

int32_t zelmFitMean2dim(int32_t iN, const Point2d* taPoints, int32_t iRobust, double dThreshold, Point2d* tResult) {
    return zelm::fitMean<2>(iN, reinterpret_cast<const double*>(taPoints), iRobust, dThreshold, zelm::fitMean2dimSolve,
                            zelm::fitMean2dimResidual, reinterpret_cast<double*>(tResult));
}

int32_t zelmFitMean3dim(int32_t iN, const Point3d* taPoints, int32_t iRobust, double dThreshold, Point3d* tResult) {
    return zelm::fitMean<3>(iN, reinterpret_cast<const double*>(taPoints), iRobust, dThreshold, zelm::fitMean3dimSolve,
                            zelm::fitMean3dimResidual, reinterpret_cast<double*>(tResult));
}
