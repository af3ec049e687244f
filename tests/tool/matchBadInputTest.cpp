// What `zelm match` and the comparison of its points refuse: one line that names what is wrong and what to do, the
// right exit code, and no files.
#include <gtest/gtest.h>

#include "matchFixtures.h"

namespace zelmtest {
namespace {

const Texture kTexture(2.2);
const Plane kPlane{0.1, 0.0, 0.0};

// A scene made once; every test gets the command lines that it spoils.
const PlaneScene& scene() {
    static const PlaneScene made(smallPair(0, 0), kPlane, kTexture);
    return made;
}

std::vector<std::string> names() {
    std::vector<std::string> list;
    for (const auto& entry : fs::recursive_directory_iterator(scene().folder / "")) {
        list.push_back(entry.path().string());
    }
    std::sort(list.begin(), list.end());
    return list;
}

void refused(const std::vector<std::string>& more, int status, const std::vector<std::string>& words) {
    SCOPED_TRACE(words.front());
    const std::vector<std::string> before = names();
    expectOneLine(scene().match(more), status, words);
    EXPECT_EQ(names(), before);
}

void refusedWith(const std::string& rig, const std::string& left, const std::string& right, int status,
                 const std::vector<std::string>& words) {
    SCOPED_TRACE(words.front());
    const std::vector<std::string> before = names();
    expectOneLine(zelm({"match", rig, left, right, "-o", scene().file("o.csv")}), status, words);
    EXPECT_EQ(names(), before);
}

TEST(MatchBadInput, Windows) {
    refused({"--window", "20"}, 2, {"--window 20", "odd"});
    refused({"--window", "5"}, 2, {"--window"});
    TruePair tiny = smallPair(0, 0);
    tiny.height = 20;
    const TemporaryFolder folder;
    const std::string rig = writePair(tiny, folder / "rig.zcal");
    const Pgm blank{240, 20, std::string(240U * 20U, 'a')};
    writeFile(folder / "a.pgm", pgmBytes(blank));
    refusedWith(rig, (folder / "a.pgm").string(), (folder / "a.pgm").string(), 2,
                {"--window 21", "larger than the left image of 240 x 20", "smaller"});
}

TEST(MatchBadInput, DepthRanges) {
    refused({"--depth", "500,400"}, 2, {"--depth 500,400", "empty range"});
    refused({"--depth", "500,500"}, 2, {"--depth 500,500", "empty range"});
    refused({"--depth", "-5,400"}, 2, {"--depth -5,400", "greater than 0"});
    refused({"--depth", "400"}, 2, {"--depth 400", "MIN,MAX"});
    refused({"--depth", "near,far"}, 2, {"--depth near,far", "MIN,MAX"});
    // So near that no ray of the one is in the other's image.
    refused({"--depth", "10,20"}, 1, {"rig.zcal", "no epipolar line", "10 to 20", "--depth"});
}

TEST(MatchBadInput, CamerasThatSeeNothingInCommon) {
    TruePair apart = smallPair(0, 0);
    apart.right.pose = truePose(0.0, 0.02, 0.0, 5.0, 3.0, -2000.0);  // in front of the plate, and looks away from it
    const TemporaryFolder folder;
    refusedWith(writePair(apart, folder / "rig.zcal"), scene().file("left.pgm"), scene().file("right.pgm"), 1,
                {"no epipolar line", "nothing in common"});
}

TEST(MatchBadInput, ParallelCameras) {
    const TemporaryFolder folder;
    refusedWith(writePair(smallPair(2, 2), folder / "rig.zcal"), scene().file("left.pgm"), scene().file("right.pgm"), 1,
                {"rig.zcal", "parallel"});
}

TEST(MatchBadInput, CalibrationsAndImages) {
    const TemporaryFolder folder;
    const std::string block = readFile(scene().folder / "rig.zcal");
    writeFile(folder / "cut.zcal", block.substr(0, block.size() - 9));
    writeFile(folder / "small.pgm", "P5\n4 3\n255\n123456789012");
    writeFile(folder / "cut.pgm", readFile(scene().folder / "left.pgm").substr(0, 500));
    const std::string rig = scene().file("rig.zcal");
    const std::string left = scene().file("left.pgm");
    const std::string right = scene().file("right.pgm");
    refusedWith((folder / "cut.zcal").string(), left, right, 1, {"cut.zcal", "bytes"});
    refusedWith((folder / "none.zcal").string(), left, right, 1, {"none.zcal", "cannot open"});
    refusedWith(rig, (folder / "small.pgm").string(), right, 1, {"small.pgm", "4 x 3", "240 x 180"});
    refusedWith(rig, left, (folder / "small.pgm").string(), 1, {"small.pgm", "right camera"});
    refusedWith(rig, left, (folder / "cut.pgm").string(), 1, {"cut.pgm"});
}

TEST(MatchBadInput, PointLists) {
    const TemporaryFolder folder;
    const auto listRefused = [&](const std::string& csv, const std::vector<std::string>& words) {
        writeFile(folder / "list.csv", csv);
        refused({"--points", (folder / "list.csv").string()}, 1, words);
    };
    listRefused("", {"list.csv", "no pixels", "x,y or id,x,y"});
    listRefused("1,2\nthree,4\n", {"list.csv: line 2", "\"three\" is not a number"});
    listRefused("1,2\n1,2,3\n", {"list.csv: line 2", "3 fields"});
    listRefused("1,2,3,4\n", {"list.csv: line 1", "4 fields"});
    listRefused("x,z\n1,2\n", {"list.csv: line 1", "does not name all of x, y"});
    listRefused("1,nan\n", {"list.csv: line 1", "\"nan\""});
    refused({"--points", (folder / "none.csv").string()}, 1, {"none.csv", "cannot open"});
    refused({"--points", (folder / "list.csv").string(), "--grid", "4"}, 2, {"--grid"});
    refused({"--dense", "--grid", "4"}, 2, {"--"});
}

TEST(MatchBadInput, PicturesWithoutTexture) {
    const TemporaryFolder folder;
    writeFile(folder / "blank.pgm", pgmBytes({240, 180, std::string(240U * 180U, 'a')}));
    const std::string blank = (folder / "blank.pgm").string();
    refusedWith(scene().file("rig.zcal"), blank, blank, 1, {"blank.pgm", "none of", "texture", "--precision"});
    const std::vector<std::string> before = names();
    expectOneLine(zelm({"match", scene().file("rig.zcal"), blank, blank, "-o", scene().file("o.csv"), "--dense"}), 1,
                  {"blank.pgm", "texture"});
    EXPECT_EQ(names(), before);
}

TEST(MatchBadInput, PicturesOfDifferentThings) {
    const PlaneScene other(smallPair(0, 0), kPlane, Texture(2.2, 99));
    refusedWith(scene().file("rig.zcal"), scene().file("left.pgm"), other.file("right.pgm"), 1,
                {"left.pgm", "none of", "right.pgm", "no_match", "belong together"});
}

// Where most of the right picture shows something else, what is found deserves doubt.
TEST(MatchBadInput, FewFoundPointsAreAWarning) {
    const PlaneScene other(smallPair(0, 0), kPlane, Texture(2.2, 99));
    Pgm mixed = readPgmFile(other.file("right.pgm"));
    const Pgm right = readPgmFile(scene().file("right.pgm"));
    const std::size_t part = right.pixels.size() / 4;
    mixed.pixels.replace(0, part, right.pixels, 0, part);
    const TemporaryFolder folder;
    writeFile(folder / "mixed.pgm", pgmBytes(mixed));
    const std::string csv = (folder / "o.csv").string();
    const CommandResult few = zelm({"match", scene().file("rig.zcal"), scene().file("left.pgm"),
                                    (folder / "mixed.pgm").string(), "-o", csv, "-q"});
    EXPECT_EQ(few.status, 0);
    EXPECT_NE(few.errors.find("may be chance: do the images belong together"), std::string::npos) << few.errors;
    EXPECT_EQ(scene().match({"-q"}).errors, "");
}

TEST(MatchBadInput, PointsOutsideTheImage) {
    const TemporaryFolder folder;
    const std::string list = (folder / "list.csv").string();
    writeFile(list, "-5,5\n1e300,9\n3,90\n");
    refused({"--points", list}, 1, {list, "all of 3 points", "outside", "half a window of 21 pixels"});
}

TEST(MatchBadInput, MoreThreadsThanTheMachineHasAreNoComplaint) {
    EXPECT_EQ(scene().match({"--jobs", "1000", "--grid", "40", "-q"}).errors, "");
}

TEST(MatchBadInput, NamesOfOutputs) {
    const std::string csv = scene().file("points.csv");
    refused({"--ply", csv}, 2, {"points.csv", "two outputs"});
    refused({"--ply", scene().file("new.png"), "--picture", scene().file("./new.png")}, 2, {"new.png", "two outputs"});
    refused({"--picture", scene().file("depth.jpg")}, 2, {"depth.jpg", ".png"});
    refused({"--ply", scene().file("left.pgm")}, 2, {"left.pgm", "is an input"});
    refused({"--ply", scene().file("left.pgm/x.ply")}, 2, {"left.pgm", "output folder"});
}

TEST(MatchBadInput, ComparisonOfPoints) {
    const TemporaryFolder folder;
    const std::string truth = sampleFile("scene_truth.json");
    const auto compareRefused = [&](const std::string& csv, const std::string& truthFile, int status,
                                    const std::vector<std::string>& words) {
        SCOPED_TRACE(csv);
        writeFile(folder / "points.csv", csv);
        expectOneLine(zelm({"compare", deskRigFile(), truthFile, "--points", (folder / "points.csv").string()}), status,
                      words);
    };
    compareRefused("", truth, 1, {"points.csv", "no points"});
    compareRefused("a,b\n1,2\n", truth, 1, {"points.csv: line 1", "no column xL"});
    compareRefused("xL,yL,depth,status\n", truth, 1, {"points.csv", "no points"});
    compareRefused("xL,yL,depth,status\n1,2,,ok\n", truth, 1, {"points.csv: line 2"});
    compareRefused("xL,yL,depth,status\n1,2,3,ok\n", sampleFile("truth.json"), 2, {"truth.json", "depth_map"});
    expectOneLine(zelm({"compare", scene().file("rig.zcal"), truth, "--points", (folder / "points.csv").string()}), 1,
                  {"scene_depth_left.png", "1280 x 960", "240 x 180"});
}

}  // namespace
}  // namespace zelmtest
