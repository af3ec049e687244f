// What the tests of expanded images share.
#ifndef ZELM_TEST_EXPANDED_FIXTURES_H
#define ZELM_TEST_EXPANDED_FIXTURES_H

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "pairFixture.h"

namespace zelmtest {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Both cameras of the fixture's pair with images of a quarter of the width and height.
inline TruePair makeQuarterPair(std::int32_t leftModel, std::int32_t rightModel) {
    TruePair pair = makePair(leftModel, rightModel);
    pair.width /= 4;
    pair.height /= 4;
    for (ZelmCameraIntrinsics* c : {&pair.left.intrinsics, &pair.right.intrinsics}) {
        for (int i = 0; i < 6; ++i) {
            c->A[i] /= 4.0;
        }
        c->alpha /= 4.0;
        c->beta /= 4.0;
        c->gamma /= 4.0;
        c->cx /= 4.0;
        c->cy /= 4.0;
    }
    return pair;
}

// A pair whose right rectifying matrix is all zeros.
inline void loadSingularPair(const TruePair& pair, Handle* handle) {
    std::vector<unsigned char> data = blockOf(pair);
    zelm::block::write(data.data(), zelm::block::rectifying(zelm::Camera::right), zelm::RectifyingPair{});
    ASSERT_EQ(zelm2ViewLoadCalibData(static_cast<std::int32_t>(data.size()), data.data(), &handle->calib), ZELM_OK);
}

inline char otherName(char name) {
    return name == 'L' ? 'R' : 'L';
}

// An expansion that only magnifies.
constexpr ZelmCstmExpPrm magnification(double m) {
    return {0, 0, 0.0, 0.0, m};
}

// The ways in which an expansion can be bad.
inline std::vector<ZelmCstmExpPrm> badExpansions() {
    return {{-1, 10, 0.0, 0.0, 2.0}, {10, -1, 0.0, 0.0, 2.0}, {10, 10, 0.0, 0.0, 0.999}, {10, 10, 0.0, 0.0, kNan}};
}

}  // namespace zelmtest

#endif
