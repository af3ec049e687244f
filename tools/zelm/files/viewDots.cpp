#include "viewDots.h"

#include <fmt/format.h>

#include <map>
#include <utility>

#include "dots.h"
#include "failure.h"
#include "imageFile.h"
#include "numberText.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

using DotMap = std::map<GridIndex, Point2d>;

// Adds to the troubles, and gives nothing, for an image that cannot be read.
DotMap dotsOf(const Picture& picture, const fs::path& path, const Plate& plate, const std::optional<ZelmRect>& region,
              std::vector<ImageTrouble>& troubles) {
    const DotReading reading = readDots(picture, plate, region);
    if (reading.status < 0) {
        troubles.push_back(troubleOf(picture, path, plate, region));
        return {};
    }
    if (auto misread = misreadingOf(picture, path, plate, region, reading.dots.size())) {
        troubles.push_back(std::move(*misread));
        return {};
    }
    DotMap dots;
    for (const Dot& dot : reading.dots) {
        dots.emplace(dot.index, dot.pixel);
    }
    return dots;
}

void checkPicture(const Picture& picture, const fs::path& path, const LoadedRig& rig, char side,
                  const std::optional<ZelmRect>& region) {
    const RigCamera& camera = rig.camera(side);
    if (picture.width != camera.width || picture.height != camera.height) {
        failData("{}: {} x {} pixels, but the {} camera was calibrated with {} x {}: give raw images of this rig",
                 path.string(), picture.width, picture.height, side == 'L' ? "left" : "right", camera.width,
                 camera.height);
    }
    if (region) {
        checkRegion(*region, picture, path.string());
    }
}

ViewDots common(const fs::path& leftPath, const fs::path& rightPath, const DotMap& left, const DotMap& right) {
    ViewDots view;
    view.left = leftPath;
    view.right = rightPath;
    for (const auto& [index, pixel] : left) {
        const auto other = right.find(index);
        if (other != right.end()) {
            view.grid.insert(view.grid.end(), {index.x, index.y});
            view.leftPixels.insert(view.leftPixels.end(), {pixel.x, pixel.y});
            view.rightPixels.insert(view.rightPixels.end(), {other->second.x, other->second.y});
        }
    }
    return view;
}

// Throws Failure, naming the left image, for dots that do not place the plate.
void refine(const LoadedRig& rig, const Plate& plate, const Picture& left, const Picture& right, ViewDots& view) {
    const std::size_t count = view.count();
    const ZelmMeasureImage leftImage = imageOf(left);
    const ZelmMeasureImage rightImage = imageOf(right);
    std::vector<std::int32_t> statuses(count);
    rig.require(zelmMeasureRefinePlate(rig.handle.get(), &plate.pattern, &leftImage, &rightImage,
                                       static_cast<std::int64_t>(count), view.grid.data(), view.leftPixels.data(),
                                       view.rightPixels.data(), statuses.data()),
                view.left.string());
    const auto keepConfirmed = [&statuses](auto& pairs) {
        std::size_t kept = 0;
        for (std::size_t i = 0; i < pairs.size(); ++i) {
            if (statuses[i / 2] == ZELM_MEASURE_DOT_OK) {
                pairs[kept++] = pairs[i];
            }
        }
        pairs.resize(kept);
    };
    keepConfirmed(view.grid);
    keepConfirmed(view.leftPixels);
    keepConfirmed(view.rightPixels);
    view.refused = count - view.count();
}

class ViewReader {
public:
    ViewReader(const ViewImages& viewImages, const Plate& viewPlate, const LoadedRig& viewRig)
        : images(viewImages), plate(viewPlate), rig(viewRig) {}

    // Into the reading: the dots that both images show, or why there are none.
    void read(const ViewFiles& files, ViewDotsReading& reading) const {
        Picture left;
        Picture right;
        try {
            left = readPicture(files.left);
            right = readPicture(files.right);
        } catch (const Failure& failure) {
            reading.skipped.push_back({files, failure.what(), {}, false});
            return;
        }
        checkPicture(left, files.left, rig, 'L', images.leftRegion);
        checkPicture(right, files.right, rig, 'R', images.rightRegion);
        std::vector<ImageTrouble> troubles;
        const DotMap leftDots = dotsOf(left, files.left, plate, images.leftRegion, troubles);
        const DotMap rightDots = dotsOf(right, files.right, plate, images.rightRegion, troubles);
        if (!troubles.empty()) {
            reading.skipped.push_back(skippedView(files, std::move(troubles)));
            return;
        }
        try {
            ViewDots view = common(files.left, files.right, leftDots, rightDots);
            if (images.areRefined) {
                refine(rig, plate, left, right, view);
            }
            reading.views.push_back(std::move(view));
        } catch (const Failure& failure) {
            reading.skipped.push_back({files, failure.what(), {}, false});
        }
    }

private:
    const ViewImages& images;
    const Plate& plate;
    const LoadedRig& rig;
};

}  // namespace

ViewDotsReading readViewDots(const ViewImages& images, const Plate& plate, const LoadedRig& rig,
                             const Console& console) {
    if (images.left.size() != images.right.size()) {
        failUsage("{} left images but {} right ones (the last are {} and {}): give the two images of every view",
                  images.left.size(), images.right.size(), images.left.back().string(), images.right.back().string());
    }
    ViewDotsReading reading;
    {
        Progress progress(console, "reading views", images.left.size());
        const ViewReader reader(images, plate, rig);
        for (std::size_t i = 0; i < images.left.size(); ++i) {
            reader.read({images.left[i], images.right[i]}, reading);
            progress.advance();
        }
    }
    if (reading.views.empty()) {
        throw ImageFailure(fmt::format("none of {} can be read: {}", counted(images.left.size(), "view"),
                                       mainReasonOf(reading.skipped)),
                           causeOf(reading.skipped), troublesOf(reading.skipped));
    }
    warnOfSkipped(reading.skipped, console);
    return reading;
}

}  // namespace zelm::tool
