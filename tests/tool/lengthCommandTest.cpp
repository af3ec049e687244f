// `zelm length`: the library's lengths, in every form of output, and what is refused.
#include <gtest/gtest.h>

#include <cmath>

#include "knownRigFile.h"

namespace zelmtest {
namespace {

const std::vector<std::pair<std::string, Point3d>> kPoints{
    {"a", {-50.0, -30.0, 0.0}}, {"b", {50.0, -30.0, 0.0}}, {"c", {50.0, 30.0, -40.0}}};

// Of the library, for the ends given.
struct Expected {
    std::vector<double> lengths, image, calibration, deviations, expanded;

    Expected(const KnownRigFile& rig, const std::vector<std::int64_t>& ends)
        : lengths(ends.size() / 2),
          image(lengths.size()),
          calibration(lengths.size()),
          deviations(lengths.size()),
          expanded(lengths.size()) {
        std::vector<Point3d> points;
        for (const auto& [id, X] : kPoints) {
            points.push_back(X);
        }
        const PairPixels pixels = pixelsOf(rig.known.pair, points);
        auto record = emptyRecord<ZelmMeasureLengths>();
        record.lengths = lengths.data();
        record.image = image.data();
        record.calibration = calibration.data();
        record.deviations = deviations.data();
        record.expanded = expanded.data();
        EXPECT_EQ(zelmMeasureLengths(rig.known.rig.get(), pixels.count(), pixels.left.data(), pixels.right.data(),
                                     nullptr, static_cast<std::int64_t>(lengths.size()), ends.data(), &record),
                  ZELM_OK);
    }
};

void expectClose(double actual, double expected, double tolerance) {
    EXPECT_NEAR(actual, expected, tolerance * std::fabs(expected));
}

TEST(LengthCommand, LengthsAreTheLibrarys) {
    const KnownRigFile rig(25.0);
    const CommandResult run = zelm({"length", rig.path, rig.writePairs(kPoints), "--between", "a,b", "--between", "c,a",
                                    "--json", "-o", rig.file("lengths.csv")});
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.errors, "");
    const Expected expected(rig, {0, 1, 2, 0});
    expectClose(expected.lengths[0], 100.0, 1e-9);
    const Json json = Json::parse(run.output);
    EXPECT_EQ(json.at("noise"), 0.05);
    ASSERT_EQ(json.at("lengths").size(), 2U);
    const auto rows = readCsv(rig.folder / "lengths.csv");
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0], (std::vector<std::string>{"from", "to", "length", "U95", "sigma", "noise_sigma",
                                                 "calibration_sigma", "status"}));
    for (std::size_t i = 0; i < 2; ++i) {
        const Json& l = json.at("lengths")[i];
        EXPECT_EQ(l.at("from"), i == 0 ? "a" : "c");
        EXPECT_EQ(l.at("to"), i == 0 ? "b" : "a");
        EXPECT_EQ(l.at("status"), "ok");
        // The file of pairs holds all digits of the pixels.
        expectClose(l.at("length"), expected.lengths[i], 1e-12);
        expectClose(l.at("U95"), expected.expanded[i], 1e-9);
        expectClose(l.at("sigma"), expected.deviations[i], 1e-9);
        expectClose(l.at("noiseSigma"), expected.image[i], 1e-9);
        expectClose(l.at("calibrationSigma"), expected.calibration[i], 1e-9);
        EXPECT_EQ(rows[i + 1][0], l.at("from"));
        expectClose(std::stod(rows[i + 1][2]), expected.lengths[i], 1e-9);
        expectClose(std::stod(rows[i + 1][3]), expected.expanded[i], 1e-5);
        EXPECT_EQ(rows[i + 1][7], "ok");
        // Student's t of 25 degrees of freedom.
        expectClose(expected.expanded[i], 2.059539 * expected.deviations[i], 1e-5);
    }
}

TEST(LengthCommand, WithoutNamesAllLengthsAreMeasured) {
    const KnownRigFile rig;
    const CommandResult run = zelm({"length", rig.path, rig.writePairs(kPoints)});
    ASSERT_EQ(run.status, 0) << run.errors;
    const std::vector<std::string> lines = splitLines(run.output);
    ASSERT_EQ(lines.size(), 5U) << run.output;
    EXPECT_EQ(lines[1].substr(0, 26), "a     b       100.000000  ");
    EXPECT_EQ(lines[3].substr(0, 6), "b     ");
    EXPECT_NE(lines[4].find("U95"), std::string::npos);
}

