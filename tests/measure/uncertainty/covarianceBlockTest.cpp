// Covariances of rigs: which are taken, and their bytes: written, read back, and refused when anything is wrong.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "covarianceBlock.h"
#include "knownRig.h"

namespace zelmtest {
namespace {

using zelm::measure::checksumOf;
using Bytes = std::vector<unsigned char>;

ZelmMeasureCovariance covarianceOf(const OpenedRig& rig) {
    auto covariance = emptyRecord<ZelmMeasureCovariance>();
    EXPECT_EQ(zelmMeasureRigCovariance(rig.get(), &covariance), ZELM_OK) << rig.error();
    return covariance;
}

bool isSame(const ZelmMeasureCovariance& a, const ZelmMeasureCovariance& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

Bytes saved(const OpenedRig& rig) {
    std::int64_t size = 0;
    EXPECT_EQ(zelmMeasureCovarianceSize(rig.get(), &size), ZELM_OK);
    Bytes bytes(static_cast<std::size_t>(size));
    EXPECT_EQ(zelmMeasureCovarianceSave(rig.get(), size, bytes.data()), ZELM_OK) << rig.error();
    return bytes;
}

std::int32_t load(const OpenedRig& rig, const Bytes& bytes) {
    return zelmMeasureCovarianceLoad(rig.get(), bytes.data(), static_cast<std::int64_t>(bytes.size()));
}

// The bytes with a checksum that fits.
Bytes sealed(Bytes bytes) {
    const std::uint64_t sum = checksumOf(std::span<const unsigned char>(bytes).first(bytes.size() - 8));
    std::memcpy(bytes.data() + bytes.size() - 8, &sum, sizeof sum);
    return bytes;
}

template <class T>
Bytes changed(Bytes bytes, std::size_t at, T value) {
    std::memcpy(bytes.data() + at, &value, sizeof value);
    return bytes;
}

struct CovarianceBlockTest : testing::Test {
    KnownRig known{makePair(0, 0), 0.05};
    OpenedRig other{blockOf(makePair(0, 0))};

    void expectRefused(const Bytes& bytes, const std::string& words) {
        EXPECT_EQ(load(other, bytes), ZELM_MEASURE_ERR_DATA);
        EXPECT_NE(other.error().find(words), std::string::npos) << other.error();
        auto covariance = emptyRecord<ZelmMeasureCovariance>();
        EXPECT_EQ(zelmMeasureRigCovariance(other.get(), &covariance), ZELM_MEASURE_ERR_DATA);
    }
    void expectNotTaken(const ZelmMeasureCovariance& covariance, const std::string& words) {
        EXPECT_EQ(zelmMeasureRigSetCovariance(known.rig.get(), &covariance), ZELM_MEASURE_ERR_DATA);
        EXPECT_NE(known.rig.error().find(words), std::string::npos) << known.rig.error();
        EXPECT_TRUE(isSame(covarianceOf(known.rig), known.covariance));
    }
};

TEST_F(CovarianceBlockTest, ComesBackAsItWas) {
    ZelmMeasureCovariance covariance = known.covariance;
    covariance.freedom = 6731.0;
    known.give(covariance);
    const Bytes bytes = saved(known.rig);
    EXPECT_EQ(bytes.size(), 2856U);
    EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 4), "ZCOV");
    ASSERT_EQ(load(other, bytes), ZELM_OK) << other.error();
    EXPECT_TRUE(isSame(covarianceOf(other), covariance));
    EXPECT_EQ(saved(other), bytes);
}

TEST_F(CovarianceBlockTest, EveryTruncatedLengthIsRefused) {
    const Bytes bytes = saved(known.rig);
    EXPECT_EQ(zelmMeasureCovarianceLoad(other.get(), bytes.data(), 0), ZELM_MEASURE_ERR_DATA);
    for (std::size_t size = 1; size < bytes.size(); ++size) {
        // Of its own size, so that reading beyond it is seen.
        expectRefused(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)),
                      size < 4 ? "not a covariance" : "damaged covariance");
    }
    Bytes longer = bytes;
    longer.push_back(0);
    expectRefused(longer, "damaged covariance: 2857 bytes instead of 2856; was it copied whole?");
}

