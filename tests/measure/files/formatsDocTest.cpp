// docs/formats.md: its tables of bytes and its example are what the code does.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "calibBlock.h"
#include "measureRigs.h"
#include "projection.h"
#include "rigBlock.h"

namespace zelmtest {
namespace {

namespace block = zelm::block;
using zelm::measure::Matrix3;
using zelm::measure::Vector3;

std::vector<std::string> documentLines() {
    std::ifstream file(ZELM_SOURCE_DIR "/docs/formats.md");
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    EXPECT_GT(lines.size(), 100U);
    return lines;
}

// "name = numbers" of the example's blocks.
std::map<std::string, std::vector<double>> example() {
    std::map<std::string, std::vector<double>> found;
    bool isInside = false;
    for (const std::string& line : documentLines()) {
        if (line.starts_with("```")) {
            isInside = line == "```example";
        } else if (isInside) {
            const std::size_t equals = line.find(" = ");
            EXPECT_NE(equals, std::string::npos) << line;
            std::istringstream numbers(line.substr(equals + 3));
            for (double number = 0.0; numbers >> number;) {
                found[line.substr(0, equals)].push_back(number);
            }
        }
    }
    return found;
}

// Each cell of a table's row, without spaces around it.
std::vector<std::string> cellsOf(const std::string& row) {
    std::vector<std::string> cells;
    std::istringstream stream(row.substr(1));
    for (std::string cell; std::getline(stream, cell, '|');) {
        const std::size_t begin = cell.find_first_not_of(' ');
        const std::size_t end = cell.find_last_not_of(' ');
        cells.push_back(begin == std::string::npos ? "" : cell.substr(begin, end - begin + 1));
    }
    return cells;
}

// The rows below the table's head that begins so.
std::vector<std::vector<std::string>> table(const std::string& head) {
    std::vector<std::vector<std::string>> rows;
    bool isInside = false;
    for (const std::string& line : documentLines()) {
        if (line.starts_with(head)) {
            isInside = true;
        } else if (isInside && !line.starts_with("|")) {
            break;
        } else if (isInside && line.find("---") == std::string::npos) {
            rows.push_back(cellsOf(line));
        }
    }
    EXPECT_FALSE(rows.empty()) << head;
    return rows;
}

TEST(Formats, TheBlocksTableIsTheCodes) {
    const auto rows = table("| byte | bytes | what |");
    const std::vector<std::pair<std::string, std::string>> offsets{
        {std::to_string(block::kViews), "4"},
        {std::to_string(block::kCameras), std::to_string(sizeof(Zelm2ViewCameraDesc))},
        {std::to_string(block::kLeftRectifying), std::to_string(sizeof(zelm::RectifyingPair))},
        {std::to_string(block::kRightRectifying), std::to_string(sizeof(zelm::RectifyingPair))},
        {std::to_string(block::kFundamental), std::to_string(sizeof(zelm::FundamentalPair))},
        {std::to_string(block::kLeftIntrinsics), std::to_string(sizeof(ZelmCameraIntrinsics))},
        {std::to_string(block::kRightIntrinsics), std::to_string(sizeof(ZelmCameraIntrinsics))},
        {std::to_string(block::kPoses), "n x " + std::to_string(block::kPoseBytes)},
        {std::to_string(block::kPoses) + " + n x " + std::to_string(block::kPoseBytes),
         "n x " + std::to_string(block::kPoseBytes)}};
    ASSERT_EQ(rows.size(), offsets.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i][0], offsets[i].first);
        EXPECT_EQ(rows[i][1], offsets[i].second);
    }
    EXPECT_EQ(block::size(7), 7 * 240 + 812);
}

TEST(Formats, TheRecordsTablesAreTheCodes) {
    const auto intrinsics = table("| double of the intrinsics | what |");
    const std::map<std::string, std::size_t> places{
        {"alpha", offsetof(ZelmCameraIntrinsics, alpha)}, {"beta", offsetof(ZelmCameraIntrinsics, beta)},
        {"gamma", offsetof(ZelmCameraIntrinsics, gamma)}, {"cx", offsetof(ZelmCameraIntrinsics, cx)},
        {"cy", offsetof(ZelmCameraIntrinsics, cy)},       {"theta, radians", offsetof(ZelmCameraIntrinsics, theta)},
        {"k1", offsetof(ZelmCameraIntrinsics, k1)},       {"k2", offsetof(ZelmCameraIntrinsics, k2)}};
    std::size_t named = 0;
    for (const auto& row : intrinsics) {
        if (const auto found = places.find(row[1]); found != places.end()) {
            EXPECT_EQ(std::stoul(row[0]) * sizeof(double), found->second) << row[1];
            ++named;
        }
    }
    EXPECT_EQ(named, places.size());
    const auto pose = table("| double of a pose | what |");
    ASSERT_EQ(pose.size(), 3U);
    EXPECT_EQ(pose[1][0], "9 to 11");
    EXPECT_EQ(offsetof(ZelmCameraExtrinsics, t), 9 * sizeof(double));
    EXPECT_EQ(offsetof(ZelmCameraExtrinsics, r), 12 * sizeof(double));
}

