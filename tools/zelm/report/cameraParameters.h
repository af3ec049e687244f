// The parameters of both cameras of a pair as rows for people.
#ifndef ZELM_TOOL_CAMERA_PARAMETERS_H
#define ZELM_TOOL_CAMERA_PARAMETERS_H

#include <string>
#include <vector>

#include "rigFile.h"

namespace zelm::tool {

// A camera that has no such parameter shows a dash.
struct CameraParameter {
    std::string name;
    std::string unit;  // empty where there is none
    std::string left;
    std::string right;
    int parameter = -1;  // of the left camera in the covariance, ZelmMeasureParameter; -1: it has no place there
};

// Alpha, beta and gamma of a perspective camera are focal lengths and a skew in pixels; those of a parallel one are
// magnifications, in pixels for each unit of length. `units` are the plate's, "mm" or "plate units".
std::vector<CameraParameter> cameraParameters(const Rig& rig, const std::string& units);

// What alpha is to a camera of this model, in pixels for each of `units` where that matters.
struct ScaleWords {
    std::string name;
    std::string unit;
};
ScaleWords scaleWords(int model, const std::string& units);

}  // namespace zelm::tool

#endif
