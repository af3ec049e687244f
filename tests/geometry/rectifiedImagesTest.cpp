// Rectified and undistorted images and the point mappings between raw, undistorted and rectified pixels.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <utility>

#include "bufferSampling.h"
#include "guardedBuffer.h"
#include "pairFixture.h"
#include "rectifyingTransform.h"
#include "zelm/twoViewGeometry.h"

namespace {

using namespace zelmtest;
using Bytes = std::vector<unsigned char>;

constexpr std::int32_t kWidth = 1280;
constexpr std::int32_t kHeight = 960;
constexpr char kNames[] = {'L', 'R'};

// A smooth pattern whose bilinear samples are close to its values: slopes below 6 gray levels a pixel.
double patternAt(double x, double y) {
    return 120.0 + 60.0 * std::sin(x / 23.0) + 50.0 * std::cos(y / 17.0);
}

// Bilinear interpolation of the pattern errs by at most (1/8)(60/23^2 + 50/17^2), gray rounding by 0.5.
constexpr double kPatternError = 0.04 + 0.5;

Bytes patternImage() {
    Bytes image(static_cast<std::size_t>(kWidth) * kHeight);
    for (std::int32_t y = 0; y < kHeight; ++y) {
        for (std::int32_t x = 0; x < kWidth; ++x) {
            image[static_cast<std::size_t>(y) * kWidth + static_cast<std::size_t>(x)] =
                static_cast<unsigned char>(patternAt(x, y) + 0.5);
        }
    }
    return image;
}

struct ArgbImage {
    std::size_t rowBytes;
    Bytes bytes;
    vImage_Buffer buffer;

    explicit ArgbImage(std::size_t padding, std::size_t width = kWidth, std::size_t height = kHeight)
        : rowBytes(width * 4 + padding), bytes(rowBytes * height, 9), buffer{bytes.data(), height, width, rowBytes} {}
    ArgbImage(const ArgbImage&) = delete;
    ArgbImage& operator=(const ArgbImage&) = delete;

