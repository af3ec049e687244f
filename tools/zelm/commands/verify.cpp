// zelm verify: whether a rig still measures as it did, by known lengths and by the epipolar distances of points.
#include <fmt/format.h>

#include <cmath>
#include <filesystem>
#include <memory>
#include <optional>

#include "driftReport.h"
#include "failedPictures.h"
#include "failure.h"
#include "imageSet.h"
#include "jsonText.h"
#include "outputFiles.h"
#include "plateOptions.h"
#include "subcommands.h"
#include "verifyLengths.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

// Pixels, RMS, of a calibration without a covariance: what a relative pose from one view of 140 dots of 0.015 px lacks.
// Drift is told from some five times it on.
constexpr double kUsualCalibrationError = 0.003;

struct VerifyOptions {
    std::string rig;
    PlateOptions plate;
    std::vector<std::string> left;
    std::vector<std::string> right;
    std::vector<int> leftRegion;
    std::vector<int> rightRegion;
    std::string pairs;
    std::string lengths;
    std::optional<double> tolerance;
    std::optional<double> noise;
    std::optional<double> calibrationError;
    std::string dots = "refined";  // or "reader"
    std::string csv;

    // Pictures of images that cannot be read go beside the CSV.
    fs::path folder() const { return fs::path(csv).parent_path(); }
    bool hasImages() const { return !left.empty(); }
    bool hasLengths() const { return hasImages() || !lengths.empty(); }
};

struct Verification {
    std::string subject;  // the file that a verdict is about
    std::size_t views = 0;
    std::size_t refused = 0;  // dots that their pixels do not confirm
    std::vector<SkippedView> skipped;
    std::optional<LengthCheck> lengths;
    DriftCheck drift;
};

void checkOptions(const VerifyOptions& o) {
    if (o.left.empty() != o.right.empty()) {
        failUsage("--left and --right go together: give the images of both cameras");
    }
    if (o.hasImages() == !o.pairs.empty()) {
        failUsage("give either images of a plate (--plate, --left, --right) or pixel pairs of any points (--pairs)");
    }
    if (o.hasImages() && o.plate.file.empty()) {
        failUsage("--plate is missing: images of a plate need its description");
    }
    if (!o.lengths.empty() && o.pairs.empty()) {
        failUsage("--lengths goes with --pairs, whose ids it names");
    }
    if (!o.hasLengths() && (o.tolerance || !o.csv.empty())) {
        failUsage("{} needs lengths: give images of a plate, or --lengths with --pairs",
                  o.tolerance ? "--tolerance" : "-o");
    }
    if (o.dots == "reader" && !o.hasImages()) {
        failUsage("--dots goes with images of a plate: pixel pairs are taken as they are");
    }
    if (o.calibrationError && !(std::isfinite(*o.calibrationError) && *o.calibrationError >= 0.0)) {
        failUsage("--calibration-error {}: expected pixels, 0 or more", *o.calibrationError);
    }
}

DriftCheck checkDrift(const LoadedRig& rig, const PointPixels& pixels, const VerifyOptions& o) {
    DriftCheck check;
    check.drift.size = sizeof(check.drift);
    ZelmMeasureDriftOptions options{};
    options.size = sizeof(options);
    options.noise = o.noise.value_or(0.0);
    options.calibrationError = o.calibrationError.value_or(rig.rig.covariance ? 0.0 : kUsualCalibrationError);
    if (zelmMeasureDrift(rig.handle.get(), static_cast<std::int64_t>(pixels.left.size() / 2), pixels.left.data(),
                         pixels.right.data(), &options, nullptr, &check.drift) < 0) {
        check.refusal = zelmMeasureRigError(rig.handle.get());
    }
    return check;
}

Verification verifyImages(const VerifyOptions& o, const LoadedRig& rig, const Console& console, OutputFiles& outputs) {
    const Plate plate = plateOf(o.plate);
    outputs.keep(o.plate.file);
    const ViewImages images{expandImageSet(o.left, "--left"), expandImageSet(o.right, "--right"),
                            regionOf(o.leftRegion), regionOf(o.rightRegion), o.dots == "refined"};
    for (const auto* list : {&images.left, &images.right}) {
        for (const fs::path& image : *list) {
            outputs.keep(image);
        }
    }
    ViewDotsReading reading = readViewDots(images, plate, rig, console);
    Verification v;
    v.subject = o.rig;
    v.views = reading.views.size();
    v.skipped = std::move(reading.skipped);
    std::vector<fs::path> read;
    for (const ViewDots& view : reading.views) {
        v.refused += view.refused;
        read.push_back(view.left);
        read.push_back(view.right);
    }
    const std::vector<ImageTrouble> troubles = troublesOf(v.skipped);
    try {
        addFailedPictures(troubles, o.folder(), outputs);
    } catch (const Failure&) {
        if (!o.csv.empty()) {
            throw;
        }
        // Without -o nothing was asked for, and a verdict matters more than a place that cannot be written to.
    }
    supersedeFailedPictures(read, troubles, o.folder(), outputs);
    PointPixels pixels;
    v.lengths = checkPlateLengths(rig, plate, reading.views, console, pixels);
    v.drift = checkDrift(rig, pixels, o);
    v.drift.units = plate.units;
    return v;
}

