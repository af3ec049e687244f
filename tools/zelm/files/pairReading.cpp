#include "pairReading.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <utility>

#include "dots.h"
#include "failure.h"
#include "numberText.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

// The image size of one camera, set by its first image.
struct CameraSize {
    int width = 0;
    int height = 0;
    fs::path file;

    void require(const Picture& picture, const fs::path& path) {
        if (width == 0) {
            *this = {picture.width, picture.height, path};
        } else if (picture.width != width || picture.height != height) {
            const bool isTurned = picture.width == height && picture.height == width;
            failData("{}: {} x {} pixels, but {} is {} x {}: all images of a camera must have the same size{}",
                     path.string(), picture.width, picture.height, file.string(), width, height,
                     isTurned ? "; is one of them turned by 90 degrees?" : "");
        }
    }
};

// Left to right.
Picture mirrored(const Picture& picture) {
    Picture other = picture;
    const auto width = static_cast<std::ptrdiff_t>(picture.width);
    for (auto row = other.pixels.begin(); row != other.pixels.end(); row += width) {
        std::reverse(row, row + width);
    }
    return other;
}

// One image of a view; without pixels when the camera does not need it.
struct ViewImage {
    fs::path path;
    std::shared_ptr<const Picture> picture;

    const unsigned char* pixels() const { return picture ? picture->pixels.data() : nullptr; }
};

class PairReader {
public:
    PairReader(const std::vector<ViewFiles>& allViews, const PairSettings& pairSettings, const Console& pairConsole)
        : views(allViews), settings(pairSettings), console(pairConsole) {
        reading.pictures = std::make_shared<PictureStore>();
    }

    PairReading read() {
        readAll(views, true);
        warnOfSkipped(reading.skipped, console);
        requireEnoughViews();
        // The object's number of views is fixed when it is opened: with some left out it is opened anew.
        if (neededSlots(reading.used.size()) != openedSlots) {
            const std::vector<ViewFiles> good = std::move(reading.used);
            reading.used.clear();
            reading.calib.reset();
            readAll(good, false);
        }
        return std::move(reading);
    }

private:
    bool isParallelPair() const {
        return settings.leftModel == ZELM_CAMERA_PARALLEL && settings.rightModel == ZELM_CAMERA_PARALLEL;
    }

    std::size_t fewest() const { return isParallelPair() ? 1 : kMinViews; }
    static std::size_t neededSlots(std::size_t viewCount) { return std::max(viewCount, kMinViews); }

    void readAll(const std::vector<ViewFiles>& list, bool maySkip) {
        Progress progress(console, "reading views", list.size());
        for (const ViewFiles& files : list) {
            SkippedView view = readView(files, list.size());
            progress.advance();
            if (view.reason.empty()) {
                reading.used.push_back(files);
            } else if (!maySkip || settings.strict) {
                progress.erase();
                throw ImageFailure(view.reason, causeOf({view}), std::move(view.troubles));
            } else {
                reading.skipped.push_back(std::move(view));
            }
            if (isParallelPair() && !reading.used.empty()) {
                break;  // one view is all that parallel cameras take
            }
        }
    }

    // Reads a view into the next free place of the object. Gives the reason when it cannot be read.
    SkippedView readView(const ViewFiles& files, std::size_t viewCount) {
        ViewImage left{files.left, {}};
        ViewImage right{files.right, {}};
        try {
            load(left);
            load(right);
        } catch (const Failure& failure) {
            return {files, failure.what(), {}, false};
        }
        checkImage(left, leftSize, settings.leftRegion);
        checkImage(right, rightSize, settings.rightRegion);
        open(viewCount);
        const unsigned char* const images[2] = {left.pixels(), right.pixels()};
        const std::int32_t status =
            zelm2ViewReadPtnImg(reading.calib.get(), static_cast<std::int32_t>(reading.used.size()), images,
                                settings.leftRegion ? &*settings.leftRegion : nullptr,
                                settings.rightRegion ? &*settings.rightRegion : nullptr);
        return status < 0 ? whySkipped(files, status, left, right) : whyMisread(files, left, right);
    }

    // Nothing for images that are read right.
    SkippedView whyMisread(const ViewFiles& files, const ViewImage& left, const ViewImage& right) const {
        std::vector<ImageTrouble> troubles;
        const auto slot = static_cast<std::int32_t>(reading.used.size());
        for (const auto& [side, image, region] :
             {std::tuple{'L', &left, &settings.leftRegion}, std::tuple{'R', &right, &settings.rightRegion}}) {
            std::int32_t dots = 0;
            if (image->path.empty() || zelm2ViewGetPtnNum(reading.calib.get(), side, slot, &dots) < 0 || dots == 0) {
                continue;
            }
            if (auto misread = misreadingOf(*image->picture, image->path, settings.plate, *region,
                                            static_cast<std::size_t>(dots))) {
                troubles.push_back(std::move(*misread));
            }
        }
        return troubles.empty() ? SkippedView{} : skippedView(files, std::move(troubles));
    }

