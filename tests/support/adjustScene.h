// Simulated dots of a plate in two cameras with known truth, as an adjustment works on them: predicted centres of
// ellipses, with noise where it is asked for. No images.
#ifndef ZELM_TEST_ADJUST_SCENE_H
#define ZELM_TEST_ADJUST_SCENE_H

#include <zelmLib.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "adjustCovariance.h"
#include "adjustProblem.h"
#include "adjustStart.h"
#include "random.h"
#include "stereoFixtures.h"

namespace zelmtest {

struct AdjustSceneOptions {
    std::array<int, 2> models{0, 0};  // left, right
    int views = 12;
    double maxTilt = 0.6;       // radians
    double distance = 340.0;    // of the plates from the base camera, plate units
    double convergence = 0.35;  // radians
    std::array<double, 2> focal{1690.0, 1675.0};
    double k1 = -0.12, k2 = 0.06;  // of perspective cameras
    bool skewed = false;           // the image axes are not quite at right angles
    bool squarePixels = false;
    std::array<double, 2> factors{1.0, 1.0};  // of the diameters
    std::array<double, 3> bow{};              // plate units at half the diagonal
    std::uint64_t seed = 1;
};

// The plate has 13 x 11 dots; the images are 1280 x 960.
struct AdjustScene {
    Zelm2ViewPatternDesc plate = plainPattern();
    std::array<int, 2> models{};
    zelm::measure::AdjustState truth;
    std::vector<zelm::measure::AdjustView> views;  // dots whose pixels are the predicted centres

    // The dots with normal noise.
    [[nodiscard]] std::vector<zelm::measure::AdjustView> noisy(double sigma, Random& random) const;
    // As a calibration leaves it: cameras, relative pose and plates are off by what 0.5 pixel would do.
    [[nodiscard]] zelm::measure::AdjustState start(Random& random) const;
};

constexpr int kSceneWidth = 1280;
constexpr int kSceneHeight = 960;

AdjustScene makeAdjustScene(const AdjustSceneOptions& options);
// Predicts the dots of all views that lie in the images; `places` are those of measured dots.
void predictDots(AdjustScene& scene, const zelm::measure::DotPlaces& places = {});

// A state as a rig, whose block says the same.
zelm::measure::Rig rigOfState(const AdjustScene& scene, const zelm::measure::AdjustState& state);

// What the truth lacks of a rig, in the order of RigParameter: true minus estimated, rotations as d of exp(d) R.
std::array<double, zelm::measure::kRigParameters> rigErrors(const zelm::measure::Rig& truth,
                                                            const zelm::measure::Rig& estimate);

// Mahalanobis distance squared of the errors that the covariance holds free, and how many directions these are.
struct Consistency {
    double square = 0.0;
    int freedom = 0;
};
Consistency consistencyOf(const std::array<double, zelm::measure::kRigParameters>& errors,
                          const zelm::measure::CalibrationCovariance& covariance);

}  // namespace zelmtest

#endif