Verification verifyPairs(const VerifyOptions& o, const LoadedRig& rig, OutputFiles& outputs) {
    outputs.keep(o.pairs);
    const std::vector<PixelPair> pairs = readPairFile(o.pairs);
    Verification v;
    v.subject = o.rig;
    if (!o.lengths.empty()) {
        outputs.keep(o.lengths);
        v.lengths = checkNamedLengths(rig, o.pairs, pairs, o.lengths, readLengthFile(o.lengths, true));
    }
    PointPixels pixels;
    for (const PixelPair& pair : pairs) {
        pixels.left.insert(pixels.left.end(), {pair.left.x, pair.left.y});
        pixels.right.insert(pixels.right.end(), {pair.right.x, pair.right.y});
    }
    v.drift = checkDrift(rig, pixels, o);
    v.drift.units = rig.units;
    if (!v.lengths && !v.drift.refusal.empty()) {
        failData("{}: {}", o.pairs, v.drift.refusal);
    }
    return v;
}

Json verificationJson(const Verification& v, const VerifyOptions& o) {
    Json json{{"rig", o.rig}};
    if (o.hasImages()) {
        json["views"] = v.views;
        Json skipped = Json::array();
        for (const SkippedView& view : v.skipped) {
            skipped.push_back(view.reason);
        }
        json["skipped"] = skipped;
        json["dots"] = o.dots;
        json["dotsNotConfirmed"] = v.refused;
    }
    if (v.lengths) {
        json["lengths"] = lengthJson(*v.lengths);
    }
    json["drift"] = driftJson(v.drift);
    if (!o.csv.empty()) {
        json["csv"] = o.csv;
    }
    return json;
}

// Throws Failure for a rig that is not as it was.
void giveVerdict(const Verification& v, const std::string& result) {
    std::string verdict;
    const bool isExceeded = v.lengths && v.lengths->isExceeded();
    if (isExceeded) {
        verdict = exceededText(*v.lengths);
    }
    if (v.drift.isFound()) {
        verdict += fmt::format("{}{}", verdict.empty() ? "" : "; ", driftVerdict(v.drift));
    }
    if (!verdict.empty()) {
        Failure failure(ExitCode::data, fmt::format("{}: {}", v.subject, verdict));
        failure.cause.word = isExceeded ? "tolerance" : "drift";
        failure.result = result;
        throw failure;
    }
}

void runVerify(const VerifyOptions& o, const Console& console) {
    checkOptions(o);
    const LoadedRig rig = loadRig(o.rig, console);
    OutputFiles outputs;
    outputs.keep(o.rig);
    outputs.keep(covarianceFile(o.rig));
    if (!o.csv.empty()) {
        outputs.prepareFolder(fs::path(o.csv).parent_path());
    }
    Verification v = o.hasImages() ? verifyImages(o, rig, console, outputs) : verifyPairs(o, rig, outputs);
    if (v.lengths) {
        v.lengths->tolerance = o.tolerance;
    }
    if (!o.csv.empty()) {
        outputs.add(o.csv, lengthCsv(*v.lengths));
    }
    outputs.commit();
    if (v.refused > 0) {
        console.say(fmt::format("dots left out, as their pixels do not confirm them: {}", v.refused));
    }
    if (v.lengths) {
        console.say(lengthText(*v.lengths));
    }
    console.say(driftText(v.drift));
    if (!o.csv.empty()) {
        console.say(fmt::format("wrote {}", o.csv));
    }
    const Json result = verificationJson(v, o);
    giveVerdict(v, jsonText(result));
    console.result(result);
}

}  // namespace

void addVerify(CommandLine& commandLine, Console& console) {
    Subcommand sub = commandLine.subcommand(
        "verify", "Check a calibration with known lengths, and whether the cameras have moved since",
        "zelm verify out/rig.zcal --plate plate.json --left 'left_*.png' --right 'right_*.png' --tolerance 0.02");
    const auto o = std::make_shared<VerifyOptions>();
    sub.option("rig", o->rig, "The calibration (rig.zcal)").required();
    addPlateOptions(sub, o->plate, false);
    addTemperatureOption(sub, o->plate);
    sub.option("--left", o->left, "New left images of the plate: files, a quoted glob, a folder, or a list (.txt)");
    sub.option("--right", o->right, "New right images, in the same order of views");
    sub.rectangle("--left-region", o->leftRegion, "Part of the left images that holds the plate");
    sub.rectangle("--right-region", o->rightRegion, "Part of the right images that holds the plate");
    sub.option("--pairs", o->pairs, "Instead of images: CSV of raw pixel pairs, as of triangulate");
    sub.option("--lengths", o->lengths, "CSV of known lengths from,to,length between points that --pairs names by ids");
    sub.option("--tolerance", o->tolerance,
               "Largest length error that is accepted, in the plate's unit; else exit code 1")
        .positive();
    sub.option("--noise", o->noise, "Standard deviation of a pixel's coordinates; default: estimated").positive();
    sub.option("--dots", o->dots,
               "refined: measure each dot of the new images on its pixels, as calibrate does; reader: the reader's")
        .oneOf({"refined", "reader"})
        .showDefault();
    sub.option("--calibration-error", o->calibrationError,
               "RMS epipolar distance in pixels that the calibration itself may have without being told as drift, "
               "beside what its covariance tells; default: 0 with a covariance, else 0.003");
    sub.option("-o,--output", o->csv, "CSV of all lengths; pictures of images that cannot be read go beside it");
    sub.does([o, &console] { showingFailures(o->folder(), [&] { runVerify(*o, console); }); });
}

}  // namespace zelm::tool
