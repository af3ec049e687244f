// Random images of random plates, good ones and ones with a known fault, for counting how often the fault is named.
#ifndef ZELM_TEST_IMAGE_FAULT_TRIALS_H
#define ZELM_TEST_IMAGE_FAULT_TRIALS_H

#include <zelmMeasure.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "renderView.h"

namespace zelm::accuracy {

// An image with the description that a user gives of its plate.
struct TrialImage {
    render::GrayImage image;
    Zelm2ViewPatternDesc pattern{};
    double radius = 0.0;  // median of the dots', pixels
    double noise = 0.0;   // gray levels
    double blur = 0.0;    // pixels
};

// The causes that there are faulty images of.
const std::vector<ZelmMeasureImageCause>& trialCauses();

// A whole, sharp, evenly lit plate, wholly in view.
TrialImage goodImage(std::uint64_t seed);

// An image with that fault, which the reader refuses; nothing where it reads it all the same.
std::optional<TrialImage> faultyImage(ZelmMeasureImageCause cause, std::uint64_t seed);

ZelmMeasureImageDiagnosis diagnosisOf(const TrialImage& trial);

}  // namespace zelm::accuracy

#endif
