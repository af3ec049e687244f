// Allocation faults of the expanded images.
#include <vector>

#include "faultCase.h"
#include "pairFixture.h"

namespace {

using namespace zelmtest;

constexpr std::int32_t kWidth = 40;
constexpr std::int32_t kHeight = 30;
constexpr std::size_t kPixels = 40 * 30;
constexpr ZelmCstmExpPrm kTarget{kWidth, kHeight, 20.0, 15.0, 0.0};
constexpr ZelmCstmExpPrm kExpansion{kWidth, kHeight, 20.0, 15.0, 2.0};
constexpr Point2d kPixel{20.0, 15.0};
constexpr unsigned char kUntouched = 77;

// A pair of small images whose principal points lie in their middles.
struct SmallPair {
    Handle handle;

    SmallPair() {
        TruePair pair = makePair(0, 0);
        pair.width = kWidth;
        pair.height = kHeight;
        loadPair(pair, &handle);
    }
    [[nodiscard]] const Zelm2ViewCalib* get() const { return handle.get(); }
};

// An image of each kind and a destination nobody has written to.
struct Images {
    explicit Images(std::size_t channels)
        : rowBytes(kWidth * channels), src(kPixels * channels, 5), dst(kPixels * channels, kUntouched) {}
    std::size_t rowBytes;
    std::vector<unsigned char> src;
    std::vector<unsigned char> dst;
    [[nodiscard]] vImage_Buffer from() { return {src.data(), kHeight, kWidth, rowBytes}; }
    [[nodiscard]] vImage_Buffer to() { return {dst.data(), kHeight, kWidth, rowBytes}; }
};

struct Maps {
    std::vector<float> x = std::vector<float>(kPixels, 3.0F);
    std::vector<float> y = std::vector<float>(kPixels, 4.0F);
    ZelmCstmHomMap map{kWidth, kHeight, x.data(), kWidth * 4, y.data(), kWidth * 4, 0, 0, kWidth - 1, kHeight - 1};
};

// The homography's inverses need memory: degenerate without.
void expectTransferStatus(const FaultProbe& probe, std::int32_t status) {
    EXPECT_EQ(status, probe.failed() ? ZELM_ERR_DEGENERATE : ZELM_OK);
}

}  // namespace

