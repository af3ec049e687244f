#include "viewDots.h"

#include <fmt/format.h>

#include <map>

#include "dots.h"
#include "failure.h"
#include "imageFile.h"
#include "imageTrouble.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

// Throws Failure that the caller may take as a reason to skip the view.
std::map<GridIndex, Point2d> dotsOf(const Picture& picture, const fs::path& path, const Plate& plate,
                                    const std::optional<ZelmRect>& region) {
    const DotReading reading = readDots(picture, plate, region);
    if (reading.status < 0) {
        failImage(troubleOf(picture, path, plate, region));
    }
    std::map<GridIndex, Point2d> dots;
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

ViewDots common(const fs::path& leftPath, const fs::path& rightPath, const std::map<GridIndex, Point2d>& left,
                const std::map<GridIndex, Point2d>& right) {
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

}  // namespace

ViewDotsReading readViewDots(const ViewImages& images, const Plate& plate, const LoadedRig& rig,
                             const Console& console) {
    if (images.left.size() != images.right.size()) {
        failUsage("{} left images but {} right ones (the last are {} and {}): give the two images of every view",
                  images.left.size(), images.right.size(), images.left.back().string(), images.right.back().string());
    }
    ViewDotsReading reading;
    Progress progress(console, "reading views", images.left.size());
    for (std::size_t i = 0; i < images.left.size(); ++i) {
        const fs::path& leftPath = images.left[i];
        const fs::path& rightPath = images.right[i];
        std::optional<Picture> left;
        std::optional<Picture> right;
        const auto skip = [&](const Failure& failure) {
            progress.erase();
            console.warn(fmt::format("skipping a view: {}", failure.what()));
            reading.skipped.emplace_back(failure.what());
        };
        try {
            left = readPicture(leftPath);
            right = readPicture(rightPath);
        } catch (const Failure& failure) {
            skip(failure);
            continue;
        }
        checkPicture(*left, leftPath, rig, 'L', images.leftRegion);
        checkPicture(*right, rightPath, rig, 'R', images.rightRegion);
        try {
            ViewDots view = common(leftPath, rightPath, dotsOf(*left, leftPath, plate, images.leftRegion),
                                   dotsOf(*right, rightPath, plate, images.rightRegion));
            if (images.areRefined) {
                refine(rig, plate, *left, *right, view);
            }
            reading.views.push_back(std::move(view));
        } catch (const Failure& failure) {
            skip(failure);
        }
        progress.advance();
    }
    if (reading.views.empty()) {
        failData("none of {} views can be read: {}", images.left.size(), reading.skipped.front());
    }
    return reading;
}

}  // namespace zelm::tool