    unsigned char& at(std::int32_t x, std::int32_t y, std::size_t channel) {
        return bytes[static_cast<std::size_t>(y) * rowBytes + 4 * static_cast<std::size_t>(x) + channel];
    }
};

// The gray image in R, its complement in G, a constant in B.
void fillArgb(const Bytes& gray, ArgbImage* image) {
    for (std::int32_t y = 0; y < kHeight; ++y) {
        for (std::int32_t x = 0; x < kWidth; ++x) {
            const unsigned char value = gray[static_cast<std::size_t>(y) * kWidth + static_cast<std::size_t>(x)];
            image->at(x, y, 0) = 255;
            image->at(x, y, 1) = value;
            image->at(x, y, 2) = static_cast<unsigned char>(255 - value);
            image->at(x, y, 3) = 77;
        }
    }
}

TEST(TwoViewHomImgPoint, ForwardAndBackReturnsTheRawPixel) {
    Random random(101);
    double worst = 0.0;
    const std::int32_t models[][2] = {{0, 0}, {1, 0}, {2, 0}, {2, 2}};
    for (const auto& model : models) {
        for (int rig = 0; rig < 20; ++rig) {
            const TruePair pair = makePair(model[0], model[1], &random);
            Handle handle;
            loadPair(pair, &handle);
            const Zelm2ViewHomParam params{random.uniform(300.0, 900.0), random.uniform(200.0, 700.0),
                                           random.uniform(-0.05, 0.05)};
            for (int i = 0; i < 50; ++i) {
                const Point2d raw{random.uniform(0.0, kWidth - 1.0), random.uniform(0.0, kHeight - 1.0)};
                for (const char name : kNames) {
                    Point2d rectified{};
                    Point2d back{};
                    ASSERT_EQ(zelm2ViewCalcHomImgPoint(handle.get(), name, &raw, &params, &rectified), ZELM_OK);
                    ASSERT_EQ(zelm2ViewInvHomImgPoint(handle.get(), name, &rectified, &params, &back), ZELM_OK);
                    worst = std::max(worst, std::hypot(back.x - raw.x, back.y - raw.y));
                }
            }
        }
    }
    std::printf("worstReturn: %.2g\n", worst);
    EXPECT_LT(worst, 1e-4);  // pixels
}

TEST(TwoViewHomImgPoint, TheReferencePixelLandsOnTheImageCentre) {
    TruePair pair = makePair(0, 0);
    pair.width = 1281;  // odd: the centre is the integer half
    pair.height = 963;
    Handle handle;
    loadPair(pair, &handle);
    const Zelm2ViewHomParam params{500.0, 400.0, 0.02};
    for (const char name : kNames) {
        const Point2d reference{params.px, params.py};
        Point2d raw{};
        Point2d rectified{};
        ASSERT_EQ(zelm2ViewDistortPoint(handle.get(), name, &reference, &raw), ZELM_OK);
        ASSERT_EQ(zelm2ViewCalcHomImgPoint(handle.get(), name, &raw, &params, &rectified), ZELM_OK);
        EXPECT_NEAR(rectified.x, 640.0, 1e-8);
        EXPECT_NEAR(rectified.y, 481.0, 1e-8);
    }
}

TEST(TwoViewHomImgPoint, TheCentreIsThatOfTheCamerasOwnImage) {
    std::vector<unsigned char> data = blockOf(makePair(0, 0));
    zelm::block::write(data.data(), zelm::block::kCameras, Zelm2ViewCameraDesc{0, 1280, 960, 0, 641, 483});
    Handle handle;
    loadBlock(data, &handle);
    const Zelm2ViewHomParam params{500.0, 400.0, 0.0};
    const Point2d reference{params.px, params.py};
    for (const char name : kNames) {
        Point2d raw{};
        Point2d rectified{};
        ASSERT_EQ(zelm2ViewDistortPoint(handle.get(), name, &reference, &raw), ZELM_OK);
        ASSERT_EQ(zelm2ViewCalcHomImgPoint(handle.get(), name, &raw, &params, &rectified), ZELM_OK);
        EXPECT_NEAR(rectified.x, name == 'L' ? 640.0 : 320.0, 1e-8);
        EXPECT_NEAR(rectified.y, name == 'L' ? 480.0 : 241.0, 1e-8);
    }
}

// The left image is carried into the right camera's frame: points at infinity land, up to the shift, where the right
// camera sees them.
TEST(TwoViewHomImgPoint, FarPointsAreSeenAsTheOtherCameraSeesThem) {
    Random random(102);
    const TruePair pair = makePair(0, 0);
    Handle handle;
    loadPair(pair, &handle);
    const Zelm2ViewHomParam params{640.0, 480.0, 0.0};
    const auto shiftOf = [&](const Point3d& X) {
        const Point2d raw = pair.project('L', X);
        Point2d mapped{};
        EXPECT_EQ(zelm2ViewCalcHomImgPoint(handle.get(), 'L', &raw, &params, &mapped), ZELM_OK);
        const Point2d right = pair.projectIdeal('R', X);
        return Point2d{mapped.x - right.x, mapped.y - right.y};
    };
    constexpr double kFar = 1e9;  // a baseline of 150 moves points by 1700 * 150 / 1e9 = 3e-4 px
    const Point2d first = shiftOf({0.0, 0.0, kFar});
    for (int i = 0; i < 50; ++i) {
        const Point2d shift = shiftOf(
            {random.uniform(-0.1, 0.1) * kFar, random.uniform(-0.1, 0.1) * kFar, random.uniform(1.0, 2.0) * kFar});
        EXPECT_NEAR(shift.x, first.x, 2e-3);
        EXPECT_NEAR(shift.y, first.y, 2e-3);
    }
}

// With a parallel camera in the pair the transform is that of the plate's plane, moved to height s.
TEST(TwoViewHomImgPoint, APairWithAParallelCameraCarriesThePlaneAtHeightS) {
    Random random(103);
    const std::int32_t models[][2] = {{2, 0}, {2, 2}};
    for (const auto& model : models) {
        const TruePair pair = makePair(model[0], model[1]);
        Handle handle;
        loadPair(pair, &handle);
        for (const double height : {0.0, 7.5, -20.0}) {
            const Zelm2ViewHomParam params{640.0, 480.0, height};
            Point2d first{};
            for (int i = 0; i < 30; ++i) {
                const Point3d X{random.uniform(-60.0, 60.0), random.uniform(-45.0, 45.0), height};
                const Point2d raw = pair.project('L', X);
                const Point2d right = pair.projectIdeal('R', X);
                Point2d mapped{};
                ASSERT_EQ(zelm2ViewCalcHomImgPoint(handle.get(), 'L', &raw, &params, &mapped), ZELM_OK);
                const Point2d shift{mapped.x - right.x, mapped.y - right.y};
                first = i == 0 ? shift : first;
                ASSERT_NEAR(shift.x, first.x, 1e-6);
                ASSERT_NEAR(shift.y, first.y, 1e-6);
            }
        }
    }
}

TEST(TwoViewHomImgPoint, BadArgumentsAreRefused) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const Zelm2ViewHomParam params{640.0, 480.0, 0.0};
    const Point2d p{1.0, 2.0};
    Point2d q{7.0, 8.0};
    for (auto* const function : {zelm2ViewCalcHomImgPoint, zelm2ViewInvHomImgPoint}) {
        EXPECT_EQ(function(nullptr, 'L', &p, &params, &q), ZELM_ERR_PARAM);
        EXPECT_EQ(function(handle.get(), 'X', &p, &params, &q), ZELM_ERR_PARAM);
        EXPECT_EQ(function(handle.get(), 'L', nullptr, &params, &q), ZELM_ERR_PARAM);
        EXPECT_EQ(function(handle.get(), 'L', &p, nullptr, &q), ZELM_ERR_PARAM);
        EXPECT_EQ(function(handle.get(), 'L', &p, &params, nullptr), ZELM_ERR_PARAM);
    }
    EXPECT_EQ(q.x, 7.0);
}

