// Pixel pairs that are no true ones: wrong pairs, pixels outside the images, dots that are half hidden. Each is told by
// its status in its place, by `zelm triangulate` and by `zelm length`.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "imageFile.h"
#include "measureFixtures.h"

namespace zelmtest {
namespace {

struct PointStatuses : ::testing::Test {
    TemporaryFolder folder;
    std::vector<ScenePair> pairs = scenePairs();  // true pixels of the sample's scene

    [[nodiscard]] std::string file(const std::string& name) const { return (folder / name).string(); }
    // The pairs as p0, p1, ...
    void write() const {
        std::ostringstream csv;
        csv.precision(17);
        csv << "id,xL,yL,xR,yR\n";
        for (std::size_t i = 0; i < pairs.size(); ++i) {
            csv << 'p' << i << ',' << pairs[i].left.x << ',' << pairs[i].left.y << ',' << pairs[i].right.x << ','
                << pairs[i].right.y << '\n';
        }
        writeFile(folder / "pairs.csv", csv.str());
    }
    CommandResult run(const std::string& command, const std::vector<std::string>& more = {}) const {
        write();
        std::vector<std::string> arguments{command, deskRigFile(), file("pairs.csv"), "-o", file("out.csv"), "--json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return zelm(arguments);
    }
};

TEST_F(PointStatuses, WrongPairsAndPixelsOutsideAreToldInTheirPlace) {
    pairs[5].left.y += 37.0;
    pairs[7].left.x = -3.0;
    pairs[9].right.y = 959.6;
    pairs[11].left.y += 1.0;  // pixels that are read by hand
    const CommandResult result = run("triangulate", {"--ply", file("out.ply")});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_NE(result.errors.find("3 of 79 pixel pairs gave no point: 1 mismatch, 2 outside"), std::string::npos)
        << result.errors;
    EXPECT_EQ(result.errors.find("is not the calibration"), std::string::npos) << result.errors;
    const std::vector<PointRow> rows = readPoints(folder / "out.csv");
    ASSERT_EQ(rows.size(), pairs.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].id, "p" + std::to_string(i));
        EXPECT_EQ(rows[i].status, i == 5 ? "mismatch" : i == 7 || i == 9 ? "outside" : "ok") << i;
    }
    // Half of 37 pixels in each image; no deviations, which noise would state far too small.
    EXPECT_NEAR(rows[5].numbers.at(3), 18.5, 1.0);
    EXPECT_NEAR(rows[5].numbers.at(4), 18.5, 1.0);
    EXPECT_TRUE(rows[5].deviations.empty());
    EXPECT_TRUE(rows[7].numbers.empty());
    EXPECT_NE(readFile(folder / "out.ply").find("element vertex 76\n"), std::string::npos);
    const Json json = Json::parse(result.output);
    EXPECT_EQ(json.at("statuses").at("mismatch"), 1);
    EXPECT_EQ(json.at("statuses").at("outside"), 2);
    EXPECT_NEAR(json.at("maxError").get<double>(), 6.0 / std::sqrt(12.0), 1e-3);
}

TEST_F(PointStatuses, TheLimitIsWhatIsAskedFor) {
    pairs[5].left.y += 3.0;  // an error of 2.1 pixels
    const auto statusWith = [&](const std::vector<std::string>& more) {
        const CommandResult result = run("triangulate", more);
        EXPECT_EQ(result.status, 0) << result.errors;
        return readPoints(folder / "out.csv").at(5).status;
    };
    EXPECT_EQ(statusWith({}), "mismatch");
    EXPECT_EQ(statusWith({"--max-error", "2.5"}), "ok");
    EXPECT_EQ(statusWith({"--max-error", "2.0"}), "mismatch");
    EXPECT_EQ(statusWith({"--noise", "0.4"}), "ok");  // six deviations are 2.4 pixels
    expectOneLine(run("triangulate", {"--max-error", "0"}), 2, {"--max-error"});
}

TEST_F(PointStatuses, AWrongRigIsNamedWhenMostPairsMiss) {
    for (std::size_t i = 0; i < pairs.size(); i += 4) {
        pairs[i + 1 < pairs.size() ? i + 1 : i].right.y += 30.0;
        pairs[i + 2 < pairs.size() ? i + 2 : i].right.y += 30.0;
        pairs[i + 3 < pairs.size() ? i + 3 : i].right.y += 30.0;
    }
    const CommandResult most = run("triangulate");
    ASSERT_EQ(most.status, 0) << most.errors;
    for (const char* words : {"miss each other by more than 1.73 px, by 21", "is not the calibration of these cameras",
                              "columns or rows exchanged", "zelm rectify --pairs"}) {
        EXPECT_NE(most.errors.find(words), std::string::npos) << words << ": " << most.errors;
    }
    for (ScenePair& pair : pairs) {
        pair.right.y += 300.0;
    }
    fs::remove(folder / "out.csv");
    expectOneLine(run("triangulate"), 1, {file("pairs.csv"), "none of 79 pixel pairs", "is not the calibration"});
    EXPECT_FALSE(fs::exists(folder / "out.csv"));
}

TEST_F(PointStatuses, LengthsToSuchPointsHaveTheirStatus) {
    pairs[1].left.y += 37.0;
    pairs[2].right.x = 1280.0;
    const CommandResult result = run("length", {"--between", "p0,p3", "--between", "p0,p1", "--between", "p2,p3"});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_NE(result.errors.find("2 of 3 lengths lack a good point at an end (1 mismatch, 1 outside)"),
              std::string::npos)
        << result.errors;
    const Json lengths = Json::parse(result.output).at("lengths");
    EXPECT_EQ(lengths[0].at("status"), "ok");
    EXPECT_EQ(lengths[1].at("status"), "mismatch");
    EXPECT_EQ(lengths[2].at("status"), "outside");
    EXPECT_FALSE(lengths[1].contains("length"));
    EXPECT_EQ(splitLines(readFile(folder / "out.csv"))[2], "p0,p1,,,,,,mismatch");
}

// The targets of the scene, of which images may be painted over.
struct HiddenTargets : PointStatuses {
    zelm::tool::Picture left = zelm::tool::readPicture(sampleFile("scene_left.png"));
    zelm::tool::Picture right = zelm::tool::readPicture(sampleFile("scene_right.png"));

