// zelm calibrate: from image pairs of a plate to a calibrated pair of cameras.
#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "adjustCall.h"
#include "calibrateModes.h"
#include "calibrationDoubts.h"
#include "calibrationSummary.h"
#include "failedPictures.h"
#include "failure.h"
#include "htmlReport.h"
#include "imageNames.h"
#include "imageSet.h"
#include "jsonText.h"
#include "numberText.h"
#include "outputFiles.h"
#include "overlay.h"
#include "pairingCall.h"
#include "parallel.h"
#include "pitchCause.h"
#include "plateOptions.h"
#include "plateTilts.h"
#include "referenceView.h"
#include "subcommands.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

struct CalibrateOptions {
    PlateOptions plate;
    std::vector<std::string> left;
    std::vector<std::string> right;
    std::string folder = "out";
    int leftModel = 0;
    int rightModel = 0;
    std::vector<int> leftRegion;
    std::vector<int> rightRegion;
    bool overlays = false;
    bool strict = false;
    std::optional<int> reference;  // the view whose plate is the world frame, as given
    bool force = false;
    AdjustSettings adjust;
    PointCalibration points;  // its own options
};

// Whether it is the images of a pair that are given. Throws Failure for options that do not go together.
bool isPairOfImages(const CalibrateOptions& o) {
    if (!o.points.file.empty()) {
        if (!o.left.empty() || !o.right.empty() || !o.plate.file.empty() || o.overlays) {
            failUsage("--points stands for images: leave out --left, --right, --plate and --overlays");
        }
        return false;
    }
    if (!o.points.leftSize.empty() || !o.points.rightSize.empty()) {
        failUsage("--left-size and --right-size go with --points: images have their own");
    }
    if (o.plate.file.empty()) {
        failUsage("--plate is required: the description of the plate, or points of another target with --points");
    }
    if (o.left.empty()) {
        failUsage("--left is required: the images of the left camera, or of the only one");
    }
    return !o.right.empty();
}

PlateOptions plateOptionsOf(const CalibrateOptions& options) {
    PlateOptions plate = options.plate;
    plate.positions = options.adjust.positions;
    return plate;
}

void calibrateOtherwise(const CalibrateOptions& o, const Console& console) {
    if (!o.points.file.empty()) {
        PointCalibration points = o.points;
        points.folder = o.folder;
        points.leftModel = o.leftModel;
        points.rightModel = o.rightModel;
        points.strict = o.strict;
        points.force = o.force;
        points.adjust = o.adjust;
        calibratePoints(points, console);
        return;
    }
    if (!o.rightRegion.empty() || o.rightModel != ZELM_CAMERA_PERSPECTIVE) {
        failUsage("--right-region and --right-model go with --right: images of the right camera");
    }
    calibrateCamera(
        {plateOptionsOf(o), o.left, o.folder, o.leftModel, o.leftRegion, o.overlays, o.strict, o.force, o.adjust},
        console);
}

PairSettings settingsOf(const CalibrateOptions& options) {
    if (options.leftModel != ZELM_CAMERA_PARALLEL && options.rightModel == ZELM_CAMERA_PARALLEL) {
        failUsage("--right-model 2 needs --left-model 2: when one camera is parallel, give it as the left one");
    }
    return {plateOf(plateOptionsOf(options)), options.leftModel, options.rightModel, regionOf(options.leftRegion),
            regionOf(options.rightRegion),    options.strict};
}

// A status of the estimation in words: what happened and what to try.
std::string estimateText(std::int32_t status) {
    switch (status) {
        case ZELM_ERR_CALIB_HOMOGRAPHY:
            return "the dots of a view do not spread over a plane as the camera sees it: leave out views that show the "
                   "plate edge-on";
        case ZELM_ERR_CALIB_ESTIMATE:
            return "the views do not determine the camera's parameters: tilt the plate differently from view to view, "
                   "by 20 degrees or more, and check that the plate file is this plate's";
        case ZELM_ERR_CALIB_NOT_CONVERGED:
            return "the estimation does not converge: check that the plate file is this plate's, and that all views "
                   "show it with the same lens setting";
        case ZELM_ERR_STEREO_GEOMETRY:
            return "the two cameras do not form a pair: are left and right the same images?";
        case ZELM_ERR_MEMORY:
            return "out of memory: use fewer views";
        default:
            return fmt::format("the cameras cannot be calibrated from these views (status {})", status);
    }
}

