// A failure for programs: the object that --json prints of it.
#ifndef ZELM_TOOL_FAILURE_JSON_H
#define ZELM_TOOL_FAILURE_JSON_H

#include <string>
#include <vector>

#include "failure.h"

namespace zelm::tool {

// Whether a command line asks for JSON, also one that cannot be parsed.
bool asksForJson(int argc, const char* const* argv);

// {"status": "failed", "exitCode", "message", "cause", "images", "warnings"} and what was found out all the same.
std::string failureJson(const Failure& failure, const std::vector<std::string>& warnings);

}  // namespace zelm::tool

#endif