ZELM_NO_ALLOCATION_CASE(zelmCstmDrovnCalcMagnification) {
    const SmallPair pair;
    double left = 0.0;
    double right = 0.0;
    EXPECT_EQ(probe.call([&] { return zelmCstmDrovnCalcMagnification(pair.get(), 0.0, 1000.0, &left, &right); }),
              ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelmCstmDrovnCalcHomImgMemSize) {
    const SmallPair pair;
    const ZelmRect roi{5, 5, 10, 10};
    std::int32_t width = 77;
    std::int32_t height = 77;
    Point2d centre{77.0, 77.0};
    expectTransferStatus(probe, probe.call([&] {
        return zelmCstmDrovnCalcHomImgMemSize(pair.get(), 'L', &roi, &kExpansion, &width, &height, &centre, 0.0);
    }));
    EXPECT_EQ(width == 77, probe.failed());
    EXPECT_EQ(height == 77, probe.failed());
    EXPECT_EQ(centre.x == 77.0, probe.failed());
}

ZELM_NO_ALLOCATION_CASE(zelmCstmDrovnChangeOrg2DtoExp2D) {
    Point2d out{};
    EXPECT_EQ(probe.call([&] { return zelmCstmDrovnChangeOrg2DtoExp2D(&kExpansion, &kPixel, &out); }), ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelmCstmDrovnChangeOrg2DtoHom2D) {
    const SmallPair pair;
    Point2d out{77.0, 77.0};
    expectTransferStatus(
        probe, probe.call([&] { return zelmCstmDrovnChangeOrg2DtoHom2D(pair.get(), 'L', &kTarget, &kPixel, &out); }));
    EXPECT_EQ(out.x == 77.0, probe.failed());
}

ZELM_NO_ALLOCATION_CASE(zelmCstmDrovnChangeOrg2DtoHom2DExp) {
    const SmallPair pair;
    Point2d out{77.0, 77.0};
    expectTransferStatus(probe, probe.call([&] {
        return zelmCstmDrovnChangeOrg2DtoHom2DExp(pair.get(), 'L', &kTarget, &kExpansion, &kPixel, &out);
    }));
    EXPECT_EQ(out.x == 77.0, probe.failed());
}

ZELM_NO_ALLOCATION_CASE(zelmCstmDrovnInvHomImgPointExp) {
    const SmallPair pair;
    Point2d out{77.0, 77.0};
    expectTransferStatus(probe, probe.call([&] {
        return zelmCstmDrovnInvHomImgPointExp(pair.get(), 'L', &kPixel, &kTarget, &kExpansion, &out);
    }));
    EXPECT_EQ(out.x == 77.0, probe.failed());
}

// A clipping whose memory fails finds no end points; the line itself stands.
ZELM_NO_ALLOCATION_CASE(zelmCstmDrovnChangeHomEpiLineExp) {
    const SmallPair pair;
    const Line2d line{0.0, 1.0, -15.0};
    Zelm2ViewEpiLine out{};
    const std::int32_t status = probe.call(
        [&] { return zelmCstmDrovnChangeHomEpiLineExp(pair.get(), 'L', &kTarget, &kExpansion, &line, &out); });
    EXPECT_TRUE(status == ZELM_OK || (probe.failed() && status == ZELM_ERR_DEGENERATE)) << status;
    EXPECT_EQ(out.x0 != 0.0, !probe.failed());
}

ZELM_NO_ALLOCATION_CASE(zelmCstmDrovnMakeHomImageExp) {
    const SmallPair pair;
    Images images(1);
    expectTransferStatus(probe, probe.call([&] {
        return zelmCstmDrovnMakeHomImageExp(pair.get(), 'L', images.src.data(), &kTarget, &kExpansion,
                                            images.dst.data());
    }));
    EXPECT_EQ(images.dst[0] == kUntouched, probe.failed());
}

ZELM_NO_ALLOCATION_CASE(zelmCstmDrovnMakeHomImageExp_vImagePlanar8) {
    const SmallPair pair;
    Images images(1);
    const vImage_Buffer from = images.from();
    const vImage_Buffer to = images.to();
    expectTransferStatus(probe, probe.call([&] {
        return zelmCstmDrovnMakeHomImageExp_vImagePlanar8(pair.get(), 'L', &from, &kTarget, &kExpansion, &to);
    }));
    EXPECT_EQ(images.dst[0] == kUntouched, probe.failed());
}

ZELM_NO_ALLOCATION_CASE(zelmCstmDrovnMakeHomImageExp_vImageARGB8888) {
    const SmallPair pair;
    Images images(4);
    const vImage_Buffer from = images.from();
    const vImage_Buffer to = images.to();
    expectTransferStatus(probe, probe.call([&] {
        return zelmCstmDrovnMakeHomImageExp_vImageARGB8888(pair.get(), 'L', &from, &kTarget, &kExpansion, &to);
    }));
    EXPECT_EQ(images.dst[0] == kUntouched, probe.failed());
}

ZELM_NO_ALLOCATION_CASE(zelmCstmDrovnMakeHomImageMap) {
    const SmallPair pair;
    Maps maps;
    maps.map.minX = kUntouched;
    expectTransferStatus(probe, probe.call([&] {
        return zelmCstmDrovnMakeHomImageMap(pair.get(), 'L', &kTarget, &kExpansion, &maps.map);
    }));
    EXPECT_EQ(maps.map.minX == kUntouched, probe.failed());
    EXPECT_EQ(maps.x[0] == 3.0F, probe.failed());
}

ZELM_NO_ALLOCATION_CASE(zelmCstmDrovnRemapImage) {
    const Maps maps;
    Images images(1);
    EXPECT_EQ(probe.call([&] {
        return zelmCstmDrovnRemapImage(&maps.map, images.src.data(), kWidth, kHeight, images.dst.data(), kWidth,
                                       kHeight);
    }),
              ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelmCstmDrovnRemapImage_vImagePlanar8) {
    const Maps maps;
    Images images(1);
    const vImage_Buffer from = images.from();
    const vImage_Buffer to = images.to();
    EXPECT_EQ(probe.call([&] { return zelmCstmDrovnRemapImage_vImagePlanar8(&maps.map, &from, &to); }), ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelmCstmDrovnRemapImage_vImageARGB8888) {
    const Maps maps;
    Images images(4);
    const vImage_Buffer from = images.from();
    const vImage_Buffer to = images.to();
    EXPECT_EQ(probe.call([&] { return zelmCstmDrovnRemapImage_vImageARGB8888(&maps.map, &from, &to); }), ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelmCstmDrovnExpandImage) {
    const SmallPair pair;
    Images images(1);
    EXPECT_EQ(probe.call([&] {
        return zelmCstmDrovnExpandImage(pair.get(), 'L', images.src.data(), &kExpansion, images.dst.data());
    }),
              ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelmCstmDrovnExpandImage_vImagePlanar8) {
    const SmallPair pair;
    Images images(1);
    const vImage_Buffer from = images.from();
    const vImage_Buffer to = images.to();
    EXPECT_EQ(
        probe.call([&] { return zelmCstmDrovnExpandImage_vImagePlanar8(pair.get(), 'L', &from, &kExpansion, &to); }),
        ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelmCstmDrovnExpandImage_vImageARGB8888) {
    const SmallPair pair;
    Images images(4);
    const vImage_Buffer from = images.from();
    const vImage_Buffer to = images.to();
    EXPECT_EQ(
        probe.call([&] { return zelmCstmDrovnExpandImage_vImageARGB8888(pair.get(), 'L', &from, &kExpansion, &to); }),
        ZELM_OK);
}

// A clipping whose memory fails finds no crossing.
ZELM_NO_ALLOCATION_CASE(zelmCstmDrovnGetPixelOnEpiLine) {
    const ZelmRect rect{0, 0, 10, 10};
    const Line2d line{0.0, 1.0, -5.0};
    std::int32_t count = 77;
    Point2i points[10];
    const std::int32_t status =
        probe.call([&] { return zelmCstmDrovnGetPixelOnEpiLine(&rect, &line, &count, points); });
    EXPECT_EQ(status, probe.failed() ? ZELM_ERR_DEGENERATE : ZELM_OK);
    EXPECT_EQ(count, probe.failed() ? 77 : 10);
}