    void load(ViewImage& image) const {
        if (!image.path.empty()) {
            image.picture = reading.pictures->get(image.path);
        }
    }

    static void checkImage(const ViewImage& image, CameraSize& size, const std::optional<ZelmRect>& region) {
        if (image.path.empty()) {
            return;
        }
        size.require(*image.picture, image.path);
        if (region) {
            checkRegion(*region, *image.picture, image.path.string());
        }
    }

    void open(std::size_t viewCount) {
        if (reading.calib) {
            return;
        }
        openedSlots = neededSlots(isParallelPair() ? 1 : viewCount);
        reading.cameras = {settings.leftModel,  leftSize.width,  leftSize.height,
                           settings.rightModel, rightSize.width, rightSize.height};
        Zelm2ViewCalib* calib = nullptr;
        if (zelm2ViewCalibOpen(static_cast<std::int32_t>(openedSlots), &settings.plate.pattern, &reading.cameras,
                               &calib) < 0) {
            failData("a calibration of {} views cannot be opened: out of memory", openedSlots);
        }
        reading.calib.reset(calib);
    }

    // The pair's status does not say which image it is about: each is read on its own.
    SkippedView whySkipped(const ViewFiles& files, std::int32_t status, const ViewImage& left,
                           const ViewImage& right) const {
        std::vector<ImageTrouble> troubles;
        for (const auto& [image, region] :
             {std::pair{&left, &settings.leftRegion}, std::pair{&right, &settings.rightRegion}}) {
            if (image->path.empty()) {
                continue;
            }
            const std::int32_t own = readDots(*image->picture, settings.plate, *region).status;
            if (own >= 0) {
                continue;
            }
            troubles.push_back(troubleOf(*image->picture, image->path, settings.plate, *region));
            // In a mirror the markers of most plates make no grid with the dots.
            if (own == ZELM_ERR_PATTERN_GRID && !*region &&
                readDots(mirrored(*image->picture), settings.plate, *region).status >= 0) {
                troubles.back().cause = "mirrored";
                troubles.back().text = "the image is mirrored: mirror it back";
            }
        }
        SkippedView view = skippedView(files, std::move(troubles));
        if (view.reason.empty()) {
            view.reason =
                fmt::format("{}: {}", left.path.string(),
                            status == ZELM_ERR_MEMORY ? std::string("out of memory: use smaller images")
                                                      : fmt::format("the plate cannot be read (status {})", status));
        }
        return view;
    }

    void requireEnoughViews() const {
        if (reading.used.size() >= fewest()) {
            return;
        }
        throw ImageFailure(
            fmt::format("only {} of {} views can be read and {} are needed: take more images of the plate, or correct "
                        "this: {}",
                        reading.used.size(), views.size(), fewest(), mainReasonOf(reading.skipped)),
            causeOf(reading.skipped), troublesOf(reading.skipped));
    }

    const std::vector<ViewFiles>& views;
    const PairSettings& settings;
    const Console& console;
    PairReading reading;
    CameraSize leftSize;
    CameraSize rightSize;
    std::size_t openedSlots = 0;
};

}  // namespace

std::vector<ViewFiles> pairImages(const std::vector<fs::path>& left, const std::vector<fs::path>& right,
                                  const PairSettings& settings) {
    const bool leftOnce = settings.leftModel == ZELM_CAMERA_PARALLEL && left.size() == 1;
    const bool rightOnce = settings.rightModel == ZELM_CAMERA_PARALLEL && right.size() == 1;
    if (left.size() != right.size() && !leftOnce && !rightOnce) {
        failUsage("{} left images but {} right ones (the last are {} and {}): give the two images of every view",
                  left.size(), right.size(), left.back().string(), right.back().string());
    }
    const std::size_t count = std::max(left.size(), right.size());
    const bool isParallelPair =
        settings.leftModel == ZELM_CAMERA_PARALLEL && settings.rightModel == ZELM_CAMERA_PARALLEL;
    if (count < kMinViews && !isParallelPair) {
        failUsage("{} given (the last is {}): at least {} are needed, and ten or more are better",
                  counted(count, "view"), left.back().string(), kMinViews);
    }
    std::vector<ViewFiles> views(count);
    for (std::size_t i = 0; i < count; ++i) {
        views[i].left = i < left.size() ? left[i] : fs::path();
        views[i].right = i < right.size() ? right[i] : fs::path();
    }
    return views;
}

PairReading readPairs(const std::vector<ViewFiles>& views, const PairSettings& settings, const Console& console) {
    return PairReader(views, settings, console).read();
}

}  // namespace zelm::tool
