// A calibration's covariance as bytes, tied to the calibration block that it belongs to.
#ifndef ZELM_MEASURE_COVARIANCE_BLOCK_H
#define ZELM_MEASURE_COVARIANCE_BLOCK_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "rig.h"

namespace zelm::measure {

constexpr std::size_t kTriangle = kRigParameters * (kRigParameters + 1) / 2;
constexpr std::size_t kCovarianceBytes = 16 + 8 + 8 + 8 + 8 * kTriangle + 8;
using CovarianceBlock = std::array<unsigned char, kCovarianceBytes>;

// CRC-64 of ECMA-182 (1992), which tells every change of a run of up to 64 bits.
std::uint64_t checksumOf(std::span<const unsigned char> bytes);

// Throws for a rig without a covariance.
const CalibrationCovariance& covarianceOf(const Rig& rig);

CovarianceBlock covarianceBlock(const Rig& rig);
// Throws Fault unless the bytes are the whole covariance of this rig.
CalibrationCovariance readCovariance(const Rig& rig, std::span<const unsigned char> bytes);

}  // namespace zelm::measure

#endif
