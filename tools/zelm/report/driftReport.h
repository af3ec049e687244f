// What pairs of pixels tell of the cameras' drift since the calibration, in words and as JSON.
#ifndef ZELM_TOOL_DRIFT_REPORT_H
#define ZELM_TOOL_DRIFT_REPORT_H

#include <zelmMeasure.h>

#include <nlohmann/json.hpp>
#include <string>

namespace zelm::tool {

struct DriftCheck {
    ZelmMeasureDrift drift{};
    std::string units;    // of the plate; empty: not known
    std::string refusal;  // why drift cannot be told; empty: it can

    bool isFound() const { return refusal.empty() && drift.found == 1; }
};

std::string driftText(const DriftCheck& check);
nlohmann::ordered_json driftJson(const DriftCheck& check);
// Of drift that was found: one line that says what moved, and what to do.
std::string driftVerdict(const DriftCheck& check);

}  // namespace zelm::tool

#endif
