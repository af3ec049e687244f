// What `zelm simulate` is asked to render: a rig, a plate, optics and views, read from a JSON file.
#ifndef ZELM_TOOL_SIMULATE_DESCRIPTION_H
#define ZELM_TOOL_SIMULATE_DESCRIPTION_H

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "renderView.h"

namespace zelm::tool {

inline constexpr int kMaxSimulatedViews = 10000;

struct SimulateDescription {
    std::string set = "simulated";  // name that goes into the truth file
    render::Plate plate;
    render::StereoRig rig = render::exampleRig();
    render::Optics optics;
    std::vector<render::Pose> poses;  // of the plate in the left camera; when empty, drawn at random
    int viewCount = 12;
    std::uint64_t seed = 1;  // of the noise and of poses drawn at random
    render::ViewRange range;
};

SimulateDescription defaultDescription();

// Reads a description; whatever it leaves out is as in defaultDescription. Throws Failure, naming the file and the
// field, for text that is not JSON, for fields that are unknown, of the wrong kind or out of range.
SimulateDescription readSimulateDescription(const std::filesystem::path& path);

// A complete description with comments: the defaults.
std::string_view exampleDescription();

}  // namespace zelm::tool

#endif
