#include "covarianceCheck.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "cholesky.h"
#include "fault.h"

namespace zelm::measure {
namespace {

constexpr double kRounding = 1e-9;  // of correlations

void checkNumbers(const CalibrationCovariance& c) {
    if (!std::all_of(c.matrix.begin(), c.matrix.end(), [](double v) { return std::isfinite(v); })) {
        refuse("the covariance holds a number that is not finite");
    }
    if (!std::isfinite(c.noise) || c.noise < 0.0) {
        refuse("the covariance's noise is negative or not finite");
    }
    if (!std::isfinite(c.freedom) || (c.freedom != 0.0 && c.freedom < 1.0)) {
        refuse("the covariance's degrees of freedom are not finite, or neither 0 nor at least 1");
    }
}

// Standard deviations; 0 of parameters that are held.
Vector<kRigParameters> deviationsOf(const CalibrationCovariance& c) {
    Vector<kRigParameters> deviations{};
    for (std::size_t i = 0; i < kRigParameters; ++i) {
        const double variance = c.matrix[(kRigParameters + 1) * i];
        if (variance < 0.0) {
            refuse("no covariance: the variance of parameter " + std::to_string(i) + " is negative");
        }
        deviations[i] = std::sqrt(variance);
    }
    return deviations;
}

// Of what the two elements of a pair of parameters say; those that are held have none.
double correlationOf(double element, double deviations) {
    if (deviations > 0.0) {
        return element / deviations;
    }
    if (element != 0.0) {
        refuse("no covariance: a parameter without variance varies with another");
    }
    return 0.0;
}

}  // namespace

CalibrationCovariance soundCovariance(const CalibrationCovariance& covariance) {
    checkNumbers(covariance);
    const Vector<kRigParameters> deviations = deviationsOf(covariance);
    CalibrationCovariance sound = covariance;
    Matrix<kRigParameters> correlations{};
    for (std::size_t i = 0; i < kRigParameters; ++i) {
        // Held parameters get a place of their own; the others' pivots may be 0, but not less beyond rounding.
        correlations[i][i] = 1.0 + 2.0 * static_cast<double>(kRigParameters) * kRounding;
        for (std::size_t j = i + 1; j < kRigParameters; ++j) {
            const double upper = covariance.matrix[kRigParameters * i + j];
            const double lower = covariance.matrix[kRigParameters * j + i];
            const double both = deviations[i] * deviations[j];
            correlations[i][j] = correlationOf(upper, both);
            if (!(std::fabs(correlations[i][j] - correlationOf(lower, both)) <= kRounding)) {
                refuse("no covariance: the matrix is not symmetric");
            }
            const double mean = 0.5 * upper + 0.5 * lower;
            sound.matrix[kRigParameters * i + j] = mean;
            sound.matrix[kRigParameters * j + i] = mean;
        }
    }
    if (!factor(correlations)) {
        refuse("no covariance: the matrix is not positive semi-definite");
    }
    return sound;
}

}  // namespace zelm::measure
