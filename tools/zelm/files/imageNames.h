// What the names and bytes of image files tell of a set, before anything is computed.
#ifndef ZELM_TOOL_IMAGE_NAMES_H
#define ZELM_TOOL_IMAGE_NAMES_H

#include <cstddef>
#include <filesystem>
#include <vector>

#include "pairReading.h"

namespace zelm::tool {

// Throws Failure when the left and right images are the same files, or copies of them.
void requireTwoSides(const std::vector<ViewFiles>& views);

bool areSameFile(const std::filesystem::path& a, const std::filesystem::path& b);
bool haveSameBytes(const std::filesystem::path& a, const std::filesystem::path& b);

// Views whose two images have other numbers in their names, of sets that are numbered alike: left_03 with right_04.
std::vector<std::size_t> pairsOfOtherNumbers(const std::vector<ViewFiles>& views);

// Of two views of which the images of one side have changed places, by their numbers: 'L', 'R', or 0 for unknown.
int sideOutOfOrder(const std::vector<ViewFiles>& views, std::size_t a, std::size_t b);

// Whether the names say that the left images are the right camera's and the other way round: right_0.png, R_0.png or
// cam1/0.png given as left ones.
bool areNamedExchanged(const std::vector<ViewFiles>& views);

}  // namespace zelm::tool

#endif
