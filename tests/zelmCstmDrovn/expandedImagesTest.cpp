// Expanded images, rendered directly and through maps.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "expandedFixtures.h"

namespace {

using namespace zelmtest;
using Bytes = std::vector<unsigned char>;

constexpr std::int32_t kWidth = 320;
constexpr std::int32_t kHeight = 240;
constexpr char kNames[] = {'L', 'R'};
constexpr unsigned char kUntouched = 77;

// Slopes below 14 gray levels a pixel.
double patternAt(double x, double y) {
    return 120.0 + 60.0 * std::sin(x / 7.0) + 50.0 * std::cos(y / 5.0);
}

Bytes patternImage() {
    Bytes image;
    for (std::int32_t y = 0; y < kHeight; ++y) {
        for (std::int32_t x = 0; x < kWidth; ++x) {
            image.push_back(static_cast<unsigned char>(patternAt(x, y) + 0.5));
        }
    }
    return image;
}

// A target around the middle of the images, of odd size so that rows are not aligned.
ZelmCstmExpPrm targetFor(char name, std::int32_t width = 201, std::int32_t height = 151) {
    return {width, height, name == 'L' ? 150.0 : 170.0, 110.0, 0.0};
}

std::size_t pixelsOf(const ZelmCstmExpPrm& target) {
    return static_cast<std::size_t>(target.iWidth) * static_cast<std::size_t>(target.iHeight);
}

// Maps with rows longer than their width.
struct Maps {
    std::size_t rowX;
    std::size_t rowY;
    std::vector<float> x;
    std::vector<float> y;
    ZelmCstmHomMap map;

    Maps(std::int32_t width, std::int32_t height)
        : rowX(static_cast<std::size_t>(width) + 3),
          rowY(static_cast<std::size_t>(width) + 5),
          x(rowX * static_cast<std::size_t>(height) + 1, 77.0F),
          y(rowY * static_cast<std::size_t>(height) + 1, 77.0F),
          map{width,    height,
              x.data(), static_cast<std::int32_t>(rowX * 4),
              y.data(), static_cast<std::int32_t>(rowY * 4),
              77,       77,
              77,       77} {}
    Maps(const Maps&) = delete;
    Maps& operator=(const Maps&) = delete;

