// zelm measure: features fitted to points in space, distances and angles between them.
#include <fmt/format.h>
#include <zelmMeasure.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

#include "failure.h"
#include "featureNames.h"
#include "featureReport.h"
#include "outputFiles.h"
#include "rigFile.h"
#include "subcommands.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

struct MeasureOptions {
    std::string points;
    std::string rig;
    std::string file;                                  // of features and relations
    std::array<std::vector<std::string>, 6> features;  // a kind each
    std::vector<std::string> distances;
    std::vector<std::string> angles;
    bool robust = false;
    bool plain = false;
    std::string csv;
};

FeatureList listOf(const MeasureOptions& o, const MeasuredPoints& points) {
    FeatureList list(points);
    if (!o.file.empty()) {
        list.addFile(o.file);
    }
    for (std::int32_t kind = 0; kind < static_cast<std::int32_t>(o.features.size()); ++kind) {
        for (const std::string& text : o.features[static_cast<std::size_t>(kind)]) {
            list.addFeature(kind, text, fmt::format("--{}", featureWord(kind)));
        }
    }
    for (const std::string& text : o.distances) {
        list.addRelation(ZELM_MEASURE_RELATION_DISTANCE, text, "--distance");
    }
    for (const std::string& text : o.angles) {
        list.addRelation(ZELM_MEASURE_RELATION_ANGLE, text, "--angle");
    }
    if (list.features().empty()) {
        failUsage(
            "nothing to measure: give features, --plane, --line, --circle, --sphere or --cylinder with ids of "
            "points, --distance or --angle between them, or a file of them with --features");
    }
    if (o.robust) {
        list.makeRobust();
    }
    return list;
}

// Why a feature has no numbers: what happened and what to try.
const char* statusText(std::int32_t status) {
    switch (status) {
        case ZELM_MEASURE_FEATURE_FEW:
            return "too few points: a line takes 2, a plane or circle 3, a sphere 4, a cylinder 5";
        case ZELM_MEASURE_FEATURE_UNDETERMINED:
            return "the points do not determine it: they lie on one line or in one plane, or are the same";
        case ZELM_MEASURE_FEATURE_NO_MAJORITY:
            return "less than half of the points agree on one: are these the points of one surface?";
        default:
            return "no such shape is near the points";
    }
}

class Measurer {
public:
    Measurer(const MeasureOptions& options, const MeasuredPoints& measured, const FeatureList& wanted)
        : o(options), points(measured), list(wanted) {}

    MeasuredFeatures measure(const Console& console) {
        if (!o.rig.empty()) {
            rig.emplace(loadRig(o.rig, console));
            rig->requireCovariance();
        }
        MeasuredFeatures m;
        m.points = &points;
        m.features = list.features();
        m.relations = list.relations();
        m.hasCalibration = rig.has_value();
        m.units = rig ? rig->units : kUnknownUnits;
        m.results.resize(m.features.size());
        m.related.resize(m.relations.size());
        m.uses.resize(m.features.size());
        std::vector<ZelmMeasureFeature> features;
        for (std::size_t i = 0; i < m.features.size(); ++i) {
            const NamedFeature& f = m.features[i];
            features.push_back({sizeof(ZelmMeasureFeature), f.kind, f.robust ? 1 : 0, o.plain ? 1 : 0,
                                static_cast<std::int64_t>(f.points.size()), f.points.data()});
            m.uses[i].resize(f.points.size());
            m.results[i].size = sizeof(m.results[i]);
            m.results[i].uses = m.uses[i].data();
        }
        std::vector<ZelmMeasureRelation> relations;
        for (std::size_t i = 0; i < m.relations.size(); ++i) {
            const NamedRelation& r = m.relations[i];
            relations.push_back({sizeof(ZelmMeasureRelation), r.kind, r.first, r.second});
            m.related[i].size = sizeof(m.related[i]);
        }
        ZelmMeasureFeaturePoints given{};
        given.size = sizeof(given);
        given.count = static_cast<std::int64_t>(points.size());
        given.points = points.places.data();
        given.noise = points.noise.empty() ? nullptr : points.noise.data();
        const std::int32_t status = zelmMeasureFeatures(
            &given, rig ? rig->handle.get() : nullptr, static_cast<std::int64_t>(features.size()), features.data(),
            m.results.data(), static_cast<std::int64_t>(relations.size()), relations.data(), m.related.data());
        if (status < 0) {
            failData("{}: {}", points.file,
                     rig ? zelmMeasureRigError(rig->handle.get()) : "its points cannot be used: are they finite?");
        }
        m.noiseSource = !points.noise.empty() ? "the covariances in the file"
                        : rig                 ? "the noise of the calibration's dots"
                                              : "the residuals";
        return m;
    }

private:
    const MeasureOptions& o;
    const MeasuredPoints& points;
    const FeatureList& list;
    std::optional<LoadedRig> rig;
};

