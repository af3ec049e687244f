#include "imageTrouble.h"

#include <fmt/format.h>

#include <algorithm>

#include "dots.h"
#include "troubleText.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t kMaxSpots = 4000;  // the measuring library looks at no more

ImageTrouble diagnose(const Picture& picture, const fs::path& image, const Plate& plate,
                      const std::optional<ZelmRect>& region) {
    const auto count = static_cast<std::size_t>(kMaxSpots);
    std::vector<double> centres(2 * count);
    std::vector<double> axes(3 * count);
    std::vector<std::int32_t> verdicts(count);
    const ZelmMeasureSpots spots{sizeof(ZelmMeasureSpots), 0, kMaxSpots, centres.data(), axes.data(), nullptr,
                                 verdicts.data()};
    const ZelmMeasureImage record = imageOf(picture);
    ImageTrouble trouble;
    trouble.image = image;
    trouble.figures.size = sizeof(trouble.figures);
    const std::int32_t status =
        zelmMeasureDiagnoseImage(&record, &plate.pattern, region ? &*region : nullptr, &trouble.figures, &spots);
    if (status < 0) {
        failData("{}: {}", image.string(),
                 status == ZELM_ERR_MEMORY ? std::string("out of memory: use smaller images")
                                           : fmt::format("the plate cannot be read (status {})", status));
    }
    trouble.cause = zelmMeasureImageCauseName(trouble.figures.cause);
    trouble.text = troubleText(trouble.figures, plate);
    const auto seen = static_cast<std::size_t>(std::min<std::int64_t>(trouble.figures.spots, kMaxSpots));
    trouble.spots.reserve(seen);
    for (std::size_t i = 0; i < seen; ++i) {
        trouble.spots.push_back(
            {{centres[2 * i], centres[2 * i + 1]}, axes[3 * i], axes[3 * i + 1], axes[3 * i + 2], verdicts[i]});
    }
    return trouble;
}

// Cameras of 10 and 12 bits in files of 16, whose levels stay at the foot of the scale; empty for any other file.
std::string bitsText(const fs::path& image) {
    const DeepPicture deep = readDeepPicture(image);
    constexpr unsigned kLevelsOfAByte = 257;  // 8 bits are scaled up by this
    const bool isDeep = std::any_of(deep.pixels.begin(), deep.pixels.end(),
                                    [](std::uint16_t level) { return level % kLevelsOfAByte != 0; });
    const unsigned largest = *std::max_element(deep.pixels.begin(), deep.pixels.end());
    if (!isDeep || largest > 4095) {
        return {};
    }
    const int bits = largest > 1023 ? 12 : 10;
    return fmt::format("its largest level is {} of 65535: these are {} bits in a file of 16; scale the levels up by {}",
                       largest, bits, 1 << (16 - bits));
}

}  // namespace

ImageTrouble troubleOf(const Picture& picture, const fs::path& image, const Plate& plate,
                       const std::optional<ZelmRect>& region) {
    ImageTrouble trouble = diagnose(picture, image, plate, region);
    if (trouble.figures.cause == ZELM_MEASURE_IMAGE_DARK) {
        if (const std::string text = bitsText(image); !text.empty()) {
            trouble.cause = "few-bits";
            trouble.text = text;
        }
    }
    return trouble;
}

std::optional<ImageTrouble> gapsOf(const Picture& picture, const fs::path& image, const Plate& plate,
                                   const std::optional<ZelmRect>& region) {
    ImageTrouble trouble = diagnose(picture, image, plate, region);
    if (trouble.figures.cause == ZELM_MEASURE_IMAGE_FINE) {
        return std::nullopt;
    }
    return trouble;
}

bool isMisreading(const ImageTrouble& gaps) {
    return gaps.figures.cause == ZELM_MEASURE_IMAGE_MARKER_DISTANCE;
}

std::optional<ImageTrouble> misreadingOf(const Picture& picture, const fs::path& image, const Plate& plate,
                                         const std::optional<ZelmRect>& region, std::size_t dots) {
    if (3 * dots >= 2 * describedDots(plate)) {
        return std::nullopt;
    }
    std::optional<ImageTrouble> gaps = gapsOf(picture, image, plate, region);
    return gaps && isMisreading(*gaps) ? gaps : std::nullopt;
}

std::vector<TroubleGroup> groupsOf(const std::vector<ImageTrouble>& troubles) {
    std::vector<TroubleGroup> groups;
    for (const ImageTrouble& trouble : troubles) {
        auto group =
            std::find_if(groups.begin(), groups.end(), [&](const TroubleGroup& g) { return g.cause == trouble.cause; });
        if (group == groups.end()) {
            groups.push_back({trouble.cause, {}, trouble.text});
            group = groups.end() - 1;
        }
        group->images.push_back(trouble.image.string());
    }
    std::stable_sort(groups.begin(), groups.end(),
                     [](const TroubleGroup& a, const TroubleGroup& b) { return a.images.size() > b.images.size(); });
    for (TroubleGroup& group : groups) {
        const std::vector<std::string>& images = group.images;
        std::string names = images.front();
        if (images.size() == 2) {
            names += " and " + images[1];
        } else if (images.size() > 2) {
            names += fmt::format(", {} and {} more", images[1], images.size() - 2);
        }
        group.line = fmt::format("{}: {}{}", names, group.line, images.size() > 1 ? " (figures of the first)" : "");
    }
    return groups;
}

void failImage(ImageTrouble trouble) {
    const std::string line = fmt::format("{}: {}", trouble.image.string(), trouble.text);
    const FailureCause cause{trouble.cause, {trouble.image.string()}};
    std::vector<ImageTrouble> list;
    list.push_back(std::move(trouble));
    throw ImageFailure(line, cause, std::move(list));
}

}  // namespace zelm::tool
