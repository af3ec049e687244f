// Cameras and plates in space, to be looked at.
#ifndef ZELM_TOOL_RIG_SCENE_H
#define ZELM_TOOL_RIG_SCENE_H

#include <array>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "viewPoses.h"

namespace zelm::tool {

// The pyramid, or of a parallel camera the prism, through the corners of its image.
struct SceneCamera {
    std::string name;
    bool isParallel = false;
    Point3 centre{};                 // of projection; of a parallel camera the middle of its window
    std::array<Point3, 4> window{};  // clockwise in the image from its upper left corner
    Point3 axis{};                   // where it looks to, of length 1
};

struct ScenePlate {
    std::size_t view = 0;
    std::array<Point3, 4> corners{};  // of the dot field
    std::vector<Point3> dots;         // that either camera has seen
};

// In the frame of the left camera: x right, y down, z forward; plate units.
struct RigScene {
    std::vector<SceneCamera> cameras;
    std::vector<ScenePlate> plates;
    std::string units;
};

RigScene rigScene(const Calibration& calibration);

// What the page's script draws.
nlohmann::ordered_json sceneJson(const RigScene& scene, const Calibration& calibration);

// A still picture of it as SVG, for paper and for browsers that draw no 3-D.
std::string sceneDrawing(const RigScene& scene);

}  // namespace zelm::tool

#endif
