#include "dotPairs.h"

#include <algorithm>

#include "cameraPicture.h"
#include "dots.h"
#include "failure.h"

namespace zelm::tool {
namespace {

// The centres of the dots that pixels of a picture lie in; tells where there is none.
std::vector<bool> moveToDots(const Picture& picture, const std::string& polarity, std::vector<double>& pixels) {
    const ZelmMeasureImage image = imageOf(picture);
    std::vector<std::int32_t> statuses(pixels.size() / 2);
    if (zelmMeasureDotCentres(&image, static_cast<std::int64_t>(statuses.size()), pixels.data(),
                              polarity == "bright" ? 1 : 0, pixels.data(), statuses.data()) < 0) {
        failData("out of memory while looking for dots: give fewer pairs at a time");
    }
    std::vector<bool> found(statuses.size());
    std::transform(statuses.begin(), statuses.end(), found.begin(),
                   [](std::int32_t status) { return status == ZELM_MEASURE_DOT_OK; });
    return found;
}

}  // namespace

void addDotOptions(Subcommand& sub, DotOptions& options) {
    sub.option("--dots", options.images, "LEFT and RIGHT image: use the centres of the dots in which the pixels lie")
        .takes(2);
    sub.option("--polarity", options.polarity, "Polarity of the dots of --dots")
        .oneOf({"dark", "bright"})
        .showDefault();
}

std::vector<bool> moveToDots(std::vector<PixelPair>& pairs, const DotOptions& o, const LoadedRig& rig) {
    if (o.images.empty()) {
        return std::vector<bool>(pairs.size(), true);
    }
    const Picture leftPicture = readGrayCameraPicture(o.images[0], rig, 'L');
    const Picture rightPicture = readGrayCameraPicture(o.images[1], rig, 'R');
    std::vector<double> left;
    std::vector<double> right;
    for (const PixelPair& pair : pairs) {
        left.insert(left.end(), {pair.left.x, pair.left.y});
        right.insert(right.end(), {pair.right.x, pair.right.y});
    }
    std::vector<bool> found = moveToDots(leftPicture, o.polarity, left);
    const std::vector<bool> foundRight = moveToDots(rightPicture, o.polarity, right);
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        found[i] = found[i] && foundRight[i];
        if (found[i]) {
            pairs[i].left = {left[2 * i], left[2 * i + 1]};
            pairs[i].right = {right[2 * i], right[2 * i + 1]};
        }
    }
    return found;
}

}  // namespace zelm::tool
