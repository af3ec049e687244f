// Automatic thresholds after N. Otsu, "A threshold selection method from gray-level histograms", IEEE Trans. SMC 9,
// 1979: the split of the histogram with the largest variance between the two classes.

#include <cstddef>
#include <cstdint>
#include <span>

#include "grayHistogram.h"
#include "zelm/bin.h"

namespace zelm {
namespace {

constexpr double kTopLevel = 255.0;

// N: pixels, mu: mean level, w and s: count and first moment of the levels up to k. Counts are unsigned 32-bit and
// wrap around like the histogram's own sum.
int32_t otsuThreshold(std::span<const uint32_t> h) {
    uint32_t N = 0;
    double moment = 0.0;
    for (size_t k = 0; k < h.size(); ++k) {
        N += h[k];
        moment += static_cast<double>(k) * h[k];
    }
    const double mu = N != 0 ? moment / N : 0.0;

    double best = -1.0;
    size_t bestK = 0;
    uint32_t w = 0;
    double s = 0.0;
    for (size_t k = 0; k < h.size(); ++k) {
        w += h[k];
        if (w == 0) {
            continue;
        }
        if (w == N) {
            break;
        }
        s += static_cast<double>(k) * h[k];
        const double difference = mu * w - s;
        const double v = difference * difference / (static_cast<double>(N - w) * w);
        if (v > best) {
            best = v;
            bestK = k;
        }
    }
    return static_cast<int32_t>(bestK) + 1;
}

// Clamped before the cast, so that huge values never overflow it.
size_t levelOf(double value) {
    const double rounded = value + 0.5;
    if (rounded >= kTopLevel) {
        return kGrayLevels - 1;
    }
    return rounded > 0.0 ? static_cast<size_t>(rounded) : 0;
}

}  // namespace
}  // namespace zelm

int32_t zelmBinOtsuThresholdHistogram(int32_t iBins, const uint32_t* uaHistogram) {
    if (iBins < 1 || uaHistogram == nullptr) {
        return ZELM_ERR_PARAM;
    }
    return zelm::otsuThreshold({uaHistogram, static_cast<size_t>(iBins)});
}

int32_t zelmBinOtsuThresholdImage(const ZelmImage* tImage, const ZelmRect* tRegion) {
    if (tImage == nullptr || tRegion == nullptr) {
        return ZELM_ERR_PARAM;
    }
    uint32_t histogram[zelm::kGrayLevels];
    zelm::grayHistogram(*tImage, *tRegion, histogram);
    return zelm::otsuThreshold(histogram);
}

int32_t zelmBinOtsuThresholdGray(int32_t iCount, const double* daValues) {
    if (iCount < 1 || daValues == nullptr) {
        return ZELM_ERR_PARAM;
    }
    uint32_t histogram[zelm::kGrayLevels] = {};
    for (int32_t i = 0; i < iCount; ++i) {
        if (daValues[i] == daValues[i]) {  // not a number: no gray value, left out
            ++histogram[zelm::levelOf(daValues[i])];
        }
    }
    return zelm::otsuThreshold(histogram);
}
