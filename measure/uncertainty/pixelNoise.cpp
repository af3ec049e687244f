#include "pixelNoise.h"

#include <cmath>

#include "covarianceBlock.h"
#include "records.h"

namespace zelm::measure {
namespace {

void checkCovariances(const double* covariances, std::size_t count) {
    constexpr double kRounding = 1e-12;  // of the product of both variances
    for (std::size_t i = 0; covariances != nullptr && i < count; ++i) {
        const double xx = covariances[3 * i];
        const double xy = covariances[3 * i + 1];
        const double yy = covariances[3 * i + 2];
        require(
            std::isfinite(xx) && std::isfinite(yy) && xx >= 0.0 && yy >= 0.0 && xy * xy <= xx * yy * (1.0 + kRounding),
            "a pixel's covariance is not positive semi-definite");
    }
}

}  // namespace

PixelNoise::PixelNoise(const Rig& rig, const ZelmMeasurePixelNoise* given, std::size_t count) {
    if (given != nullptr) {
        record = recordOf(given);
    }
    require(std::isfinite(record.sigma) && record.sigma >= 0.0, "the pixels' noise is negative or not finite");
    require(std::isfinite(record.freedom) && (record.freedom == 0.0 || record.freedom >= 1.0),
            "the noise's degrees of freedom are neither 0 nor at least 1");
    checkCovariances(record.left, count);
    checkCovariances(record.right, count);
    const bool needsSigma = record.left == nullptr || record.right == nullptr;
    if (needsSigma && record.sigma == 0.0) {
        const CalibrationCovariance& covariance = covarianceOf(rig);
        record.sigma = covariance.noise;
        record.freedom = covariance.freedom;
        ofCalibration = record.left == nullptr && record.right == nullptr;
    }
    variance = record.sigma * record.sigma;
}

}  // namespace zelm::measure