TEST(RectifyingTransform, ItsLastElementIsOneUnlessItIsTiny) {
    const TruePair pair = makePair(0, 0);
    std::vector<unsigned char> data = blockOf(pair);
    double T[9];
    ASSERT_EQ(zelm::innerCalcHomMatrix(data.data(), zelm::Camera::left, {640.0, 480.0, 0.0},
                                       zelm::RectifyingDirection::toRectified, T),
              ZELM_OK);
    EXPECT_EQ(T[8], 1.0);
    double inverse[9];
    ASSERT_EQ(zelm::innerCalcHomMatrix(data.data(), zelm::Camera::left, {640.0, 480.0, 0.0},
                                       zelm::RectifyingDirection::toUnrectified, inverse),
              ZELM_OK);
    double product[9];
    ASSERT_EQ(zelmMatMul(3, 3, T, 3, 3, inverse, product), ZELM_OK);
    for (int i = 0; i < 9; ++i) {
        EXPECT_NEAR(product[i] / product[8], i % 4 == 0 ? 1.0 : 0.0, 1e-9) << i;
    }
}

// The last element as given by the right camera's matrix, the left one being the identity.
TEST(RectifyingTransform, IsScaledOnlyWhereItsLastElementExceedsTheThreshold) {
    std::vector<unsigned char> data = blockOf(makePair(0, 0));
    zelm::RectifyingPair identity{{1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0}, {}};
    zelm::block::write(data.data(), zelm::block::rectifying(zelm::Camera::left), identity);
    for (const double last : {0.9e-9, 1.1e-9, -0.9e-9, -1.1e-9}) {
        zelm::RectifyingPair right{{1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0, 1.0, last}, {}};
        zelm::block::write(data.data(), zelm::block::rectifying(zelm::Camera::right), right);
        double T[9];
        ASSERT_EQ(zelm::innerCalcHomMatrix(data.data(), zelm::Camera::left, {640.0, 480.0, 0.0},
                                           zelm::RectifyingDirection::toRectified, T),
                  ZELM_OK);
        EXPECT_EQ(T[8], std::fabs(last) > 1e-9 ? 1.0 : last);
        EXPECT_EQ(T[7], std::fabs(last) > 1e-9 ? 1.0 / last : 1.0);
    }
}

TEST(TwoViewDistortion, PointsGoThereAndBackAndSucceedWithZero) {
    const TruePair pair = makePair(0, 1);
    Handle handle;
    loadPair(pair, &handle);
    Random random(104);
    for (int i = 0; i < 1000; ++i) {
        const Point2d ideal{random.uniform(0.0, kWidth - 1.0), random.uniform(0.0, kHeight - 1.0)};
        for (const char name : kNames) {
            Point2d raw{};
            Point2d back{};
            ASSERT_EQ(zelm2ViewDistortPoint(handle.get(), name, &ideal, &raw), ZELM_OK);
            ASSERT_EQ(zelm2ViewUnDistortPoint(handle.get(), name, &raw, &back), ZELM_OK) << "never the step count";
            ASSERT_NEAR(back.x, ideal.x, 1e-6);
            ASSERT_NEAR(back.y, ideal.y, 1e-6);
        }
    }
}

