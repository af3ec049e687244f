// Files of other programs through the interface: they come back bit by bit, and what cannot be taken is refused with
// words. What other programs make of them is tested with these, in tests/peers.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "measureRigs.h"

namespace zelmtest {
namespace {

constexpr int kFormats = 6;

bool hasFileOfEach(int format) {
    return format == ZELM_MEASURE_FILE_ROS || format == ZELM_MEASURE_FILE_MRCAL;
}

std::vector<std::string> filesOf(ZelmMeasureRig* rig, int format, double metres = 0.0) {
    auto options = emptyRecord<ZelmMeasureExportOptions>();
    options.format = format;
    options.metres = metres;
    std::vector<std::string> files;
    for (const std::int32_t side : hasFileOfEach(format) ? std::vector<std::int32_t>{'L', 'R'} : std::vector{0}) {
        std::int64_t length = 0;
        EXPECT_EQ(zelmMeasureExport(rig, &options, side, 0, nullptr, &length), ZELM_OK) << zelmMeasureRigError(rig);
        std::string file(static_cast<std::size_t>(length), '\0');
        EXPECT_EQ(zelmMeasureExport(rig, &options, side, length, file.data(), &length), ZELM_OK);
        files.push_back(file);
    }
    return files;
}

// Closes its rig at the end of a test.
struct Imported {
    ZelmMeasureRig* rig = nullptr;
    std::int32_t status = ZELM_OK;
    ZelmMeasureImported facts = emptyRecord<ZelmMeasureImported>();