    [[nodiscard]] Point2d at(std::int32_t column, std::int32_t row) const {
        return {x[static_cast<std::size_t>(row) * rowX + static_cast<std::size_t>(column)],
                y[static_cast<std::size_t>(row) * rowY + static_cast<std::size_t>(column)]};
    }
    [[nodiscard]] bool isValid(std::int32_t column, std::int32_t row) const { return at(column, row).x != -1.0; }
};

TEST(CstmMakeHomImageExp, EveryPixelIsTheRawImageWhereThePointMappingSays) {
    Bytes source = patternImage();
    const ZelmImage image{source.data(), kWidth, kHeight};
    const std::int32_t models[][2] = {{0, 0}, {1, 0}, {2, 0}};
    for (const auto& model : models) {
        Handle handle;
        loadPair(makeQuarterPair(model[0], model[1]), &handle);
        for (const char name : kNames) {
            for (const double m : {1.0, 3.3}) {
                const ZelmCstmExpPrm target = targetFor(name);
                const ZelmCstmExpPrm expansion = magnification(m);
                Bytes expanded(pixelsOf(target), kUntouched);
                ASSERT_EQ(zelmCstmDrovnMakeHomImageExp(handle.get(), name, source.data(), &target, &expansion,
                                                       expanded.data()),
                          ZELM_OK);
                int inside = 0;
                for (std::int32_t y = 0; y < target.iHeight; ++y) {
                    for (std::int32_t x = 0; x < target.iWidth; ++x) {
                        const Point2d p{static_cast<double>(x), static_cast<double>(y)};
                        Point2d raw{};
                        ASSERT_EQ(zelmCstmDrovnInvHomImgPointExp(handle.get(), name, &p, &target, &expansion, &raw),
                                  ZELM_OK);
                        const int value = expanded[static_cast<std::size_t>(y * target.iWidth + x)];
                        constexpr double kMargin = 1e-3;  // single precision: the border is not exact
                        if (raw.x < -kMargin || raw.y < -kMargin || raw.x > kWidth - 1 + kMargin ||
                            raw.y > kHeight - 1 + kMargin) {
                            ASSERT_EQ(value, 0);
                        } else if (raw.x > kMargin && raw.y > kMargin && raw.x < kWidth - 1 - kMargin &&
                                   raw.y < kHeight - 1 - kMargin) {
                            // Rounding by 0.5, and single-precision positions: 1e-3 px of 14 gray levels.
                            ASSERT_NEAR(value, zelmMiscBilinearGrayLevel(&image, raw.x, raw.y), 0.52);
                            inside += 1;
                        }
                    }
                }
                EXPECT_GT(inside, 10000);
            }
        }
    }
}

// The texture of a plane.
double textureAt(double X, double Y) {
    return 120.0 + 55.0 * std::sin(X / 6.0) + 50.0 * std::cos(Y / 5.0 + 1.0);
}

// What a camera sees of a plane Z = height that carries the texture, in its raw image.
Bytes imageOfPlane(const TruePair& pair, const Handle& handle, char name, double height) {
    const zelm::CalibratedCamera& c = pair.camera(name);
    double P[12];
    EXPECT_EQ(zelmCalibCameraMatrix(c.intrinsics.A, &c.pose, P, c.model), ZELM_OK);
    double H[9];
    for (int i = 0; i < 3; ++i) {
        H[3 * i] = P[4 * i];
        H[3 * i + 1] = P[4 * i + 1];
        H[3 * i + 2] = P[4 * i + 2] * height + P[4 * i + 3];
    }
    double inverse[9];
    EXPECT_EQ(zelmMatInvert(3, H, inverse), ZELM_OK);
    Bytes image;
    for (std::int32_t y = 0; y < pair.height; ++y) {
        for (std::int32_t x = 0; x < pair.width; ++x) {
            const Point2d raw{static_cast<double>(x), static_cast<double>(y)};
            Point2d p{};
            EXPECT_EQ(zelm2ViewUnDistortPoint(handle.get(), name, &raw, &p), ZELM_OK);
            const double w = inverse[6] * p.x + inverse[7] * p.y + inverse[8];
            const double X = (inverse[0] * p.x + inverse[1] * p.y + inverse[2]) / w;
            const double Y = (inverse[3] * p.x + inverse[4] * p.y + inverse[5]) / w;
            image.push_back(static_cast<unsigned char>(textureAt(X, Y) + 0.5));
        }
    }
    return image;
}

// In a pair with a parallel camera the expanded image of a plane at height d is what the other camera sees of it.
TEST(CstmMakeHomImageExp, APlaneAtHeightDLooksAsTheOtherCameraSeesIt) {
    const TruePair pair = makeQuarterPair(2, 0);
    Handle handle;
    loadPair(pair, &handle);
    Random random(261);
    constexpr double kM = 2.0;
    for (const double height : {0.0, -15.0}) {
        for (const char name : kNames) {
            Bytes raw = imageOfPlane(pair, handle, name, height);
            const Point2d reference = pair.projectIdeal(name, {0.0, 0.0, height});
            const Point2d centre = pair.projectIdeal(otherName(name), {0.0, 0.0, height});
            const ZelmCstmExpPrm target{160, 120, reference.x, reference.y, height};
            const ZelmCstmExpPrm expansion = magnification(kM);
            Bytes expanded(pixelsOf(target));
            ASSERT_EQ(
                zelmCstmDrovnMakeHomImageExp(handle.get(), name, raw.data(), &target, &expansion, expanded.data()),
                ZELM_OK);
            const ZelmImage image{expanded.data(), target.iWidth, target.iHeight};
            for (int i = 0; i < 500; ++i) {
                const Point3d X{random.uniform(-30.0, 30.0), random.uniform(-20.0, 20.0), height};
                const Point2d seen = pair.projectIdeal(otherName(name), X);
                const double x = 80.0 + kM * (seen.x - centre.x);
                const double y = 60.0 + kM * (seen.y - centre.y);
                ASSERT_TRUE(x > 1.0 && x < 158.0 && y > 1.0 && y < 118.0);
                // Rounding twice by 0.5; bilinear interpolation over pixels of up to 1.4 units twice:
                // 2 (1.4^2 / 8) (55 / 36 + 50 / 25) = 1.7.
                ASSERT_NEAR(zelmMiscBilinearGrayLevel(&image, x, y), textureAt(X.x, X.y), 2.7);
            }
        }
    }
}

TEST(CstmMakeHomImageExp, PlanarBuffersWithPaddedRowsGiveThePlainImage) {
    const Bytes source = patternImage();
    Handle handle;
    loadPair(makeQuarterPair(0, 0), &handle);
    constexpr std::size_t kSourceRow = kWidth + 13;
    Bytes padded(kSourceRow * kHeight, 9);
    for (std::size_t y = 0; y < kHeight; ++y) {
        std::copy_n(&source[y * kWidth], kWidth, &padded[y * kSourceRow]);
    }
    const vImage_Buffer from{padded.data(), kHeight, kWidth, kSourceRow};
    for (const char name : kNames) {
        const ZelmCstmExpPrm target = targetFor(name);
        const ZelmCstmExpPrm expansion = magnification(2.5);
        Bytes plain(pixelsOf(target));
        constexpr std::size_t kRow = 201 + 6;
        Bytes rows(kRow * 151, kUntouched);
        const vImage_Buffer to{rows.data(), 151, 201, kRow};
        ASSERT_EQ(zelmCstmDrovnMakeHomImageExp(handle.get(), name, source.data(), &target, &expansion, plain.data()),
                  ZELM_OK);
        ASSERT_EQ(zelmCstmDrovnMakeHomImageExp_vImagePlanar8(handle.get(), name, &from, &target, &expansion, &to),
                  ZELM_OK);
        for (std::size_t y = 0; y < 151; ++y) {
            for (std::size_t x = 0; x < kRow; ++x) {
                ASSERT_EQ(rows[y * kRow + x], x < 201 ? plain[y * 201 + x] : kUntouched);
            }
        }
    }
}

// Four different channels: the pattern and its variations.
Bytes argbOf(const Bytes& gray, std::size_t row) {
    Bytes argb(row * kHeight, 9);
    for (std::size_t y = 0; y < kHeight; ++y) {
        for (std::size_t x = 0; x < kWidth; ++x) {
            const unsigned char value = gray[y * kWidth + x];
            unsigned char* const pixel = &argb[y * row + 4 * x];
            pixel[0] = static_cast<unsigned char>(255 - value);
            pixel[1] = value;
            pixel[2] = static_cast<unsigned char>(value / 2);
            pixel[3] = 200;
        }
    }
    return argb;
}

Bytes channelOf(const Bytes& argb, std::size_t row, std::size_t channel) {
    Bytes plane;
    for (std::size_t y = 0; y < kHeight; ++y) {
        for (std::size_t x = 0; x < kWidth; ++x) {
            plane.push_back(argb[y * row + 4 * x + channel]);
        }
    }
    return plane;
}

TEST(CstmMakeHomImageExp, ArgbBuffersTreatTheirFourChannelsAlike) {
    constexpr std::size_t kSourceRow = 4 * kWidth + 9;
    constexpr std::size_t kRow = 4 * 201 + 5;
    Bytes source = argbOf(patternImage(), kSourceRow);
    Handle handle;
    loadPair(makeQuarterPair(0, 0), &handle);
    const ZelmCstmExpPrm target = targetFor('R');
    const ZelmCstmExpPrm expansion = magnification(1.5);
    Bytes rows(kRow * 151, kUntouched);
    const vImage_Buffer from{source.data(), kHeight, kWidth, kSourceRow};
    const vImage_Buffer to{rows.data(), 151, 201, kRow};
    ASSERT_EQ(zelmCstmDrovnMakeHomImageExp_vImageARGB8888(handle.get(), 'R', &from, &target, &expansion, &to), ZELM_OK);
    for (std::size_t channel = 0; channel < 4; ++channel) {
        const Bytes plane = channelOf(source, kSourceRow, channel);
        Bytes plain(pixelsOf(target));
        ASSERT_EQ(zelmCstmDrovnMakeHomImageExp(handle.get(), 'R', plane.data(), &target, &expansion, plain.data()),
                  ZELM_OK);
        for (std::size_t y = 0; y < 151; ++y) {
            for (std::size_t x = 0; x < 201; ++x) {
                ASSERT_LE(std::abs(rows[y * kRow + 4 * x + channel] - plain[y * 201 + x]), 1);
            }
            ASSERT_EQ(rows[y * kRow + 4 * 201], kUntouched);
        }
    }
}

constexpr ZelmCstmExpPrm kTarget{8, 6, 150.0, 110.0, 0.0};
constexpr ZelmCstmExpPrm kExpansion{0, 0, 0.0, 0.0, 2.0};

TEST(CstmMakeHomImageExp, BadArgumentsAreRefused) {
    const Bytes source = patternImage();
    Bytes out(48, kUntouched);
    Handle handle;
    loadPair(makeQuarterPair(0, 0), &handle);
    const auto call = [&](const Zelm2ViewCalib* calib, int camera, const ZelmCstmExpPrm* target,
                          const ZelmCstmExpPrm* expansion) {
        return zelmCstmDrovnMakeHomImageExp(calib, camera, source.data(), target, expansion, out.data());
    };
    EXPECT_EQ(call(nullptr, 'L', &kTarget, &kExpansion), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', nullptr, &kExpansion), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', &kTarget, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'l', &kTarget, &kExpansion), ZELM_ERR_PARAM);
    for (const ZelmCstmExpPrm& bad : badExpansions()) {
        EXPECT_EQ(call(handle.get(), 'L', &kTarget, &bad), ZELM_ERR_PARAM);
    }
    EXPECT_EQ(out, Bytes(48, kUntouched));
}

