#include "failedPictures.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "failedPicture.h"
#include "imageFile.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

std::string nameOf(const fs::path& image, int number) {
    return number == 1 ? fmt::format("{}_failed.png", image.stem().string())
                       : fmt::format("{}_{}_failed.png", image.stem().string(), number);
}

}  // namespace

fs::path failedFolder(const fs::path& outputFolder) {
    return outputFolder / "failed";
}

void addFailedPictures(const std::vector<ImageTrouble>& troubles, const fs::path& outputFolder, OutputFiles& outputs) {
    if (troubles.empty()) {
        return;
    }
    const fs::path folder = failedFolder(outputFolder);
    outputs.prepareFolder(folder);
    std::set<std::string> names;
    for (const ImageTrouble& trouble : troubles) {
        int number = 1;  // images of one name in the folders of two cameras
        while (!names.insert(nameOf(trouble.image, number)).second) {
            ++number;
        }
        outputs.add(folder / nameOf(trouble.image, number), drawFailed(readPicture(trouble.image), trouble));
    }
}

void supersedeFailedPictures(const std::vector<fs::path>& images, const std::vector<ImageTrouble>& troubles,
                             const fs::path& outputFolder, OutputFiles& outputs) {
    for (const fs::path& image : images) {
        const bool isTaken = std::any_of(troubles.begin(), troubles.end(), [&](const ImageTrouble& trouble) {
            return trouble.image.stem() == image.stem();
        });
        if (!isTaken && !image.empty()) {
            outputs.supersede(failedFolder(outputFolder) / nameOf(image, 1));
        }
    }
}

void showingFailures(const fs::path& outputFolder, const std::function<void()>& work) {
    try {
        work();
    } catch (const ImageFailure& failure) {
        if (failure.troubles.empty()) {
            throw;
        }
        std::string where;
        try {
            OutputFiles outputs;
            addFailedPictures(failure.troubles, outputFolder, outputs);
            outputs.commit();
            where = failure.troubles.size() == 1
                        ? (failedFolder(outputFolder) / nameOf(failure.troubles.front().image, 1)).string()
                        : failedFolder(outputFolder).string();
        } catch (const Failure&) {
            throw failure;  // why the plate is not read matters more than that it cannot be shown
        }
        throw Failure(failure.code, fmt::format("{}; {} shows what was found", failure.what(), where), failure.cause);
    }
}

}  // namespace zelm::tool
