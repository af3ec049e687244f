// Windows that share work because they follow one another: their sums are those of the windows one by one, and a list
// of positions gets the scores of the entry points, whatever runs, gaps and batches it falls into.
#include <gtest/gtest.h>

#include <vector>

#include "corrAlongPoints.h"
#include "corrModel.h"

namespace {

using namespace zelm;
using namespace zelmtest;

void expectRun(const CorrTierCase& tier, Random& random, std::int32_t w, std::int32_t count, Guard guard) {
    const std::int32_t h = random.integer(1, 20);
    GuardedPlane tmpl(w, h, randomStride(random, w), guard);
    GuardedPlane img(w + count - 1, h, randomStride(random, w + count - 1), guard);
    const int kind = random.integer(0, 2);
    const auto draw = [&] { return kind == 0 ? 255 : kind == 1 ? 255 * random.integer(0, 1) : random.integer(0, 255); };
    tmpl.fill(draw);
    img.fill(draw);
    std::vector<CorrSums> sums(static_cast<std::size_t>(count + 1));
    sums.back().i = 77;
    tier.tier->fullRun({tmpl.plane(), img.plane(), {}, {}, w, h}, count, sums.data());
    for (std::int32_t k = 0; k < count; ++k) {
        ModelSums model;
        for (std::int32_t row = 0; row < h; ++row) {
            for (std::int32_t c = 0; c < w; ++c) {
                const std::int64_t t = tmpl.at(c, row);
                const std::int64_t i = img.at(c + k, row);
                model.i += i;
                model.ii += i * i;
                model.it += i * t;
            }
        }
        SCOPED_TRACE(::testing::Message()
                     << tier.name << ", window " << k << " of " << count << ", " << w << " x " << h);
        const CorrSums& s = sums[static_cast<std::size_t>(k)];
        ASSERT_EQ(s.i, static_cast<std::uint32_t>(model.i));
        ASSERT_EQ(s.ii, static_cast<std::uint32_t>(model.ii));
        ASSERT_EQ(s.it, static_cast<std::uint32_t>(model.it));
    }
    EXPECT_EQ(sums.back().i, 77U);
}

TEST(CorrRun, EveryWidthUpTo70FollowsTheDefinitionBesideGuardPages) {
    Random random(21);
    for (const CorrTierCase& tier : corrTiers()) {
        if (tier.tier->fullRun == nullptr) {
            continue;
        }
        for (std::int32_t w = 1; w <= 70; ++w) {
            for (const Guard guard : {Guard::atStart, Guard::atEnd}) {
                // Around one group of windows a vector, and beyond.
                for (const std::int32_t count : {1, 2, 5, 8, 9, 10, 17, random.integer(18, 60)}) {
                    expectRun(tier, random, w, count, guard);
                    ASSERT_FALSE(HasFatalFailure());
                }
            }
        }
    }
}

TEST(CorrRun, SumsWrapAroundAlikeInLargeWindows) {
    // White windows of 300 x 260: beyond 2^32, and a step of the sums from there to the next.
    for (const CorrTierCase& tier : corrTiers()) {
        if (tier.tier->fullRun == nullptr) {
            continue;
        }
        constexpr std::int32_t kWidth = 300, kHeight = 260, kCount = 11;
        const std::vector<std::uint8_t> tmpl(kWidth * kHeight, 255);
        std::vector<std::uint8_t> img((kWidth + kCount - 1) * kHeight, 255);
        img.back() = 0;
        CorrSums sums[kCount];
        tier.tier->fullRun({{tmpl.data(), kWidth}, {img.data(), kWidth + kCount - 1}, {}, {}, kWidth, kHeight}, kCount,
                           sums);
        constexpr std::int64_t kWhite = std::int64_t{kWidth} * kHeight * 255 * 255;
        for (std::int32_t k = 0; k < kCount; ++k) {
            const std::int64_t black = k == kCount - 1 ? 255 * 255 : 0;
            EXPECT_EQ(sums[k].ii, static_cast<std::uint32_t>(kWhite - black)) << tier.name;
            EXPECT_EQ(sums[k].it, static_cast<std::uint32_t>(kWhite - black)) << tier.name;
        }
    }
}

TEST(CorrRun, ThePlainTierSumsWindowsOneByOne) {
    EXPECT_EQ(kCorrPlainTier.fullRun, nullptr);
}

using Routine = decltype(&innerCorrAlongPointsFull);
constexpr Routine kRoutines[] = {innerCorrAlongPointsFull, innerCorrAlongPointsChecker, innerCorrAlongPointsQuarter};

constexpr std::int32_t kImageWidth = 150;
constexpr std::int32_t kImageHeight = 60;

// Runs to the right and to the left with gaps, steps down, steps back, repetitions and positions outside the image.
std::vector<Point2i> wanderingPositions(Random& random, std::int32_t count) {
    std::vector<Point2i> positions;
    Point2i at = {random.integer(0, kImageWidth), random.integer(0, kImageHeight)};
    while (static_cast<std::int32_t>(positions.size()) < count) {
        const std::int32_t step = random.integer(0, 2) == 0 ? -1 : 1;
        for (std::int32_t run = random.integer(1, random.integer(1, 100)); run > 0; --run) {
            positions.push_back(at);
            at.x += step;
        }
        switch (random.integer(0, 4)) {
            case 0:
                ++at.y;
                break;
            case 1:
                at.x -= random.integer(1, 3);
                break;
            case 2:
                at.x += random.integer(1, 5);
                break;
            case 3:
                at = {random.integer(-5, kImageWidth + 5), random.integer(-5, kImageHeight + 5)};
                break;
            default:
                at.x = random.integer(0, 20);
                break;
        }
    }
    positions.resize(static_cast<std::size_t>(count));
    return positions;
}

struct ListScene {
    explicit ListScene(std::uint64_t seed) : random(seed) {
        w = random.integer(1, 70);
        h = random.integer(1, 40);
        for (GuardedPlane* const plane : {&img, &tmpl}) {
            plane->fill([&] { return random.integer(0, 255); });
        }
        for (GuardedPlane* const plane : {&imgMask, &tmplMask}) {
            plane->fill([&] { return random.integer(0, 3) == 0 ? 0 : 1; });
        }
        positions = wanderingPositions(random, random.integer(1, 300));
    }

