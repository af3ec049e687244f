// zelm calibrate --points: cameras from points of any flat target that some detector has found.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "calibrateModes.h"
#include "calibrationDoubts.h"
#include "cameraOutputs.h"
#include "failure.h"
#include "htmlReport.h"
#include "jsonText.h"
#include "numberText.h"
#include "outputFiles.h"
#include "pointAdjustment.h"
#include "targetPointFile.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

constexpr int kMaxSide = 32768;  // pixels of an image

// Pixels of one side of an image; 0 for what is none.
std::int32_t sideOf(std::string_view text) {
    const double side = numberOf(text).value_or(0.0);
    return side >= 1.0 && side <= kMaxSide && side == std::floor(side) ? static_cast<std::int32_t>(side) : 0;
}

ZelmMeasurePointCamera cameraOf(const std::string& size, int model, const char* option) {
    const std::string_view text = size;
    const std::size_t cross = std::min(text.find('x'), text.size());
    const std::int32_t width = sideOf(text.substr(0, cross));
    const std::int32_t height = sideOf(text.substr(std::min(cross + 1, text.size())));
    if (width == 0 || height == 0) {
        failUsage("{} {}: expected the size of the images in pixels, as 1280x960", option, size);
    }
    return {model, width, height, 0};
}

void checkOptions(const PointCalibration& o) {
    if (o.leftModel == ZELM_CAMERA_PARALLEL || o.rightModel == ZELM_CAMERA_PARALLEL) {
        failUsage(
            "--points goes with perspective cameras: a parallel one is calibrated from images of a plate of dots");
    }
    if (o.adjust.off || o.adjust.dotDiameters || !o.adjust.positions.empty() || o.adjust.dots != "refined") {
        failUsage("--no-adjust, --dots, --dot-diameters and --dot-positions go with images: points are taken as given");
    }
    if (o.leftSize.empty() && o.rightSize.empty()) {
        failUsage("--points needs the size of the images: --left-size WIDTHxHEIGHT, and --right-size of a pair");
    }
}

// The whole calibration from its file on.
class PointCalibrator {
public:
    PointCalibrator(const PointCalibration& given, const Console& output)
        : options(given), console(output), target(readTargetPoints(given.file)) {}

    void run() {
        takeCameras();
        outputs.keep(options.file);
        outputs.prepareFolder(options.folder);
        leaveOutViews();
        adjust();
        if (target.has('L') && target.has('R')) {
            givePair();
        } else {
            giveCamera();
        }
    }

private:
    void takeCameras() {
        const auto take = [&](char side, const std::string& size, int model, const char* option,
                              ZelmMeasurePointCamera& camera) {
            if (target.has(side) == size.empty()) {
                if (size.empty()) {
                    failUsage("{}: has points of the {} camera: give the size of its images with {}", options.file,
                              side == 'L' ? "left" : "right", option);
                }
                failData("{}: has no points of the {} camera, whose {} is given: see the column camera", options.file,
                         side == 'L' ? "left" : "right", option);
            }
            if (!size.empty()) {
                camera = cameraOf(size, model, option);
            }
        };
        take('L', options.leftSize, options.leftModel, "--left-size", points.left);
        take('R', options.rightSize, options.rightModel, "--right-size", points.right);
        for (const TargetPoint& point : target.points) {
            const ZelmMeasurePointCamera& camera = point.side == 'L' ? points.left : points.right;
            constexpr double kEdge = 0.5;  // pixels: the image ends half a pixel beyond the last centre
            if (!(point.pixel.x >= -kEdge && point.pixel.x <= camera.width - kEdge && point.pixel.y >= -kEdge &&
                  point.pixel.y <= camera.height - kEdge)) {
                failData(
                    "{}: line {}: the pixel ({:g}, {:g}) lies outside the image of {} x {} pixels: check x and y, "
                    "and the size that is given",
                    options.file, point.line, point.pixel.x, point.pixel.y, camera.width, camera.height);
            }
        }
    }

    PointArrays arraysOf(const std::vector<std::size_t>& places) const {
        PointArrays arrays;
        arrays.left = points.left;
        arrays.right = points.right;
        for (const TargetPoint& point : target.points) {
            if (places[point.view] != kLeftOut) {
                arrays.add(places[point.view], point.side, static_cast<std::int32_t>(point.id), 0, point.pixel);
                arrays.places.insert(arrays.places.end(), point.place.begin(), point.place.end());
                arrays.views = std::max(arrays.views, static_cast<std::int32_t>(places[point.view]) + 1);
            }
        }
        return arrays;
    }

