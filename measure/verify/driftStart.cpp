#include "driftStart.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "plateBlobs.h"

namespace zelm::measure {
namespace {

constexpr int kSamples = 300;            // one of them is free of wrong pairs but once in 10^10, when a third are wrong
constexpr std::size_t kMaxJudges = 400;  // pairs that judge a sample
constexpr std::uint64_t kSeed = 20240229;

// Indices that are the same on every platform (splitmix64: Steele, Lea and Flood 2014).
class IndexSource {
public:
    std::size_t below(std::size_t count) {
        std::uint64_t z = (state += 0x9E3779B97F4A7C15ULL);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        return static_cast<std::size_t>((z ^ (z >> 31)) % count);
    }

private:
    std::uint64_t state = kSeed;
};

// The drift that takes the distances of five pairs away; false when they do not determine it.
bool solveSample(const std::vector<SignedDistance>& distances, IndexSource& random, Drift& drift) {
    Matrix<kDriftParts> N{};
    Drift right{};
    for (std::size_t i = 0; i < kDriftParts; ++i) {
        const SignedDistance& d = distances[random.below(distances.size())];
        for (std::size_t j = 0; j < kDriftParts; ++j) {
            right[j] -= d.byDrift[j] * d.value;
            for (std::size_t k = j; k < kDriftParts; ++k) {
                N[j][k] += d.byDrift[j] * d.byDrift[k];
            }
        }
    }
    if (!factor(N)) {
        return false;
    }
    drift = solve(N, right);
    return true;
}

double medianAfter(const std::vector<SignedDistance>& distances, const Drift& drift) {
    const std::size_t step = distances.size() / kMaxJudges + 1;
    std::vector<double> magnitudes;
    for (std::size_t i = 0; i < distances.size(); i += step) {
        const SignedDistance& d = distances[i];
        double value = d.value;
        for (std::size_t k = 0; k < kDriftParts; ++k) {
            value += d.byDrift[k] * drift[k];
        }
        magnitudes.push_back(std::fabs(value));
    }
    return median(std::move(magnitudes));
}

}  // namespace

Drift startDrift(const EpipolarModel& model, const std::vector<RayPair>& pairs) {
    const DriftedPair calibrated = model.at({});
    std::vector<SignedDistance> distances(pairs.size());
    std::transform(pairs.begin(), pairs.end(), distances.begin(),
                   [&](const RayPair& pair) { return calibrated.distance(pair); });
    IndexSource random;
    Drift best{};
    double least = medianAfter(distances, best);
    for (int i = 0; i < kSamples; ++i) {
        Drift drift{};
        if (!solveSample(distances, random, drift)) {
            continue;
        }
        if (const double median = medianAfter(distances, drift); median < least) {
            least = median;
            best = drift;
        }
    }
    return best;
}

}  // namespace zelm::measure