TEST(TwoViewDistortion, BadArgumentsAreRefusedAndFailuresPassThrough) {
    TruePair pair = makePair(0, 0);
    pair.left.intrinsics.k1 = 1e13;
    Handle handle;
    loadPair(pair, &handle);
    const Point2d corner{1270.0, 950.0};
    Point2d q{7.0, 8.0};
    for (auto* const function : {zelm2ViewDistortPoint, zelm2ViewUnDistortPoint}) {
        EXPECT_EQ(function(nullptr, 'L', &corner, &q), ZELM_ERR_PARAM);
        EXPECT_EQ(function(handle.get(), 0, &corner, &q), ZELM_ERR_PARAM);
        EXPECT_EQ(function(handle.get(), 'L', nullptr, &q), ZELM_ERR_PARAM);
        EXPECT_EQ(function(handle.get(), 'L', &corner, nullptr), ZELM_ERR_PARAM);
    }
    const Zelm2ViewHomParam params{640.0, 480.0, 0.0};
    EXPECT_EQ(zelm2ViewCalcHomImgPoint(handle.get(), 'L', &corner, &params, &q), ZELM_ERR_UNDISTORT);
    EXPECT_EQ(q.x, 7.0);
}

TEST(TwoViewDistortion, AFailedUndistortionLeavesTheEstimateOfTheCameraModel) {
    TruePair pair = makePair(0, 0);
    pair.left.intrinsics.k1 = 1e13;
    Handle handle;
    loadPair(pair, &handle);
    const Point2d corner{1270.0, 950.0};
    Point2d expected{7.0, 8.0};
    Point2d q{7.0, 8.0};
    ASSERT_EQ(zelmCalibUnDistortPoint(&pair.left.intrinsics, corner.x, corner.y, &expected.x, &expected.y),
              ZELM_ERR_UNDISTORT);
    EXPECT_EQ(zelm2ViewUnDistortPoint(handle.get(), 'L', &corner, &q), ZELM_ERR_UNDISTORT);
    EXPECT_EQ(q.x, expected.x);
    EXPECT_EQ(q.y, expected.y);
    EXPECT_NE(q.x, 7.0);
    EXPECT_NE(q.x, corner.x) << "twenty steps have moved it";
}

TEST(TwoViewMakeHomImage, EveryPixelShowsItsRawPosition) {
    const TruePair pair = makePair(0, 0);
    Handle handle;
    loadPair(pair, &handle);
    const Bytes src = patternImage();
    const Zelm2ViewHomParam params{640.0, 480.0, 0.0};
    for (const char name : kNames) {
        Bytes dst(src.size(), 9);
        ASSERT_EQ(zelm2ViewMakeHomImage(handle.get(), name, src.data(), &params, dst.data()), ZELM_OK);
        int seen = 0;
        for (std::int32_t y = 0; y < kHeight; y += 7) {
            for (std::int32_t x = 0; x < kWidth; x += 5) {
                const Point2d rectified{static_cast<double>(x), static_cast<double>(y)};
                Point2d raw{};
                ASSERT_EQ(zelm2ViewInvHomImgPoint(handle.get(), name, &rectified, &params, &raw), ZELM_OK);
                const double gray = dst[static_cast<std::size_t>(y) * kWidth + static_cast<std::size_t>(x)];
                if (raw.x > 0.01 && raw.y > 0.01 && raw.x < kWidth - 1.01 && raw.y < kHeight - 1.01) {
                    // Single precision moves a position by some 5e-4 px: 3e-3 gray levels.
                    ASSERT_NEAR(gray, patternAt(raw.x, raw.y), kPatternError + 0.5 + 3e-3) << x << ", " << y;
                    seen += 1;
                } else if (raw.x < -0.01 || raw.y < -0.01 || raw.x > kWidth - 0.99 || raw.y > kHeight - 0.99) {
                    ASSERT_EQ(gray, 0.0) << x << ", " << y;
                }
            }
        }
        EXPECT_GT(seen, 5000);
    }
}

