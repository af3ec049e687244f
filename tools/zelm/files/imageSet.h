// Sets of images: files, globs, folders and lists.
#ifndef ZELM_TOOL_IMAGE_SET_H
#define ZELM_TOOL_IMAGE_SET_H

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace zelm::tool {

// Whether a stands before b when runs of digits count as numbers: file_2 before file_10.
bool naturallyBefore(std::string_view a, std::string_view b);

// The files that the arguments name: a file; a glob or a folder, in natural order (of a folder, the files with the
// ending of an image); or a text file (.txt) with a name on each line, relative to it, in its own order. Throws Failure
// when an argument names nothing; `option` is the option that the arguments were given to.
std::vector<std::filesystem::path> expandImageSet(const std::vector<std::string>& arguments, std::string_view option);

// A warning when a picture that is written lands beside an image that it is made of, with a name that begins alike: the
// glob that took the images (left_*.png) would take the picture for one of them the next time. Else empty.
std::string warningOfGlobs(const std::vector<std::filesystem::path>& images,
                           const std::vector<std::filesystem::path>& pictures);

}  // namespace zelm::tool

#endif