TEST_F(CovarianceBlockTest, EveryChangedByteIsRefused) {
    const Bytes bytes = saved(known.rig);
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        const unsigned bit = 1U << (at % 8);
        expectRefused(changed(bytes, at, static_cast<unsigned char>(bytes[at] ^ bit)), "covariance");
        expectRefused(changed(bytes, at, static_cast<unsigned char>(~bytes[at])), "covariance");
    }
}

TEST_F(CovarianceBlockTest, ForeignBytesAreRefused) {
    expectRefused(Bytes(2856), "not a covariance: it does not begin with ZCOV");
    expectRefused(blockOf(known.pair), "not a covariance");
    expectRefused(sealed(changed(saved(known.rig), 4, std::int32_t{2})), "a covariance of version 2");
    expectRefused(sealed(changed(saved(known.rig), 8, std::int32_t{2857})), "damaged covariance");
    expectRefused(sealed(changed(saved(known.rig), 12, std::int32_t{25})), "damaged covariance");
}

TEST_F(CovarianceBlockTest, OtherCalibrationsAreRefused) {
    TruePair moved = known.pair;
    moved.right.pose.t[0] = std::nextafter(moved.right.pose.t[0], 1e9);
    const OpenedRig another(blockOf(moved));
    EXPECT_EQ(load(another, saved(known.rig)), ZELM_MEASURE_ERR_DATA);
    EXPECT_EQ(another.error(),
              "the covariance belongs to another calibration: keep those together that were written together");
}

TEST_F(CovarianceBlockTest, NumbersThatCannotBeMeantAreRefusedEvenWhenSealed) {
    const Bytes bytes = saved(known.rig);
    for (const double wrong : {std::nan(""), std::numeric_limits<double>::infinity()}) {
        for (const std::size_t at : {std::size_t{24}, std::size_t{32}, std::size_t{40}, bytes.size() - 16}) {
            expectRefused(sealed(changed(bytes, at, wrong)), "finite");
        }
    }
    expectRefused(sealed(changed(bytes, 24, -0.1)), "noise is negative");
    expectRefused(sealed(changed(bytes, 32, 0.5)), "degrees of freedom");
    expectRefused(sealed(changed(bytes, 32, -1.0)), "degrees of freedom");
    expectRefused(sealed(changed(bytes, 40, -1.0)), "variance of parameter 0 is negative");
    // The last of the triangle is a variance; a smaller one contradicts its covariances.
    expectRefused(sealed(changed(bytes, bytes.size() - 16, 1e-12)), "not positive semi-definite");
    expectRefused(sealed(changed(bytes, bytes.size() - 16, 0.0)), "a parameter without variance varies with another");
}

TEST_F(CovarianceBlockTest, RefusedBytesLeaveWhatTheRigHad) {
    const Bytes bytes = saved(known.rig);
    EXPECT_EQ(load(known.rig, changed(bytes, 100, '\x55')), ZELM_MEASURE_ERR_DATA);
    EXPECT_TRUE(isSame(covarianceOf(known.rig), known.covariance));
}

TEST_F(CovarianceBlockTest, SoundMatricesAreTaken) {
    // Nothing known to vary; of rank one; of full rank with standard deviations of all sizes.
    auto covariance = emptyRecord<ZelmMeasureCovariance>();
    known.give(covariance);
    EXPECT_TRUE(isSame(covarianceOf(known.rig), covariance));
    Random random(3);
    double v[26];
    for (double& value : v) {
        value = std::pow(10.0, random.uniform(-12.0, 3.0)) * (random.uniform() < 0.5 ? -1.0 : 1.0);
    }
    for (std::size_t i = 0; i < 26; ++i) {
        for (std::size_t j = 0; j < 26; ++j) {
            covariance.matrix[26 * i + j] = v[i] * v[j];
        }
    }
    known.give(covariance);
    known.give(simulatedCovariance(known.pair, 0.3));
}