    Imported(const std::vector<std::string>& files, ZelmMeasureImportOptions options) {
        std::vector<const void*> places;
        std::vector<std::int64_t> sizes;
        for (const std::string& file : files) {
            places.push_back(file.data());
            sizes.push_back(static_cast<std::int64_t>(file.size()));
        }
        status = zelmMeasureImport(&options, static_cast<std::int32_t>(files.size()), places.data(), sizes.data(), &rig,
                                   &facts);
    }
    Imported(const Imported&) = delete;
    Imported& operator=(const Imported&) = delete;
    ~Imported() { zelmMeasureRigClose(&rig); }
    [[nodiscard]] std::string words() const { return rig != nullptr ? zelmMeasureRigError(rig) : ""; }
};

ZelmMeasureImportOptions importOptions(int format, double metres = 0.0) {
    auto options = emptyRecord<ZelmMeasureImportOptions>();
    options.format = format;
    options.metres = metres;
    return options;
}

TEST(ExchangeFiles, EveryFormatComesBackAndIsWrittenTheSame) {
    Random random(5);
    for (int round = 0; round < 8; ++round) {
        const OpenedRig rig(blockOf(makePair(0, 0, &random)));
        for (const double metres : {0.001, 0.0254, 1.0}) {
            for (int format = 0; format < kFormats; ++format) {
                const std::vector<std::string> files = filesOf(rig.get(), format, metres);
                const Imported back(files, importOptions(format, metres));
                ASSERT_EQ(back.status, ZELM_OK) << format << ": " << back.words();
                const bool hasFrame = format != ZELM_MEASURE_FILE_ROS && format != ZELM_MEASURE_FILE_KALIBR;
                EXPECT_EQ(back.facts.isCameraFrame, hasFrame ? 0 : 1) << format;
                EXPECT_EQ(back.facts.leftLensWorst, 0.0);
                if (format != ZELM_MEASURE_FILE_ROS) {  // its R and P are worked out anew
                    EXPECT_EQ(filesOf(back.rig, format, metres), files) << format << " " << metres;
                }
            }
        }
    }
}

TEST(ExchangeFiles, CamerasComeBackBitByBitAndPairsToRounding) {
    const OpenedRig rig(blockOf(makePair(0, 0)));
    auto pose = emptyRecord<ZelmMeasureRelativePose>();
    ASSERT_EQ(zelmMeasureRigRelativePose(rig.get(), &pose), ZELM_OK);
    for (int format = 0; format < kFormats; ++format) {
        const Imported back(filesOf(rig.get(), format), importOptions(format));
        ASSERT_EQ(back.status, ZELM_OK) << back.words();
        for (const std::int32_t side : {'L', 'R'}) {
            auto given = emptyRecord<ZelmMeasureCamera>();
            auto found = emptyRecord<ZelmMeasureCamera>();
            ASSERT_EQ(zelmMeasureRigCamera(rig.get(), side, &given), ZELM_OK);
            ASSERT_EQ(zelmMeasureRigCamera(back.rig, side, &found), ZELM_OK);
            EXPECT_EQ(std::memcmp(&given, &found, sizeof given), 0) << format;
        }
        auto returned = emptyRecord<ZelmMeasureRelativePose>();
        ASSERT_EQ(zelmMeasureRigRelativePose(back.rig, &returned), ZELM_OK);
        for (int i = 0; i < 9; ++i) {
            EXPECT_NEAR(returned.R[i], pose.R[i], 1e-14) << format;
        }
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(returned.t[i], pose.t[i], 1e-11) << format;  // of 150
        }
    }
}

TEST(ExchangeFiles, LossesAreTold) {
    const OpenedRig rig(blockOf(makePair(1, 0)));  // its skew: tan(0.004) 1687 px, over rows up to 483 from the middle
    auto options = emptyRecord<ZelmMeasureExportOptions>();
    for (int format = 0; format < kFormats; ++format) {
        options.format = format;
        auto loss = emptyRecord<ZelmMeasureExportLoss>();
        ASSERT_EQ(zelmMeasureExportLoss(rig.get(), &options, &loss), ZELM_OK) << rig.error();
        EXPECT_EQ(loss.views, 2);
        EXPECT_EQ(loss.covariance, 0);
        const bool knowsSkew = format == ZELM_MEASURE_FILE_MATLAB || format == ZELM_MEASURE_FILE_NUMPY;
        EXPECT_NEAR(loss.skewLeft, knowsSkew ? 0.0 : std::tan(0.004) * (959.0 - 476.2), 1e-9) << format;
        EXPECT_EQ(loss.skewRight, 0.0);
        EXPECT_EQ(loss.frame, format == ZELM_MEASURE_FILE_ROS || format == ZELM_MEASURE_FILE_KALIBR ? 1 : 0);
    }
}

TEST(ExchangeFiles, ParallelCamerasAreRefused) {
    const OpenedRig rig(blockOf(makePair(2, 0)));
    auto options = emptyRecord<ZelmMeasureExportOptions>();
    std::int64_t length = -7;
    EXPECT_EQ(zelmMeasureExport(rig.get(), &options, 0, 0, nullptr, &length), ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(rig.error().find("parallel camera"), std::string::npos) << rig.error();
    EXPECT_EQ(length, -7);
}

TEST(ExchangeFiles, ArgumentsThatCannotBeMeantAreRefused) {
    const OpenedRig rig(blockOf(makePair(0, 0)));
    auto options = emptyRecord<ZelmMeasureExportOptions>();
    std::int64_t length = -7;
    char byte = 'x';
    const auto fails = [&](std::int32_t side) {
        return zelmMeasureExport(rig.get(), &options, side, 1, &byte, &length) == ZELM_ERR_PARAM && length == -7 &&
               byte == 'x';
    };
    EXPECT_TRUE(fails(0));  // too short
    EXPECT_TRUE(fails('L'));
    options.format = ZELM_MEASURE_FILE_ROS;
    EXPECT_TRUE(fails(0));
    options.format = kFormats;
    EXPECT_TRUE(fails(0));
    options.format = ZELM_MEASURE_FILE_KALIBR;
    options.metres = -1.0;
    EXPECT_TRUE(fails(0));
    EXPECT_EQ(zelmMeasureExport(nullptr, &options, 0, 1, &byte, &length), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasureExportLoss(rig.get(), nullptr, nullptr), ZELM_ERR_PARAM);
    const Imported one({"x"}, importOptions(ZELM_MEASURE_FILE_ROS));
    EXPECT_EQ(one.status, ZELM_ERR_PARAM);
    EXPECT_EQ(one.rig, nullptr);
}

// Whatever is cut off, the rest is refused with words, and no rig opens.
TEST(ExchangeFiles, CutFilesAreRefused) {
    const OpenedRig rig(blockOf(makePair(0, 0)));
    for (const int format : {ZELM_MEASURE_FILE_MATLAB, ZELM_MEASURE_FILE_NUMPY}) {
        const std::string whole = filesOf(rig.get(), format)[0];
        for (std::size_t length = 0; length + 8 < whole.size(); length += 61) {
            const Imported cut({whole.substr(0, length)}, importOptions(format));
            EXPECT_EQ(cut.status, ZELM_MEASURE_ERR_DATA) << format << " " << length;
            EXPECT_FALSE(cut.words().empty());
            EXPECT_EQ(cut.words().find('\n'), std::string::npos) << cut.words();
        }
    }
}

// A byte changed anywhere never breaks the reader; it may change a number.
TEST(ExchangeFiles, ChangedBytesDoNotBreakTheReaders) {
    const OpenedRig rig(blockOf(makePair(0, 0)));
    Random random(3);
    for (int format = 0; format < kFormats; ++format) {
        const std::vector<std::string> files = filesOf(rig.get(), format);
        for (int round = 0; round < 150; ++round) {
            std::vector<std::string> changed = files;
            const auto at = static_cast<std::size_t>(random.uniform(0.0, static_cast<double>(files[0].size() - 1)));
            changed[0][at] = static_cast<char>(static_cast<unsigned char>(random.uniform(0.0, 255.0)));
            const Imported back(changed, importOptions(format));
            EXPECT_TRUE(back.status == ZELM_OK || (back.status == ZELM_MEASURE_ERR_DATA && !back.words().empty()))
                << format << ": " << back.status;
        }
    }
}

std::string replaced(std::string text, const std::string& what, const std::string& by) {
    const std::size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return at == std::string::npos ? text : text.replace(at, what.size(), by);
}

TEST(ExchangeFiles, WhatIsWrongIsSaid) {
    const OpenedRig rig(blockOf(makePair(0, 0)));
    const std::string openCv = filesOf(rig.get(), ZELM_MEASURE_FILE_OPENCV)[0];
    const std::string kalibr = filesOf(rig.get(), ZELM_MEASURE_FILE_KALIBR)[0];
    const struct {
        int format;
        std::string file;
        std::string words;
    } cases[] = {
        {ZELM_MEASURE_FILE_OPENCV, replaced(openCv, "\nR: ", "\nS: "), "no R"},
        {ZELM_MEASURE_FILE_OPENCV, replaced(openCv, "camera_matrix", "camera_matrox"), "camera_matrix"},
        {ZELM_MEASURE_FILE_OPENCV, replaced(openCv, "image_width: 1280", "image_wodth: 1280"), "size of the left"},
        {ZELM_MEASURE_FILE_OPENCV, replaced(openCv, "1688.6", "-1688.6"), "no camera matrix"},
        {ZELM_MEASURE_FILE_OPENCV, replaced(openCv, "1688.6", ".nan"), "no number"},
        {ZELM_MEASURE_FILE_OPENCV, "[1, 2", "not YAML"},
        {ZELM_MEASURE_FILE_OPENCV, "<?xml version=\"1.0\"?>", "YAML"},
        {ZELM_MEASURE_FILE_KALIBR, replaced(kalibr, "pinhole", "omni"), "pinhole"},
        {ZELM_MEASURE_FILE_KALIBR, replaced(kalibr, "radtan", "fov"), "radtan"},
        {ZELM_MEASURE_FILE_KALIBR, replaced(kalibr, "T_cn_cnm1", "T_cam_imu"), "T_cn_cnm1"},
        {ZELM_MEASURE_FILE_MATLAB, "MATLAB 7.3 MAT-file", "-v7"},
        {ZELM_MEASURE_FILE_NUMPY, "no archive", "numpy"},
    };
    for (const auto& c : cases) {
        const Imported back({c.file}, importOptions(c.format));
        EXPECT_EQ(back.status, ZELM_MEASURE_ERR_DATA) << c.words;
        EXPECT_NE(back.words().find(c.words), std::string::npos) << back.words();
    }
}

// A lens with tangential terms is a camera that is turned a little: the pixels of points stay, to what is told.
TEST(ExchangeFiles, OtherLensesAreReplacedToWhatIsTold) {
    const OpenedRig rig(blockOf(makePair(0, 0)));
    std::string file = filesOf(rig.get(), ZELM_MEASURE_FILE_KALIBR)[0];
    file = replaced(file, "-0.12, 0.05, 0.0, 0.0", "-0.12, 0.05, 0.0006, -0.0004");
    ZelmMeasureImportOptions lenient = importOptions(ZELM_MEASURE_FILE_KALIBR);
    lenient.tolerance = 0.5;
    const Imported back({file}, lenient);
    ASSERT_EQ(back.status, ZELM_OK) << back.words();
    EXPECT_GT(back.facts.leftLensWorst, 0.05);
    EXPECT_LT(back.facts.leftLensWorst, 0.5);
    EXPECT_EQ(back.facts.rightLensWorst, 0.0);
    // Brown's formula at a point before the left camera, whose frame is that of the points.
    Random random(8);
    for (int i = 0; i < 100; ++i) {
        const Point3d X{random.uniform(-100.0, 100.0), random.uniform(-80.0, 80.0), random.uniform(350.0, 500.0)};
        const double x = X.x / X.z;
        const double y = X.y / X.z;
        const double r2 = x * x + y * y;
        const double s = 1.0 + r2 * (-0.12 + 0.05 * r2);
        const Point2d pixel{1688.6 * (s * x + 2.0 * 0.0006 * x * y - 0.0004 * (r2 + 2.0 * x * x)) + 642.3,
                            1686.9 * (s * y + 0.0006 * (r2 + 2.0 * y * y) - 2.0 * 0.0004 * x * y) + 476.2};
        Point2d seen{};
        ASSERT_GE(zelm2ViewChange3Dto2D(zelmMeasureRigCalib(back.rig), 'L', &X, &seen), 0);
        EXPECT_LT(std::hypot(seen.x - pixel.x, seen.y - pixel.y), 1.05 * back.facts.leftLensWorst);
    }
    ZelmMeasureImportOptions strict = importOptions(ZELM_MEASURE_FILE_KALIBR);
    strict.tolerance = 0.5 * back.facts.leftLensWorst;
    const Imported refused({file}, strict);
    EXPECT_EQ(refused.status, ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(refused.words().find("tolerance"), std::string::npos) << refused.words();
}

// An imported pair measures; what needs views is refused.
TEST(ExchangeFiles, ImportedPairsTriangulate) {
    const TruePair pair = makePair(0, 0);
    const OpenedRig rig(blockOf(pair));
    const Imported back(filesOf(rig.get(), ZELM_MEASURE_FILE_OPENCV), importOptions(ZELM_MEASURE_FILE_OPENCV));
    ASSERT_EQ(back.status, ZELM_OK) << back.words();
    Random random(9);
    for (int i = 0; i < 50; ++i) {
        const Point3d X = randomWorldPoint(random);
        const Point2d left = pair.project('L', X);
        const Point2d right = pair.project('R', X);
        double position[3];
        auto points = emptyRecord<ZelmMeasurePoints>();
        points.positions = position;
        ASSERT_EQ(zelmMeasureTriangulate(back.rig, 1, &left.x, &right.x, &points), ZELM_OK);
        EXPECT_NEAR(position[0], X.x, 1e-7);
        EXPECT_NEAR(position[1], X.y, 1e-7);
        EXPECT_NEAR(position[2], X.z, 1e-7);
    }
}

}  // namespace
}  // namespace zelmtest
