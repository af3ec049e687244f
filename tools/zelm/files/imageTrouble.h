// Why the plate in an image cannot be read, in words and figures.
#ifndef ZELM_TOOL_IMAGE_TROUBLE_H
#define ZELM_TOOL_IMAGE_TROUBLE_H

#include <zelmMeasure.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "failure.h"
#include "imageFile.h"
#include "plateFile.h"

namespace zelm::tool {

// A spot of the image that was looked at, and what became of it.
struct SeenSpot {
    Point2d centre{};
    double longAxis = 0.0;   // half axes, pixels
    double shortAxis = 0.0;  //
    double direction = 0.0;  // of the long one, radians
    std::int32_t verdict = 0;
};

struct ImageTrouble {
    std::filesystem::path image;
    std::string cause;  // one word for programs
    std::string text;   // for people, without the image's name
    ZelmMeasureImageDiagnosis figures{};
    std::vector<SeenSpot> spots;
};

// Of an image that cannot be read. Its file is looked at again where its levels are to blame.
ImageTrouble troubleOf(const Picture& picture, const std::filesystem::path& image, const Plate& plate,
                       const std::optional<ZelmRect>& region);

// Of an image that is read but shows fewer dots than are described: why, where that is seen for certain.
std::optional<ImageTrouble> gapsOf(const Picture& picture, const std::filesystem::path& image, const Plate& plate,
                                   const std::optional<ZelmRect>& region);

// Whether an image was read by a grid that is not the plate's: markers that stand other pitches apart than described
// give one to part of the dots.
bool isMisreading(const ImageTrouble& gaps);

// Of an image that is read with so many dots: why it is misread. A wrong grid holds every second dot at most, so that
// the image is looked at only where a third of the dots is missing.
std::optional<ImageTrouble> misreadingOf(const Picture& picture, const std::filesystem::path& image, const Plate& plate,
                                         const std::optional<ZelmRect>& region, std::size_t dots);

// Troubles of one cause are told once: "a.png, b.png and 7 more: ...". The first of the causes that have the most
// images stands first.
struct TroubleGroup {
    std::string cause;
    std::vector<std::string> images;
    std::string line;
};
std::vector<TroubleGroup> groupsOf(const std::vector<ImageTrouble>& troubles);

// A failure that is about images, which can be shown.
class ImageFailure : public Failure {
public:
    ImageFailure(const std::string& line, FailureCause causeOfIt, std::vector<ImageTrouble> list)
        : Failure(ExitCode::data, line, std::move(causeOfIt)), troubles(std::move(list)) {}

    std::vector<ImageTrouble> troubles;
};

// Throws ImageFailure for one image.
[[noreturn]] void failImage(ImageTrouble trouble);

}  // namespace zelm::tool

#endif
