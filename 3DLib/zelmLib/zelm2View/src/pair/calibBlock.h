// The calibration data block: the one persisted format. Packed little-endian bytes, n * 240 + 812 for n views; doubles
// stand at multiples of 4, not of 8, so the block is only ever read and written through memcpy at the offsets below.
#ifndef ZELM_CALIB_BLOCK_H
#define ZELM_CALIB_BLOCK_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "zelm/twoView.h"

namespace zelm {

enum class Camera : unsigned char { left, right };

constexpr bool isLeft(Camera camera) {
    return camera == Camera::left;
}

// A rectifying pair: M, row-major, and its inverse.
struct RectifyingPair {
    double M[9];
    double Minv[9];
};

// The fundamental matrix, row-major, and its transpose.
struct FundamentalPair {
    double F[9];
    double Ft[9];
};

namespace block {

static_assert(std::endian::native == std::endian::little, "the block holds little-endian numbers");
static_assert(sizeof(Zelm2ViewCameraDesc) == 24 && sizeof(Zelm2ViewPatternDesc) == 96);
static_assert(sizeof(RectifyingPair) == 144 && sizeof(FundamentalPair) == 144);
static_assert(sizeof(ZelmCameraIntrinsics) == 176 && sizeof(ZelmCameraExtrinsics) == 120);

constexpr std::size_t kViews = 0;              // int32: n
constexpr std::size_t kCameras = 4;            // Zelm2ViewCameraDesc
constexpr std::size_t kLeftRectifying = 28;    // RectifyingPair
constexpr std::size_t kRightRectifying = 172;  // RectifyingPair
constexpr std::size_t kFundamental = 316;      // FundamentalPair: F, then its transpose at 388
constexpr std::size_t kLeftIntrinsics = 460;   // ZelmCameraIntrinsics
constexpr std::size_t kRightIntrinsics = 636;  // ZelmCameraIntrinsics
constexpr std::size_t kPoses = 812;            // n left ZelmCameraExtrinsics, then n right ones

constexpr std::size_t kPoseBytes = sizeof(ZelmCameraExtrinsics);
constexpr std::int64_t kFixedBytes = 812;
constexpr std::int64_t kBytesPerView = 240;

constexpr std::int64_t size(std::int32_t views) {
    return views * kBytesPerView + kFixedBytes;
}

constexpr std::size_t rectifying(Camera camera) {
    return isLeft(camera) ? kLeftRectifying : kRightRectifying;
}
constexpr std::size_t intrinsics(Camera camera) {
    return isLeft(camera) ? kLeftIntrinsics : kRightIntrinsics;
}
constexpr std::size_t pose(std::int32_t views, Camera camera, std::int32_t view) {
    const std::size_t first = isLeft(camera) ? 0 : static_cast<std::size_t>(views);
    return kPoses + (first + static_cast<std::size_t>(view)) * kPoseBytes;
}

template <class T>
T read(const unsigned char* data, std::size_t offset) {
    static_assert(std::is_trivially_copyable_v<T>);
    T value;
    std::memcpy(&value, data + offset, sizeof(T));
    return value;
}

template <class T>
void write(unsigned char* data, std::size_t offset, const T& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    std::memcpy(data + offset, &value, sizeof(T));
}

inline std::int32_t views(const unsigned char* data) {
    return read<std::int32_t>(data, kViews);
}
inline Zelm2ViewCameraDesc cameras(const unsigned char* data) {
    return read<Zelm2ViewCameraDesc>(data, kCameras);
}

}  // namespace block
}  // namespace zelm

#endif
