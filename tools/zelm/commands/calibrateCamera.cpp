// zelm calibrate --left alone: one camera from its images of a plate.
#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <optional>

#include "calibrateModes.h"
#include "cameraOutputs.h"
#include "dots.h"
#include "failedPictures.h"
#include "failure.h"
#include "imageSet.h"
#include "imageTrouble.h"
#include "overlay.h"
#include "pictureStore.h"
#include "pointAdjustment.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kFewestDots = 6;  // of an image that tells where the plate is

void checkOptions(const CameraCalibration& o) {
    if (o.model == ZELM_CAMERA_PARALLEL) {
        failUsage("--left-model 2 needs --right: a parallel camera is calibrated with the other one of a pair");
    }
    if (o.adjust.off) {
        failUsage("--no-adjust needs --right: one camera alone is always adjusted");
    }
}

class CameraCalibrator {
public:
    CameraCalibrator(const CameraCalibration& given, const Console& output)
        : options(given), console(output), plate(plateOf(given.plate)), region(regionOf(given.region)) {}

    void run() {
        const std::vector<fs::path> images = expandImageSet(options.images, "--left");
        outputs.keep(options.plate.file);
        if (!plate.positionsSource.empty()) {
            outputs.keep(plate.positionsSource);
        }
        for (const fs::path& image : images) {
            outputs.keep(image);
        }
        outputs.prepareFolder(options.folder);
        readAll(images);
        open();
        require(zelmMeasureAdjustSolve(adjustment.get()));
        if (options.adjust.dots == "refined") {
            refineAll();
            require(zelmMeasureAdjustSolve(adjustment.get()));
        }
        give();
    }

private:
    // Failures of all views together name the first and the last image.
    std::string culprit() const {
        return fmt::format("{} to {} ({} views)", views.front().string(), views.back().string(), views.size());
    }
    void require(std::int32_t status) const { requireAdjusted(status, adjustment, culprit()); }

    void readAll(const std::vector<fs::path>& images) {
        Progress progress(console, "reading views", images.size());
        for (const fs::path& image : images) {
            SkippedView view = read(image);
            progress.advance();
            if (view.reason.empty()) {
                continue;
            }
            if (options.strict) {
                progress.erase();
                throw ImageFailure(view.reason, causeOf({view}), std::move(view.troubles));
            }
            skipped.push_back(std::move(view));
        }
        progress.erase();
        warnOfSkipped(skipped, console);
        if (views.size() < kMinViews) {
            if (skipped.empty()) {
                failUsage("{} views given (the last is {}): at least {} are needed, and ten or more are better",
                          images.size(), images.back().string(), kMinViews);
            }
            throw ImageFailure(
                fmt::format("only {} of {} views can be read and {} are needed: take more images of the plate, or "
                            "correct this: {}",
                            views.size(), images.size(), kMinViews, mainReasonOf(skipped)),
                causeOf(skipped), troublesOf(skipped));
        }
    }

    // Reads an image; gives the reason when it cannot be used.
    SkippedView read(const fs::path& image) {
        std::shared_ptr<const Picture> picture;
        try {
            picture = pictures->get(image);
        } catch (const Failure& failure) {
            return {{image, {}}, failure.what(), {}, false};
        }
        if (points.left.width == 0) {
            points.left = {options.model, picture->width, picture->height, 0};
            sized = image;
        } else if (picture->width != points.left.width || picture->height != points.left.height) {
            failData("{}: {} x {} pixels, but {} is {} x {}: all images of a camera must have the same size",
                     image.string(), picture->width, picture->height, sized.string(), points.left.width,
                     points.left.height);
        }
        if (region) {
            checkRegion(*region, *picture, image.string());
        }
        const DotReading reading = readDots(*picture, plate, region);
        if (reading.status < 0) {
            return skippedView({image, {}}, {troubleOf(*picture, image, plate, region)});
        }
        if (auto misread = misreadingOf(*picture, image, plate, region, reading.dots.size())) {
            return skippedView({image, {}}, {std::move(*misread)});
        }
        if (reading.dots.size() < kFewestDots) {
            return {{image, {}},
                    fmt::format("{}: only {} dots have a place on the plate's grid: is it this plate's file?",
                                image.string(), reading.dots.size()),
                    {},
                    false};
        }
        for (const Dot& dot : reading.dots) {
            points.add(views.size(), 'L', dot.index.x, dot.index.y, dot.pixel);
        }
        views.push_back(image);
        return {};
    }

    void open() {
        points.views = static_cast<std::int32_t>(views.size());
        const ZelmMeasureTargetPoints record = points.record();
        const ZelmMeasureAdjustOptions given = optionsOf(options.adjust, plate.positions);
        ZelmMeasureAdjustment* handle = nullptr;
        const std::int32_t status = zelmMeasureAdjustOpenPoints(&record, &plate.pattern, &given, &handle);
        adjustment.reset(handle);
        require(status);
    }

    void refineAll() {
        Progress progress(console, "measuring dots", views.size());
        for (const fs::path& view : views) {
            const auto picture = pictures->get(view);
            const ZelmMeasureImage image = imageOf(*picture);
            ZelmMeasureRefined refined{};
            refined.size = sizeof(refined);
            require(zelmMeasureAdjustRefine(adjustment.get(), 'L', static_cast<std::int32_t>(added.size()), &image,
                                            &refined));
            added.push_back({refined.added, 0});
            progress.advance();
        }
    }

    void give() {
        AdjustReport report;
        takeOutcome(adjustment, added, culprit(), report);
        nameUnits(report.checks, plate.units);
        if (report.summary.refinedDots == 0) {
            for (auto& images : report.images) {
                images[0].added = 0;
            }
        }
        CameraResult result = cameraResult(adjustment, 'L', std::move(report), culprit());
        Calibration& c = result.calibration;
        c.plate = plate;
        c.skipped = skipped;
        for (const fs::path& view : views) {
            c.views.push_back({view, {}});
        }
        addFailedPictures(troublesOf(skipped), options.folder, outputs);
        supersedeFailedPictures(views, troublesOf(skipped), options.folder, outputs);
        if (options.overlays) {
            addOverlays(c);
        }
        giveCameraResult(result, options.plate.file, options.folder, options.force, console, outputs);
    }

    void addOverlays(const Calibration& c) {
        const fs::path folder = fs::path(options.folder) / "overlays";
        outputs.prepareFolder(folder);
        for (std::size_t i = 0; i < views.size(); ++i) {
            outputs.add(folder / fmt::format("view{:02}.png", i),
                        drawOverlay(*pictures->get(views[i]), plate, c.figures.left.views[i].dots));
        }
    }

    const CameraCalibration& options;
    const Console& console;
    Plate plate;
    std::optional<ZelmRect> region;
    OutputFiles outputs;
    std::shared_ptr<PictureStore> pictures = std::make_shared<PictureStore>();
    PointArrays points;
    fs::path sized;  // the image that gives the size
    std::vector<fs::path> views;
    std::vector<SkippedView> skipped;
    std::vector<std::array<int, 2>> added;
    AdjustmentPtr adjustment;
};

}  // namespace

void calibrateCamera(const CameraCalibration& options, const Console& console) {
    checkOptions(options);
    CameraCalibrator(options, console).run();
}

}  // namespace zelm::tool
