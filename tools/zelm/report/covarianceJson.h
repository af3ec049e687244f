// The covariance of a calibration as JSON.
#ifndef ZELM_TOOL_COVARIANCE_JSON_H
#define ZELM_TOOL_COVARIANCE_JSON_H

#include <nlohmann/json_fwd.hpp>

#include "rigFile.h"

namespace zelm::tool {

// Names and units of the parameters, noise, degrees of freedom and the lower triangle of the matrix, row by row. Null
// for a rig without one.
nlohmann::ordered_json covarianceJson(const Rig& rig);

}  // namespace zelm::tool

#endif
