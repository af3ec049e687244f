// The sample's scene measured with the sample's calibration, as a user would: 3-D errors against the truth, at some
// 450 mm from the cameras.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "measureFixtures.h"

namespace zelmtest {
namespace {

// What the rig promises. True pixels leave the calibration's errors, to which each dot of its views adds some 0.009 px.
// A centre error of 0.01 px in each image is 0.007 mm along the rays' bisector at this distance and baseline.
constexpr double kTruePixelRms = 0.0015;  // mm
constexpr double kMeasuredRms = 0.008;    // mm
constexpr double kLengthsOneIn = 120'000.0;

std::string pairsCsv(bool targetsOnly, double offset) {
    std::ostringstream csv;
    csv.precision(17);
    csv << "xL,yL,xR,yR\n";
    for (const ScenePair& pair : scenePairs()) {
        if (pair.isTarget || !targetsOnly) {
            csv << pair.left.x + offset << ',' << pair.left.y - offset << ',' << pair.right.x + offset << ','
                << pair.right.y + offset << '\n';
        }
    }
    return csv.str();
}

struct SpaceErrors {
    std::size_t count = 0;
    double rms = 0.0;
    double worst = 0.0;
};

SpaceErrors errorsOf(const std::vector<PointRow>& rows) {
    SpaceErrors errors;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].status, "ok") << i;
        if (rows[i].status == "ok") {
            const double d = distance(positionOf(rows[i]), scenePairs().at(i).position);
            errors.rms += d * d;
            errors.worst = std::max(errors.worst, d);
            errors.count += 1;
        }
    }
    errors.rms = std::sqrt(errors.rms / static_cast<double>(errors.count));
    return errors;
}

TEST(MeasureScene, PointsFromTruePixelsAreInPlace) {
    const TemporaryFolder folder;
    writeFile(folder / "pairs.csv", pairsCsv(false, 0.0));
    const CommandResult run =
        zelm({"triangulate", deskRigFile(), (folder / "pairs.csv").string(), "-o", (folder / "points.csv").string()});
    ASSERT_EQ(run.status, 0) << run.errors;
    const SpaceErrors errors = errorsOf(readPoints(folder / "points.csv"));
    EXPECT_EQ(errors.count, 79U);
    EXPECT_LE(errors.rms, kTruePixelRms);
    std::printf("79 points from true pixels: RMS %.4f, worst %.4f mm\n", errors.rms, errors.worst);
}

TEST(MeasureScene, TargetsFromMeasuredCentresAreInPlace) {
    // A few pixels beside the centre, as a person would point at them.
    constexpr double kBeside = 2.5;
    const TemporaryFolder folder;
    writeFile(folder / "pairs.csv", pairsCsv(true, kBeside));
    const CommandResult run =
        zelm({"triangulate", deskRigFile(), (folder / "pairs.csv").string(), "-o", (folder / "points.csv").string(),
              "--dots", sampleFile("scene_left.png"), sampleFile("scene_right.png")});
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.errors, "");
    const SpaceErrors errors = errorsOf(readPoints(folder / "points.csv"));
    EXPECT_EQ(errors.count, 19U);
    EXPECT_LE(errors.rms, kMeasuredRms);
    std::printf("19 targets from measured centres: RMS %.4f, worst %.4f mm\n", errors.rms, errors.worst);
}

TEST(MeasureScene, CompareTellsWhatContributes) {
    const CommandResult run = zelm({"compare", deskRigFile(), sampleFile("scene_truth.json"), "--json"});
    ASSERT_EQ(run.status, 0) << run.errors;
    const Json json = Json::parse(run.output);
    EXPECT_EQ(json.at("pointsFromTruePixels").at("count"), 79);
    EXPECT_LE(json.at("pointsFromTruePixels").at("rms").get<double>(), kTruePixelRms);
    EXPECT_LE(json.at("relativeLengthErrors").at("rms").get<double>(), 1.0 / kLengthsOneIn);
    EXPECT_EQ(json.at("targetsMeasured").at("count"), 19);
    EXPECT_EQ(json.at("targetsNotFound"), 0);
    EXPECT_LE(json.at("targetsMeasured").at("rms").get<double>(), kMeasuredRms);
    EXPECT_EQ(json.at("targetsMeasuredEvenlyLit").at("count"), 16);
    EXPECT_EQ(json.at("targetsMeasuredShadowed").at("count"), 3);
    const auto rms = [&](const char* key) { return json.at(key).at("rms").get<double>(); };
    const double parts = rms("targetsCalibration") + rms("targetsCentreBias") + rms("targetsNoise");
    EXPECT_GE(parts, rms("targetsMeasured"));  // RMS distances of a sum are at most the sum of the RMS distances
    EXPECT_GT(rms("targetsCentreBias"), 0.0);
}

// The 171 distances are those of 57 coordinates, which tell a standard deviation to 10 %: three times that is let pass,
// and at 1.3 times the stated deviation an interval of 95 % holds 87 %.
TEST(MeasureScene, LengthsBetweenTargetsAreAsExactAsTheySay) {
    const TemporaryFolder folder;
    writeFile(folder / "pairs.csv", pairsCsv(true, 0.0));
    const CommandResult run = zelm({"length", deskRigFile(), (folder / "pairs.csv").string(), "--json", "--dots",
                                    sampleFile("scene_left.png"), sampleFile("scene_right.png")});
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.errors, "");
    std::vector<Point3d> truth;
    for (const ScenePair& pair : scenePairs()) {
        if (pair.isTarget) {
            truth.push_back(pair.position);
        }
    }
    const Json json = Json::parse(run.output);
    EXPECT_FALSE(json.contains("noise"));  // each target has its own
    ASSERT_EQ(json.at("lengths").size(), 171U);
    int held = 0;
    double squares = 0.0;
    for (const Json& length : json.at("lengths")) {
        const auto end = [&](const char* key) { return truth.at(std::stoul(length.at(key).get<std::string>()) - 1); };
        const Point3d a = end("from");
        const Point3d b = end("to");
        const double error = length.at("length").get<double>() - std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
        held += std::fabs(error) <= length.at("U95").get<double>() ? 1 : 0;
        squares += error * error / std::pow(length.at("sigma").get<double>(), 2);
    }
    const double deviations = std::sqrt(squares / 171.0);
    EXPECT_GE(held, 149);
    EXPECT_GE(deviations, 0.7);  // stated neither too small nor too large
    EXPECT_LE(deviations, 1.3);
    std::printf("%d of 171 lengths within U95, errors of %.2f standard deviations\n", held, deviations);
}

TEST(MeasureScene, SpeckleIsNotTakenForDots) {
    const TemporaryFolder folder;
    writeFile(folder / "pairs.csv", pairsCsv(false, 0.0));
    const CommandResult run =
        zelm({"triangulate", deskRigFile(), (folder / "pairs.csv").string(), "-o", (folder / "points.csv").string(),
              "--dots", sampleFile("scene_left.png"), sampleFile("scene_right.png")});
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_NE(run.errors.find("60 of 79 pixel pairs gave no point: 60 no_dot"), std::string::npos) << run.errors;
    const std::vector<PointRow> rows = readPoints(folder / "points.csv");
    ASSERT_EQ(rows.size(), 79U);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].status, scenePairs()[i].isTarget ? "ok" : "no_dot") << i;
    }
}

}  // namespace
}  // namespace zelmtest
