// Calibration blocks that are refused, the words that say why, and what their handles answer.
#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <string>

#include "measureRigs.h"

namespace zelmtest {
namespace {

namespace block = zelm::block;
using Bytes = std::vector<unsigned char>;

// The handle of a block that is refused.
class RefusedRig {
public:
    explicit RefusedRig(const Bytes& data) {
        const unsigned char none = 0;
        EXPECT_EQ(
            zelmMeasureRigOpen(data.empty() ? &none : data.data(), static_cast<std::int64_t>(data.size()), &handle),
            ZELM_MEASURE_ERR_DATA);
        EXPECT_NE(handle, nullptr);
    }
    RefusedRig(const RefusedRig&) = delete;
    RefusedRig& operator=(const RefusedRig&) = delete;
    ~RefusedRig() { zelmMeasureRigClose(&handle); }
    [[nodiscard]] ZelmMeasureRig* get() const { return handle; }
    [[nodiscard]] std::string words() const { return zelmMeasureRigError(handle); }

private:
    ZelmMeasureRig* handle = nullptr;
};

std::string wordsFor(const Bytes& data) {
    return RefusedRig(data).words();
}

Bytes soundBlock() {
    return trueRig().block();
}

template <class T>
Bytes changed(Bytes data, std::size_t offset, const T& value) {
    block::write(data.data(), offset, value);
    return data;
}

TEST(MeasureRigRefusals, ShortBlocksAreNoCalibration) {
    for (const std::size_t size : {0U, 1U, 27U}) {
        Bytes data = soundBlock();
        data.resize(size);
        EXPECT_EQ(wordsFor(data), "not a calibration: only " + std::to_string(size) + " bytes; was it copied whole?");
    }
}

TEST(MeasureRigRefusals, ForeignHeadersAreNoCalibration) {
    const std::string words = "not a calibration: it does not begin with a view count, camera models and image sizes";
    const Bytes sound = soundBlock();
    for (const std::int32_t views : {2, 0, -3}) {
        EXPECT_EQ(wordsFor(changed(sound, block::kViews, views)), words);
    }
    const Zelm2ViewCameraDesc cameras{0, 1280, 960, 0, 1280, 960};
    const auto wordsForCameras = [&](std::int32_t Zelm2ViewCameraDesc::*field, std::int32_t value) {
        Zelm2ViewCameraDesc wrong = cameras;
        wrong.*field = value;
        return wordsFor(changed(sound, block::kCameras, wrong));
    };
    for (const auto field : {&Zelm2ViewCameraDesc::leftModel, &Zelm2ViewCameraDesc::rightModel}) {
        EXPECT_EQ(wordsForCameras(field, 3), words);
        EXPECT_EQ(wordsForCameras(field, -1), words);
    }
    for (const auto field : {&Zelm2ViewCameraDesc::leftWidth, &Zelm2ViewCameraDesc::leftHeight,
                             &Zelm2ViewCameraDesc::rightWidth, &Zelm2ViewCameraDesc::rightHeight}) {
        EXPECT_EQ(wordsForCameras(field, 0), words);
        EXPECT_EQ(wordsForCameras(field, -5), words);
        EXPECT_EQ(wordsForCameras(field, (1 << 20) + 1), words);
    }
    const Bytes text(1532, static_cast<unsigned char>('a'));
    EXPECT_EQ(wordsFor(text), words);
}

TEST(MeasureRigRefusals, SizesThatDoNotFitTheViewsAreDamaged) {
    const Bytes sound = soundBlock();
    ASSERT_EQ(sound.size(), 1532U);
    for (const std::size_t size : {28U, 1531U, 1533U}) {
        Bytes data = sound;
        data.resize(size);
        EXPECT_EQ(wordsFor(data), "damaged calibration: " + std::to_string(size) +
                                      " bytes, but 3 views take 1532; was it copied whole?");
    }
    EXPECT_EQ(wordsFor(changed(sound, block::kViews, std::int32_t{4})),
              "damaged calibration: 1532 bytes, but 4 views take 1772; was it copied whole?");
    EXPECT_EQ(wordsFor(changed(sound, block::kViews, std::numeric_limits<std::int32_t>::max())),
              "damaged calibration: 1532 bytes, but 2147483647 views take 515396076092; was it copied whole?");
}

TEST(MeasureRigRefusals, EveryNumberMustBeFinite) {
    const Bytes sound = soundBlock();
    const double wrong[] = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                            -std::numeric_limits<double>::infinity()};
    std::size_t next = 0;
    for (std::size_t offset = block::kLeftRectifying; offset < sound.size(); offset += sizeof(double)) {
        EXPECT_EQ(wordsFor(changed(sound, offset, wrong[next++ % 3])),
                  "damaged calibration: the number at byte " + std::to_string(offset) +
                      " is not finite: copy it again, or calibrate again");
    }
    EXPECT_EQ(next, 188U);  // (1532 - 28) / 8
}

TEST(MeasureRigRefusals, FocalLengthsMustBePositive) {
    const Bytes perspective = soundBlock();
    const Bytes parallel = parallelBlock();
    for (const std::size_t field : {offsetof(ZelmCameraIntrinsics, alpha), offsetof(ZelmCameraIntrinsics, beta)}) {
        for (const double value : {0.0, -1688.6}) {
            EXPECT_EQ(wordsFor(changed(perspective, block::kLeftIntrinsics + field, value)),
                      "damaged calibration: the left camera's focal lengths are not positive");
            EXPECT_EQ(wordsFor(changed(perspective, block::kRightIntrinsics + field, value)),
                      "damaged calibration: the right camera's focal lengths are not positive");
            EXPECT_EQ(wordsFor(changed(parallel, block::kRightIntrinsics + field, value)),
                      "damaged calibration: the right camera's magnifications are not positive");
        }
    }
}

TEST(MeasureRigRefusals, ObjectsThatAreNotCalibratedAreRefused) {
    Handle opened;
    const Zelm2ViewPatternDesc plate = plainPattern();
    const Zelm2ViewCameraDesc cameras = cameraPair(0, 0);
    ASSERT_EQ(zelm2ViewCalibOpen(3, &plate, &cameras, &opened.calib), ZELM_OK);
    ZelmMeasureRig* rig = nullptr;
    EXPECT_EQ(zelmMeasureRigOfCalib(opened.get(), &rig), ZELM_MEASURE_ERR_DATA);
    EXPECT_STREQ(zelmMeasureRigError(rig), "damaged calibration: the left camera's focal lengths are not positive");
    EXPECT_EQ(zelmMeasureRigCalib(rig), nullptr);
    zelmMeasureRigClose(&rig);
}

TEST(MeasureRigRefusals, ARefusedHandleAnswersNothingAndKeepsItsWords) {
    Bytes data = soundBlock();
    data.pop_back();
    const RefusedRig refused(data);
    ZelmMeasureRig* const rig = refused.get();
    const std::string words = refused.words();
    ASSERT_FALSE(words.empty());
    const auto expectRefused = [&](const char* function, std::int32_t status) {
        EXPECT_EQ(status, ZELM_ERR_PARAM) << function;
        EXPECT_EQ(refused.words(), words) << function;
    };
    std::int32_t number = 7;
    std::int64_t count = 7;
    double values[9] = {7.0, 7.0};
    auto camera = emptyRecord<ZelmMeasureCamera>();
    auto relative = emptyRecord<ZelmMeasureRelativePose>();
    auto points = emptyRecord<ZelmMeasurePoints>();
    auto options = emptyRecord<ZelmMeasureMatchOptions>();
    auto matches = emptyRecord<ZelmMeasureMatches>();
    ZelmCameraExtrinsics pose{};
    const Zelm2ViewPatternDesc plate = plainPattern();
    const double pixels[2] = {100.0, 100.0};
    const std::vector<std::uint8_t> gray(1280 * 960);
    const ZelmMeasureImage image{gray.data(), 1280, 960, 1280};
    const std::vector<std::uint16_t> map(gray.size());
    EXPECT_EQ(zelmMeasureRigCalib(rig), nullptr);
    expectRefused("Views", zelmMeasureRigViews(rig, &number));
    expectRefused("Camera", zelmMeasureRigCamera(rig, 'L', &camera));
    expectRefused("Pose", zelmMeasureRigPose(rig, 'L', 0, &pose));
    expectRefused("Fundamental", zelmMeasureRigFundamental(rig, values));
    expectRefused("RelativePose", zelmMeasureRigRelativePose(rig, &relative));
    expectRefused("Tilt", zelmMeasureRigTilt(rig, 'L', values));
    expectRefused("Centre", zelmMeasureRigCentre(rig, values, values, &number));
    expectRefused("Dots", zelmMeasureRigDots(rig, &plate, 'L', 0, nullptr, &count, nullptr));
    expectRefused("Epipolar", zelmMeasureRigEpipolar(rig, &plate, 0, 0, nullptr, &count));
    expectRefused("Triangulate", zelmMeasureTriangulate(rig, 0, nullptr, nullptr, &points));
    expectRefused("TrueDepths", zelmMeasureTrueDepths(rig, map.data(), 1.0, 1, pixels, values, nullptr));
    expectRefused("MatchDefaults", zelmMeasureMatchDefaults(rig, &options));
    expectRefused("Overlap", zelmMeasureOverlap(rig, &options, 1, pixels, &number));
    expectRefused("Match", zelmMeasureMatch(rig, &image, &image, &options, 1, pixels, &matches));
    expectRefused("MatchDense", zelmMeasureMatchDense(rig, &image, &image, &options, &matches));
    EXPECT_EQ(number, 7);
    EXPECT_EQ(count, 7);
    EXPECT_EQ(values[0], 7.0);
}

}  // namespace
}  // namespace zelmtest
