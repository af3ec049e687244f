// The correlation entry points in each tier: sums and scores against the definition, at guard pages, and which tier
// runs.
#include <gtest/gtest.h>

#include <limits>

#include "corrModel.h"
#include "correlation.h"

namespace {

using namespace zelmtest;
using namespace zelm;

constexpr CorrPattern kPatterns[] = {kCorrFull, kCorrChecker, kCorrQuarter};
constexpr CorrMode kModes[] = {kCorrNoMask, kCorrRefMask, kCorrSharedMask, kCorrTwoMasks};

void expectSums(const CorrTierCase& tier, CorrPattern pattern, CorrMode mode, CorrCase& c) {
    const ModelSums model = modelSums(patternOf(tier, pattern), mode, c);
    CorrSums sums{};
    tier.tier->sums[pattern][mode](c.windows(), sums);
    const auto word = [](std::int64_t v) { return static_cast<std::uint32_t>(v); };
    ASSERT_EQ(sums.i, word(model.i));
    ASSERT_EQ(sums.ii, word(model.ii));
    ASSERT_EQ(sums.it, word(model.it));
    if (mode == kCorrSharedMask || mode == kCorrTwoMasks) {
        ASSERT_EQ(sums.count, word(model.n));
        ASSERT_EQ(sums.t, word(model.t));
        ASSERT_EQ(sums.tt, word(model.tt));
    }
}

// Every pattern and mode of every tier: sums, and scores bit by bit.
void expectModel(CorrCase& c) {
    for (const CorrTierCase& tier : corrTiers()) {
        const ForcedProcessor forced{tier.processor};
        for (const CorrPattern pattern : kPatterns) {
            for (const CorrMode mode : kModes) {
                SCOPED_TRACE(::testing::Message() << tier.name << ", pattern " << pattern << ", mode " << mode
                                                  << ", window " << c.w << " x " << c.h);
                expectSums(tier, pattern, mode, c);
                if (::testing::Test::HasFatalFailure()) {
                    return;
                }
                const ModelSums sums = modelSums(patternOf(tier, pattern), mode, c);
                const bool own = mode == kCorrSharedMask || mode == kCorrTwoMasks;
                ASSERT_EQ(entryScore(pattern, mode, c, sums), own && sums.n == 0 ? -2.0F : modelScore(sums, sums));
            }
        }
    }
}

TEST(Correlation, EverySizeUpTo70FollowsTheDefinitionBesideGuardPages) {
    Random random(1);
    for (std::int32_t w = 1; w <= 70; ++w) {
        for (const Guard guard : {Guard::atStart, Guard::atEnd}) {
            for (const std::int32_t h : {1, 2, random.integer(3, 40)}) {
                expectModel(*randomCorrCase(random, w, h, random.integer(0, 3), guard));
                ASSERT_FALSE(HasFatalFailure());
            }
        }
    }
}

TEST(Correlation, RandomWindowsUpTo128FollowTheDefinition) {
    Random random(2);
    for (int round = 0; round < 300; ++round) {
        const auto c = randomCorrCase(random, random.integer(1, 128), random.integer(1, 128), round % 4,
                                      round % 3 == 0 ? Guard::atStart : Guard::atEnd);
        expectModel(*c);
        ASSERT_FALSE(HasFatalFailure());
    }
}

TEST(Correlation, SumsWrapAroundAlikeInLargeWindows) {
    // 300 x 260 white pixels: the squares sum to 5.07e9, beyond 2^32.
    Random random(3);
    const auto c = randomCorrCase(random, 300, 260, 2, Guard::atEnd);
    c->mask.fill([] { return 1; });
    for (const CorrTierCase& tier : corrTiers()) {
        SCOPED_TRACE(tier.name);
        ASSERT_GT(modelSums(kCorrFull, kCorrNoMask, *c).ii, std::int64_t{1} << 32);
        for (const CorrMode mode : {kCorrNoMask, kCorrRefMask, kCorrSharedMask}) {
            expectSums(tier, kCorrFull, mode, *c);
        }
    }
}

TEST(Correlation, AConstantSearchWindowGivesZeroInEveryMode) {
    Random random(4);
    for (const std::int32_t gray : {0, 1, 77, 255}) {
        const auto c = randomCorrCase(random, 33, 21, 0, Guard::atEnd);
        c->img.fill([gray] { return gray; });
        for (const CorrTierCase& tier : corrTiers()) {
            const ForcedProcessor forced{tier.processor};
            for (const CorrPattern pattern : kPatterns) {
                for (const CorrMode mode : kModes) {
                    EXPECT_EQ(entryScore(pattern, mode, *c, modelSums(patternOf(tier, pattern), mode, *c)), 0.0F);
                }
            }
        }
    }
}

TEST(Correlation, AConstantTemplateGivesZero) {
    Random random(5);
    const auto c = randomCorrCase(random, 19, 17, 0, Guard::atEnd);
    c->tmpl.fill([] { return 200; });
    for (const CorrTierCase& tier : corrTiers()) {
        const ForcedProcessor forced{tier.processor};
        for (const CorrMode mode : kModes) {
            EXPECT_EQ(entryScore(kCorrFull, mode, *c, modelSums(kCorrFull, mode, *c)), 0.0F);
        }
    }
}

TEST(Correlation, AWindowLikeTheTemplateGivesOneAndItsNegativeMinusOne) {
    // Roundings to float, each up to 2^-24: both variances and their product under the root, which halves them, the
    // covariance and the result.
    constexpr float kRounding = 3.5F * 0x1p-24F;
    Random random(6);
    const auto same = randomCorrCase(random, 33, 33, 0, Guard::atEnd);
    const auto negative = randomCorrCase(random, 33, 33, 0, Guard::atEnd);
    for (std::int32_t row = 0; row < 33; ++row) {
        for (std::int32_t col = 0; col < 33; ++col) {
            same->img.at(col, row) = same->tmpl.at(col, row);
            negative->img.at(col, row) = static_cast<std::uint8_t>(255 - negative->tmpl.at(col, row));
        }
    }
    for (const CorrTierCase& tier : corrTiers()) {
        const ForcedProcessor forced{tier.processor};
        for (const CorrPattern pattern : kPatterns) {
            for (const CorrMode mode : kModes) {
                const CorrPattern summed = patternOf(tier, pattern);
                EXPECT_NEAR(entryScore(pattern, mode, *same, modelSums(summed, mode, *same)), 1.0F, kRounding);
                EXPECT_NEAR(entryScore(pattern, mode, *negative, modelSums(summed, mode, *negative)), -1.0F, kRounding);
            }
        }
    }
}

TEST(Correlation, AnEmptyMaskGivesMinusTwo) {
    Random random(7);
    for (const bool second : {false, true}) {
        const auto c = randomCorrCase(random, 40, 9, 0, Guard::atEnd);
        (second ? c->imgMask : c->mask).fill([] { return 0; });
        for (const CorrTierCase& tier : corrTiers()) {
            const ForcedProcessor forced{tier.processor};
            for (const CorrPattern pattern : kPatterns) {
                EXPECT_EQ(entryScore(pattern, kCorrTwoMasks, *c, {}), -2.0F);
                if (!second) {
                    EXPECT_EQ(entryScore(pattern, kCorrSharedMask, *c, {}), -2.0F);
                    EXPECT_EQ(entryScore(pattern, kCorrRefMask, *c, {}), 0.0F);
                }
            }
        }
    }
}

TEST(Correlation, MasksThatDoNotMeetGiveMinusTwo) {
    Random random(8);
    const auto c = randomCorrCase(random, 37, 11, 0, Guard::atEnd);
    for (std::int32_t row = 0; row < c->h; ++row) {
        for (std::int32_t col = 0; col < c->w; ++col) {
            c->mask.at(col, row) = static_cast<std::uint8_t>((col + row) % 3 == 0 ? 255 : 0);
            c->imgMask.at(col, row) = static_cast<std::uint8_t>((col + row) % 3 == 1 ? 255 : 0);
        }
    }
    for (const CorrTierCase& tier : corrTiers()) {
        const ForcedProcessor forced{tier.processor};
        for (const CorrPattern pattern : kPatterns) {
            EXPECT_EQ(entryScore(pattern, kCorrTwoMasks, *c, {}), -2.0F);
        }
    }
}

TEST(Correlation, WindowsWithoutRowsOrColumnsGiveMinusTwoOrZero) {
    for (const CorrTierCase& tier : corrTiers()) {
        const ForcedProcessor forced{tier.processor};
        for (const std::int32_t extent : {0, -1, -40, std::numeric_limits<std::int32_t>::min()}) {
            for (const bool noRows : {false, true}) {
                CorrCase c(noRows ? 40 : extent, noRows ? extent : 40, {40, 40, 40, 40}, Guard::atEnd);
                for (const CorrPattern pattern : kPatterns) {
                    EXPECT_EQ(entryScore(pattern, kCorrNoMask, c, {9, 5, 99}), 0.0F);
                    EXPECT_EQ(entryScore(pattern, kCorrRefMask, c, {9, 5, 99}), 0.0F);
                    EXPECT_EQ(entryScore(pattern, kCorrSharedMask, c, {}), -2.0F);
                    EXPECT_EQ(entryScore(pattern, kCorrTwoMasks, c, {}), -2.0F);
                }
            }
        }
    }
}

TEST(Correlation, AProductOfVariancesBelowABillionthGivesZero) {
    // The variances are integers, so only a flat or impossible one comes below: 0 and -1 here.
    const std::uint8_t tmpl[] = {1, 2};
    const std::uint8_t img[] = {3, 7};
    for (const CorrTierCase& tier : corrTiers()) {
        const ForcedProcessor forced{tier.processor};
        EXPECT_EQ(nccFull(tmpl, 2, 2, 1, 2, 0, 3, img, 2), 0.0F);
        EXPECT_EQ(nccFull(tmpl, 2, 2, 1, 2, -1, 3, img, 2), 0.0F);
        EXPECT_EQ(nccFull(tmpl, 2, 2, 1, 2, 1, 3, img, 2), 1.0F);
    }
}

TEST(Correlation, StatisticsAreTakenAsGiven) {
    // N = 5 over two pixels: (5 * 17 - 10 * 3) / sqrt(4 * (5 * 58 - 100)), by hand.
    const std::uint8_t tmpl[] = {1, 2};
    const std::uint8_t img[] = {3, 7};
    for (const CorrTierCase& tier : corrTiers()) {
        const ForcedProcessor forced{tier.processor};
        EXPECT_EQ(nccFull(tmpl, 2, 2, 1, 5, 4, 3, img, 2), static_cast<float>(55.0 / std::sqrt(760.0)));
    }
}

TEST(Correlation, TheLargestStatisticsDoNotOverflow) {
    const std::uint8_t tmpl[] = {255, 255};
    const std::uint8_t img[] = {255, 0};
    constexpr auto kMaxInt = std::numeric_limits<std::int32_t>::max();
    constexpr auto kMaxInt64 = std::numeric_limits<std::int64_t>::max();
    for (const CorrTierCase& tier : corrTiers()) {
        const ForcedProcessor forced{tier.processor};
        EXPECT_TRUE(std::isfinite(nccFull(tmpl, 2, 2, 1, kMaxInt, kMaxInt64, -kMaxInt - 1, img, 2)));
        EXPECT_TRUE(std::isfinite(nccFull(tmpl, 2, 2, 1, -kMaxInt - 1, -kMaxInt64 - 1, kMaxInt, img, 2)));
    }
}

TEST(CorrelationDispatch, OnlyThePlainTierSamplesTheCheckerPattern) {
    Random random(9);
    const auto c = randomCorrCase(random, 21, 17, 0, Guard::atEnd);
    for (const CorrTierCase& tier : corrTiers()) {
        SCOPED_TRACE(tier.name);
        const ForcedProcessor forced{tier.processor};
        for (const CorrMode mode : kModes) {
            const ModelSums tmpl = modelSums(kCorrFull, mode, *c);
            const float checker = entryScore(kCorrChecker, mode, *c, tmpl);
            const float full = entryScore(kCorrFull, mode, *c, tmpl);
            if (tier.samplesChecker) {
                EXPECT_NE(checker, full);
            } else {
                EXPECT_EQ(checker, full);
                EXPECT_EQ(tier.tier->sums[kCorrChecker][mode], tier.tier->sums[kCorrFull][mode]);
            }
        }
    }
}

TEST(CorrelationDispatch, EveryTierHasSumsOfItsOwn) {
    const std::vector<CorrTierCase> tiers = corrTiers();
    for (std::size_t k = 1; k < tiers.size(); ++k) {
        for (const CorrPattern pattern : kPatterns) {
            for (const CorrMode mode : kModes) {
                EXPECT_NE(tiers[k].tier->sums[pattern][mode], tiers[k - 1].tier->sums[pattern][mode]);
            }
        }
    }
}

// The tier that a made-up processor calls for; nothing of it is run.
const CorrTier* tierOf(const Processor& processor) {
    const ForcedProcessor forced{processor};
    return &corrTierOfProcessor();
}

#if defined(__x86_64__) || defined(__i386__)
#if defined(__x86_64__)
const CorrTier* const kBestTier = &kCorrAvx2Tier;
#else
const CorrTier* const kBestTier = &kCorrSse41Tier;
#endif

TEST(CorrelationDispatch, EveryGateOfTheAvx2TierFallsBackToSse41) {
    EXPECT_EQ(tierOf(Processor{}), kBestTier);
    for (const std::uint32_t bit : {12U, 22U}) {  // FMA, MOVBE
        Processor p;
        p.leaf1Ecx &= ~(1U << bit);
        EXPECT_EQ(tierOf(p), &kCorrSse41Tier) << "leaf 1 ECX bit " << bit;
    }
    for (const std::uint32_t bit : {3U, 5U, 8U}) {  // BMI1, AVX2, BMI2
        Processor p;
        p.leaf7Ebx &= ~(1U << bit);
        EXPECT_EQ(tierOf(p), &kCorrSse41Tier) << "leaf 7 EBX bit " << bit;
    }
    Processor noLzcnt;
    noLzcnt.extended1Ecx = 0;
    EXPECT_EQ(tierOf(noLzcnt), &kCorrSse41Tier);
    Processor fewLeaves;
    fewLeaves.basicMaximum = 6;
    EXPECT_EQ(tierOf(fewLeaves), &kCorrSse41Tier);
    Processor noExtended;
    noExtended.extendedMaximum = 0x80000000U;
    EXPECT_EQ(tierOf(noExtended), &kCorrSse41Tier);
}

TEST(CorrelationDispatch, WithoutSse41ThePlainTierRunsUnlessTheAvx2SetIsThere) {
    EXPECT_EQ(tierOf(plainProcessor()), &kCorrPlainTier);
    EXPECT_EQ(tierOf(sse41Processor()), &kCorrSse41Tier);
    Processor noLeaf1 = sse41Processor();
    noLeaf1.basicMaximum = 0;
    EXPECT_EQ(tierOf(noLeaf1), &kCorrPlainTier);
    // The AVX2 set is asked for first, and does not ask for SSE4.1.
    Processor odd;
    odd.leaf1Ecx &= ~(1U << 19);
#if defined(__x86_64__)
    EXPECT_EQ(tierOf(odd), &kCorrAvx2Tier);
#else
    EXPECT_EQ(tierOf(odd), &kCorrPlainTier);
#endif
}
#else
TEST(CorrelationDispatch, ForeignProcessorsRunThePlainTier) {
    EXPECT_EQ(tierOf(Processor{}), &kCorrPlainTier);
}
#endif

TEST(CorrelationDispatch, TheChoiceIsMadeOnEveryCall) {
    Random random(10);
    const auto c = randomCorrCase(random, 21, 17, 0, Guard::atEnd);
    const ModelSums tmpl = modelSums(kCorrFull, kCorrNoMask, *c);
    for (int round = 0; round < 3; ++round) {
        for (const CorrTierCase& tier : corrTiers()) {
            const ForcedProcessor forced{tier.processor};
            const ModelSums sums = modelSums(patternOf(tier, kCorrChecker), kCorrNoMask, *c);
            EXPECT_EQ(entryScore(kCorrChecker, kCorrNoMask, *c, tmpl), modelScore(tmpl, sums)) << tier.name;
        }
    }
}

}  // namespace