void requireFound(const MeasuredFeatures& m) {
    for (std::size_t i = 0; i < m.features.size(); ++i) {
        if (m.results[i].status != ZELM_MEASURE_FEATURE_OK) {
            failData("{}: {}, a {} of {} points: {}", m.points->file, m.features[i].name,
                     featureWord(m.features[i].kind), m.features[i].points.size(), statusText(m.results[i].status));
        }
    }
}

void warnOfDoubts(const MeasuredFeatures& m, const Console& console) {
    constexpr double kChance = 1e-4;  // of all features together, as of drift
    constexpr double kMisfit = 1.5;   // times the noise; less changes no figure by much
    for (std::size_t i = 0; i < m.features.size(); ++i) {
        const ZelmMeasureFeatureResult& r = m.results[i];
        if (r.misfit > kMisfit && r.misfitChance * static_cast<double>(m.features.size()) < kChance) {
            console.warn(fmt::format(
                "{}: {}: its points lie {:.1f} times as far from it as their noise makes them, most of all {}: the "
                "form "
                "is another, or points are wrong{}; U95 tells of the noise alone",
                m.points->file, m.features[i].name, r.misfit, m.points->ids[static_cast<std::size_t>(r.worstPoint)],
                m.features[i].robust ? "" : " (--robust leaves these out)"));
        }
    }
    for (std::size_t i = 0; i < m.relations.size(); ++i) {
        if (m.related[i].status == ZELM_MEASURE_FEATURE_SMALL) {
            console.warn(fmt::format(
                "{}: {} is no larger than three of its standard deviations, which then tell nothing: none are given",
                m.points->file, m.relations[i].name));
        }
    }
}

void runMeasure(const MeasureOptions& o, const Console& console) {
    OutputFiles outputs;
    for (const std::string& input : {o.points, o.rig, o.file}) {
        if (!input.empty()) {
            outputs.keep(input);
        }
    }
    if (!o.csv.empty()) {
        outputs.prepareFolder(fs::path(o.csv).parent_path());
    }
    const MeasuredPoints points = readMeasuredPoints(o.points);
    const FeatureList list = listOf(o, points);
    const MeasuredFeatures measured = Measurer(o, points, list).measure(console);
    requireFound(measured);
    if (!o.csv.empty()) {
        outputs.add(o.csv, featureCsv(measured));
    }
    outputs.commit();
    warnOfDoubts(measured, console);
    console.say(featureText(measured));
    if (!o.csv.empty()) {
        console.say(fmt::format("wrote {}", o.csv));
    }
    nlohmann::ordered_json json = featureJson(measured);
    if (!o.csv.empty()) {
        json["csv"] = o.csv;
    }
    console.result(json);
}

}  // namespace

void addMeasure(CommandLine& commandLine, Console& console) {
    Subcommand sub = commandLine.subcommand(
        "measure", "Fit lines, planes, circles, spheres and cylinders to points, and measure between them",
        "zelm measure points.csv --rig out/rig.zcal --plane 1,2,3,4 --circle hole=5-19 --distance plane1:hole");
    const auto o = std::make_shared<MeasureOptions>();
    sub.option("points", o->points, "CSV of points as triangulate --covariance writes it: id,X,Y,Z, noise_XX, ...")
        .required();
    sub.option("--rig", o->rig, "The calibration that the points come from: its part of the uncertainty");
    const char* const help[] = {"The mean of points: [NAME=]ID,ID,...; a range 5-19; all ids that begin so: top*",
                                "A line through points",
                                "A plane",
                                "A circle",
                                "A sphere",
                                "A cylinder"};
    for (std::int32_t kind = 0; kind < static_cast<std::int32_t>(o->features.size()); ++kind) {
        const auto at = static_cast<std::size_t>(kind);
        sub.option(fmt::format("--{}", featureWord(kind)), o->features[at], help[at]);
    }
    sub.option("--distance", o->distances, "FROM:TO, names of features or ids of points");
    sub.option("--angle", o->angles, "FROM:TO, names of lines, planes, circles or cylinders");
    sub.option("--features", o->file, "JSON of features and relations");
    sub.flag("--robust", o->robust, "Leave out points that are far from what the majority tells");
    sub.flag("--unweighted", o->plain, "All points weigh the same, whatever is known of them");
    sub.option("-o,--output", o->csv, "Also write all figures as CSV");
    sub.does([o, &console] { runMeasure(*o, console); });
}

}  // namespace zelm::tool
