// Matching of planes rendered in closed form: every camera model, slanted surfaces, points of a list, dense matching,
// and what is written of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "imageFile.h"
#include "matchFixtures.h"

namespace zelmtest {
namespace {

// Texture and plane of most tests: waves of 6 units and more are 22 pixels and more; with a parallel camera of 3
// pixels a unit, 18.
const Texture kTexture(2.2);
const Plane kSlanted{0.35, -0.2, 4.0};

// The largest distance of a found point from the plane.
double worstDistance(const std::vector<MatchLine>& points, const Plane& plane) {
    double worst = 0.0;
    for (const MatchLine& p : points) {
        if (p.isOk()) {
            worst = std::max(worst, std::fabs(plane.distanceOf(p.position())));
        }
    }
    return worst;
}

std::size_t countOk(const std::vector<MatchLine>& points) {
    return static_cast<std::size_t>(
        std::count_if(points.begin(), points.end(), [](const MatchLine& p) { return p.isOk(); }));
}

std::size_t countSeen(const PlaneScene& scene, const std::vector<MatchLine>& points) {
    return static_cast<std::size_t>(std::count_if(points.begin(), points.end(), [&](const MatchLine& p) {
        return scene.isSeen({p.number("xL"), p.number("yL")});
    }));
}

TEST(MatchPlane, EveryCameraModelFindsTheSlantedPlane) {
    for (const auto& [left, right] : {std::pair(0, 0), std::pair(1, 0), std::pair(0, 1), std::pair(2, 0)}) {
        SCOPED_TRACE("models " + std::to_string(left) + " and " + std::to_string(right));
        const PlaneScene scene(smallPair(left, right), kSlanted, kTexture);
        const CommandResult run = scene.match({"--grid", "12"});
        ASSERT_EQ(run.status, 0) << run.errors;
        const std::vector<MatchLine> points = scene.points();
        ASSERT_EQ(points.size(), 20U * 15U);
        const std::size_t seen = countSeen(scene, points);
        EXPECT_GT(seen, 80U);
        EXPECT_GE(countOk(points), seen);
        // Rounded gray levels (0.29 of noise) and bilinear interpolation of waves of 8 pixels and more, some hundredths
        // of a pixel; a pixel along the line is 1 to 1.3 units in depth.
        EXPECT_LE(worstDistance(points, kSlanted), 0.1);
        for (const MatchLine& p : points) {
            if (p.isOk()) {
                EXPECT_LE(p.number("error_left_px"), 1e-3);
                EXPECT_LE(p.number("error_right_px"), 1e-3);
                EXPECT_GE(p.number("score"), 0.95);
                EXPECT_GT(p.number("depth_sigma"), 0.0);
                EXPECT_LE(p.number("depth_sigma"), 0.1);
            }
        }
    }
}

TEST(MatchPlane, DepthIsTheDistanceAlongTheLeftAxis) {
    const PlaneScene scene(smallPair(0, 0), kSlanted, kTexture);
    ASSERT_EQ(scene.match({"--grid", "30"}).status, 0);
    const ZelmCameraExtrinsics& pose = scene.pair.left.pose;
    for (const MatchLine& p : scene.points()) {
        if (p.isOk()) {
            const Point3d X = p.position();
            const double depth = pose.R[6] * X.x + pose.R[7] * X.y + pose.R[8] * X.z + pose.t[2];
            EXPECT_NEAR(p.number("depth"), depth, 1e-5);  // of numbers with nine digits
        }
    }
}

TEST(MatchPlane, ExpectedDeviationsFitTheErrorsThatNoiseMakes) {
    const PlaneScene scene(smallPair(0, 0), kSlanted, kTexture, 4.0);
    ASSERT_EQ(scene.match({"--grid", "6"}).status, 0);
    double squares = 0.0;
    std::size_t count = 0;
    for (const MatchLine& p : scene.points()) {
        if (p.isOk()) {
            const Point3d truth = pointOn(kSlanted, scene.pair, 'L', {p.number("xL"), p.number("yL")});
            const ZelmCameraExtrinsics& pose = scene.pair.left.pose;
            const double depth = pose.R[6] * truth.x + pose.R[7] * truth.y + pose.R[8] * truth.z + pose.t[2];
            const double e = (p.number("depth") - depth) / p.number("depth_sigma");
            squares += e * e;
            count += 1;
        }
    }
    ASSERT_GT(count, 300U);
    // Errors in units of their expected deviation. Neighbouring windows share pixels, so a few hundred points tell the
    // RMS to about a fifth; interpolation smooths the noise, which the expectation does not know.
    const double rms = std::sqrt(squares / static_cast<double>(count));
    EXPECT_GE(rms, 0.5);
    EXPECT_LE(rms, 1.5);
}

TEST(MatchPlane, PointsOfAListComeInItsOrder) {
    const PlaneScene scene(smallPair(0, 0), kSlanted, kTexture);
    writeFile(scene.folder / "left.csv", "id,x,y\ncorner,110.25,90.75\nfar,1e9,1e9\nb,90,70\nedge,2,90\n");
    const CommandResult run = scene.match({"--points", scene.file("left.csv"), "--json"});
    ASSERT_EQ(run.status, 0) << run.errors;
    const std::vector<MatchLine> points = scene.points();
    ASSERT_EQ(points.size(), 4U);
    const char* const ids[] = {"corner", "far", "b", "edge"};
    const char* const statuses[] = {"ok", "outside", "ok", "outside"};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(points[i].text("id"), ids[i]);
        EXPECT_EQ(points[i].text("status"), statuses[i]);
    }
    EXPECT_EQ(points[0].text("xL"), "110.25");
    EXPECT_EQ(points[1].text("X"), "");
    // Where the right camera sees the true point, a few hundredths of a pixel of interpolation beside it.
    const Point2d truth = scene.pair.project('R', pointOn(kSlanted, scene.pair, 'L', {110.25, 90.75}));
    EXPECT_NEAR(points[0].number("xR"), truth.x, 0.05);
    EXPECT_NEAR(points[0].number("yR"), truth.y, 0.05);
    const Json json = Json::parse(run.output);
    EXPECT_EQ(json.at("points"), 4);
    EXPECT_EQ(json.at("found"), 2);
    EXPECT_EQ(json.at("statuses").at("outside"), 2);
}

TEST(MatchPlane, ListsOfEveryFormAreRead) {
    const PlaneScene scene(smallPair(0, 0), kSlanted, kTexture);
    for (const char* csv :
         {"110,90\n", "\xef\xbb\xbfX,Y\r\n110,90\r\n", "# pixels\n7;110;90\n", "y\tz\tx\n90\t1\t110"}) {
        SCOPED_TRACE(csv);
        writeFile(scene.folder / "left.csv", csv);
        ASSERT_EQ(scene.match({"--points", scene.file("left.csv")}).status, 0);
        const std::vector<MatchLine> points = scene.points();
        ASSERT_EQ(points.size(), 1U);
        EXPECT_EQ(points[0].text("xL"), "110");
        EXPECT_EQ(points[0].text("yL"), "90");
        EXPECT_TRUE(points[0].isOk());
    }
}

TEST(MatchPlane, DepthLimitsKeepOtherDepthsOut) {
    const PlaneScene scene(smallPair(0, 0), kSlanted, kTexture);
    ASSERT_EQ(scene.match({"--grid", "12", "--depth", "400,500"}).status, 0);
    const std::size_t all = countOk(scene.points());
    EXPECT_LE(worstDistance(scene.points(), kSlanted), 0.1);
    // The plane lies at 450 to 470 units; nothing is left of it behind 480.
    const CommandResult run = scene.match({"--grid", "12", "--depth", "480,600"});
    EXPECT_GT(all, 150U);
    EXPECT_EQ(run.status, 1) << countOk(scene.points());
    EXPECT_NE(run.errors.find("none of"), std::string::npos) << run.errors;
}

TEST(MatchPlane, EveryPixelOfADensePairIsFilled) {
    const PlaneScene scene(smallPair(0, 0), kSlanted, kTexture);
    const CommandResult run = scene.match({"--dense", "--picture", scene.file("depth.png")});
    ASSERT_EQ(run.status, 0) << run.errors;
    const std::vector<MatchLine> points = scene.points();
    // A window that shows too little texture for the default precision is rare in this one.
    const std::size_t seen = countSeen(scene, points);
    EXPECT_GT(seen, 15000U);
    EXPECT_GE(static_cast<double>(countOk(points)), 0.98 * static_cast<double>(seen));
    EXPECT_LE(worstDistance(points, kSlanted), 0.15);
    EXPECT_TRUE(std::is_sorted(points.begin(), points.end(), [](const MatchLine& a, const MatchLine& b) {
        return std::pair(a.number("yL"), a.number("xL")) < std::pair(b.number("yL"), b.number("xL"));
    }));
}

TEST(MatchPlane, RepeatedPatternsAreNotTakenForMatches) {
    // Stripes across the epipolar lines, 2.4 units apart: every 9 pixels the same again.
    const auto stripes = [](double x, double y) { return 128.0 + 60.0 * std::sin(x * 2.618 + 0.05 * y); };
    const PlaneScene scene(smallPair(0, 0), kSlanted, stripes);
    const CommandResult run = scene.match({"--grid", "12"});
    if (run.status == 1) {
        EXPECT_NE(run.errors.find("ambiguous"), std::string::npos) << run.errors;
        return;
    }
    // Near the border of the right image there may be room for one period alone; such a point looks like any other.
    const std::vector<MatchLine> points = scene.points();
    const auto ambiguous =
        std::count_if(points.begin(), points.end(), [](const MatchLine& p) { return p.text("status") == "ambiguous"; });
    EXPECT_GE(static_cast<std::size_t>(ambiguous), 4 * countOk(points));
    EXPECT_LE(countOk(points), 20U);
}

TEST(MatchPlane, PlyHoldsTheSamePointsWithTheirGrayValues) {
    const PlaneScene scene(smallPair(0, 0), kSlanted, kTexture);
    ASSERT_EQ(scene.match({"--grid", "20", "--ply", scene.file("points.ply")}).status, 0);
    const std::vector<MatchLine> points = scene.points();
    const Pgm left = readPgmFile(scene.folder / "left.pgm");
    const std::string ply = readFile(scene.folder / "points.ply");
    const std::size_t body = ply.find("end_header\n") + 11;
    const std::string vertices = "element vertex " + std::to_string(countOk(points)) + "\n";
    EXPECT_EQ(ply.rfind("ply\nformat binary_little_endian 1.0\n", 0), 0U);
    EXPECT_NE(ply.find(vertices), std::string::npos);
    ASSERT_EQ(ply.size(), body + 19 * countOk(points));
    std::size_t at = body;
    for (const MatchLine& p : points) {
        if (!p.isOk()) {
            continue;
        }
        float xyz[3];
        float sigma = 0.0F;
        std::memcpy(xyz, ply.data() + at, 12);
        std::memcpy(&sigma, ply.data() + at + 15, 4);
        // Both are the same number, rounded to single precision and to nine digits.
        EXPECT_NEAR(xyz[0], p.number("X"), 1e-7 * std::fabs(p.number("X")));
        EXPECT_NEAR(xyz[1], p.number("Y"), 1e-7 * std::fabs(p.number("Y")));
        EXPECT_NEAR(xyz[2], p.number("Z"), 1e-7 * std::fabs(p.number("Z")));
        EXPECT_NEAR(sigma, p.number("depth_sigma"), 0.01 * p.number("depth_sigma"));  // written with three digits
        const auto pixel = static_cast<std::size_t>(p.number("yL") * left.width + p.number("xL"));
        for (std::size_t channel = 12; channel < 15; ++channel) {
            EXPECT_EQ(ply[at + channel], left.pixels[pixel]);
        }
        at += 19;
    }
}

TEST(MatchPlane, PictureShowsDepthsAsColoursBesideAScale) {
    const PlaneScene scene(smallPair(0, 0), kSlanted, kTexture);
    ASSERT_EQ(scene.match({"--grid", "20", "--picture", scene.file("depth.png"), "--unit", "mm"}).status, 0);
    const auto picture = std::get<zelm::tool::ColourPicture>(zelm::tool::readAnyPicture(scene.folder / "depth.png"));
    ASSERT_EQ(picture.height, 180);
    ASSERT_GT(picture.width, 240 + 50);
    const auto channelAt = [&](double x, double y, std::size_t channel) {
        const auto pixel =
            static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) + static_cast<std::size_t>(x);
        return static_cast<int>(picture.argb[4 * pixel + channel]);
    };
    // Near points are yellow, far ones violet: the red channel falls, strictly where the scale's colours are far apart.
    const MatchLine* nearest = nullptr;
    const MatchLine* farthest = nullptr;
    const std::vector<MatchLine> points = scene.points();
    for (const MatchLine& p : points) {
        const double x = p.number("xL");
        const double y = p.number("yL");
        if (!p.isOk()) {
            EXPECT_EQ(channelAt(x, y, 1), channelAt(x, y, 3));  // the gray background
            continue;
        }
        EXPECT_NE(channelAt(x, y, 2), channelAt(x, y, 3));
        nearest = nearest == nullptr || p.number("depth") < nearest->number("depth") ? &p : nearest;
        farthest = farthest == nullptr || p.number("depth") > farthest->number("depth") ? &p : farthest;
    }
    ASSERT_NE(nearest, nullptr);
    EXPECT_GT(channelAt(nearest->number("xL"), nearest->number("yL"), 1), 200);
    EXPECT_LT(channelAt(farthest->number("xL"), farthest->number("yL"), 2), 60);
    // White figures on the scale.
    int white = 0;
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 240; x < picture.width; ++x) {
            white += channelAt(x, y, 1) > 240 && channelAt(x, y, 2) > 240 && channelAt(x, y, 3) > 240 ? 1 : 0;
        }
    }
    EXPECT_GT(white, 100);
}

}  // namespace
}  // namespace zelmtest
