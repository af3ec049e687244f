// Objects that read rendered plates, and their lists.
#ifndef ZELM_TEST_PATTERN_READING_H
#define ZELM_TEST_PATTERN_READING_H

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "calibObject.h"
#include "patternFixtures.h"

namespace zelmtest {

using Pixels = std::vector<unsigned char>;

inline constexpr int kSmallPlateDots = 35;
inline constexpr double kSmallScale =
    5.0;  // pixels per plane unit: dot radius 12.5, the plate covers a third of the image

// An object whose two cameras are alike.
struct Reader {
    Handle handle;

    explicit Reader(const Zelm2ViewPatternDesc& pattern, const Zelm2ViewCameraDesc& cameras = cameraPair(0, 0)) {
        EXPECT_EQ(zelm2ViewCalibOpen(3, &pattern, &cameras, &handle.calib), ZELM_OK);
    }
    std::int32_t read(std::int32_t view, const unsigned char* left, const unsigned char* right,
                      const ZelmRect* regionLeft = nullptr, const ZelmRect* regionRight = nullptr) {
        const unsigned char* const images[] = {left, right};
        return zelm2ViewReadPtnImg(handle.calib, view, images, regionLeft, regionRight);
    }
    std::int32_t readBoth(const Pixels& pixels, std::int32_t view = 0, const ZelmRect* region = nullptr) {
        return read(view, pixels.data(), pixels.data(), region, region);
    }
    [[nodiscard]] const Zelm2ViewPtnEntry& entry(char camera, std::int32_t view = 0) const {
        const auto side = camera == 'L' ? zelm::Camera::left : zelm::Camera::right;
        return zelm::entriesOf(zelm::openedWork(*handle.calib), side)[view];
    }
};

inline render::RenderedView smallView(double roll = 0.0, double tilt = 0.0, const render::Plate& plate = smallPlate()) {
    const auto camera = testCamera();
    return renderAt(plate, camera, aimAt(camera, kSmallScale, roll, tilt, 20.0));
}

// Lists of an entry, to be compared later.
struct Lists {
    std::vector<Point2d> plane;
    std::vector<Point2d> image;

    explicit Lists(const Zelm2ViewPtnEntry& entry)
        : plane(entry.plane, entry.plane + entry.count), image(entry.image, entry.image + entry.count) {}
    bool operator==(const Lists& other) const {
        return plane.size() == other.plane.size() &&
               (plane.empty() || (std::memcmp(plane.data(), other.plane.data(), plane.size() * sizeof(Point2d)) == 0 &&
                                  std::memcmp(image.data(), other.image.data(), image.size() * sizeof(Point2d)) == 0));
    }
};

inline void expectEmpty(const Zelm2ViewPtnEntry& entry) {
    EXPECT_EQ(entry.count, 0);
    EXPECT_EQ(entry.plane, nullptr);
    EXPECT_EQ(entry.image, nullptr);
}

}  // namespace zelmtest

#endif
