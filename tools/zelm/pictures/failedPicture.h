// Pictures of images whose plate cannot be read: what was found, and why it is no dot.
#ifndef ZELM_TOOL_FAILED_PICTURE_H
#define ZELM_TOOL_FAILED_PICTURE_H

#include <string>

#include "imageTrouble.h"

namespace zelm::tool {

// A PNG of the image with a coloured outline about every spot that was looked at, and below it the cause and what each
// colour means, with the number of such spots.
std::string drawFailed(const Picture& picture, const ImageTrouble& trouble);

}  // namespace zelm::tool

#endif