    std::vector<CorrScore> run(Routine routine, CorrMode mode) {
        const bool tmplMasked = mode == kCorrRefMask || mode == kCorrTwoMasks;
        const bool imgMasked = mode == kCorrSharedMask || mode == kCorrTwoMasks;
        std::vector<CorrScore> scores(positions.size(), CorrScore{-1, 0, 0.0});
        written = routine(w, h, tmpl.plane().pixels, tmpl.stride, tmplMasked ? tmplMask.plane().pixels : nullptr,
                          tmplMask.stride, kImageWidth, kImageHeight, img.plane().pixels, img.stride,
                          imgMasked ? imgMask.plane().pixels : nullptr, imgMask.stride, positions.data(), 0,
                          static_cast<std::int32_t>(positions.size()) - 1, scores.data(), 100.0, 60.0, 0.0, 0.0);
        return scores;
    }

    // What the entry point says of a position inside the image.
    float expected(CorrPattern pattern, CorrMode mode, const Point2i& p) {
        const CorrPlane window = {&img.at(p.x, p.y), img.stride};
        const std::uint8_t* const maskWindow = imgMask.plane().pixels + p.y * img.stride + p.x;
        std::int64_t n = std::int64_t{w} * h;
        if (mode == kCorrRefMask) {
            n = 0;
            for (std::int32_t row = 0; row < h; ++row) {
                for (std::int32_t c = 0; c < w; ++c) {
                    n += tmplMask.at(c, row) != 0 ? 1 : 0;
                }
            }
        }
        const bool shared = mode == kCorrSharedMask;
        return entryScoreOf(pattern, mode,
                            {tmpl.plane(),
                             window,
                             shared ? CorrPlane{maskWindow, imgMask.stride} : tmplMask.plane(),
                             {maskWindow, imgMask.stride},
                             w,
                             h},
                            {static_cast<std::int32_t>(n), 3600 * n * n, static_cast<std::int32_t>(100 * n)});
    }

    Random random;
    std::int32_t w;
    std::int32_t h;
    GuardedPlane img{kImageWidth, kImageHeight, kImageWidth, Guard::atEnd};
    GuardedPlane imgMask{kImageWidth, kImageHeight, kImageWidth, Guard::atEnd};
    GuardedPlane tmpl{70, 40, 73, Guard::atStart};
    GuardedPlane tmplMask{70, 40, 71, Guard::atStart};
    std::vector<Point2i> positions;
    std::int32_t written = 0;
};

void expectEntryPoints(ListScene& scene, CorrPattern pattern, CorrMode mode) {
    const std::vector<CorrScore> scores = scene.run(kRoutines[pattern], mode);
    std::int32_t count = 0;
    for (std::size_t k = 0; k < scores.size(); ++k) {
        SCOPED_TRACE(::testing::Message() << "pattern " << pattern << ", mode " << mode << ", template " << scene.w
                                          << " x " << scene.h << ", position " << k << " of " << scores.size());
        const Point2i p = scene.positions[k];
        const bool inside = p.x >= 0 && p.y >= 0 && p.x + scene.w <= kImageWidth && p.y + scene.h <= kImageHeight;
        const float score = inside ? scene.expected(pattern, mode, p) : 0.0F;
        if (inside && (mode == kCorrNoMask || mode == kCorrRefMask || score > 0.0F)) {
            ++count;
            ASSERT_EQ(scores[k].index, static_cast<std::int32_t>(k));
            ASSERT_EQ(scores[k].score, static_cast<double>(score));
        } else {
            ASSERT_EQ(scores[k].index, -1);
        }
    }
    ASSERT_EQ(scene.written, count);
}

TEST(CorrRun, LongListsGetTheScoresOfTheEntryPointsBitByBit) {
    for (const CorrTierCase& tier : corrTiers()) {
        SCOPED_TRACE(tier.name);
        const ForcedProcessor forced{tier.processor};
        for (std::uint64_t seed = 100; seed < 140; ++seed) {
            ListScene scene(seed);
            for (const CorrPattern pattern : {kCorrFull, kCorrChecker, kCorrQuarter}) {
                for (const CorrMode mode : {kCorrNoMask, kCorrRefMask, kCorrSharedMask, kCorrTwoMasks}) {
                    expectEntryPoints(scene, pattern, mode);
                    ASSERT_FALSE(HasFatalFailure());
                }
            }
        }
    }
}

TEST(CorrRun, AListOfOneLongRunGetsTheScoresOfTheEntryPoints) {
    for (const CorrTierCase& tier : corrTiers()) {
        SCOPED_TRACE(tier.name);
        const ForcedProcessor forced{tier.processor};
        for (const bool toTheLeft : {false, true}) {
            for (std::int32_t length = 60; length <= 75; ++length) {
                ListScene scene(7);
                scene.w = 33;
                scene.h = 33;
                scene.positions.clear();
                for (std::int32_t x = 0; x < length; ++x) {
                    scene.positions.push_back({toTheLeft ? length - 1 - x : x, 3});
                }
                expectEntryPoints(scene, kCorrFull, kCorrNoMask);
            }
        }
    }
}

}  // namespace