    // Those whose points do not tell where the target stands.
    void leaveOutViews() {
        std::vector<std::size_t> places(target.views.size());
        for (std::size_t i = 0; i < places.size(); ++i) {
            places[i] = i;
        }
        const std::vector<std::int32_t> statuses = viewStatuses(arraysOf(places), options.file);
        std::size_t next = 0;
        for (std::size_t i = 0; i < places.size(); ++i) {
            const fs::path name = fmt::format("{}: view {}", options.file, target.views[i]);
            if (statuses[i] == ZELM_MEASURE_POINT_VIEW_OK) {
                places[i] = next++;
                views.push_back({isSeen(i, 'L') ? name : fs::path(), isSeen(i, 'R') ? name : fs::path()});
                continue;
            }
            places[i] = kLeftOut;
            const std::string reason = fmt::format("{}: {}", name.string(), viewStatusText(statuses[i]));
            if (options.strict) {
                failData("{}", reason);
            }
            console.warn(fmt::format("skipping a view: {}", reason));
            skipped.push_back({{name, name}, reason, {}, false});
        }
        if (next < kMinViews) {
            failData("{}: {} views can be used and {} are needed: give more views, of 6 points or more", options.file,
                     next, kMinViews);
        }
        points = arraysOf(places);
    }

    bool isSeen(std::size_t view, char side) const {
        return std::any_of(target.points.begin(), target.points.end(),
                           [&](const TargetPoint& point) { return point.view == view && point.side == side; });
    }

    void adjust() {
        const ZelmMeasureTargetPoints record = points.record();
        const ZelmMeasureAdjustOptions given = optionsOf(options.adjust, {});
        ZelmMeasureAdjustment* handle = nullptr;
        const std::int32_t status = zelmMeasureAdjustOpenPoints(&record, nullptr, &given, &handle);
        adjustment.reset(handle);
        requireAdjusted(status, adjustment, options.file);
        requireAdjusted(zelmMeasureAdjustSolve(adjustment.get()), adjustment, options.file);
        report.ofPoints = true;
        takeOutcome(adjustment, {}, options.file, report);
        nameUnits(report.checks, options.unit);
    }

    LoadedRig rigBy(std::int32_t (*make)(ZelmMeasureAdjustment*, ZelmMeasureRig**)) {
        ZelmMeasureRig* rig = nullptr;
        const std::int32_t status = make(adjustment.get(), &rig);
        MeasurePtr owner(rig);
        requireAdjusted(status, adjustment, options.file);
        return rigOfHandle(std::move(owner));
    }

    void givePair() {
        report.before = rigBy(zelmMeasureAdjustStartRig).rig;
        const LoadedRig rig = rigBy(zelmMeasureAdjustRig);
        Calibration c{};
        c.plate.units = options.unit;
        c.views = views;
        c.skipped = skipped;
        c.rig = rig.rig;
        c.figures.left = cameraFiguresOf(adjustment, 'L', points.views);
        c.figures.right = cameraFiguresOf(adjustment, 'R', points.views);
        addEpipolar(adjustment, points.views, options.file, c.figures);
        c.block = blockOf(rig.calib());
        c.covariance = covarianceBytes(rig);
        c.adjustment = std::move(report);
        c.pointFile = options.file;
        c.verdict.add(calibrationDoubts(c, options.file));
        requireTrust(c.verdict, options.force);

        const fs::path folder = options.folder;
        const nlohmann::ordered_json summary = summaryJson(c);
        outputs.add(folder / "rig.zcal", c.block);
        outputs.add(folder / "rig.zcov", c.covariance);
        outputs.add(folder / "rig.json", jsonText(summary) + "\n");
        Provenance provenance{console.command, timeOfReport(), hashFiles({{"points", options.file}})};
        provenance.addBytes("result", "rig.zcal", c.block);
        provenance.addBytes("result", "rig.zcov", c.covariance);
        outputs.add(folder / "report.html", htmlReport(c, provenance, console));
        outputs.commit();
        for (const Doubt& doubt : c.verdict.doubts) {
            console.warn(doubt.text);
        }
        console.say(summaryText(c));
        console.say(fmt::format("wrote rig.zcal, rig.zcov, rig.json and report.html to {}", folder.string()));
        console.result(summary);
    }

    void giveCamera() {
        const char side = target.has('L') ? 'L' : 'R';
        CameraResult result = cameraResult(adjustment, side, std::move(report), options.file);
        Calibration& c = result.calibration;
        c.plate.units = options.unit;
        c.pointFile = options.file;
        c.skipped = skipped;
        for (const ViewFiles& view : views) {
            c.views.push_back({side == 'L' ? view.left : view.right, {}});
        }
        giveCameraResult(result, options.file, options.folder, options.force, console, outputs);
    }

    static constexpr std::size_t kLeftOut = static_cast<std::size_t>(-1);

    const PointCalibration& options;
    const Console& console;
    TargetPoints target;
    OutputFiles outputs;
    PointArrays points;
    std::vector<ViewFiles> views;
    std::vector<SkippedView> skipped;
    AdjustmentPtr adjustment;
    AdjustReport report;
};

}  // namespace

void calibratePoints(const PointCalibration& options, const Console& console) {
    checkOptions(options);
    PointCalibrator(options, console).run();
}

}  // namespace zelm::tool