TEST(LengthCommand, NoiseOfThePixels) {
    const KnownRigFile rig;
    const std::string pairs = rig.writePairs(kPoints);
    const auto sigma = [&](const std::vector<std::string>& more) {
        std::vector<std::string> arguments{"length", rig.path, pairs, "--between", "a,b", "--json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Json::parse(zelm(arguments).output).at("lengths")[0];
    };
    const Json one = sigma({});
    const Json two = sigma({"--noise", "0.1"});
    expectClose(two.at("noiseSigma"), 2.0 * one.at("noiseSigma").get<double>(), 1e-9);
    EXPECT_EQ(two.at("calibrationSigma"), one.at("calibrationSigma"));
}

TEST(LengthCommand, IdsMayHoldCommas) {
    const KnownRigFile rig;
    const std::string plain = readFile(rig.writePairs(kPoints));
    std::string quoted = plain;
    quoted.replace(quoted.find("\na,"), 3, "\n\"x,1\",");
    quoted.replace(quoted.find("\nb,"), 3, "\n\"y,2\",");
    writeFile(rig.folder / "pairs.csv", quoted);
    const CommandResult run = zelm({"length", rig.path, rig.file("pairs.csv"), "--between", "x,1,y,2", "--json"});
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(Json::parse(run.output).at("lengths")[0].at("to"), "y,2");
}

TEST(LengthCommand, AFileNamesLengths) {
    const KnownRigFile rig;
    const std::string pairs = rig.writePairs(kPoints);
    const auto lengths = [&](const std::vector<std::string>& more) {
        std::vector<std::string> arguments{"length", rig.path, pairs, "--json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const CommandResult run = zelm(arguments);
        EXPECT_EQ(run.status, 0) << run.errors;
        return Json::parse(run.output).at("lengths");
    };
    const Json expected = lengths({"--between", "a,b", "--between", "c,a"});
    for (const char* text : {"from,to\na,b\nc,a\n", "a,b\nc,a", "# wanted\n\nto;note;from\r\n\"b\";x;a\r\na;;c\r\n",
                             "From,To,Length\na,b,100\nc,a,1\n"}) {
        writeFile(rig.folder / "lengths.csv", text);
        EXPECT_EQ(lengths({"--lengths", rig.file("lengths.csv")}), expected) << text;
    }
    writeFile(rig.folder / "lengths.csv", "c,a\n");
    EXPECT_EQ(lengths({"--between", "a,b", "--lengths", rig.file("lengths.csv")}), expected);
}

TEST(LengthCommand, RowsOfTheFileThatNameNoLengthAreRefused) {
    const KnownRigFile rig;
    const std::string pairs = rig.writePairs(kPoints);
    const std::string list = rig.file("lengths.csv");
    for (const auto& [text, words] :
         {std::pair("from,to\na,b\na,q\n", "line 3: "), std::pair("a,q\n", "id \"q\""),
          std::pair("from,to\n\na,a\n", "line 3: from the point \"a\" to itself"),
          std::pair("from,to\na\n", "line 2: 1 field: expected from,to"),
          std::pair("a,b,100\n", "line 1: 3 fields: expected from,to"), std::pair("from,to\n\"a,b\n", "line 2: "),
          std::pair("from,to\n", "no lengths"), std::pair("", "no lengths")}) {
        writeFile(rig.folder / "lengths.csv", text);
        expectOneLine(zelm({"length", rig.path, pairs, "--lengths", list, "-o", rig.file("o.csv")}), 1, {list, words});
        EXPECT_FALSE(fs::exists(rig.folder / "o.csv"));
    }
    writeFile(rig.folder / "lengths.csv", "a,b\n");
    expectOneLine(zelm({"length", rig.path, pairs, "--lengths", list, "-o", list}), 2, {list, "is an input"});
    expectOneLine(zelm({"length", rig.path, pairs, "--lengths", rig.file("none.csv")}), 1, {"none.csv"});
}

// The uncertainty that is stated follows from noise; rays that pass each other by much more show that it is not all.
TEST(LengthCommand, RaysThatPassEachOtherAreAWarning) {
    const KnownRigFile rig;  // whose noise is 0.05 pixels
    const std::string pairs = rig.writePairs(kPoints);
    const std::string good = readFile(pairs);
    const auto measured = [&](double offset, const std::vector<std::string>& more) {
        const Point2d right = rig.known.pair.project('R', {10.0, 5.0, 0.0});
        const Point2d left = rig.known.pair.project('L', {10.0, 5.0, 0.0});
        std::ostringstream row;
        row.precision(17);
        row << good << "d," << left.x << ',' << left.y + offset << ',' << right.x << ',' << right.y << '\n';
        writeFile(pairs, row.str());
        for (const char* command : {"length", "triangulate"}) {
            std::vector<std::string> arguments{command, rig.path, pairs, "-o", rig.file("o.csv"), "--quiet"};
            arguments.insert(arguments.end(), more.begin(), more.end());
            const CommandResult run = zelm(arguments);
            EXPECT_EQ(run.status, 0) << run.errors;
            const bool isWarned =
                run.errors.find("the rays of 1 of 4 pixel pairs pass each other, by ") != std::string::npos &&
                run.errors.find("(id d)") != std::string::npos;
            EXPECT_EQ(isWarned, run.errors != "") << run.errors;
            EXPECT_EQ(isWarned, offset > 0.3 && more.empty()) << command << ' ' << offset << ": " << run.errors;
        }
    };
    measured(0.0, {});
    measured(0.25, {});  // the most that six deviations leave is 0.3 pixels
    measured(1.0, {});
    measured(1.0, {"--noise", "0.3"});
}

TEST(LengthCommand, ShortLengthsAndLostEndsAreWarnings) {
    const KnownRigFile rig;
    std::vector<std::pair<std::string, Point3d>> points = kPoints;
    points.emplace_back("near", Point3d{-49.99, -30.0, 0.0});
    std::string csv = readFile(rig.writePairs(points));
    writeFile(rig.folder / "pairs.csv", csv + "lost,1e9,1e9,640,480\n");
    const CommandResult run = zelm({"length", rig.path, rig.file("pairs.csv"), "--between", "a,near", "--between",
                                    "a,lost", "--between", "a,b", "-o", rig.file("lengths.csv"), "--json"});
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_NE(run.errors.find("1 of 3 lengths lack a good point at an end (1 outside)"), std::string::npos)
        << run.errors;
    EXPECT_NE(run.errors.find("1 of 3 lengths are no longer than the noise of their ends"), std::string::npos);
    const auto rows = readCsv(rig.folder / "lengths.csv");
    EXPECT_EQ(rows[1][7], "short");
    EXPECT_EQ(rows[1][3], "");
    expectClose(std::stod(rows[1][2]), 0.01, 1e-5);
    EXPECT_EQ(splitLines(readFile(rig.folder / "lengths.csv"))[2], "a,lost,,,,,,outside");
    EXPECT_FALSE(Json::parse(run.output).at("lengths")[1].contains("length"));
}

TEST(LengthCommand, Refusals) {
    const KnownRigFile rig;
    const std::string pairs = rig.writePairs(kPoints);
    const auto refused = [&](const std::vector<std::string>& more, int status, const std::vector<std::string>& words) {
        std::vector<std::string> arguments{"length", rig.path, pairs, "-o", rig.file("o.csv")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        expectOneLine(zelm(arguments), status, words);
        EXPECT_FALSE(fs::exists(rig.folder / "o.csv"));
    };
    refused({"--between", "a"}, 2, {"--between a", "FROM,TO"});
    refused({"--between", "a,q"}, 1, {"pairs.csv", "no point has the id \"q\""});
    refused({"--between", "q,a"}, 1, {"pairs.csv", "no point has the id \"q\""});
    refused({"--between", "a,a"}, 2, {"--between a,a", "to itself"});
    refused({"--noise", "0"}, 2, {"--noise"});
    refused({"--noise", "-1"}, 2, {"--noise"});
    writeFile(rig.folder / "pairs.csv", "a,640,480,640,480\na,600,480,600,480\n");
    refused({}, 1, {"pairs.csv", "two points have the id \"a\""});
    writeFile(rig.folder / "pairs.csv", "640,480,640,480\n");
    refused({}, 1, {"pairs.csv", "one point"});
    writeFile(rig.folder / "pairs.csv", "1e9,1e9,640,480\n1e9,1e9,640,480\n");
    refused({}, 1, {"pairs.csv", "none of 1 lengths"});
    std::string many;
    for (int i = 0; i < 101; ++i) {
        many += "640,480,640,480\n";
    }
    writeFile(rig.folder / "pairs.csv", many);
    refused({}, 2, {"pairs.csv", "101 points", "--between"});
    refused({"--between", "1,x"}, 1, {"no point has the id \"x\""});
}

}  // namespace
}  // namespace zelmtest