TEST_F(CovarianceBlockTest, MatricesThatAreNoCovarianceAreNot) {
    const ZelmMeasureCovariance& sound = known.covariance;
    const double scale = std::sqrt(sound.matrix[0] * sound.matrix[27 * 2]);
    ZelmMeasureCovariance wrong = sound;
    wrong.matrix[2] += 1e-6 * scale;
    expectNotTaken(wrong, "not symmetric");
    wrong.matrix[26 * 2] += 1e-6 * scale;
    wrong = sound;
    wrong.matrix[2] = wrong.matrix[26 * 2] = 1.1 * scale;
    expectNotTaken(wrong, "not positive semi-definite");
    // Three correlations that contradict each other: 0.9, 0.9 and -0.9.
    wrong = emptyRecord<ZelmMeasureCovariance>();
    for (std::size_t i = 0; i < 3; ++i) {
        wrong.matrix[27 * i] = 1.0;
        for (std::size_t j = 0; j < i; ++j) {
            wrong.matrix[26 * i + j] = wrong.matrix[26 * j + i] = i == 2 && j == 1 ? -0.9 : 0.9;
        }
    }
    expectNotTaken(wrong, "not positive semi-definite");
    wrong = sound;
    wrong.matrix[26 * 25 + 3] = std::nan("");
    expectNotTaken(wrong, "not finite");
}

TEST_F(CovarianceBlockTest, SmallAsymmetryIsRoundingAndTakenAway) {
    ZelmMeasureCovariance nearly = known.covariance;
    nearly.matrix[2] *= 1.0 + 1e-14;
    ASSERT_EQ(zelmMeasureRigSetCovariance(known.rig.get(), &nearly), ZELM_OK);
    const ZelmMeasureCovariance taken = covarianceOf(known.rig);
    EXPECT_EQ(taken.matrix[2], taken.matrix[26 * 2]);
}

TEST_F(CovarianceBlockTest, NullTakesItAway) {
    ASSERT_EQ(zelmMeasureRigSetCovariance(known.rig.get(), nullptr), ZELM_OK);
    auto covariance = emptyRecord<ZelmMeasureCovariance>();
    EXPECT_EQ(zelmMeasureRigCovariance(known.rig.get(), &covariance), ZELM_MEASURE_ERR_DATA);
    std::int64_t size = -7;
    EXPECT_EQ(zelmMeasureCovarianceSize(known.rig.get(), &size), ZELM_MEASURE_ERR_DATA);
    EXPECT_EQ(size, -7);
    unsigned char byte = 7;
    EXPECT_EQ(zelmMeasureCovarianceSave(known.rig.get(), 1 << 20, &byte), ZELM_MEASURE_ERR_DATA);
    EXPECT_EQ(byte, 7);
}

TEST_F(CovarianceBlockTest, OlderRecordsAreFilledAsFarAsTheyKnow) {
    auto covariance = emptyRecord<ZelmMeasureCovariance>();
    covariance.size = offsetof(ZelmMeasureCovariance, matrix);
    covariance.matrix[0] = -7.0;
    ASSERT_EQ(zelmMeasureRigCovariance(known.rig.get(), &covariance), ZELM_OK);
    EXPECT_EQ(covariance.noise, 0.05);
    EXPECT_EQ(covariance.matrix[0], -7.0);
    // A matrix that is not there cannot be taken as zeros.
    EXPECT_EQ(zelmMeasureRigSetCovariance(known.rig.get(), &covariance), ZELM_ERR_PARAM);
}

TEST(CovarianceChecksum, IsThePublishedOne) {
    // ECMA-182 of the nine digits, the usual check value.
    const std::string digits = "123456789";
    const std::vector<unsigned char> bytes(digits.begin(), digits.end());
    EXPECT_EQ(checksumOf(bytes), 0x6C40DF5F0B497347U);
    EXPECT_EQ(checksumOf({}), 0U);
}

}  // namespace
}  // namespace zelmtest
