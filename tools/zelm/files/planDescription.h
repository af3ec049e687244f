// What `zelm plan` plans for: a pair that is to be built, or the volume of one that stands, read from a JSON file.
#ifndef ZELM_TOOL_PLAN_DESCRIPTION_H
#define ZELM_TOOL_PLAN_DESCRIPTION_H

#include <zelmMeasure.h>

#include <filesystem>
#include <optional>

namespace zelm::tool {

struct PlannedPair {
    ZelmMeasureCamera left{};
    ZelmMeasureCamera right{};
    ZelmMeasureRelativePose relative{};
};

struct PlanDescription {
    std::optional<PlannedPair> pair;   // none: the cameras are those of a calibrated rig
    ZelmMeasurePlanOptions options{};  // the volume and the focus; all else is 0
};

// Throws Failure, naming the file and the field, for text that is not JSON and for fields that are missing, unknown, of
// the wrong kind or out of range. With a rig the description says nothing of cameras.
PlanDescription readPlanDescription(const std::filesystem::path& path, bool withRig);

}  // namespace zelm::tool

#endif
