// How often the cause of an image that cannot be read is named rightly, and how often a good image is accused, over
// random rigs, plates, poses, noise and sizes: the table of docs/diagnosis.md.
//
//   zelm_diagnosis_power [IMAGES [FIRST]]    images of each cause, and 17 times as many good ones; default 60 and 1
#include <zelmMeasure.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>

#include "imageFaultTrials.h"

using namespace zelm::accuracy;

namespace {

void printGood(std::uint64_t first, int count) {
    int unread = 0;
    int accused = 0;
    for (int i = 0; i < count; ++i) {
        const ZelmMeasureImageDiagnosis d = diagnosisOf(goodImage(first + static_cast<std::uint64_t>(i)));
        unread += d.status < 0 ? 1 : 0;
        accused += d.cause != ZELM_MEASURE_IMAGE_FINE ? 1 : 0;
    }
    std::printf("good images: %d, not read: %d, accused: %d\n\n", count, unread, accused);
}

// The number of right ones.
int printCause(ZelmMeasureImageCause cause, std::uint64_t first, int count, int& made) {
    std::map<int, int> named;
    int read = 0;
    std::uint64_t seed = first;
    for (int n = 0; n < count && read < 20 * count; ++seed) {
        if (const auto image = faultyImage(cause, seed)) {
            named[diagnosisOf(*image).cause] += 1;
            ++n;
            ++made;
        } else {
            ++read;
        }
    }
    std::printf("| %s | %d of %d |", zelmMeasureImageCauseName(cause), named[cause], count);
    for (const auto& [other, times] : named) {
        if (other != cause && times > 0) {
            std::printf(" %s %d", zelmMeasureImageCauseName(other), times);
        }
    }
    std::printf(" |\n");
    std::fflush(stdout);
    return named[cause];
}

}  // namespace

int main(int argc, char** argv) {
    const int count = argc > 1 ? std::atoi(argv[1]) : 60;
    const auto first = static_cast<std::uint64_t>(argc > 2 ? std::atoi(argv[2]) : 1);
    if (count < 1) {
        std::fprintf(stderr, "zelm_diagnosis_power: the number of images must be 1 or more\n");
        return 2;
    }
    printGood(first, count * static_cast<int>(trialCauses().size()));
    std::printf("| cause | named | taken for |\n|---|---:|---|\n");
    int right = 0;
    int made = 0;
    for (const ZelmMeasureImageCause cause : trialCauses()) {
        right += printCause(cause, first, count, made);
    }
    std::printf("\nall: %d of %d, %.1f %%\n", right, made, 100.0 * right / made);
    return 0;
}