    HiddenTargets() {
        std::erase_if(pairs, [](const ScenePair& pair) { return !pair.isTarget; });
    }
    CommandResult measure(const std::string& command, const std::vector<std::string>& more = {}) {
        for (const auto& [picture, name] : {std::pair(&left, "left.png"), std::pair(&right, "right.png")}) {
            writeFile(folder / name, zelm::tool::encodePicture(*picture, name));
        }
        std::vector<std::string> arguments{"--dots", file("left.png"), file("right.png")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run(command, arguments);
    }
};

TEST_F(HiddenTargets, DotsOfTwoTargetsAreAMismatch) {
    std::swap(pairs[0].right, pairs[4].right);
    const CommandResult result = measure("triangulate");
    ASSERT_EQ(result.status, 0) << result.errors;
    const std::vector<PointRow> rows = readPoints(folder / "out.csv");
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].status == "ok", i != 0 && i != 4) << i << ' ' << rows[i].status;
    }
}

// What hides a target: gray with a texture over one side of it, so that about this share of its outline is covered.
void hide(zelm::tool::Picture& picture, const Point2d& centre, double radius, double share, double direction) {
    const double cut = radius * std::cos(std::acos(-1.0) * share);
    const int reach = static_cast<int>(2.4 * radius);
    for (int y = static_cast<int>(centre.y) - reach; y <= static_cast<int>(centre.y) + reach; ++y) {
        for (int x = static_cast<int>(centre.x) - reach; x <= static_cast<int>(centre.x) + reach; ++x) {
            const double along = (x - centre.x) * std::cos(direction) + (y - centre.y) * std::sin(direction);
            if (along > cut && std::hypot(x - centre.x, y - centre.y) < reach) {
                picture.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                               static_cast<std::size_t>(x)] =
                    static_cast<std::uint8_t>(80 + (37 * x + 61 * y) % 50 / 2);
            }
        }
    }
}

TEST_F(HiddenTargets, AreRightWithinTheirDeviationsOrHidden) {
    const Json truth = Json::parse(readFile(sampleFile("scene_truth.json")));
    std::vector<double> radii;  // pixels
    for (const Json& point : truth.at("points")) {
        if (point.at("kind") == "target") {
            radii.push_back(1688.0 * point.at("dot_radius").get<double>() / point.at("left").at("depth").get<double>());
        }
    }
    const zelm::tool::Picture whole = left;
    const std::vector<ScenePair> seen = pairs;
    std::size_t ok = 0;
    std::size_t hidden = 0;
    for (const double share : {0.1, 0.3}) {
        for (const double direction : {1.92, 5.06}) {
            left = whole;
            for (std::size_t i = 0; i < pairs.size(); ++i) {
                hide(left, seen[i].left, radii[i], share, direction);
                pairs[i].left.x = seen[i].left.x - share * radii[i] * std::cos(direction);
                pairs[i].left.y = seen[i].left.y - share * radii[i] * std::sin(direction);
            }
            const CommandResult result = measure("triangulate");
            ASSERT_EQ(result.status, 0) << result.errors;
            const std::vector<PointRow> rows = readPoints(folder / "out.csv");
            for (std::size_t i = 0; i < rows.size(); ++i) {
                SCOPED_TRACE(std::to_string(i) + " hidden by " + std::to_string(share));
                hidden += rows[i].status == "hidden" ? 1U : 0U;
                if (rows[i].status != "ok") {
                    continue;
                }
                ok += 1;
                const std::vector<double>& s = rows[i].deviations;
                ASSERT_EQ(s.size(), 15U);  // nine deviations, two centres, two shares
                // 2.5 deviations of all three coordinates together are the most of 1200 targets.
                EXPECT_LE(distance(positionOf(rows[i]), seen[i].position), 4.0 * std::hypot(s[0], s[1], s[2]));
                // The other image shows all of it.
                EXPECT_LT(s[13], s[14]);
                EXPECT_NEAR(s[9], seen[i].left.x, 1.0);
                EXPECT_NEAR(s[10], seen[i].left.y, 1.0);
            }
        }
    }
    EXPECT_GE(ok, 66U);     // of 76
    EXPECT_GE(hidden, 1U);  // one that stands in a shadow
}

}  // namespace
}  // namespace zelmtest