TEST(TwoViewMakeHomImage, ArgbBuffersGiveTheGrayResultInEveryChannel) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const Bytes src = patternImage();
    const Zelm2ViewHomParam params{600.0, 500.0, 0.01};
    ArgbImage argb(12);
    fillArgb(src, &argb);
    ArgbImage out(4);
    Bytes gray(src.size());
    ASSERT_EQ(zelm2ViewMakeHomImage(handle.get(), 'R', src.data(), &params, gray.data()), ZELM_OK);
    ASSERT_EQ(zelm2ViewMakeHomImage_vImageARGB8888(handle.get(), 'R', &argb.buffer, &params, &out.buffer), ZELM_OK);
    for (std::int32_t y = 0; y < kHeight; y += 3) {
        for (std::int32_t x = 0; x < kWidth; ++x) {
            ASSERT_EQ(out.at(x, y, 1), gray[static_cast<std::size_t>(y) * kWidth + static_cast<std::size_t>(x)]);
            ASSERT_TRUE(out.at(x, y, 3) == 77 || (out.at(x, y, 3) == 0 && out.at(x, y, 0) == 0));
        }
    }
}

TEST(TwoViewMakeHomImage, BadArgumentsAndBuffersOfAnotherSizeAreRefused) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const Zelm2ViewHomParam params{640.0, 480.0, 0.0};
    Bytes image(static_cast<std::size_t>(kWidth) * kHeight, 5);
    Bytes out(image.size(), 9);
    EXPECT_EQ(zelm2ViewMakeHomImage(nullptr, 'L', image.data(), &params, out.data()), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewMakeHomImage(handle.get(), 'Q', image.data(), &params, out.data()), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewMakeHomImage(handle.get(), 'L', nullptr, &params, out.data()), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewMakeHomImage(handle.get(), 'L', image.data(), nullptr, out.data()), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewMakeHomImage(handle.get(), 'L', image.data(), &params, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(out[0], 9);

    ArgbImage good(0);
    ArgbImage narrow(0, kWidth - 1, kHeight);
    ArgbImage low(0, kWidth, kHeight - 1);
    vImage_Buffer empty = good.buffer;
    empty.data = nullptr;
    const auto make = [&](const vImage_Buffer* src, const vImage_Buffer* dst) {
        return zelm2ViewMakeHomImage_vImageARGB8888(handle.get(), 'L', src, &params, dst);
    };
    const auto undistort = [&](const vImage_Buffer* src, const vImage_Buffer* dst) {
        return zelm2ViewUnDistortImage_vImageARGB8888(handle.get(), 'L', src, dst);
    };
    vImage_Buffer longRows = good.buffer;
    longRows.rowBytes = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()) + 1;
    const vImage_Buffer* const bad[] = {nullptr, &narrow.buffer, &low.buffer, &empty, &longRows};
    for (const vImage_Buffer* const buffer : bad) {
        EXPECT_EQ(make(buffer, &good.buffer), ZELM_ERR_PARAM);
        EXPECT_EQ(make(&good.buffer, buffer), ZELM_ERR_PARAM);
        EXPECT_EQ(undistort(buffer, &good.buffer), ZELM_ERR_PARAM);
        EXPECT_EQ(undistort(&good.buffer, buffer), ZELM_ERR_PARAM);
    }
    EXPECT_EQ(make(&narrow.buffer, &narrow.buffer), ZELM_ERR_PARAM) << "alike, but not the camera's size";
    EXPECT_EQ(undistort(&narrow.buffer, &narrow.buffer), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewMakeHomImage_vImageARGB8888(handle.get(), 'L', &good.buffer, nullptr, &good.buffer),
              ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewMakeHomImage_vImageARGB8888(nullptr, 'L', &good.buffer, &params, &good.buffer), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewMakeHomImage_vImageARGB8888(handle.get(), 'l', &good.buffer, &params, &good.buffer),
              ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewUnDistortImage_vImageARGB8888(nullptr, 'L', &good.buffer, &good.buffer), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewUnDistortImage_vImageARGB8888(handle.get(), 'l', &good.buffer, &good.buffer), ZELM_ERR_PARAM);
}

