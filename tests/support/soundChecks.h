// What the checks of any calibration are, whatever they find.
#ifndef ZELM_TEST_SOUND_CHECKS_H
#define ZELM_TEST_SOUND_CHECKS_H

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "checkWords.h"

namespace zelmtest {

inline void expectSound(const std::vector<zelm::measure::Check>& checks) {
    ASSERT_GE(checks.size(), 8U);
    for (const zelm::measure::Check& check : checks) {
        for (const double number : {check.p, check.value, check.deviation, check.limit, check.turnDegrees,
                                    check.turnDeviation, check.shift, check.coefficient, check.coefficientSigma}) {
            EXPECT_TRUE(std::isfinite(number)) << static_cast<int>(check.kind);
        }
        EXPECT_GE(check.p, 0.0);
        EXPECT_LE(check.p, 1.0);
        EXPECT_GE(check.deviation, 0.0);
        const std::string words = zelm::measure::wordsOf(check);
        EXPECT_FALSE(words.empty());
        EXPECT_LT(words.size(), 512U) << words;
        EXPECT_EQ(words.find('\n'), std::string::npos) << words;
        EXPECT_EQ(words.find("nan"), std::string::npos) << words;
    }
}

}  // namespace zelmtest

#endif
