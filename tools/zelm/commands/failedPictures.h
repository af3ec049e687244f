// Pictures of images that could not be read, beside the outputs of a command.
#ifndef ZELM_TOOL_FAILED_PICTURES_H
#define ZELM_TOOL_FAILED_PICTURES_H

#include <filesystem>
#include <functional>
#include <vector>

#include "imageTrouble.h"
#include "outputFiles.h"

namespace zelm::tool {

// They have a folder of their own, `failed` in the output folder: no glob for images finds them, and they are never
// taken for results. Each is NAME_failed.png.
std::filesystem::path failedFolder(const std::filesystem::path& outputFolder);

// Adds a picture of each trouble to the outputs.
void addFailedPictures(const std::vector<ImageTrouble>& troubles, const std::filesystem::path& outputFolder,
                       OutputFiles& outputs);

// Takes pictures of an earlier run away when the outputs are put in place: their images are read now. `troubles`: of
// images whose pictures are among the outputs.
void supersedeFailedPictures(const std::vector<std::filesystem::path>& images,
                             const std::vector<ImageTrouble>& troubles, const std::filesystem::path& outputFolder,
                             OutputFiles& outputs);

// Does the work. When it fails for images, their pictures are written all the same, though nothing else is, and the
// line names their folder.
void showingFailures(const std::filesystem::path& outputFolder, const std::function<void()>& work);

}  // namespace zelm::tool

#endif