// The formula pixel by pixel: the distorted position of each pixel, its bilinear gray level, rounded half up.
TEST(TwoViewUnDistortImage, EqualsTheFormulaToTheBit) {
    for (const std::int32_t model : {0, 1}) {
        TruePair pair = makePair(model, model);
        // One lens shrinks the picture, so that positions stay inside; the other one reaches beyond the border.
        pair.right.intrinsics.k1 = -pair.right.intrinsics.k1;
        Handle handle;
        loadPair(pair, &handle);
        Random random(105);
        Bytes src(static_cast<std::size_t>(kWidth) * kHeight);
        for (unsigned char& pixel : src) {
            pixel = static_cast<unsigned char>(random.bits());
        }
        const ZelmImage image{src.data(), kWidth, kHeight};
        ArgbImage argb(8);
        fillArgb(src, &argb);
        ArgbImage argbOut(0);
        for (const char name : kNames) {
            Bytes dst(src.size());
            ASSERT_EQ(zelm2ViewUnDistortImage(handle.get(), name, src.data(), dst.data()), ZELM_OK);
            ASSERT_EQ(zelm2ViewUnDistortImage_vImageARGB8888(handle.get(), name, &argb.buffer, &argbOut.buffer),
                      ZELM_OK);
            for (std::int32_t y = 0; y < kHeight; ++y) {
                for (std::int32_t x = 0; x < kWidth; ++x) {
                    double xd = 0.0;
                    double yd = 0.0;
                    zelmCalibDistortPoint(&pair.camera(name).intrinsics, x, y, &xd, &yd);
                    const auto gray = static_cast<unsigned char>(zelmMiscBilinearGrayLevel(&image, xd, yd) + 0.5);
                    ASSERT_EQ(dst[static_cast<std::size_t>(y) * kWidth + static_cast<std::size_t>(x)], gray)
                        << name << " " << x << ", " << y;
                    std::uint8_t r = 0;
                    std::uint8_t g = 0;
                    std::uint8_t b = 0;
                    zelm::sampleBilinearARGB8888(argb.buffer, xd, yd, r, g, b);
                    ASSERT_TRUE(argbOut.at(x, y, 0) == 255 && argbOut.at(x, y, 1) == r && argbOut.at(x, y, 2) == g &&
                                argbOut.at(x, y, 3) == b);
                }
            }
        }
    }
}

// Without distortion every pixel is its own source, the last column and row too; their neighbours lie outside.
TEST(TwoViewUnDistortImage, ReadsNothingOutsideTheSource) {
    for (const auto& [width, height] : {std::pair(1, 1), std::pair(5, 3), std::pair(1, 4), std::pair(300, 1)}) {
        TruePair pair = makePair(0, 0);
        pair.left.intrinsics.k1 = pair.left.intrinsics.k2 = 0.0;
        pair.width = width;
        pair.height = height;
        Handle handle;
        loadPair(pair, &handle);
        const auto pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
        for (const Guard guard : {Guard::atStart, Guard::atEnd}) {
            GuardedBuffer<unsigned char> src(pixels, guard);
            GuardedBuffer<unsigned char> dst(pixels, guard);
            for (std::size_t i = 0; i < pixels; ++i) {
                src.data()[i] = static_cast<unsigned char>(3 * i + 1);
            }
            ASSERT_EQ(zelm2ViewUnDistortImage(handle.get(), 'L', src.data(), dst.data()), ZELM_OK);
            EXPECT_TRUE(std::equal(src.begin(), src.end(), dst.begin()));
        }
    }
}

TEST(TwoViewUnDistortImage, BadArgumentsAreRefused) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    Bytes image(static_cast<std::size_t>(kWidth) * kHeight, 5);
    EXPECT_EQ(zelm2ViewUnDistortImage(nullptr, 'L', image.data(), image.data()), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewUnDistortImage(handle.get(), 'l', image.data(), image.data()), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewUnDistortImage(handle.get(), 'L', nullptr, image.data()), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewUnDistortImage(handle.get(), 'L', image.data(), nullptr), ZELM_ERR_PARAM);
}

TEST(TwoViewUnDistortImage, AnImageWithoutRowsSucceedsAtOnce) {
    TruePair pair = makePair(0, 0);
    pair.height = 0;
    Handle handle;
    loadPair(pair, &handle);
    Bytes image(4, 5);
    EXPECT_EQ(zelm2ViewUnDistortImage(handle.get(), 'L', image.data(), image.data()), ZELM_OK);
    EXPECT_EQ(image[0], 5);
}

TEST(TwoViewUnDistortImage, DistortionThatIsNotFiniteGivesBlack) {
    TruePair pair = makePair(0, 0);
    pair.left.intrinsics.k1 = std::numeric_limits<double>::quiet_NaN();
    Handle handle;
    loadPair(pair, &handle);
    Bytes image(static_cast<std::size_t>(kWidth) * kHeight, 5);
    Bytes out(image.size(), 9);
    EXPECT_EQ(zelm2ViewUnDistortImage(handle.get(), 'L', image.data(), out.data()), ZELM_OK);
    EXPECT_EQ(out[kWidth * 100 + 100], 0);
}

}  // namespace
