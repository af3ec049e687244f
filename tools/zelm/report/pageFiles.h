// The style sheets and scripts of the pages, which the build puts into the program.
#ifndef ZELM_TOOL_PAGE_FILES_H
#define ZELM_TOOL_PAGE_FILES_H

#include <string_view>

namespace zelm::tool {

// The text of a file of tools/zelm/report/page/, "report.css", or of the 3-D library; empty when there is none.
std::string_view pageFile(std::string_view name);

}  // namespace zelm::tool

#endif
