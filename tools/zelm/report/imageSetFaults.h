// What is wrong with the images of a set, in lines for the user that name them and what to try.
#ifndef ZELM_TOOL_IMAGE_SET_FAULTS_H
#define ZELM_TOOL_IMAGE_SET_FAULTS_H

#include <zelmMeasure.h>

#include <cstddef>
#include <string>
#include <vector>

#include "pairReading.h"
#include "verdict.h"

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

// `views` are those of the findings. Fatal are faults of a whole list, and such that leave too few views.
ImageSetFaults faultsOf(const ImageSetFindings& findings, const std::vector<ViewFiles>& views);

// The tilts of the plate in both images of every view, for a message: "left 3, 5, 4, right 2, 6, 4 degrees".
std::string tiltList(const ImageSetFindings& findings);
// The largest of them, degrees; 0 where none is known.
double maxTilt(const ImageSetFindings& findings);

}  // namespace zelm::tool

#endif
