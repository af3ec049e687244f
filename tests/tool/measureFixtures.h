// What the tests of measuring with the tool share: the calibrated desk rig and its scene, and rigs of exact parameters.
#ifndef ZELM_TEST_MEASURE_FIXTURES_H
#define ZELM_TEST_MEASURE_FIXTURES_H

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "pairFixture.h"
#include "toolFixtures.h"

namespace zelmtest {

inline std::string sampleFile(const std::string& name) {
    return std::string(ZELM_SOURCE_DIR) + "/samples/desk-rig/" + name;
}

// The rig.zcal of the sample, calibrated by the tool: by a test that ctest runs before, which says where, else once for
// each test program.
inline const std::string& deskRigFile() {
    static const TemporaryFolder folder;
    static const std::string path = [] {
        if (const char* const made = std::getenv("ZELM_DESK_RIG"); made != nullptr) {
            return std::string(made);
        }
        const CommandResult made =
            zelm({"calibrate", "--plate", sampleFile("truth.json"), "--left", sampleFile("left_*.png"), "--right",
                  sampleFile("right_*.png"), "-o", (folder / "rig").string(), "--quiet"});
        EXPECT_EQ(made.status, 0) << made.errors;
        return (folder / "rig" / "rig.zcal").string();
    }();
    return path;
}

inline void loadFile(const std::string& path, Handle* handle) {
    const std::string bytes = readFile(path);
    ASSERT_EQ(zelm2ViewLoadCalibData(static_cast<std::int32_t>(bytes.size()),
                                     reinterpret_cast<const unsigned char*>(bytes.data()), &handle->calib),
              ZELM_OK);
}

// A calibration file of a pair of exact parameters.
inline std::string writePair(const TruePair& pair, const fs::path& path) {
    const std::vector<unsigned char> block = blockOf(pair);
    writeFile(path, std::string(block.begin(), block.end()));
    return path.string();
}

struct ScenePair {
    Point2d left{};
    Point2d right{};
    Point3d position{};
    bool isTarget = false;
};

// The marked points of the sample's scene.
inline const std::vector<ScenePair>& scenePairs() {
    static const std::vector<ScenePair> pairs = [] {
        std::vector<ScenePair> list;
        const Json truth = Json::parse(readFile(sampleFile("scene_truth.json")));
        for (const Json& point : truth.at("points")) {
            const Json& l = point.at("left").at("pixel");
            const Json& r = point.at("right").at("pixel");
            const Json& X = point.at("world");
            list.push_back({{l[0], l[1]}, {r[0], r[1]}, {X[0], X[1], X[2]}, point.at("kind") == "target"});
        }
        return list;
    }();
    return pairs;
}

// One line of a CSV file of points.
struct PointRow {
    std::string id;
    std::vector<double> numbers;     // X, Y, Z, both errors, the angle; none for a failure
    std::vector<double> deviations;  // of a rig whose covariance is known
    std::string status;
};

inline std::vector<std::string> splitLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

inline std::vector<PointRow> readPoints(const fs::path& path) {
    std::vector<PointRow> rows;
    std::vector<std::string> lines = splitLines(readFile(path));
    EXPECT_FALSE(lines.empty()) << path;
    constexpr std::ptrdiff_t kNumbers = 6;
    std::ptrdiff_t columns = 0;
    if (!lines.empty()) {
        const std::string& header = lines.front();
        EXPECT_TRUE(header.starts_with("id,X,Y,Z,error_left_px,error_right_px,angle_deg,")) << header;
        EXPECT_TRUE(header.ends_with(",status")) << header;
        columns = std::count(header.begin(), header.end(), ',');
        lines.erase(lines.begin());
    }
    for (const std::string& line : lines) {
        PointRow row;
        // From the back: an id may be quoted and hold commas.
        std::vector<std::string> fields;
        std::size_t end = line.size();
        for (std::ptrdiff_t i = 0; i < columns; ++i) {
            const std::size_t comma = line.rfind(',', end - 1);
            fields.insert(fields.begin(), line.substr(comma + 1, end - comma - 1));
            end = comma;
        }
        row.id = line.substr(0, end);
        row.status = fields.back();
        fields.pop_back();
        for (const std::string& field : fields) {
            if (!field.empty()) {
                row.numbers.push_back(std::stod(field));
            }
        }
        if (std::ssize(row.numbers) > kNumbers) {
            row.deviations.assign(row.numbers.begin() + kNumbers, row.numbers.end());
            row.numbers.resize(kNumbers);
        }
        rows.push_back(row);
    }
    return rows;
}

inline double distance(const Point3d& a, const Point3d& b) {
    return std::sqrt((a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y) + (a.z - b.z) * (a.z - b.z));
}

inline Point3d positionOf(const PointRow& row) {
    return {row.numbers.at(0), row.numbers.at(1), row.numbers.at(2)};
}

// Distance of a point from a line of the tool's JSON.
inline double distanceFrom(const Json& line, const Point2d& p) {
    return std::fabs(line.at("a").get<double>() * p.x + line.at("b").get<double>() * p.y + line.at("c").get<double>());
}

}  // namespace zelmtest

#endif