TEST(CstmMakeHomImageExp, BadBuffersAreRefused) {
    Bytes source(4 * kWidth * kHeight, 200);
    Bytes out(4 * 48, kUntouched);
    Handle handle;
    loadPair(makeQuarterPair(0, 0), &handle);
    const vImage_Buffer from{source.data(), kHeight, kWidth, 4 * kWidth};
    const vImage_Buffer to{out.data(), 6, 8, 32};
    for (auto* const call : {zelmCstmDrovnMakeHomImageExp_vImagePlanar8, zelmCstmDrovnMakeHomImageExp_vImageARGB8888}) {
        EXPECT_EQ(call(nullptr, 'L', &from, &kTarget, &kExpansion, &to), ZELM_ERR_PARAM);
        EXPECT_EQ(call(handle.get(), 'L', &from, nullptr, &kExpansion, &to), ZELM_ERR_PARAM);
        EXPECT_EQ(call(handle.get(), 'L', &from, &kTarget, nullptr, &to), ZELM_ERR_PARAM);
        EXPECT_EQ(call(handle.get(), 'x', &from, &kTarget, &kExpansion, &to), ZELM_ERR_PARAM);
        for (const ZelmCstmExpPrm& bad : badExpansions()) {
            EXPECT_EQ(call(handle.get(), 'L', &from, &kTarget, &bad, &to), ZELM_ERR_PARAM);
        }
        EXPECT_EQ(call(handle.get(), 'L', nullptr, &kTarget, &kExpansion, &to), ZELM_ERR_PARAM);
        EXPECT_EQ(call(handle.get(), 'L', &from, &kTarget, &kExpansion, nullptr), ZELM_ERR_PARAM);
        const vImage_Buffer lowSource{source.data(), kHeight - 1, kWidth, 4 * kWidth};
        const vImage_Buffer thinSource{source.data(), kHeight, kWidth - 1, 4 * kWidth};
        const vImage_Buffer noSource{nullptr, kHeight, kWidth, 4 * kWidth};
        for (const vImage_Buffer* bad : {&lowSource, &thinSource, &noSource}) {
            EXPECT_EQ(call(handle.get(), 'L', bad, &kTarget, &kExpansion, &to), ZELM_ERR_PARAM);
        }
        const vImage_Buffer low{out.data(), 5, 8, 32};
        const vImage_Buffer thin{out.data(), 6, 7, 32};
        const vImage_Buffer none{nullptr, 6, 8, 32};
        for (const vImage_Buffer* bad : {&low, &thin, &none}) {
            EXPECT_EQ(call(handle.get(), 'L', &from, &kTarget, &kExpansion, bad), ZELM_ERR_PARAM);
        }
    }
    EXPECT_EQ(out, Bytes(4 * 48, kUntouched));
}

