// zelm plan: which pictures of a plate calibrate a pair, and how well a length is known then.
#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

#include "failure.h"
#include "jsonText.h"
#include "numberText.h"
#include "outputFiles.h"
#include "planDescription.h"
#include "planList.h"
#include "plateFile.h"
#include "rigFile.h"
#include "subcommands.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

constexpr int kMostViews = 1000;
constexpr int kDefaultMost = 100;

struct PlanCommandOptions {
    std::string description;
    std::string plate;
    std::string rig;
    std::string folder;
    std::optional<double> tolerance;
    std::optional<int> views;
    int most = kDefaultMost;
    double length = 0.0;
    double noise = 0.02;
    std::optional<double> pointNoise;
    double maxTilt = 50.0;
    std::string criterion = "worst";
    bool squarePixels = false;
    bool noSkew = false;
};

struct ClosePlan {
    void operator()(ZelmMeasurePlan* plan) const { zelmMeasurePlanClose(&plan); }
};
using PlanPtr = std::unique_ptr<ZelmMeasurePlan, ClosePlan>;

ZelmMeasurePlanOptions planOptions(const PlanCommandOptions& o, const PlanDescription& description) {
    ZelmMeasurePlanOptions options = description.options;
    options.criterion = o.criterion == "rms" ? ZELM_MEASURE_PLAN_RMS : ZELM_MEASURE_PLAN_WORST;
    options.length = o.length;
    options.noise = o.noise;
    options.pointNoise = o.pointNoise.value_or(0.0);
    options.maxTilt = o.maxTilt / kDegreesPerRadian;
    options.holdSkew = o.noSkew ? 1 : 0;
    options.squarePixels = o.squarePixels ? 1 : 0;
    return options;
}

// Throws Failure with what the library says.
void requireOk(std::int32_t status, const ZelmMeasurePlan* plan, const std::string& file) {
    if (status < 0) {
        failData("{}: {}", file, plan == nullptr ? "out of memory" : zelmMeasurePlanError(plan));
    }
}

PlanPtr openPlan(const PlanCommandOptions& o, const PlanDescription& description, const Plate& plate,
                 const ZelmMeasurePlanOptions& options, const Console& console) {
    ZelmMeasurePlan* plan = nullptr;
    std::int32_t status = ZELM_OK;
    if (description.pair) {
        const PlannedPair& pair = *description.pair;
        status = zelmMeasurePlanOpen(&pair.left, &pair.right, &pair.relative, &plate.pattern, &options, &plan);
    } else {
        const LoadedRig rig = loadRig(o.rig, console);
        status = zelmMeasurePlanOfRig(rig.handle.get(), &plate.pattern, &options, &plan);
    }
    PlanPtr owner(plan);
    requireOk(status, plan, o.description);
    return owner;
}

std::int32_t viewsOf(const ZelmMeasurePlan* plan) {
    std::int32_t views = 0;
    zelmMeasurePlanViews(plan, &views);
    return views;
}

// Of a rig alone: the one view that helps most. Else as many as were asked for, or as few as meet the tolerance.
void plan(ZelmMeasurePlan* plan, const PlanCommandOptions& o) {
    const std::int32_t taken = viewsOf(plan);
    const int most = o.views ? *o.views : o.tolerance ? o.most : taken + 1;
    if (most <= taken && !o.tolerance) {
        failUsage("--views {}: {} has {} views already: give a greater number", most, o.rig, taken);
    }
    requireOk(zelmMeasurePlanFewest(plan, o.tolerance.value_or(0.0), most), plan, o.description);
}

PlanList listOf(ZelmMeasurePlan* plan, const ZelmMeasurePlanOptions& options, const Plate& plate,
                const std::string& file) {
    PlanList list;
    list.options = options;
    list.units = plate.units;
    for (std::int32_t i = 0; i < viewsOf(plan); ++i) {
        ZelmMeasurePlanView view{};
        view.size = sizeof(view);
        requireOk(zelmMeasurePlanView(plan, i, &view), plan, file);
        list.views.push_back(view);
    }
    list.figures.size = sizeof(list.figures);
    list.determined = zelmMeasurePlanFigures(plan, &list.figures) >= 0;
    list.undetermined = list.determined ? "" : zelmMeasurePlanError(plan);
    return list;
}

