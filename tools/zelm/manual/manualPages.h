// Manual pages, in the language of man(7).
#ifndef ZELM_TOOL_MANUAL_PAGES_H
#define ZELM_TOOL_MANUAL_PAGES_H

#include <string>

#include "commandOutline.h"

namespace zelm::tool {

// zelm.1: the tool as a whole.
std::string toolPage(const ToolOutline& outline);
// zelm-<name>.1: one of its subcommands.
std::string subcommandPage(const ToolOutline& outline, const CommandOutline& subcommand);

}  // namespace zelm::tool

#endif