TEST(CstmMakeHomImageExp, ASingularRectifyingMatrixIsDegenerate) {
    Bytes source(4 * kWidth * kHeight, 200);
    Bytes out(4 * 48, kUntouched);
    Handle handle;
    loadSingularPair(makeQuarterPair(0, 0), &handle);
    const vImage_Buffer from{source.data(), kHeight, kWidth, 4 * kWidth};
    const vImage_Buffer to{out.data(), 6, 8, 32};
    EXPECT_EQ(zelmCstmDrovnMakeHomImageExp(handle.get(), 'L', source.data(), &kTarget, &kExpansion, out.data()),
              ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmCstmDrovnMakeHomImageExp_vImagePlanar8(handle.get(), 'L', &from, &kTarget, &kExpansion, &to),
              ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmCstmDrovnMakeHomImageExp_vImageARGB8888(handle.get(), 'L', &from, &kTarget, &kExpansion, &to),
              ZELM_ERR_DEGENERATE);
    // The homography comes before the buffers and the maps.
    EXPECT_EQ(zelmCstmDrovnMakeHomImageExp_vImagePlanar8(handle.get(), 'L', nullptr, &kTarget, &kExpansion, &to),
              ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelmCstmDrovnMakeHomImageMap(handle.get(), 'L', &kTarget, &kExpansion, nullptr), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(out, Bytes(4 * 48, kUntouched));
}

// A target without pixels writes nothing; sources may be missing then.
TEST(CstmMakeHomImageExp, TargetsWithoutPixelsWriteNothing) {
    Handle handle;
    loadPair(makeQuarterPair(0, 0), &handle);
    for (const std::int32_t size : {0, -1, -1000}) {
        for (const ZelmCstmExpPrm& target :
             {ZelmCstmExpPrm{size, 5, 150.0, 110.0, 0.0}, ZelmCstmExpPrm{5, size, 150.0, 110.0, 0.0}}) {
            EXPECT_EQ(zelmCstmDrovnMakeHomImageExp(handle.get(), 'L', nullptr, &target, &kExpansion, nullptr), ZELM_OK);
        }
    }
}

TEST(CstmMakeHomImageExp, ReferencePointsThatAreNotFiniteGiveAnEmptyImage) {
    const Bytes source = patternImage();
    Handle handle;
    loadPair(makeQuarterPair(0, 0), &handle);
    for (const double v : {kNan, kInfinity, -kInfinity, 1e300}) {
        const ZelmCstmExpPrm target{8, 6, v, 110.0, 0.0};
        Bytes out(48, kUntouched);
        EXPECT_EQ(zelmCstmDrovnMakeHomImageExp(handle.get(), 'L', source.data(), &target, &kExpansion, out.data()),
                  ZELM_OK);
        if (v != 1e300) {
            EXPECT_EQ(out, Bytes(48, 0)) << v;
        }
    }
}

TEST(CstmMakeHomImageMap, ItHoldsThePositionsAndTheBoxOfTheValidOnes) {
    Handle handle;
    loadPair(makeQuarterPair(0, 0), &handle);
    for (const char name : kNames) {
        const ZelmCstmExpPrm target{500, 400, 20.0, 230.0, 0.0};  // near a corner: the box is cut on two sides
        const ZelmCstmExpPrm expansion = magnification(2.0);
        Maps maps(500, 400);
        ASSERT_EQ(zelmCstmDrovnMakeHomImageMap(handle.get(), name, &target, &expansion, &maps.map), ZELM_OK);
        std::int32_t box[4] = {500, 400, 0, 0};
        for (std::int32_t y = 0; y < 400; ++y) {
            for (std::int32_t x = 0; x < 500; ++x) {
                if (!maps.isValid(x, y)) {
                    ASSERT_EQ(maps.at(x, y).y, -1.0);
                    continue;
                }
                const Point2d p{static_cast<double>(x), static_cast<double>(y)};
                Point2d raw{};
                ASSERT_EQ(zelmCstmDrovnInvHomImgPointExp(handle.get(), name, &p, &target, &expansion, &raw), ZELM_OK);
                ASSERT_NEAR(maps.at(x, y).x, raw.x, 1e-3);  // single precision
                ASSERT_NEAR(maps.at(x, y).y, raw.y, 1e-3);
                box[0] = std::min(box[0], x);
                box[1] = std::min(box[1], y);
                box[2] = std::max(box[2], x);
                box[3] = std::max(box[3], y);
            }
        }
        EXPECT_EQ(maps.map.minX, box[0]);
        EXPECT_EQ(maps.map.minY, box[1]);
        EXPECT_EQ(maps.map.maxX, box[2]);
        EXPECT_EQ(maps.map.maxY, box[3]);
        EXPECT_GT(box[0], 0);
        EXPECT_LT(box[3], 399);
        EXPECT_EQ(maps.x[500], 77.0F);  // beyond the row
        EXPECT_EQ(maps.y[500], 77.0F);
    }
}

// The target's size fixes the centre; the maps may be smaller or larger.
TEST(CstmMakeHomImageMap, ItsOwnSizeBoundsTheMaps) {
    Handle handle;
    loadPair(makeQuarterPair(0, 0), &handle);
    const ZelmCstmExpPrm target = targetFor('L');
    const ZelmCstmExpPrm expansion = magnification(2.0);
    Maps same(201, 151);
    Maps larger(240, 170);
    ASSERT_EQ(zelmCstmDrovnMakeHomImageMap(handle.get(), 'L', &target, &expansion, &same.map), ZELM_OK);
    ASSERT_EQ(zelmCstmDrovnMakeHomImageMap(handle.get(), 'L', &target, &expansion, &larger.map), ZELM_OK);
    for (std::int32_t y = 0; y < 151; ++y) {
        for (std::int32_t x = 0; x < 201; ++x) {
            ASSERT_EQ(same.at(x, y).x, larger.at(x, y).x);
            ASSERT_EQ(same.at(x, y).y, larger.at(x, y).y);
        }
    }
    EXPECT_TRUE(larger.isValid(239, 169));
}

TEST(CstmMakeHomImageMap, WithoutAnySourceTheBoxIsEmpty) {
    Handle handle;
    loadPair(makeQuarterPair(0, 0), &handle);
    const ZelmCstmExpPrm target{20, 10, -1000.0, 110.0, 0.0};
    Maps maps(20, 10);
    ASSERT_EQ(zelmCstmDrovnMakeHomImageMap(handle.get(), 'L', &target, &kExpansion, &maps.map), ZELM_OK);
    EXPECT_EQ(maps.map.minX, 20);
    EXPECT_EQ(maps.map.minY, 10);
    EXPECT_EQ(maps.map.maxX, 0);
    EXPECT_EQ(maps.map.maxY, 0);
    // Nothing to remap, and nothing is.
    const Bytes source = patternImage();
    Bytes out(200, kUntouched);
    EXPECT_EQ(zelmCstmDrovnRemapImage(&maps.map, source.data(), kWidth, kHeight, out.data(), 20, 10), ZELM_OK);
    EXPECT_EQ(out, Bytes(200, kUntouched));
}

TEST(CstmMakeHomImageMap, BadArgumentsAreRefused) {
    Handle handle;
    loadPair(makeQuarterPair(0, 0), &handle);
    Maps maps(20, 10);
    const auto call = [&](const Zelm2ViewCalib* calib, int camera, const ZelmCstmExpPrm* target,
                          const ZelmCstmExpPrm* expansion, ZelmCstmHomMap* map) {
        return zelmCstmDrovnMakeHomImageMap(calib, camera, target, expansion, map);
    };
    EXPECT_EQ(call(nullptr, 'L', &kTarget, &kExpansion, &maps.map), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', nullptr, &kExpansion, &maps.map), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', &kTarget, nullptr, &maps.map), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'l', &kTarget, &kExpansion, &maps.map), ZELM_ERR_PARAM);
    for (const ZelmCstmExpPrm& bad : badExpansions()) {
        EXPECT_EQ(call(handle.get(), 'L', &kTarget, &bad, &maps.map), ZELM_ERR_PARAM);
    }
    EXPECT_EQ(call(handle.get(), 'L', &kTarget, &kExpansion, nullptr), ZELM_ERR_PARAM);
    ZelmCstmHomMap bad = maps.map;
    bad.mapX = nullptr;
    EXPECT_EQ(call(handle.get(), 'L', &kTarget, &kExpansion, &bad), ZELM_ERR_PARAM);
    bad = maps.map;
    bad.mapY = nullptr;
    EXPECT_EQ(call(handle.get(), 'L', &kTarget, &kExpansion, &bad), ZELM_ERR_PARAM);
    bad = maps.map;
    bad.iWidth = -1;
    EXPECT_EQ(call(handle.get(), 'L', &kTarget, &kExpansion, &bad), ZELM_ERR_PARAM);
    bad = maps.map;
    bad.iHeight = -1;
    EXPECT_EQ(call(handle.get(), 'L', &kTarget, &kExpansion, &bad), ZELM_ERR_PARAM);
    EXPECT_EQ(bad.minX, 77);
    EXPECT_EQ(maps.x[0], 77.0F);
}

