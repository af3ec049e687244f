// A failure for programs: the object that --json prints of it.
#ifndef ZELM_TOOL_FAILURE_JSON_H
#define ZELM_TOOL_FAILURE_JSON_H

#include <string>

#include "failure.h"

namespace zelm::tool {

// Whether a command line asks for JSON, also one that cannot be parsed.
bool asksForJson(int argc, const char* const* argv);

// {"status": "failed", "exitCode", "message", "cause", "images"} and what was found out all the same.
std::string failureJson(const Failure& failure);

}  // namespace zelm::tool

#endif
