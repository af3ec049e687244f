// `zelm triangulate` and `zelm epiline`: what they write is what the library computes, for every form of input file and
// for pairs that give no point. Bad input is in measureBadInputTest.cpp, accuracy in measureSceneTest.cpp.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "measureFixtures.h"

namespace zelmtest {
namespace {

// Ten significant digits of coordinates of up to 1000 units, six decimals of pixels and degrees.
constexpr double kCoordinateDigits = 1e-6;
constexpr double kErrorDigits = 1e-6;

struct RigFile {
    TemporaryFolder folder;
    TruePair pair;
    std::string path;
    Handle handle;

    explicit RigFile(std::int32_t leftModel = 0, std::int32_t rightModel = 0)
        : pair(makePair(leftModel, rightModel)), path(writePair(pair, folder / "rig.zcal")) {
        loadPair(pair, &handle);
    }
    [[nodiscard]] std::string file(const std::string& name) const { return (folder / name).string(); }
    CommandResult triangulate(const std::string& csv, const std::vector<std::string>& more = {}) const {
        writeFile(folder / "pairs.csv", csv);
        std::vector<std::string> arguments{"triangulate", path, file("pairs.csv"), "-o", file("points.csv")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return zelm(arguments);
    }
    [[nodiscard]] std::vector<PointRow> points() const { return readPoints(folder / "points.csv"); }
};

// Pixel pairs with noise, so that the rays miss each other.
std::vector<std::pair<Point2d, Point2d>> noisyPairs(const TruePair& pair, int count) {
    Random random(20260131);
    std::vector<std::pair<Point2d, Point2d>> pairs;
    for (int i = 0; i < count; ++i) {
        const Point3d X = randomWorldPoint(random);
        Point2d l = pair.project('L', X);
        Point2d r = pair.project('R', X);
        l.y += random.uniform(-1.0, 1.0);
        r.y += random.uniform(-1.0, 1.0);
        pairs.emplace_back(l, r);
    }
    return pairs;
}

std::string csvOf(const std::vector<std::pair<Point2d, Point2d>>& pairs) {
    std::ostringstream csv;
    csv.precision(17);
    for (const auto& [l, r] : pairs) {
        csv << l.x << ',' << l.y << ',' << r.x << ',' << r.y << '\n';
    }
    return csv.str();
}

// The direction from a camera to a point, as the library's pose says it.
Point3d rayOf(const zelm::CalibratedCamera& camera, const Point3d& X) {
    const double* R = camera.pose.R;
    if (camera.model == 2) {
        return {R[6], R[7], R[8]};
    }
    double inCamera[3];
    for (int i = 0; i < 3; ++i) {
        inCamera[i] = R[3 * i] * X.x + R[3 * i + 1] * X.y + R[3 * i + 2] * X.z + camera.pose.t[i];
    }
    return {R[0] * inCamera[0] + R[3] * inCamera[1] + R[6] * inCamera[2],
            R[1] * inCamera[0] + R[4] * inCamera[1] + R[7] * inCamera[2],
            R[2] * inCamera[0] + R[5] * inCamera[1] + R[8] * inCamera[2]};
}

double angleAt(const TruePair& pair, const Point3d& X) {
    const Point3d a = rayOf(pair.left, X);
    const Point3d b = rayOf(pair.right, X);
    const double cosine = (a.x * b.x + a.y * b.y + a.z * b.z) / (distance(a, {}) * distance(b, {}));
    return std::acos(cosine) * 180.0 / std::acos(-1.0);
}

void expectLibraryResults(const RigFile& rig, const std::vector<std::pair<Point2d, Point2d>>& pairs) {
    const std::vector<PointRow> rows = rig.points();
    ASSERT_EQ(rows.size(), pairs.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(i);
        const auto& [l, r] = pairs[i];
        Point3d X{};
        ASSERT_EQ(zelm2ViewChange2Dto3D(rig.handle.calib, &l, &r, &X), ZELM_OK);
        EXPECT_EQ(rows[i].id, std::to_string(i + 1));
        EXPECT_EQ(rows[i].status, "ok");
        ASSERT_EQ(rows[i].numbers.size(), 6U);
        EXPECT_LE(distance(positionOf(rows[i]), X), kCoordinateDigits);
        Point2d seen{};
        ASSERT_EQ(zelm2ViewChange3Dto2D(rig.handle.calib, 'L', &X, &seen), ZELM_OK);
        EXPECT_NEAR(rows[i].numbers[3], std::hypot(seen.x - l.x, seen.y - l.y), kErrorDigits);
        ASSERT_EQ(zelm2ViewChange3Dto2D(rig.handle.calib, 'R', &X, &seen), ZELM_OK);
        EXPECT_NEAR(rows[i].numbers[4], std::hypot(seen.x - r.x, seen.y - r.y), kErrorDigits);
        EXPECT_NEAR(rows[i].numbers[5], angleAt(rig.pair, X), kErrorDigits);
    }
}

TEST(Triangulate, EveryRowIsTheLibrarysResult) {
    for (const std::int32_t leftModel : {0, 1, 2}) {
        SCOPED_TRACE(leftModel);
        const RigFile rig(leftModel, 0);
        const auto pairs = noisyPairs(rig.pair, 100);
        const CommandResult run = rig.triangulate(csvOf(pairs));
        ASSERT_EQ(run.status, 0) << run.errors;
        EXPECT_EQ(run.errors, "");
        expectLibraryResults(rig, pairs);
    }
}

TEST(Triangulate, PlyHoldsTheSamePoints) {
    const RigFile rig;
    const CommandResult run = rig.triangulate(csvOf(noisyPairs(rig.pair, 25)), {"--ply", rig.file("points.ply")});
    ASSERT_EQ(run.status, 0) << run.errors;
    const std::vector<PointRow> rows = rig.points();
    const std::vector<std::string> lines = splitLines(readFile(rig.folder / "points.ply"));
    const std::vector<std::string> header{"ply",
                                          "format ascii 1.0",
                                          "comment 25 of 25 pixel pairs; row counts them from 1",
                                          "comment errors in pixels, angle between the rays in degrees",
                                          "comment units plate units",
                                          "element vertex 25",
                                          "property double x",
                                          "property double y",
                                          "property double z",
                                          "property float error_left",
                                          "property float error_right",
                                          "property float angle",
                                          "property int row",
                                          "end_header"};
    ASSERT_EQ(lines.size(), header.size() + 25);
    EXPECT_TRUE(std::equal(header.begin(), header.end(), lines.begin()));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        std::istringstream line(lines[header.size() + i]);
        for (const double expected : rows[i].numbers) {
            double number = 0.0;
            line >> number;
            EXPECT_EQ(number, expected) << i;
        }
        std::size_t row = 0;
        line >> row;
        EXPECT_EQ(row, i + 1);
        EXPECT_TRUE((line >> std::ws).eof());
    }
}

TEST(Triangulate, PairsWithoutAPointAreReportedInTheirPlace) {
    const RigFile rig;
    const auto good = noisyPairs(rig.pair, 2);
    const std::string csv =
        csvOf({good[0]}) + "1e9,1e9,640,480\n" + csvOf({good[1]}) + csvOf({{{1240, 480}, {40, 480}}});
    const CommandResult run = rig.triangulate(csv, {"--ply", rig.file("points.ply"), "--json"});
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(std::count(run.errors.begin(), run.errors.end(), '\n'), 1);
    EXPECT_NE(run.errors.find("2 of 4 pixel pairs gave no point: 1 behind, 1 outside"), std::string::npos)
        << run.errors;
    const std::vector<PointRow> rows = rig.points();
    ASSERT_EQ(rows.size(), 4U);
    EXPECT_EQ(rows[0].status, "ok");
    EXPECT_EQ(rows[1].status, "outside");
    EXPECT_TRUE(rows[1].numbers.empty());
    EXPECT_EQ(rows[2].status, "ok");
    EXPECT_EQ(rows[3].status, "behind");  // rays that part from each other meet behind the cameras
    EXPECT_EQ(rows[3].numbers.size(), 6U);
    EXPECT_NE(readFile(rig.folder / "points.ply").find("element vertex 2\n"), std::string::npos);
    const Json json = Json::parse(run.output);
    EXPECT_EQ(json.at("pairs"), 4);
    EXPECT_EQ(json.at("points"), 2);
    EXPECT_EQ(json.at("statuses").at("outside"), 1);
}

TEST(Triangulate, FilesOfEveryFormGiveTheSamePoints) {
    const RigFile rig;
    const struct {
        const char* name;
        const char* csv;
        const char* id;
    } cases[] = {
        {"plain", "650.5,480.25,630,470\n", "1"},
        {"no last newline, blanks", "  650.5 , 480.25,\t630, +470 ", "1"},
        {"carriage returns", "650.5,480.25,630,470\r\n\r\n", "1"},
        {"byte order mark, header", "\xef\xbb\xbfxL,yL,xR,yR\n650.5,480.25,630,470\n", "1"},
        {"id first", "corner 7,650.5,480.25,630,470\n", "corner 7"},
        {"header in another order", "yR,note,id,XL,yl,xR\n470,nothing,P4,650.5,480.25,630\n", "P4"},
        {"semicolons", "# pixels\n\nid;xL;yL;xR;yR\na,\"b\";650.5;480.25;630;470\n", "\"a,\"\"b\"\"\""},
        {"quotes", "\"id\",\"xL\",\"yL\",\"xR\",yR\n \"a,\"\"b\"\"\" ,\"650.5\",480.25,\"630\",\"470\"\n",
         "\"a,\"\"b\"\"\""},
        {"quoted separators of another kind", "\"a,b,c\";650.5;480.25;630;470\n", "\"a,b,c\""},
        {"tabs", "650.5\t480.25\t630\t4.7e2\n", "1"},
    };
    const std::vector<std::string> anyPair{"--max-error", "100"};
    ASSERT_EQ(rig.triangulate(cases[0].csv, anyPair).status, 0);
    const std::vector<double> expected = rig.points().at(0).numbers;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const CommandResult run = rig.triangulate(c.csv, anyPair);
        ASSERT_EQ(run.status, 0) << run.errors;
        const std::vector<PointRow> rows = rig.points();
        ASSERT_EQ(rows.size(), 1U);
        EXPECT_EQ(rows[0].id, c.id);
        EXPECT_EQ(rows[0].numbers, expected);
    }
}

TEST(Triangulate, ManyRowsComeOutInTheirOrder) {
    const RigFile rig;
    const auto pairs = noisyPairs(rig.pair, 20000);
    ASSERT_EQ(rig.triangulate(csvOf(pairs)).status, 0);
    expectLibraryResults(rig, pairs);
}

TEST(Triangulate, BrightDotsAreMeasuredToo) {
    const RigFile rig;
    const Point3d X{10.0, 5.0, 3.0};
    for (const bool bright : {false, true}) {
        for (const char side : {'L', 'R'}) {
            Pgm pgm{1280, 960, std::string(1280U * 960U, static_cast<char>(bright ? 40 : 200))};
            const Point2d centre = rig.pair.project(side, X);
            cover(pgm, std::round(centre.x), std::round(centre.y), 9.3, bright ? 200 : 40);
            writeFile(rig.folder / (std::string(1, side) + ".pgm"), pgmBytes(pgm));
        }
        const Point2d l = rig.pair.project('L', X);
        const Point2d r = rig.pair.project('R', X);
        const CommandResult run = rig.triangulate(csvOf({{l, r}}), {"--dots", rig.file("L.pgm"), rig.file("R.pgm"),
                                                                    "--polarity", bright ? "bright" : "dark"});
        ASSERT_EQ(run.status, 0) << run.errors;
        const Point2d atL{std::round(l.x), std::round(l.y)};
        const Point2d atR{std::round(r.x), std::round(r.y)};
        Point3d expected{};
        ASSERT_EQ(zelm2ViewChange2Dto3D(rig.handle.calib, &atL, &atR, &expected), ZELM_OK);
        // Discs symmetric about a pixel: their centre to a hundredth of a pixel, 0.003 units a hundredth.
        EXPECT_LE(distance(positionOf(rig.points().at(0)), expected), 0.02);
    }
}

TEST(Epiline, LinesAreThoseOfTheLibrary) {
    const RigFile rig;
    Random random(7);
    for (const char* in : {"left", "right"}) {
        SCOPED_TRACE(in);
        const char target = in[0] == 'l' ? 'R' : 'L';
        const Point3d X = randomWorldPoint(random);
        const Point2d from = rig.pair.project(target == 'R' ? 'L' : 'R', X);
        char text[80];
        std::snprintf(text, sizeof(text), "%.17g,%.17g", from.x, from.y);
        const CommandResult run = zelm({"epiline", rig.path, "--point", text, "--point", "5,-400", "--in", in, "--json",
                                        "--csv", rig.file("lines.csv")});
        ASSERT_EQ(run.status, 0) << run.errors;
        const Json json = Json::parse(run.output);
        EXPECT_EQ(json.at("image"), target == 'L' ? "left" : "right");
        ASSERT_EQ(json.at("lines").size(), 2U);
        const Json& line = json.at("lines")[0];
        Zelm2ViewEpiLine expected{};
        ASSERT_EQ(zelm2ViewCalcEpiLine(rig.handle.calib, target, &from, &expected), ZELM_OK);
        EXPECT_EQ(line.at("a"), expected.a);
        EXPECT_EQ(line.at("b"), expected.b);
        EXPECT_EQ(line.at("c"), expected.c);
        EXPECT_EQ(line.at("from"), Json::array({expected.x0, expected.y0}));
        EXPECT_EQ(line.at("to"), Json::array({expected.x1, expected.y1}));
        EXPECT_LE(distanceFrom(line, rig.pair.projectIdeal(target, X)), 1e-8);  // pixels
        EXPECT_EQ(json.at("lines")[1].at("visible"), false);
        EXPECT_FALSE(json.at("lines")[1].contains("from"));
        const std::vector<std::string> csv = splitLines(readFile(rig.folder / "lines.csv"));
        ASSERT_EQ(csv.size(), 3U);
        EXPECT_EQ(csv[0], "x,y,a,b,c,x0,y0,x1,y1");
        EXPECT_EQ(csv[2].substr(csv[2].size() - 4), ",,,,");
    }
}

TEST(Epiline, TextSaysWhatTheLinesAreLinesOf) {
    const RigFile rig;
    const CommandResult run = zelm({"epiline", rig.path, "--point", "640,480", "--in", "left"});
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_NE(run.output.find("lines of the undistorted right image for raw pixels of the left image"),
              std::string::npos);
    EXPECT_NE(run.output.find("(640, 480): "), std::string::npos);
}

}  // namespace
}  // namespace zelmtest