// A map around a corner of the image, so that its box is smaller than the destination.
struct CornerMap {
    Handle handle;
    ZelmCstmExpPrm target{120, 90, 10.0, 8.0, 0.0};
    ZelmCstmExpPrm expansion = magnification(2.0);
    Maps maps{120, 90};

    CornerMap() {
        loadPair(makeQuarterPair(0, 0), &handle);
        EXPECT_EQ(zelmCstmDrovnMakeHomImageMap(handle.get(), 'L', &target, &expansion, &maps.map), ZELM_OK);
        EXPECT_GT(maps.map.minX, 0);
        EXPECT_GT(maps.map.minY, 0);
    }
    [[nodiscard]] bool isInBox(std::int32_t x, std::int32_t y) const {
        const ZelmCstmHomMap& m = maps.map;
        return x >= m.minX && x <= m.maxX && y >= m.minY && y <= m.maxY;
    }
};

TEST(CstmRemapImage, ItGivesTheDirectImageInTheBoxAndLeavesTheRest) {
    const CornerMap corner;
    const Bytes source = patternImage();
    Bytes direct(120 * 90);
    Bytes remapped(120 * 90, kUntouched);
    ASSERT_EQ(zelmCstmDrovnMakeHomImageExp(corner.handle.get(), 'L', source.data(), &corner.target, &corner.expansion,
                                           direct.data()),
              ZELM_OK);
    ASSERT_EQ(zelmCstmDrovnRemapImage(&corner.maps.map, source.data(), kWidth, kHeight, remapped.data(), 120, 90),
              ZELM_OK);
    for (std::int32_t y = 0; y < 90; ++y) {
        for (std::int32_t x = 0; x < 120; ++x) {
            const auto at = static_cast<std::size_t>(y * 120 + x);
            if (corner.isInBox(x, y)) {
                ASSERT_LE(std::abs(remapped[at] - direct[at]), 1);
            } else {
                ASSERT_EQ(remapped[at], kUntouched);
                ASSERT_EQ(direct[at], 0);
            }
        }
    }
}