void runPlan(const PlanCommandOptions& o, const Console& console) {
    if (!o.tolerance && !o.views && o.rig.empty()) {
        failUsage(
            "--tolerance or --views is required: say how well lengths should be known, or how many views to take");
    }
    const PlanDescription description = readPlanDescription(o.description, !o.rig.empty());
    const Plate plate = readPlate(o.plate);
    const ZelmMeasurePlanOptions options = planOptions(o, description);
    OutputFiles outputs;
    for (const std::string& input : {o.description, o.plate, o.rig}) {
        if (!input.empty()) {
            outputs.keep(input);
        }
    }
    if (!o.folder.empty()) {
        outputs.prepareFolder(o.folder);
    }
    const PlanPtr handle = openPlan(o, description, plate, options, console);
    plan(handle.get(), o);
    const PlanList list = listOf(handle.get(), options, plate, o.description);
    nlohmann::ordered_json json = planJson(list);
    json["noise"] = o.noise;
    if (o.tolerance) {
        json["tolerance"] = *o.tolerance;
    }
    if (!o.folder.empty()) {
        outputs.add(fs::path(o.folder) / "pictures.txt", pictureText(list) + "\n");
        outputs.add(fs::path(o.folder) / "plan.json", jsonText(json) + "\n");
        outputs.commit();
    }
    console.say(planText(list));
    console.say(pictureText(list));
    if (!o.folder.empty()) {
        console.say(fmt::format("wrote pictures.txt and plan.json to {}", o.folder));
    }
    console.result(json);
}

}  // namespace

void addPlan(CommandLine& commandLine, Console& console) {
    Subcommand sub = commandLine.subcommand("plan", "Plan which pictures of a plate to take",
                                            "zelm plan station.json --plate plate.json --tolerance 0.05 -o out");
    const auto o = std::make_shared<PlanCommandOptions>();
    sub.option("description", o->description,
               "The volume to measure in, and the cameras unless --rig gives them (.json)")
        .required();
    sub.option("--plate", o->plate, "The plate's description (.json)").required();
    sub.option("--rig", o->rig, "A calibration (rig.zcal) to go on from: its views count as taken");
    Option tolerance = sub.option("--tolerance", o->tolerance, "U95 of a length to meet with as few views as possible");
    tolerance.positive();
    sub.option("--views", o->views, "Number of views, those of --rig included, to make the best of")
        .inRange(3, kMostViews)
        .excludes(tolerance);
    sub.option("--most", o->most, "Most views that --tolerance may take").inRange(3, kMostViews).showDefault();
    sub.option("--length", o->length, "Length that is measured; 30 % of the volume's diagonal unless given").positive();
    sub.option("--noise", o->noise, "Noise of a coordinate of a plate's dot, pixels").positive().showDefault();
    sub.option("--point-noise", o->pointNoise, "The same of the points that are measured; as --noise unless given")
        .positive();
    sub.option("--max-tilt", o->maxTilt, "Most tilt of the plate against a camera's line of sight, degrees")
        .inRange(1.0, 80.0)
        .showDefault();
    sub.option("--criterion", o->criterion, "What is made small, and meets the tolerance: the worst length, or the RMS")
        .oneOf({"worst", "rms"})
        .showDefault();
    sub.flag("--square-pixels", o->squarePixels, "The calibration will hold one focal length a camera");
    sub.flag("--no-skew", o->noSkew, "The calibration will hold the skew at 0");
    sub.option("-o,--output", o->folder, "Folder for pictures.txt and plan.json");
    sub.does([o, &console] { runPlan(*o, console); });
}

}  // namespace zelm::tool