// Whether views that are all alike may be why.
bool isAboutTilts(std::int32_t status) {
    return status == ZELM_ERR_CALIB_ESTIMATE || status == ZELM_ERR_CALIB_NOT_CONVERGED;
}

void estimate(const PairReading& reading, const CalibrateOptions& options, const Plate& plate,
              const std::optional<ImageSetFindings>& findings, const Verdict& verdict) {
    Zelm2ViewCalibResult result{};
    if (const std::int32_t status = zelm2ViewCalibCameraParam(reading.calib.get(), &result); status < 0) {
        if (const std::string cause = pitchCause(reading.calib.get(), plate); !cause.empty()) {
            failData("{}: {}", options.plate.file, cause);
        }
        constexpr double kEnoughTilt = 15.0;  // degrees
        const bool isFlat = findings && isAboutTilts(status) && maxTilt(*findings) < kEnoughTilt;
        const std::string tilts =
            findings && isAboutTilts(status) ? fmt::format(" (the plate's tilts: {})", tiltList(*findings)) : "";
        failData("{} to {} ({} views): {}{}{}", reading.used.front().left.string(), reading.used.back().right.string(),
                 reading.used.size(), estimateText(isFlat ? ZELM_ERR_CALIB_ESTIMATE : status), tilts,
                 verdict.doubts.empty() ? "" : "; besides: " + verdict.doubts.front().text);
    }
}

// Of a parallel camera, how far the plate of view 0 is turned against it, radians; 0 of others.
double tiltOf(const LoadedRig& rig, char side) {
    double tilt = 0.0;
    zelmMeasureRigTilt(rig.handle.get(), side, &tilt);
    return tilt;
}

Calibration calibrate(const CalibrateOptions& options, const PairSettings& settings, const Console& console,
                      OutputFiles& outputs) {
    const std::vector<ViewFiles> views =
        pairImages(expandImageSet(options.left, "--left"), expandImageSet(options.right, "--right"), settings);
    for (const ViewFiles& view : views) {
        outputs.keep(view.left);
        outputs.keep(view.right);
    }
    if (!options.force) {
        requireTwoSides(views);
    }
    ReferenceReader reference(views, options.reference, settings, console);
    PairReading reading = reference.read();
    const std::optional<ImageSetFindings> findings = examineImages(reading, settings.plate);
    Verdict verdict;
    if (findings) {
        ImageSetFaults faults = faultsOf(*findings, reading.used, reference.sharpness(), settings.plate.units);
        verdict.add(std::move(faults.doubts));
        requireTrust(verdict, options.force);
        if (verdict.fatal() == nullptr) {
            reference.setAside(reading, faults.setAside);
        }
    }
    LoadedRig rig;
    std::optional<AdjustReport> adjustment;
    const auto solve = [&] {
        estimate(reading, options, settings.plate, findings, verdict);
        rig = rigOf(reading.calib.get());
        if (options.adjust.off) {
            return;
        }
        Adjusted adjusted = adjustRig(rig, reading, settings.plate, options.adjust, console);
        adjustment = std::move(adjusted.report);
        if (adjustment->refusal.empty()) {
            rig = std::move(adjusted.rig);
        } else if (const std::string cause = pitchCause(reading.calib.get(), settings.plate); !cause.empty()) {
            adjustment->refusal += "; " + cause;
        }
    };
    solve();
    if (adjustment && reference.replace(reading, adjustment->leftOut)) {
        solve();
    }
    Calibration c{settings.plate,
                  reading.used,
                  reading.skipped,
                  rig.rig,
                  rigFigures(rig, settings.plate),
                  blockOf(rig.calib()),
                  covarianceBytes(rig),
                  reading.pictures,
                  tiltOf(rig, 'L'),
                  tiltOf(rig, 'R'),
                  std::move(adjustment),
                  std::move(verdict),
                  reference.described(reading),
                  reference.sharpness(),
                  {}};
    c.lengths = plateLengthsOf(rig, settings.plate, c.figures);
    // A parallel pair is calibrated from one view; the object has places for more.
    c.figures.left.views.resize(c.views.size());
    c.figures.right.views.resize(c.views.size());
    c.figures.epipolarViews.resize(c.views.size());
    c.forecast = lengthForecast(rig, c.figures);
    return c;
}