TEST(CstmRemapImage, BuffersWithPaddedRowsGiveThePlainImage) {
    const CornerMap corner;
    constexpr std::size_t kSourceRow = 4 * kWidth + 9;
    constexpr std::size_t kRow = 4 * 120 + 7;
    Bytes argb = argbOf(patternImage(), kSourceRow);
    Bytes colour(kRow * 90, kUntouched);
    const vImage_Buffer from{argb.data(), kHeight, kWidth, kSourceRow};
    const vImage_Buffer to{colour.data(), 90, 120, kRow};
    ASSERT_EQ(zelmCstmDrovnRemapImage_vImageARGB8888(&corner.maps.map, &from, &to), ZELM_OK);
    for (std::size_t channel = 0; channel < 4; ++channel) {
        Bytes plane = channelOf(argb, kSourceRow, channel);
        Bytes plain(120 * 90, kUntouched);
        ASSERT_EQ(zelmCstmDrovnRemapImage(&corner.maps.map, plane.data(), kWidth, kHeight, plain.data(), 120, 90),
                  ZELM_OK);
        // The same plane with padding.
        constexpr std::size_t kPlaneRow = kWidth + 3;
        Bytes padded(kPlaneRow * kHeight, 9);
        for (std::size_t y = 0; y < kHeight; ++y) {
            std::copy_n(&plane[y * kWidth], kWidth, &padded[y * kPlaneRow]);
        }
        Bytes rows(125 * 90, kUntouched);
        const vImage_Buffer planeFrom{padded.data(), kHeight, kWidth, kPlaneRow};
        const vImage_Buffer planeTo{rows.data(), 90, 120, 125};
        ASSERT_EQ(zelmCstmDrovnRemapImage_vImagePlanar8(&corner.maps.map, &planeFrom, &planeTo), ZELM_OK);
        for (std::size_t y = 0; y < 90; ++y) {
            for (std::size_t x = 0; x < 120; ++x) {
                ASSERT_EQ(rows[y * 125 + x], plain[y * 120 + x]);
                ASSERT_LE(std::abs(colour[y * kRow + 4 * x + channel] - plain[y * 120 + x]), 1);
            }
            ASSERT_EQ(rows[y * 125 + 120], kUntouched);
            ASSERT_EQ(colour[y * kRow + 480], kUntouched);
        }
    }
}

