// Calibrations of one rig as they come out, each with errors of its own and with what it says of itself.
#ifndef ZELM_TEST_FRESH_CALIBRATIONS_H
#define ZELM_TEST_FRESH_CALIBRATIONS_H

#include "calibrationDraws.h"
#include "driftTrials.h"

namespace zelmtest {

class FreshCalibrations {
public:
    // From views of plates whose dots have this noise, pixels.
    FreshCalibrations(double dotNoise, int views)
        : covariance(simulatedCovariance(truth.pair(), dotNoise, views)), draws(covariance) {}

    // What pixel pairs of the rig tell beside one of the calibrations, after its right camera has moved; `isKnown`:
    // the calibration comes with its covariance.
    ZelmMeasureDrift drift(std::uint64_t seed, const RightMove& move, const DriftScene& scene, bool isKnown) const {
        Random random(seed);
        const OpenedRig rig(blockOf(moved(truth.pair(), draws.draw(random))));
        EXPECT_EQ(zelmMeasureRigSetCovariance(rig.get(), isKnown ? &covariance : nullptr), ZELM_OK) << rig.error();
        ZelmMeasureDrift drift{};
        EXPECT_EQ(driftOf(rig, driftPairs(moved(truth, move), scene, 5000 + seed), nullptr, &drift), ZELM_OK);
        return drift;
    }

private:
    RigTruth truth = sideBySideRig();
    ZelmMeasureCovariance covariance;
    ParameterDraws draws;
};

}  // namespace zelmtest

#endif
