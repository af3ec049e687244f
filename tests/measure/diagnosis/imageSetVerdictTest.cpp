// Whether the faults of sets of images are named, with the image that would fit, and sound sets are left in peace.
// bench/imageSets does the same over thousands of sets.
#include <gtest/gtest.h>

#include <algorithm>

#include "imageSetTrials.h"
#include "pairingConsensus.h"
#include "pairingVote.h"
#include "random.h"

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

// Of views that are alike, either order fits: nobody is accused of having exchanged them.
TEST(ImageSets, ViewsThatAreAlikeAreNoExchange) {
    const SetTrial sound = makeSetTrial(SetFault::none, 46144);  // four views, two of which hardly differ
    const SetVerdict verdict = judgeTrial(sound);
    EXPECT_TRUE(verdict.causes.empty()) << sound.words << ":" << verdict.words;
    EXPECT_EQ(verdict.judgement.agreeing, 4U);

    for (const int views : {4, 8}) {
        SetTrial trial = makeSetTrial(SetFault::sameView, 3, views);
        auto& right = trial.set.images[zelm::measure::kRight];
        const std::size_t later = trial.views.front();
        for (std::size_t earlier = 0; earlier < later; ++earlier) {
            if (judgeTrial(trial).judgement.views[later].sameView == earlier) {
                std::swap(right[earlier], right[later]);
                break;
            }
        }
        const SetVerdict exchanged = judgeTrial(trial);
        EXPECT_TRUE(exchanged.isRight) << trial.words << ":" << exchanged.words;  // the plate was not moved, no more
    }
}

// One image given as left and as right one, read from files that are not the same to the byte.
TEST(ImageSets, OneImageOnBothSides) {
    SetTrial trial = makeSetTrial(SetFault::none, 8, 8);
    auto& [left, right] = trial.set.images;
    Random random(5);
    right[3] = left[3];
    for (auto& dot : right[3]) {
        dot.pixel.x += 0.02 * random.normal();
    }
    auto causes = zelm::measure::causesOf(zelm::measure::judgeSet(trial.set));
    ASSERT_EQ(causes.size(), 1U);
    EXPECT_EQ(causes.front().kind, zelm::measure::SetCauseKind::sameImages);
    EXPECT_EQ(causes.front().views, std::vector<std::size_t>{3});
    right = left;
    const auto judgement = zelm::measure::judgeSet(trial.set);
    EXPECT_EQ(judgement.agreeing, 0U);
    causes = zelm::measure::causesOf(judgement);
    ASSERT_EQ(causes.size(), 1U);
    EXPECT_EQ(causes.front().kind, zelm::measure::SetCauseKind::sameImages);
    EXPECT_EQ(causes.front().views.size(), 8U);
}

// By how much the cameras were moved. Each session estimates focal lengths and principal points for itself, with which
// the place of a camera is correlated far more than its direction: here by a quarter of the shift.
TEST(ImageSets, TellHowAnotherSessionDiffers) {
    const SetTrial trial = makeSetTrial(SetFault::otherSession, 2, 14);
    const auto causes = zelm::measure::causesOf(zelm::measure::judgeSet(trial.set));
    ASSERT_EQ(causes.size(), 1U) << trial.words;
    EXPECT_EQ(causes.front().kind, zelm::measure::SetCauseKind::otherSession);
    EXPECT_NEAR(causes.front().difference.turn, trial.session.turn, 0.05 * trial.session.turn) << trial.words;
    EXPECT_NEAR(causes.front().difference.shift, trial.session.shift, 0.5 * trial.session.shift) << trial.words;
}

// Two wrong pairs leave the cameras open: equations that are singular to rounding, of which the solver would tell on
// the console.
TEST(ImageSets, AnOpenAdjustmentPrintsNothing) {
    namespace zm = zelm::measure;
    const SetTrial trial = makeSetTrial(SetFault::none, 8, 4);
    const auto left = zm::calibratedAlone(trial.set, zm::kLeft);
    const auto right = zm::calibratedAlone(trial.set, zm::kRight);
    ASSERT_TRUE(left && right);
    const auto shared = zm::sharedBy(trial.set, *left, *right, {{0, 1}, {1, 2}});
    testing::internal::CaptureStderr();
    zm::PairingFitter(trial.set, *left, *right).fit({zm::asGiven(0, 1), zm::asGiven(1, 2)}, shared.relative);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

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