TEST(CstmRemapImage, ADestinationLargerThanTheMapsIsServed) {
    const CornerMap corner;
    const Bytes source = patternImage();
    Bytes same(120 * 90, kUntouched);
    Bytes larger(150 * 100, kUntouched);
    ASSERT_EQ(zelmCstmDrovnRemapImage(&corner.maps.map, source.data(), kWidth, kHeight, same.data(), 120, 90), ZELM_OK);
    ASSERT_EQ(zelmCstmDrovnRemapImage(&corner.maps.map, source.data(), kWidth, kHeight, larger.data(), 150, 100),
              ZELM_OK);
    for (std::size_t y = 0; y < 100; ++y) {
        for (std::size_t x = 0; x < 150; ++x) {
            ASSERT_EQ(larger[y * 150 + x], x < 120 && y < 90 ? same[y * 120 + x] : kUntouched);
        }
    }
}

// The kernels trust the box, so that it is checked here.
TEST(CstmRemapImage, ABoxOutsideTheMapsOrTheDestinationIsRefused) {
    const Bytes source = patternImage();
    Bytes out(200, kUntouched);
    Maps maps(20, 10);
    const auto call = [&](std::int32_t minX, std::int32_t minY, std::int32_t maxX, std::int32_t maxY,
                          std::int32_t width = 20, std::int32_t height = 10) {
        ZelmCstmHomMap map = maps.map;
        map.minX = minX;
        map.minY = minY;
        map.maxX = maxX;
        map.maxY = maxY;
        return zelmCstmDrovnRemapImage(&map, source.data(), kWidth, kHeight, out.data(), width, height);
    };
    EXPECT_EQ(call(-1, 0, 5, 5), ZELM_ERR_PARAM);
    EXPECT_EQ(call(0, -1, 5, 5), ZELM_ERR_PARAM);
    EXPECT_EQ(call(0, 0, 20, 5), ZELM_ERR_PARAM);
    EXPECT_EQ(call(0, 0, 5, 10), ZELM_ERR_PARAM);
    EXPECT_EQ(call(0, 0, 19, 9, 19, 10), ZELM_ERR_PARAM);
    EXPECT_EQ(call(0, 0, 19, 9, 20, 9), ZELM_ERR_PARAM);
    EXPECT_EQ(out, Bytes(200, kUntouched));
    EXPECT_EQ(call(0, 0, 18, 9, 19, 10), ZELM_OK);
    EXPECT_EQ(call(6, 0, 5, 5), ZELM_OK);  // empty
    EXPECT_EQ(call(0, 6, 5, 5), ZELM_OK);
}

