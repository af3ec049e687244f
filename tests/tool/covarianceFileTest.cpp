// The covariance beside a calibration: read by every command, named when it is damaged or missing, and what
// `zelm triangulate` tells with it.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "knownRigFile.h"
#include "matchedPoints.h"

namespace zelmtest {
namespace {

const std::vector<std::pair<std::string, Point3d>> kPoints{
    {"a", {0.0, 0.0, 0.0}}, {"b", {60.0, 45.0, -30.0}}, {"c", {-60.0, 40.0, 30.0}}};

// What the library says of the points.
struct Expected {
    std::vector<double> image;
    std::vector<double> calibration;

    explicit Expected(const KnownRigFile& rig, double sigma = 0.0)
        : image(6 * kPoints.size()), calibration(6 * kPoints.size()) {
        std::vector<Point3d> points;
        for (const auto& [id, X] : kPoints) {
            points.push_back(X);
        }
        const PairPixels pixels = pixelsOf(rig.known.pair, points);
        auto record = emptyRecord<ZelmMeasurePointCovariances>();
        record.image = image.data();
        record.calibration = calibration.data();
        auto noise = emptyRecord<ZelmMeasurePixelNoise>();
        noise.sigma = sigma;
        EXPECT_EQ(zelmMeasurePointCovariance(rig.known.rig.get(), pixels.count(), pixels.left.data(),
                                             pixels.right.data(), &noise, &record),
                  ZELM_OK);
    }
};

void expectNumber(const std::string& text, double expected) {
    EXPECT_NEAR(std::stod(text), expected, 1e-5 * std::fabs(expected)) << text;
}

TEST(CovarianceFile, TriangulatedPointsHaveStandardDeviations) {
    const KnownRigFile rig;
    const std::string pairs = rig.writePairs(kPoints);
    for (const double sigma : {0.0, 0.2}) {
        std::vector<std::string> arguments{"triangulate", rig.path, pairs, "-o", rig.file("points.csv"), "--json"};
        if (sigma > 0.0) {
            arguments.insert(arguments.end(), {"--noise", "0.2"});
        }
        const CommandResult run = zelm(arguments);
        ASSERT_EQ(run.status, 0) << run.errors;
        const auto rows = readCsv(rig.folder / "points.csv");
        ASSERT_EQ(rows.size(), 4U);
        const std::vector<std::string> header{"id",
                                              "X",
                                              "Y",
                                              "Z",
                                              "error_left_px",
                                              "error_right_px",
                                              "angle_deg",
                                              "sigma_X",
                                              "sigma_Y",
                                              "sigma_Z",
                                              "noise_sigma_X",
                                              "noise_sigma_Y",
                                              "noise_sigma_Z",
                                              "calibration_sigma_X",
                                              "calibration_sigma_Y",
                                              "calibration_sigma_Z",
                                              "status"};
        EXPECT_EQ(rows[0], header);
        const Expected expected(rig, sigma);
        constexpr std::size_t kDiagonal[] = {0, 3, 5};
        for (std::size_t i = 0; i < kPoints.size(); ++i) {
            for (std::size_t axis = 0; axis < 3; ++axis) {
                const double image = expected.image[6 * i + kDiagonal[axis]];
                const double calibration = expected.calibration[6 * i + kDiagonal[axis]];
                expectNumber(rows[i + 1][7 + axis], std::sqrt(image + calibration));
                expectNumber(rows[i + 1][10 + axis], std::sqrt(image));
                expectNumber(rows[i + 1][13 + axis], std::sqrt(calibration));
            }
            EXPECT_EQ(rows[i + 1].back(), "ok");
        }
        const Json json = Json::parse(run.output);
        EXPECT_EQ(json.at("noise"), sigma > 0.0 ? 0.2 : 0.05);
        EXPECT_EQ(json.at("sigmaMedian").at("total").size(), 3U);
    }
}

TEST(CovarianceFile, ACloudHoldsTheStandardDeviations) {
    const KnownRigFile rig;
    const std::string pairs = rig.writePairs(kPoints);
    writeFile(pairs, readFile(pairs) + "lost,1e9,1e9,640,480\n");
    const CommandResult run =
        zelm({"triangulate", rig.path, pairs, "-o", rig.file("points.csv"), "--ply", rig.file("points.ply")});
    ASSERT_EQ(run.status, 0) << run.errors;
    const auto rows = readCsv(rig.folder / "points.csv");
    const std::vector<std::string> ply = splitLines(readFile(rig.folder / "points.ply"));
    std::vector<std::string> properties;
    std::size_t line = 0;
    for (; ply.at(line) != "end_header"; ++line) {
        if (ply[line].starts_with("property ")) {
            properties.push_back(ply[line].substr(ply[line].rfind(' ') + 1));
        }
    }
    ASSERT_EQ(properties.size(), 16U);
    EXPECT_EQ(properties[7], "sigma_x");
    EXPECT_EQ(properties[10], "noise_sigma_x");
    EXPECT_EQ(properties[15], "calibration_sigma_z");
    ASSERT_EQ(ply.size(), line + 1 + kPoints.size());
    for (std::size_t i = 0; i < kPoints.size(); ++i) {
        std::istringstream vertex(ply[line + 1 + i]);
        for (std::size_t k = 0; k < 16; ++k) {
            double number = 0.0;
            vertex >> number;
            // As in the CSV, where the id stands in front and has no row.
            EXPECT_EQ(number, k < 6    ? std::stod(rows[i + 1][1 + k])
                              : k == 6 ? static_cast<double>(i + 1)
                                       : std::stod(rows[i + 1][k]));
        }
        EXPECT_TRUE((vertex >> std::ws).eof());
    }
}

TEST(CovarianceFile, CovariancesOfPointsOnDemand) {
    const KnownRigFile rig;
    const CommandResult run =
        zelm({"triangulate", rig.path, rig.writePairs(kPoints), "-o", rig.file("points.csv"), "--covariance"});
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_NE(run.output.find("by calibration"), std::string::npos) << run.output;
    const auto rows = readCsv(rig.folder / "points.csv");
    ASSERT_EQ(rows[0].size(), 29U);
    EXPECT_EQ(rows[0][16], "noise_XX");
    EXPECT_EQ(rows[0][27], "calibration_ZZ");
    const Expected expected(rig);
    for (std::size_t i = 0; i < kPoints.size(); ++i) {
        for (std::size_t k = 0; k < 6; ++k) {
            expectNumber(rows[i + 1][16 + k], expected.image[6 * i + k]);
            expectNumber(rows[i + 1][22 + k], expected.calibration[6 * i + k]);
        }
    }
}

TEST(CovarianceFile, PairsWithoutAPointHaveEmptyFields) {
    const KnownRigFile rig;
    writeFile(rig.folder / "pairs.csv", "640,480,640,480\n1e9,1e9,640,480\n");
    const CommandResult run =
        zelm({"triangulate", rig.path, rig.file("pairs.csv"), "-o", rig.file("points.csv"), "--max-error", "5"});
    ASSERT_EQ(run.status, 0) << run.errors;
    const auto rows = readCsv(rig.folder / "points.csv");
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[1].size(), rows[0].size());
    EXPECT_EQ(rows[2].size(), rows[0].size());
    EXPECT_EQ(splitLines(readFile(rig.folder / "points.csv"))[2], "2,,,,,,,,,,,,,,,,outside");
}

TEST(CovarianceFile, AMissingOneIsSaid) {
    const KnownRigFile rig;
    fs::remove(rig.folder / "rig.zcov");
    const std::string pairs = rig.writePairs(kPoints);
    const CommandResult run = zelm({"triangulate", rig.path, pairs, "-o", rig.file("points.csv")});
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_NE(run.output.find("no covariance beside " + rig.path), std::string::npos) << run.output;
    EXPECT_EQ(readCsv(rig.folder / "points.csv")[0].size(), 8U);
    const std::vector<std::string> words{"no covariance beside " + rig.path, "calibrate with the adjustment",
                                         "rig.zcov"};
    expectOneLine(zelm({"triangulate", rig.path, pairs, "-o", rig.file("o.csv"), "--noise", "0.1"}), 1, words);
    expectOneLine(zelm({"triangulate", rig.path, pairs, "-o", rig.file("o.csv"), "--covariance"}), 1, words);
    expectOneLine(zelm({"length", rig.path, pairs}), 1, words);
    EXPECT_FALSE(fs::exists(rig.folder / "o.csv"));
    const CommandResult info = zelm({"info", rig.path});
    EXPECT_NE(info.output.find("no covariance beside " + rig.path), std::string::npos) << info.output;
}

TEST(CovarianceFile, ADamagedOneIsRefusedByEveryCommand) {
    const KnownRigFile rig;
    const std::string pairs = rig.writePairs(kPoints);
    const std::string good = readFile(rig.folder / "rig.zcov");
    std::string changed = good;
    changed[1000] = static_cast<char>(changed[1000] ^ 1);
    const KnownRigFile other;
    TruePair moved = rig.known.pair;
    moved.right.pose.t[2] += 1.0;
    const struct {
        std::string bytes;
        const char* words;
    } cases[] = {{good.substr(0, 1000), "1000 bytes instead of 2856"},
                 {"", "not a covariance"},
                 {"any text", "not a covariance"},
                 {changed, "checksum is wrong"}};
    const auto refusedByAll = [&](const char* words) {
        for (const std::vector<std::string>& arguments : {std::vector<std::string>{"info", rig.path},
                                                          {"triangulate", rig.path, pairs, "-o", rig.file("o.csv")},
                                                          {"length", rig.path, pairs},
                                                          {"epiline", rig.path, "--point", "1,1", "--in", "left"}}) {
            expectOneLine(zelm(arguments), 1, {rig.file("rig.zcov"), words});
        }
    };
    for (const auto& c : cases) {
        writeFile(rig.folder / "rig.zcov", c.bytes);
        refusedByAll(c.words);
    }
    writeFile(rig.folder / "rig.zcov", good);
    writePair(moved, rig.folder / "rig.zcal");
    refusedByAll("belongs to another calibration");
    EXPECT_FALSE(fs::exists(rig.folder / "o.csv"));
}

TEST(CovarianceFile, InfoTellsIt) {
    const KnownRigFile rig(5000.0);
    const CommandResult text = zelm({"info", rig.path});
    ASSERT_EQ(text.status, 0) << text.errors;
    EXPECT_NE(text.output.find("noise of a dot 0.0500 px, 5000 degrees of freedom"), std::string::npos) << text.output;
    const CommandResult run = zelm({"info", rig.path, "--json"});
    ASSERT_EQ(run.status, 0) << run.errors;
    const Json json = Json::parse(run.output).at("covariance");
    EXPECT_EQ(json.at("noise"), 0.05);
    EXPECT_EQ(json.at("freedom"), 5000.0);
    ASSERT_EQ(json.at("parameters").size(), 26U);
    ASSERT_EQ(json.at("units").size(), 26U);
    EXPECT_EQ(json.at("parameters")[0], "left.fx");
    EXPECT_EQ(json.at("parameters")[14], "relative.rotation.x");
    EXPECT_EQ(json.at("parameters")[25], "frame.translation.z");
    EXPECT_EQ(json.at("units")[0], "pixel");
    EXPECT_EQ(json.at("units")[14], "radian");
    // Full precision.
    const Json& triangle = json.at("lowerTriangle");
    ASSERT_EQ(triangle.size(), 351U);
    std::size_t next = 0;
    for (std::size_t row = 0; row < 26; ++row) {
        for (std::size_t column = 0; column <= row; ++column) {
            EXPECT_EQ(triangle[next++], rig.known.covariance.matrix[26 * row + column]);
        }
    }
}

TEST(CovarianceFile, UnitsOfAParallelCamera) {
    const KnownRigFile rig(0.0, ZELM_CAMERA_PARALLEL);
    const Json json = Json::parse(zelm({"info", rig.path, "--json"}).output).at("covariance");
    EXPECT_EQ(json.at("units")[0], "pixel/length");
    EXPECT_EQ(json.at("units")[5], "1/length^2");
    EXPECT_EQ(json.at("units")[7], "pixel");
}

TEST(CovarianceFile, MatchesTellWhatTheCalibrationAddsToTheirDepths) {
    const PlanePictures pictures(trueRig(240, 180), slantedPlane());
    TruePair pair;
    pair.left = calibrated(pictures.rig.left, pictures.rig.leftPose);
    pair.right = calibrated(pictures.rig.right, pictures.rig.rightPose);
    pair.width = 240;
    pair.height = 180;
    const KnownRigFile rig(pair, 0.0);
    writeFile(rig.folder / "L.pgm", pgmBytes({240, 180, {pictures.left.begin(), pictures.left.end()}}));
    writeFile(rig.folder / "R.pgm", pgmBytes({240, 180, {pictures.right.begin(), pictures.right.end()}}));
    const CommandResult run = zelm({"match", rig.path, rig.file("L.pgm"), rig.file("R.pgm"), "--grid", "24", "--depth",
                                    "420,500", "-o", rig.file("points.csv"), "--ply", rig.file("points.ply")});
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_NE(run.output.find("the calibration adds a standard deviation"), std::string::npos) << run.output;
    const auto rows = readCsv(rig.folder / "points.csv");
    ASSERT_EQ(rows[0][13], "depth_sigma_calibration");
    const std::string ply = readFile(rig.folder / "points.ply");
    const std::size_t body = ply.find("property float depth_sigma_calibration\nend_header\n") + 50;
    constexpr std::size_t kVertex = 23;  // bytes
    std::size_t found = 0;
    for (std::size_t i = 1; i < rows.size(); ++i) {
        ASSERT_EQ(rows[i].size(), 15U);
        if (rows[i][14] != "ok") {
            EXPECT_EQ(rows[i][13], "");
            continue;
        }
        const double left[] = {std::stod(rows[i][1]), std::stod(rows[i][2])};
        const double right[] = {std::stod(rows[i][3]), std::stod(rows[i][4])};
        double depths[2];
        auto record = emptyRecord<ZelmMeasurePointCovariances>();
        record.depths = depths;
        ASSERT_EQ(zelmMeasurePointCovariance(rig.known.rig.get(), 1, left, right, nullptr, &record), ZELM_OK);
        EXPECT_NEAR(std::stod(rows[i][13]), depths[1], 0.006 * depths[1]);  // written with three digits
        float ofVertex = 0.0F;
        ASSERT_GE(ply.size(), body + kVertex * (found + 1));
        std::memcpy(&ofVertex, ply.data() + body + kVertex * found + 19, 4);
        EXPECT_NEAR(ofVertex, depths[1], 0.001 * depths[1]);  // the pixels that they are of are written with four
        found += 1;
    }
    EXPECT_GT(found, 10U);
    EXPECT_EQ(ply.size(), body + kVertex * found);
}

TEST(CovarianceFile, OutputsNeverTakeItsPlace) {
    const KnownRigFile rig;
    const std::string pairs = rig.writePairs(kPoints);
    const std::string before = readFile(rig.folder / "rig.zcov");
    expectOneLine(zelm({"triangulate", rig.path, pairs, "-o", rig.file("rig.zcov")}), 2, {"rig.zcov", "is an input"});
    expectOneLine(zelm({"length", rig.path, pairs, "-o", rig.file("rig.zcov")}), 2, {"rig.zcov", "is an input"});
    EXPECT_EQ(readFile(rig.folder / "rig.zcov"), before);
}

}  // namespace
}  // namespace zelmtest
