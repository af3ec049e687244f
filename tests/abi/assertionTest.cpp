// The assertion handler: function, source file as a path from the project's root, and the expression as written.
#include <gtest/gtest.h>

#include "assertion.h"

namespace {

// clang-format off
void checkedRoutine(const double* daHom) { ZELM_ASSERT(daHom!=nullptr); }
// clang-format on

TEST(Assertion, AFailedInvariantNamesFunctionFileAndExpressionAndAborts) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(checkedRoutine(nullptr), "checkedRoutine \\(tests/abi/assertionTest.cpp\\): daHom!=nullptr");
}

TEST(Assertion, AnInvariantThatHoldsDoesNothing) {
    const double value = 1.0;
    checkedRoutine(&value);
}

}  // namespace
