// What the calibration of one camera alone is told as: text, JSON and a page.
#ifndef ZELM_TOOL_CAMERA_SUMMARY_H
#define ZELM_TOOL_CAMERA_SUMMARY_H

#include <array>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "calibrationSummary.h"

namespace zelm::tool {

constexpr std::size_t kCameraParameters = 7;

// One parameter with its standard deviation, 0 where it is held.
struct EstimatedParameter {
    const char* key;   // in JSON
    const char* name;  // for people
    const char* unit;
    double value;
    double deviation;
    int digits;
};

struct CameraResult {
    Calibration calibration;  // of a pair of which the left camera alone is there
    std::array<double, kCameraParameters * kCameraParameters> covariance{};  // fx, skew, fy, cx, cy, k1, k2
    double noise = 0.0;    // standard deviation of a coordinate, pixels
    double freedom = 0.0;  // degrees of freedom that it was estimated from; 0: it was known

    std::vector<EstimatedParameter> parameters() const;
};

std::string cameraText(const CameraResult& result);
nlohmann::ordered_json cameraResultJson(const CameraResult& result);
// A page that needs no other file.
std::string cameraPage(const CameraResult& result);

}  // namespace zelm::tool

#endif