void warnOfTilt(const Calibration& c, const Console& console) {
    // Degrees. Noise of a hundredth of a pixel over a few hundred pixels makes about half of one.
    constexpr double kMaxTilt = 2.0;
    for (const char side : {'L', 'R'}) {
        const double tilt = kDegreesPerRadian * (side == 'L' ? c.leftTilt : c.rightTilt);
        if (tilt > kMaxTilt) {
            const ViewFiles& view = c.views.front();
            console.warn(fmt::format(
                "{}: the plate seems tilted by {:.1f} degrees against the {} camera, whose scales and direction are "
                "then wrong: a parallel camera is calibrated from the first view alone and must look straight at the "
                "plate there",
                (side == 'L' ? view.left : view.right).string(), tilt, side == 'L' ? "left" : "right"));
        }
    }
}

// Drawn and encoded on all cores; each is written as soon as it is done, so that few are in memory.
void addOverlays(const Calibration& c, const fs::path& folder, const Console& console, OutputFiles& outputs) {
    outputs.prepareFolder(folder);
    Progress progress(console, "drawing overlays", 2 * c.views.size());
    std::mutex mutex;
    onAllCores(2 * c.views.size(), [&](std::size_t i) {
        const bool isLeft = i % 2 == 0;
        const ViewFiles& files = c.views[i / 2];
        const fs::path& image = isLeft ? files.left : files.right;
        const ImageFigures& figures = (isLeft ? c.figures.left : c.figures.right).views[i / 2];
        if (!image.empty() && !figures.dots.empty()) {
            const std::string png = drawOverlay(*c.pictures->get(image), c.plate, figures.dots);
            outputs.add(folder / fmt::format("view{:02}_{}.png", i / 2, isLeft ? "left" : "right"), png);
        }
        const std::scoped_lock lock(mutex);
        progress.advance();
    });
}

// Every file that was read, also of skipped views, and the calibration that came of them.
Provenance provenanceOf(const Calibration& c, const CalibrateOptions& options, const Console& console) {
    std::vector<NamedFile> files{{"plate", options.plate.file}};
    if (!options.adjust.positions.empty()) {
        files.push_back({"dot positions", options.adjust.positions});
    }
    const auto add = [&files](const ViewFiles& view, const std::string& what) {
        for (const auto& [side, path] : {std::pair("left", &view.left), std::pair("right", &view.right)}) {
            if (!path->empty()) {
                files.push_back({fmt::format("{}, {}", what, side), *path});
            }
        }
    };
    for (std::size_t i = 0; i < c.views.size(); ++i) {
        add(c.views[i], fmt::format("view {}", i));
    }
    for (const SkippedView& view : c.skipped) {
        add(view.files, "skipped");
    }
    Provenance provenance{console.command, timeOfReport(), hashFiles(files)};
    provenance.addBytes("result", "rig.zcal", c.block);
    if (!c.covariance.empty()) {
        provenance.addBytes("result", "rig.zcov", c.covariance);
    }
    return provenance;
}

void addPicturesOfSkipped(const Calibration& c, const fs::path& folder, OutputFiles& outputs) {
    const std::vector<ImageTrouble> troubles = troublesOf(c.skipped);
    addFailedPictures(troubles, folder, outputs);
    std::vector<fs::path> read;
    for (const ViewFiles& view : c.views) {
        read.push_back(view.left);
        read.push_back(view.right);
    }
    supersedeFailedPictures(read, troubles, folder, outputs);
}

