// Arguments that cannot be meant: every function of the interface answers them with ZELM_ERR_PARAM, writes nothing, and
// lets nothing that is thrown cross its border.
#ifndef ZELM_TEST_MEASURE_CONTRACT_H
#define ZELM_TEST_MEASURE_CONTRACT_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "matchedPoints.h"
#include "measureCases.h"

namespace zelmtest {

// What every call may be given: all of it sound.
struct Sound {
    std::vector<unsigned char> block = trueRig(64, 48).block();
    OpenedRig rig{block};
    GrayPixels gray = GrayPixels(64 * 48, 100);
    ZelmMeasureImage image{gray.data(), 64, 48, 64};
    Zelm2ViewPatternDesc pattern = plainPattern();
    ZelmMeasureMatchOptions options = defaultsOf(rig);
    double pixels[4] = {30.0, 20.0, 31.0, 21.0};
    double shape[6] = {30.0, 20.0, 6.0, 0.0, 0.0, 6.0};
    std::vector<std::uint16_t> map = std::vector<std::uint16_t>(64 * 48, 1000);
};

// Outputs of all calls, none of which may change.
struct ContractOutputs {
    std::int32_t integers[8];
    std::int64_t longs[2];
    double numbers[40];

    ContractOutputs() {
        std::fill(std::begin(integers), std::end(integers), -7);
        std::fill(std::begin(longs), std::end(longs), -7);
        std::fill(std::begin(numbers), std::end(numbers), -7.0);
    }
    [[nodiscard]] bool areUntouched() const {
        const auto isSeven = [](auto value) { return value == -7; };
        return std::all_of(std::begin(integers), std::end(integers), isSeven) &&
               std::all_of(std::begin(longs), std::end(longs), isSeven) &&
               std::all_of(std::begin(numbers), std::end(numbers), isSeven);
    }
};

class MeasureContract : public testing::Test {
protected:
    void expectParam(const char* what, std::int32_t status) {
        EXPECT_EQ(status, ZELM_ERR_PARAM) << what;
        EXPECT_TRUE(out.areUntouched()) << what;
        const std::string words = sound.rig.error();
        EXPECT_EQ(words.find('\n'), std::string::npos) << words;
    }
    // A record whose size is not set is refused by every function that takes one.
    template <class Record, class Call>
    void expectRecordRefused(const char* what, Call call) {
        expectParam(what, call(static_cast<Record*>(nullptr)));
        for (const std::int32_t size : {0, 3, -8}) {
            auto record = emptyRecord<Record>();
            record.size = size;
            Record before = record;
            expectParam(what, call(&record));
            EXPECT_EQ(std::memcmp(&record, &before, sizeof record), 0) << what;
        }
    }

    Sound sound;
    ContractOutputs out;
};

// A covariance that a rig takes.
inline ZelmMeasureCovariance unitCovariance() {
    auto covariance = emptyRecord<ZelmMeasureCovariance>();
    covariance.noise = 0.05;
    for (std::size_t i = 0; i < ZELM_MEASURE_PARAMETERS; ++i) {
        covariance.matrix[27 * i] = 1e-6;
    }
    return covariance;
}

}  // namespace zelmtest

#endif
