#include "covarianceBlock.h"

#include <bit>
#include <cstring>
#include <string>
#include <vector>

#include "covarianceCheck.h"

namespace zelm::measure {
namespace {

static_assert(std::endian::native == std::endian::little, "the block holds little-endian numbers");

constexpr std::array<unsigned char, 4> kMagic{'Z', 'C', 'O', 'V'};
constexpr std::int32_t kVersion = 1;

// Places, bytes.
constexpr std::size_t kVersionAt = 4;
constexpr std::size_t kSizeAt = 8;
constexpr std::size_t kParametersAt = 12;
constexpr std::size_t kCalibrationAt = 16;  // checksum of the calibration block
constexpr std::size_t kNoiseAt = 24;
constexpr std::size_t kFreedomAt = 32;
constexpr std::size_t kMatrixAt = 40;
constexpr std::size_t kChecksumAt = kCovarianceBytes - 8;

template <class T>
void put(CovarianceBlock& block, std::size_t at, const T& value) {
    std::memcpy(block.data() + at, &value, sizeof value);
}

// Within what was checked to be there.
template <class T>
T take(std::span<const unsigned char> bytes, std::size_t at) {
    T value{};
    std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}

std::uint64_t checksumOf(const Rig& rig) {
    const Zelm2ViewCalib* const calib = rig.calib.get();
    std::vector<unsigned char> block(static_cast<std::size_t>(zelm2ViewGetCalibDataSize(calib)));
    require(zelm2ViewSaveCalibData(calib, block.data()) >= 0, "the rig holds no calibration");
    return zelm::measure::checksumOf(std::span<const unsigned char>(block));
}

// The element of row and column, row >= column, among those of the lower triangle.
constexpr std::size_t triangleAt(std::size_t row, std::size_t column) {
    return row * (row + 1) / 2 + column;
}

void checkHeader(std::span<const unsigned char> bytes) {
    if (bytes.size() < kMagic.size() || std::memcmp(bytes.data(), kMagic.data(), kMagic.size()) != 0) {
        refuse("not a covariance: it does not begin with ZCOV");
    }
    if (bytes.size() >= kSizeAt && take<std::int32_t>(bytes, kVersionAt) != kVersion) {
        refuse("a covariance of version " + std::to_string(take<std::int32_t>(bytes, kVersionAt)) +
               ", but only version 1 is known: is it damaged, or written by a newer program?");
    }
    if (bytes.size() != kCovarianceBytes) {
        refuse("damaged covariance: " + std::to_string(bytes.size()) + " bytes instead of " +
               std::to_string(kCovarianceBytes) + "; was it copied whole?");
    }
    const bool fits = take<std::int32_t>(bytes, kSizeAt) == static_cast<std::int32_t>(kCovarianceBytes) &&
                      take<std::int32_t>(bytes, kParametersAt) == static_cast<std::int32_t>(kRigParameters);
    if (!fits || take<std::uint64_t>(bytes, kChecksumAt) != zelm::measure::checksumOf(bytes.first(kChecksumAt))) {
        refuse("damaged covariance: its checksum is wrong; copy it again, or calibrate again");
    }
}

}  // namespace

std::uint64_t checksumOf(std::span<const unsigned char> bytes) {
    constexpr std::uint64_t kPolynomial = 0x42F0E1EBA9EA3693U;
    std::uint64_t sum = 0;
    for (const unsigned char byte : bytes) {
        sum ^= static_cast<std::uint64_t>(byte) << 56U;
        for (int bit = 0; bit < 8; ++bit) {
            sum = sum << 1U ^ ((sum >> 63U) != 0 ? kPolynomial : 0U);
        }
    }
    return sum;
}

const CalibrationCovariance& covarianceOf(const Rig& rig) {
    if (!rig.covariance) {
        refuse("the calibration has no covariance: calibrate with the adjustment");
    }
    return *rig.covariance;
}

CovarianceBlock covarianceBlock(const Rig& rig) {
    const CalibrationCovariance& covariance = covarianceOf(rig);
    CovarianceBlock block{};
    put(block, 0, kMagic);
    put(block, kVersionAt, kVersion);
    put(block, kSizeAt, static_cast<std::int32_t>(kCovarianceBytes));
    put(block, kParametersAt, static_cast<std::int32_t>(kRigParameters));
    put(block, kCalibrationAt, checksumOf(rig));
    put(block, kNoiseAt, covariance.noise);
    put(block, kFreedomAt, covariance.freedom);
    for (std::size_t row = 0; row < kRigParameters; ++row) {
        for (std::size_t column = 0; column <= row; ++column) {
            put(block, kMatrixAt + 8 * triangleAt(row, column), covariance.matrix[kRigParameters * row + column]);
        }
    }
    put(block, kChecksumAt, zelm::measure::checksumOf(std::span<const unsigned char>(block).first(kChecksumAt)));
    return block;
}

CalibrationCovariance readCovariance(const Rig& rig, std::span<const unsigned char> bytes) {
    checkHeader(bytes);
    if (take<std::uint64_t>(bytes, kCalibrationAt) != checksumOf(rig)) {
        refuse("the covariance belongs to another calibration: keep those together that were written together");
    }
    CalibrationCovariance covariance;
    covariance.noise = take<double>(bytes, kNoiseAt);
    covariance.freedom = take<double>(bytes, kFreedomAt);
    for (std::size_t row = 0; row < kRigParameters; ++row) {
        for (std::size_t column = 0; column <= row; ++column) {
            const auto element = take<double>(bytes, kMatrixAt + 8 * triangleAt(row, column));
            covariance.matrix[kRigParameters * row + column] = element;
            covariance.matrix[kRigParameters * column + row] = element;
        }
    }
    return soundCovariance(covariance);
}

}  // namespace zelm::measure