void runCalibrate(const CalibrateOptions& options, const Console& console) {
    if (!isPairOfImages(options)) {
        calibrateOtherwise(options, console);
        return;
    }
    const PairSettings settings = settingsOf(options);
    const fs::path folder = options.folder;
    OutputFiles outputs;
    outputs.keep(options.plate.file);
    outputs.prepareFolder(folder);
    if (!settings.plate.positionsSource.empty()) {
        outputs.keep(settings.plate.positionsSource);
    }
    Calibration c = calibrate(options, settings, console, outputs);
    c.verdict.add(calibrationDoubts(c, options.plate.file));
    // Where nothing fits, no view is worse than the others.
    constexpr double kMaxEpipolar = 2.0;  // pixels, RMS
    const PlateLengths lengths = c.figures.epipolar.rms > kMaxEpipolar ? PlateLengths{} : c.lengths;
    const std::vector<std::string> leftOut = c.adjustment ? c.adjustment->leftOut : std::vector<std::string>();
    c.verdict.add(qualityDoubts(c.views, c.sharpness, leftOut, lengths, c.plate.units));
    requireTrust(c.verdict, options.force);

    const nlohmann::ordered_json summary = summaryJson(c);
    outputs.add(folder / "rig.zcal", c.block);
    if (c.covariance.empty()) {
        outputs.supersede(folder / "rig.zcov");
    } else {
        outputs.add(folder / "rig.zcov", c.covariance);
    }
    outputs.add(folder / "rig.json", jsonText(summary) + "\n");
    outputs.add(folder / "report.html", htmlReport(c, provenanceOf(c, options, console), console));
    addPicturesOfSkipped(c, folder, outputs);
    if (options.overlays) {
        addOverlays(c, folder / "overlays", console, outputs);
    }
    outputs.commit();
    warnOfTilt(c, console);
    for (const Doubt& doubt : c.verdict.doubts) {
        console.warn(doubt.text);
    }

    console.say(summaryText(c));
    console.say(fmt::format("verdict: {}", statusWord(c.verdict.status)));
    console.say(fmt::format("wrote rig.zcal, {}rig.json{} to {}", c.covariance.empty() ? "" : "rig.zcov, ",
                            options.overlays ? ", report.html and overlays/" : " and report.html", folder.string()));
    console.result(summary);
}

}  // namespace

void addCalibrate(CommandLine& commandLine, Console& console) {
    Subcommand sub = commandLine.subcommand(
        "calibrate", "Calibrate a pair of cameras, or one, from images of a plate or from points",
        "zelm calibrate --plate plate.json --left 'left_*.png' --right 'right_*.png' -o out --overlays");
    const auto o = std::make_shared<CalibrateOptions>();
    addPlateOptions(sub, o->plate, false);
    addTemperatureOption(sub, o->plate);
    sub.option("--left", o->left, "Left images: files, a quoted glob, a folder, or a list (.txt)");
    sub.option("--right", o->right, "Right images, in the same order of views; without them: one camera alone");
    sub.option("--points", o->points.file,
               "Instead of images: CSV of a flat target's points, view,camera,id,x,y,X,Y, that another program found");
    sub.option("--left-size", o->points.leftSize, "With --points: WIDTHxHEIGHT of the left images, pixels");
    sub.option("--right-size", o->points.rightSize, "With --points: WIDTHxHEIGHT of the right images, pixels");
    sub.option("--unit", o->points.unit, "With --points: the unit of X and Y").showDefault();
    sub.option("-o,--output", o->folder, "Folder for rig.zcal, rig.zcov, rig.json and report.html").showDefault();
    const std::string models = ": 0 perspective, 1 tilted, 2 parallel (telecentric lenses)";
    sub.option("--left-model", o->leftModel, "Left camera" + models).inRange(0, 2).showDefault();
    sub.option("--right-model", o->rightModel, "Right camera" + models).inRange(0, 2).showDefault();
    sub.rectangle("--left-region", o->leftRegion, "Part of the left images that holds the plate");
    sub.rectangle("--right-region", o->rightRegion, "Part of the right images that holds the plate");
    sub.option("--reference", o->reference,
               "View whose plate is the world frame, counted from 0 as given; default: view 0, or the sharpest other "
               "one if that is skipped, blurred or left out")
        .inRange(0, 1000000);
    addAdjustOptions(sub, o->adjust);
    sub.flag("--overlays", o->overlays, "Also draw the dots found into a copy of every image");
    sub.flag("--force", o->force, "Write the result also when it is not to be trusted; its verdict stays refused");
    sub.flag("--strict", o->strict, "Give up when one view cannot be read, instead of skipping it");
    sub.does([o, &console] { showingFailures(o->folder, [&] { runCalibrate(*o, console); }); });
}

}  // namespace zelm::tool