TEST(CstmRemapImage, MapsOfNoSizeWriteNothing) {
    const Bytes source = patternImage();
    Bytes out(200, kUntouched);
    const ZelmCstmHomMap map{0, 0, nullptr, 0, nullptr, 0, 0, 0, 0, 0};  // the box of an empty map
    EXPECT_EQ(zelmCstmDrovnRemapImage(&map, source.data(), kWidth, kHeight, out.data(), 20, 10), ZELM_OK);
    EXPECT_EQ(out, Bytes(200, kUntouched));
}

TEST(CstmRemapImage, BadArgumentsAreRefused) {
    const Bytes source = patternImage();
    Bytes out(200, kUntouched);
    Maps maps(20, 10);
    maps.map.minX = maps.map.minY = 0;
    maps.map.maxX = maps.map.maxY = 9;
    const auto call = [&](const ZelmCstmHomMap* map, const unsigned char* src, std::int32_t srcWidth,
                          std::int32_t srcHeight, unsigned char* dst, std::int32_t width, std::int32_t height) {
        return zelmCstmDrovnRemapImage(map, src, srcWidth, srcHeight, dst, width, height);
    };
    EXPECT_EQ(call(nullptr, source.data(), kWidth, kHeight, out.data(), 20, 10), ZELM_ERR_PARAM);
    EXPECT_EQ(call(&maps.map, nullptr, kWidth, kHeight, out.data(), 20, 10), ZELM_ERR_PARAM);
    EXPECT_EQ(call(&maps.map, source.data(), kWidth, kHeight, nullptr, 20, 10), ZELM_ERR_PARAM);
    EXPECT_EQ(call(&maps.map, source.data(), 0, kHeight, out.data(), 20, 10), ZELM_ERR_PARAM);
    EXPECT_EQ(call(&maps.map, source.data(), kWidth, 0, out.data(), 20, 10), ZELM_ERR_PARAM);
    EXPECT_EQ(call(&maps.map, source.data(), kWidth, kHeight, out.data(), 0, 10), ZELM_ERR_PARAM);
    EXPECT_EQ(call(&maps.map, source.data(), kWidth, kHeight, out.data(), 20, 0), ZELM_ERR_PARAM);
    EXPECT_EQ(out, Bytes(200, kUntouched));
}

TEST(CstmRemapImage, BadBuffersAreRefused) {
    Bytes source(4 * kWidth * kHeight, 200);
    Bytes out(4 * 200, kUntouched);
    Maps maps(20, 10);
    maps.map.minX = maps.map.minY = 0;
    maps.map.maxX = maps.map.maxY = 9;
    const vImage_Buffer from{source.data(), kHeight, kWidth, 4 * kWidth};
    const vImage_Buffer to{out.data(), 10, 20, 80};
    for (auto* const call : {zelmCstmDrovnRemapImage_vImagePlanar8, zelmCstmDrovnRemapImage_vImageARGB8888}) {
        EXPECT_EQ(call(nullptr, &from, &to), ZELM_ERR_PARAM);
        EXPECT_EQ(call(&maps.map, nullptr, &to), ZELM_ERR_PARAM);
        EXPECT_EQ(call(&maps.map, &from, nullptr), ZELM_ERR_PARAM);
        const vImage_Buffer missing{nullptr, 10, 20, 80};
        const vImage_Buffer noRows{out.data(), 0, 20, 80};
        const vImage_Buffer noColumns{out.data(), 10, 0, 80};
        for (const vImage_Buffer* bad : {&missing, &noRows, &noColumns}) {
            EXPECT_EQ(call(&maps.map, &from, bad), ZELM_ERR_PARAM);
            EXPECT_EQ(call(&maps.map, bad, &to), ZELM_ERR_PARAM);
        }
        if (sizeof(std::size_t) > 4) {
            const std::size_t huge = static_cast<std::size_t>(1) << (sizeof(std::size_t) * 4);
            const vImage_Buffer wide{out.data(), 10, huge, 80};
            const vImage_Buffer high{out.data(), huge, 20, 80};
            const vImage_Buffer longRows{out.data(), 10, 20, huge};
            for (const vImage_Buffer* bad : {&wide, &high, &longRows}) {
                EXPECT_EQ(call(&maps.map, &from, bad), ZELM_ERR_PARAM);
            }
        }
    }
    EXPECT_EQ(out, Bytes(4 * 200, kUntouched));
}

}  // namespace
