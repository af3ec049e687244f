// Views that take no part, and why.
#ifndef ZELM_TOOL_SKIPPED_VIEWS_H
#define ZELM_TOOL_SKIPPED_VIEWS_H

#include <filesystem>
#include <string>
#include <vector>

#include "console.h"
#include "failure.h"
#include "imageTrouble.h"

namespace zelm::tool {

struct ViewFiles {
    std::filesystem::path left;   // empty: not needed, as for a parallel camera after its first view
    std::filesystem::path right;  // likewise
};

struct SkippedView {
    ViewFiles files;
    std::string reason;                  // names the image at fault
    std::vector<ImageTrouble> troubles;  // of its images; none for a file that is no image
    bool isSetAside = false;             // it was read, but must not take part
};

// A view with troubles, whose reason tells them all.
SkippedView skippedView(const ViewFiles& files, std::vector<ImageTrouble> troubles);

std::vector<ImageTrouble> troublesOf(const std::vector<SkippedView>& views);

// The cause that most of the images have.
FailureCause causeOf(const std::vector<SkippedView>& views);

// The line of that cause, or why the first view is skipped; empty for no views.
std::string mainReasonOf(const std::vector<SkippedView>& views);

// Views whose images have the same fault are one line.
void warnOfSkipped(const std::vector<SkippedView>& views, const Console& console);

}  // namespace zelm::tool

#endif
