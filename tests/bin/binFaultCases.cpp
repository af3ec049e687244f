// Every exported function of the binary-image family with each of its allocations failing.
#include "faultCase.h"
#include "testImage.h"
#include "zelm/bin.h"

using zelmtest::FaultProbe;
using zelmtest::TestImage;

namespace {

constexpr uint8_t kUntouched = 99;

using Morphology = int32_t (*)(const ZelmImage*, const ZelmRect*, int32_t, int32_t, ZelmImage*);

void morphologyCase(FaultProbe& probe, Morphology operation) {
    TestImage image(12, 10, 200);
    TestImage out(12, 10, kUntouched);
    const ZelmImage src = image.record();
    ZelmImage dst = out.record();
    const ZelmRect region = image.all();
    const int32_t status = probe.call([&] { return operation(&src, &region, 128, 2, &dst); });
    if (probe.failed()) {
        EXPECT_EQ(status, ZELM_ERR_MEMORY);
        EXPECT_EQ(out.pixels, TestImage(12, 10, kUntouched).pixels);
    } else {
        EXPECT_EQ(status, ZELM_OK);
    }
}

}  // namespace

ZELM_NO_ALLOCATION_CASE(zelmBinOtsuThresholdHistogram) {
    const uint32_t h[4] = {1, 0, 2, 3};
    EXPECT_EQ(probe.call([&] { return zelmBinOtsuThresholdHistogram(4, h); }), 1);
}

ZELM_NO_ALLOCATION_CASE(zelmBinOtsuThresholdImage) {
    TestImage image(600, 500, 200);
    image.fillRect({20, 30, 301, 200}, 90);
    const ZelmImage record = image.record();
    const ZelmRect region = image.all();
    EXPECT_EQ(probe.call([&] { return zelmBinOtsuThresholdImage(&record, &region); }), 91);
}

ZELM_NO_ALLOCATION_CASE(zelmBinOtsuThresholdGray) {
    const double values[2] = {3.0, 90.0};
    EXPECT_EQ(probe.call([&] { return zelmBinOtsuThresholdGray(2, values); }), 4);
}

ZELM_NO_ALLOCATION_CASE(zelmBinBinaryImage) {
    TestImage image(12, 10, 200);
    const ZelmImage src = image.record();
    ZelmImage dst = image.record();
    const ZelmRect region = image.all();
    EXPECT_EQ(probe.call([&] { return zelmBinBinaryImage(&src, &region, 128, &dst); }), ZELM_OK);
}

ZELM_FAULT_CASE(zelmBinDilation) {
    morphologyCase(probe, zelmBinDilation);
}
ZELM_FAULT_CASE(zelmBinErosion) {
    morphologyCase(probe, zelmBinErosion);
}
ZELM_FAULT_CASE(zelmBinOpening) {
    morphologyCase(probe, zelmBinOpening);
}
ZELM_FAULT_CASE(zelmBinClosing) {
    morphologyCase(probe, zelmBinClosing);
}

// 2500 single pixels: labels, accumulators and records all grow twice and the records shrink at the end.
ZELM_FAULT_CASE(zelmBinBlob) {
    TestImage image(102, 102);
    for (int32_t y = 1; y < 101; y += 2) {
        for (int32_t x = 1; x < 101; x += 2) {
            image.at(x, y) = 255;
        }
    }
    const ZelmImage record = image.record();
    const ZelmRect region = image.all();
    ZelmBlob* blobs = nullptr;
    int32_t count = 7;
    const int32_t status = probe.call([&] { return zelmBinBlob(&record, &region, 128, 1, 1, 1, &blobs, &count); });
    if (probe.failed()) {
        EXPECT_EQ(status, ZELM_ERR_MEMORY);
        EXPECT_EQ(count, 7);
    } else {
        EXPECT_EQ(status, ZELM_OK);
        EXPECT_EQ(count, 2500);
    }
    zelmBinFree(&blobs);
    EXPECT_EQ(blobs, nullptr);
}

ZELM_NO_ALLOCATION_CASE(zelmBinFree) {
    ZelmBlob* blobs = nullptr;
    probe.call([&] {
        zelmBinFree(&blobs);
        return 0;
    });
    EXPECT_EQ(blobs, nullptr);
}
