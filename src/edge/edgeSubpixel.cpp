#include "edgeSubpixel.h"

#include <algorithm>
#include <cmath>

namespace zelm {
namespace {

// k * g(k) / sigma^2, g the normal density of standard deviation sigma, for k = -h..h (docs/decisions.md#edge-kernels).
constexpr double kKernel5[] = {-0.1079819330263761, -0.24197072451914334, 0.0, 0.24197072451914334,
                               0.1079819330263761};  // sigma 1
constexpr double kKernel7[] = {-0.047991970233944935, -0.09719115536355177, -0.09465126089551176, 0.0,
                               0.09465126089551176,   0.09719115536355177,  0.047991970233944935};  // sigma 1.5

constexpr int64_t kMinWindow = 5;            // cells; a shorter edge is widened to this
constexpr double kMinCurvature = 1e-10;      // gray levels; below it the three derivatives show no peak
constexpr double kLogOffset = 1e-10;         // gray levels; keeps the logarithms finite
constexpr double kMaxOffset = 0.5000000001;  // samples; a peak further off belongs to another sample

double convolve(const double* centre, std::span<const double> kernel) {
    const double* const g = centre - kernel.size() / 2;
    double sum = 0.0;
    for (std::size_t k = 0; k < kernel.size(); ++k) {
        sum += kernel[k] * g[k];
    }
    return sum;
}

int64_t largestMagnitude(const double* d, int64_t first, int64_t last) {
    int64_t best = first;
    for (int64_t i = first + 1; i <= last; ++i) {
        if (std::fabs(d[i]) > std::fabs(d[best])) {
            best = i;
        }
    }
    return best;
}

// The maximum of the Gaussian through the three derivatives around cell k.
int32_t fitPeak(const double* d, int64_t k, double& delta, double& strength) {
    const double f0 = std::fabs(d[k]);
    const double fm = std::fabs(d[k - 1]);
    const double fp = std::fabs(d[k + 1]);
    if (2.0 * f0 - fm - fp < kMinCurvature) {
        return 0;
    }
    const double c = std::log((fm + kLogOffset) * (fp + kLogOffset) / ((f0 + kLogOffset) * (f0 + kLogOffset)));
    delta = 0.5 * std::log((fm + kLogOffset) / (fp + kLogOffset)) / c;
    if (std::fabs(delta) > kMaxOffset) {
        return 0;
    }
    strength = f0 * std::exp(-0.5 * c * delta * delta);
    return 1;
}

}  // namespace

std::span<const double> edgeKernel(int32_t iFilterSize) {
    if (iFilterSize == 5) {
        return kKernel5;
    }
    if (iFilterSize == 7) {
        return kKernel7;
    }
    return {};
}

int32_t locateEdge(EdgeProfile& profile, const EdgeCandidate& edge, int32_t iFilterSize, EdgePosition& position) {
    int64_t a = edge.a + kEdgeGuard;
    int64_t b = edge.b + kEdgeGuard;
    if (b + 1 - a < kMinWindow) {
        const int64_t c = (a + b) / 2;
        a = c - 2;
        b = c + 2;
    }
    const int64_t h = iFilterSize / 2;
    const int64_t cells = profile.segment.last + 1 + 2 * kEdgeGuard;
    if (profile.first + a - h < 0 || profile.first + b + h >= cells) {
        return ZELM_ERR_MEMORY;
    }
    // A size without a kernel has no derivative, hence no edge: docs/decisions.md#edge-kernel-sizes.
    const std::span<const double> kernel = edgeKernel(iFilterSize);
    if (kernel.empty()) {
        return 0;
    }
    // Plateau samples within the filter's reach are seen as they are: to repeat one sample would repeat its noise.
    a = std::min(a, std::max(a - h, edge.from + kEdgeGuard));
    b = std::max(b, std::min(b + h, edge.to + kEdgeGuard));
    double* const g = profile.gray.data();
    double* const d = profile.derivative.data();
    std::fill(g + a - h, g + a, g[a]);
    std::fill(g + b + 1, g + b + h + 1, g[b]);
    for (int64_t i = a; i <= b; ++i) {
        d[i] = convolve(g + i, kernel);
    }
    const int64_t k = largestMagnitude(d, a + 1, b - 1);
    double delta = 0.0;
    if (fitPeak(d, k, delta, position.strength) == 0) {
        return 0;
    }
    position.sample = static_cast<double>(profile.first + k - kEdgeGuard) + delta;
    return 1;
}

}  // namespace zelm