class FormatsExample : public testing::Test {
protected:
    std::map<std::string, std::vector<double>> numbers = example();

    [[nodiscard]] zelm::measure::RigCamera camera(const std::string& side) {
        const std::vector<double>& A = numbers.at(side + " A");
        const std::vector<double>& k = numbers.at(side + " k");
        const std::vector<double>& r = numbers.at(side + " r");
        const std::vector<double>& t = numbers.at(side + " t");
        zelm::measure::RigCamera made;
        made.width = 1280;
        made.height = 960;
        made.intrinsics = zelm::measure::intrinsicsRecord(0, {A[0], A[1], A[4], A[2], A[5], k[0], k[1]});
        made.poses = {zelm::measure::poseRecordOfVector({r[0], r[1], r[2]}, {t[0], t[1], t[2]})};
        return made;
    }
    void expectNear(const std::string& name, const double* found, double tolerance) {
        const std::vector<double>& shown = numbers.at(name);
        for (std::size_t i = 0; i < shown.size(); ++i) {
            EXPECT_NEAR(found[i], shown[i], tolerance) << name << " " << i;
        }
    }

    static constexpr double kLastDigit = 1e-9;
};

TEST_F(FormatsExample, IsWhatTheLibraryComputes) {
    const std::vector<unsigned char> bytes = zelm::measure::blockOf(camera("left"), camera("right"));
    const OpenedRig rig(bytes);
    auto pose = emptyRecord<ZelmMeasureRelativePose>();
    ASSERT_EQ(zelmMeasureRigRelativePose(rig.get(), &pose), ZELM_OK);
    expectNear("R", pose.R, kLastDigit);
    expectNear("t", pose.t, kLastDigit);
    double F[9];
    ASSERT_EQ(zelmMeasureRigFundamental(rig.get(), F), ZELM_OK);
    for (int i = 0; i < 9; ++i) {
        EXPECT_NEAR(F[i] / F[8], numbers.at("F")[static_cast<std::size_t>(i)], 1e-11) << i;
    }

    const std::vector<double>& x = numbers.at("X");
    const Point3d X{x[0], x[1], x[2]};
    const Zelm2ViewCalib* const calib = zelmMeasureRigCalib(rig.get());
    std::vector<Point2d> undistorted;
    for (const std::string side : {"left", "right"}) {
        const char name = side == "left" ? 'L' : 'R';
        ZelmCameraExtrinsics view{};
        ASSERT_EQ(zelmMeasureRigPose(rig.get(), name, 0, &view), ZELM_OK);
        double inCamera[3];
        for (int i = 0; i < 3; ++i) {
            inCamera[i] = view.R[3 * i] * X.x + view.R[3 * i + 1] * X.y + view.R[3 * i + 2] * X.z + view.t[i];
        }
        expectNear(side + " camera", inCamera, kLastDigit);
        Point2d raw{};
        Point2d ideal{};
        ASSERT_GE(zelm2ViewChange3Dto2D(calib, name, &X, &raw), 0);
        ASSERT_GE(zelm2ViewUnDistortPoint(calib, name, &raw, &ideal), 0);
        expectNear(side + " raw", &raw.x, kLastDigit);
        expectNear(side + " undistorted", &ideal.x, 2.0 * kLastDigit);
        undistorted.push_back(ideal);
    }
    // x_left' F x_right = 0, and not the other way about.
    const auto product = [&](const Point2d& a, const Point2d& b) {
        return a.x * (F[0] * b.x + F[1] * b.y + F[2]) + a.y * (F[3] * b.x + F[4] * b.y + F[5]) +
               (F[6] * b.x + F[7] * b.y + F[8]);
    };
    EXPECT_NEAR(product(undistorted[0], undistorted[1]), 0.0, 1e-9);
    EXPECT_GT(std::abs(product(undistorted[1], undistorted[0])), 0.1);

    auto rows = emptyRecord<ZelmMeasureRows>();
    ASSERT_EQ(zelmMeasureAlignRows(rig.get(), nullptr, &rows), ZELM_OK);
    expectNear("R1", rows.R1, kLastDigit);
    expectNear("R2", rows.R2, kLastDigit);
    EXPECT_NEAR(rows.P2[3] / rows.P2[0], numbers.at("shift")[0], kLastDigit);
}

}  // namespace
}  // namespace zelmtest
