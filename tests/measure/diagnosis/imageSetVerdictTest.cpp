// Whether the faults of sets of images are named, with the image that would fit, and sound sets are left in peace.
// bench/imageSets does the same over thousands of sets.
#include <gtest/gtest.h>

#include <algorithm>

#include "imageSetTrials.h"

namespace zelmtest {
namespace {

TEST(ImageSets, SoundOnesAreNotAccused) {
    for (std::uint64_t seed = 1; seed <= 12; ++seed) {
        const SetTrial trial = makeSetTrial(SetFault::none, seed, static_cast<int>(3 + seed));
        const SetVerdict verdict = judgeTrial(trial);
        EXPECT_TRUE(verdict.isRight) << "seed " << seed << ", " << trial.words << ":" << verdict.words;
        EXPECT_EQ(verdict.judgement.agreeing, trial.set.views()) << "seed " << seed << ", " << trial.words;
    }
}

class NamedFaults : public testing::TestWithParam<SetFault> {};

TEST_P(NamedFaults, OfEightViews) {
    for (std::uint64_t seed = 1; seed <= 3; ++seed) {
        const SetTrial trial = makeSetTrial(GetParam(), seed, 8);
        const SetVerdict verdict = judgeTrial(trial);
        EXPECT_TRUE(verdict.isRight) << nameOf(GetParam()) << ", seed " << seed << ", " << trial.words << ":"
                                     << verdict.words;
    }
}

INSTANTIATE_TEST_SUITE_P(ImageSets, NamedFaults,
                         testing::Values(SetFault::shifted, SetFault::cyclic, SetFault::missing,
                                         SetFault::exchangedViews, SetFault::copied, SetFault::turned,
                                         SetFault::turnedQuarter, SetFault::mirrored, SetFault::sideMirrored,
                                         SetFault::exchangedImages, SetFault::moved, SetFault::otherSession,
                                         SetFault::sameView));

// Two pairs of images that agree are enough to tell that the third one's belong elsewhere.
TEST(ImageSets, ThreeViewsShiftedByOne) {
    const SetTrial trial = makeSetTrial(SetFault::shifted, 4, 3);
    const SetVerdict verdict = judgeTrial(trial);
    EXPECT_TRUE(verdict.isRight) << trial.words << ":" << verdict.words;
}

// A hundred views are judged as well, though not every combination is tried.
TEST(ImageSets, AHundredViewsShifted) {
    SetTrial trial = makeSetTrial(SetFault::none, 5, 100);
    auto& right = trial.set.images[zelm::measure::kRight];
    std::rotate(right.begin(), right.begin() + 7, right.end());
    const auto causes = zelm::measure::causesOf(zelm::measure::judgeSet(trial.set));
    ASSERT_EQ(causes.size(), 1U);
    EXPECT_EQ(causes.front().kind, zelm::measure::SetCauseKind::shifted);
    EXPECT_EQ(causes.front().offset, 7);
    EXPECT_TRUE(causes.front().isCyclic);
}

TEST(ImageSets, ImagesThatCannotBeReadAreNoFault) {
    SetTrial trial = makeSetTrial(SetFault::none, 6, 8);
    trial.set.images[zelm::measure::kLeft][2].clear();
    trial.set.images[zelm::measure::kRight][5].clear();
    const auto judgement = zelm::measure::judgeSet(trial.set);
    EXPECT_EQ(judgement.agreeing, 6U);
    EXPECT_EQ(judgement.views[2].fate, zelm::measure::ViewFate::unread);
    EXPECT_TRUE(zelm::measure::causesOf(judgement).empty());
}

TEST(ImageSets, TooFewViewsAreUndetermined) {
    SetTrial trial = makeSetTrial(SetFault::none, 7, 3);
    for (auto& images : trial.set.images) {
        images.resize(2);
    }
    const auto judgement = zelm::measure::judgeSet(trial.set);
    EXPECT_FALSE(judgement.isDetermined);
    const auto causes = zelm::measure::causesOf(judgement);
    ASSERT_EQ(causes.size(), 1U);
    EXPECT_EQ(causes.front().kind, zelm::measure::SetCauseKind::undetermined);
}

}  // namespace
}  // namespace zelmtest
