// The truth of rendered views as JSON.
#ifndef ZELM_TOOL_SIMULATE_TRUTH_H
#define ZELM_TOOL_SIMULATE_TRUTH_H

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "simulateDescription.h"

namespace zelm::tool {

// One rendered view: its image files and what is true of them.
struct ViewTruth {
    std::string leftImage, rightImage;  // file names
    render::Pose left, right;           // X_camera = R X_plate + t
    std::vector<render::DotTruth> leftDots, rightDots;
};

// Everything that was rendered: pattern, cameras, rig, noise, and for every view the poses and every dot's positions.
nlohmann::ordered_json truthJson(const SimulateDescription& description, const std::vector<ViewTruth>& views);

// The plate as `zelm detect` and `zelm calibrate` read it.
nlohmann::ordered_json plateJson(const render::Plate& plate);

}  // namespace zelm::tool

#endif
