// What is wrong with the images of a set, in lines for the user that name them and what to try.
#ifndef ZELM_TOOL_IMAGE_SET_FAULTS_H
#define ZELM_TOOL_IMAGE_SET_FAULTS_H

#include <zelmMeasure.h>

#include <cstddef>
#include <string>
#include <vector>

#include "pairReading.h"
#include "verdict.h"
#include "viewQuality.h"

namespace zelm::tool {

// What the measuring library says of the images of a set.
struct ImageSetFindings {
    std::vector<ZelmMeasurePairedView> views;
    std::vector<ZelmMeasureSetCause> causes;
    ZelmMeasurePairing pairing{};
};

struct ImageSetFaults {
    std::vector<Doubt> doubts;          // a line each
    std::vector<std::string> setAside;  // of each view, why it must not take part; empty: it may
};

// `views` are those of the findings, and `sharpness` is theirs. Fatal are faults of a whole list, such that leave too
// few views, and another session of more than half as many views as fit. `units` are those of the plate.
ImageSetFaults faultsOf(const ImageSetFindings& findings, const std::vector<ViewFiles>& views,
                        const std::vector<ViewSharpness>& sharpness, const std::string& units);

}  // namespace zelm::tool

#endif
