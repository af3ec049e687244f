// Completion of the command line in shells: subcommands, options, the words that an option takes, and file names.
#ifndef ZELM_TOOL_COMPLETION_SCRIPTS_H
#define ZELM_TOOL_COMPLETION_SCRIPTS_H

#include <string>

#include "commandOutline.h"

namespace zelm::tool {

std::string bashCompletion(const ToolOutline& outline);
std::string zshCompletion(const ToolOutline& outline);
std::string fishCompletion(const ToolOutline& outline);

}  // namespace zelm::tool

#endif
