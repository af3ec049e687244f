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

// Of three coordinates: each two of them, and all three.
void checkPointCovariances(const double* covariances, std::size_t count) {
    constexpr double kRounding = 1e-9;  // of the product of the variances
    for (std::size_t i = 0; covariances != nullptr && i < count; ++i) {
        const double* const c = covariances + 6 * i;
        if (std::isnan(c[0])) {
            continue;
        }
        const auto isPair = [](double xx, double xy, double yy) {
            return std::isfinite(xx) && std::isfinite(yy) && xx >= 0.0 && yy >= 0.0 &&
                   xy * xy <= xx * yy * (1.0 + kRounding);
        };
        const double determinant = c[0] * (c[3] * c[5] - c[4] * c[4]) - c[1] * (c[1] * c[5] - c[4] * c[2]) +
                                   c[2] * (c[1] * c[4] - c[3] * c[2]);
        require(isPair(c[0], c[1], c[3]) && isPair(c[0], c[2], c[5]) && isPair(c[3], c[4], c[5]) &&
                    determinant >= -kRounding * c[0] * c[3] * c[5],
                "a point's covariance is not positive semi-definite");
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
    checkPointCovariances(record.points, count);
    const bool needsSigma = record.left == nullptr || record.right == nullptr;
    if (needsSigma && record.sigma == 0.0) {
        const CalibrationCovariance& covariance = covarianceOf(rig);
        record.sigma = covariance.noise;
        record.freedom = covariance.freedom;
        ofCalibration = record.left == nullptr && record.right == nullptr && record.points == nullptr;
    }
    variance = record.sigma * record.sigma;
}

Symmetric3 PixelNoise::ofPoint(const SensitivityModel& model, const PointSensitivity& s, std::size_t i) const {
    const double* const c = record.points == nullptr ? nullptr : record.points + 6 * i;
    return c == nullptr || std::isnan(c[0]) ? imageCovariance(s, of(record.left, i), of(record.right, i))
                                            : model.inLeft(Symmetric3{c[0], c[1], c[2], c[3], c[4], c[5]});
}

}  // namespace zelm::measure
