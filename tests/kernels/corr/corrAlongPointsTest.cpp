// Scores along a list of positions: which positions are scored, what is written, and the statistics handed on. Expected
// scores come from the entry points, which have their own tests.
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "corrAlongPoints.h"
#include "correlation.h"
#include "processors.h"
#include "random.h"

namespace {

using namespace zelm;
using namespace zelmtest;

constexpr std::int32_t kMinInt = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMaxInt = std::numeric_limits<std::int32_t>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr std::int32_t kUntouched = -77;

using Routine = decltype(&innerCorrAlongPointsFull);

struct PatternCase {
    const char* name;
    Routine run;
    decltype(&nccFull) noMask;
    decltype(&nccFullRefMask) refMask;
    decltype(&nccFullMask) sharedMask;
    decltype(&nccFullTwoMasks) twoMasks;
};

constexpr PatternCase kPatterns[] = {
    {"full", innerCorrAlongPointsFull, nccFull, nccFullRefMask, nccFullMask, nccFullTwoMasks},
    {"quarter", innerCorrAlongPointsQuarter, nccQuarter, nccQuarterRefMask, nccQuarterMask, nccQuarterTwoMasks},
    {"checker", innerCorrAlongPointsChecker, nccChecker, nccCheckerRefMask, nccCheckerMask, nccCheckerTwoMasks}};

using Bytes = std::vector<std::uint8_t>;

Bytes randomBytes(Random& random, std::int32_t count) {
    Bytes bytes(static_cast<std::size_t>(count));
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(random.integer(0, 255));
    }
    return bytes;
}

// A search in a 40 x 30 image with a template of 7 x 5 cut from it at (12, 9), anchored at (3, 2).
struct Search {
    explicit Search(std::uint64_t seed = 1) {
        Random random(seed);
        img = randomBytes(random, kStride * kHeight);
        tmpl = Bytes(static_cast<std::size_t>(kTmplStride * h));
        for (std::int32_t row = 0; row < h; ++row) {
            for (std::int32_t c = 0; c < w; ++c) {
                tmpl[static_cast<std::size_t>(row * kTmplStride + c)] = *at(img, 12 + c, 9 + row);
            }
        }
        tmplMask = Bytes(static_cast<std::size_t>(kMaskStride * h), 1);
        imgMask = Bytes(img.size(), 1);
    }

    static const std::uint8_t* at(const Bytes& plane, std::int32_t x, std::int32_t y) {
        return plane.data() + y * kStride + x;
    }
    const std::uint8_t* tmplMaskOrNull() const { return masked ? tmplMask.data() : nullptr; }
    const std::uint8_t* imgMaskOrNull() const { return imgMasked ? imgMask.data() : nullptr; }

    // The entries, those not written being kUntouched.
    std::vector<CorrScore> run(Routine routine, const std::vector<Point2i>& positions) {
        std::vector<CorrScore> scores(positions.size(), CorrScore{kUntouched, kUntouched, kUntouched});
        written = runRange(routine, positions, 0, static_cast<std::int32_t>(positions.size()) - 1, scores);
        return scores;
    }
    std::int32_t runRange(Routine routine, const std::vector<Point2i>& positions, std::int32_t k0, std::int32_t k1,
                          std::vector<CorrScore>& scores) const {
        return routine(w, h, tmpl.data(), kTmplStride, tmplMaskOrNull(), kMaskStride, kWidth, kHeight, img.data(),
                       kStride, imgMaskOrNull(), imgMaskStride, positions.data(), k0, k1, scores.data(), mean, sigma,
                       anchorX, anchorY);
    }

    // The score of the window whose first pixel is (x, y), template statistics as given.
    float scoreAt(const PatternCase& pattern, std::int32_t x, std::int32_t y, std::int32_t N, std::int64_t variance,
                  std::int32_t sumT) const {
        const std::uint8_t* const window = at(img, x, y);
        if (imgMasked) {
            const std::uint8_t* const maskWindow = at(imgMask, x, y);
            return masked ? pattern.twoMasks(tmpl.data(), kTmplStride, w, h, tmplMask.data(), kMaskStride, window,
                                             kStride, kWidth, kHeight, maskWindow, imgMaskStride)
                          : pattern.sharedMask(tmpl.data(), kTmplStride, w, h, window, kStride, kWidth, kHeight,
                                               maskWindow, imgMaskStride);
        }
        return masked ? pattern.refMask(tmpl.data(), kTmplStride, w, h, tmplMask.data(), kMaskStride, N, variance, sumT,
                                        window, kStride)
                      : pattern.noMask(tmpl.data(), kTmplStride, w, h, N, variance, sumT, window, kStride);
    }

    static constexpr std::int32_t kWidth = 40;
    static constexpr std::int32_t kHeight = 30;
    static constexpr std::int32_t kStride = 43;
    static constexpr std::int32_t kTmplStride = 9;
    static constexpr std::int32_t kMaskStride = 8;

    std::int32_t w = 7;
    std::int32_t h = 5;
    Bytes img, tmpl, tmplMask, imgMask;
    bool masked = false;
    bool imgMasked = false;
    std::int32_t imgMaskStride = kStride;
    double mean = 120.0;
    double sigma = 70.0;
    double anchorX = 3.0;
    double anchorY = 2.0;
    std::int32_t written = 0;
};

const std::vector<Point2i> kMiddle = {{15, 11}};

TEST(CorrAlongPoints, AnEntryHasSixteenBytes) {
    EXPECT_EQ(sizeof(CorrScore), 16U);
    EXPECT_EQ(offsetof(CorrScore, index), 0U);
    EXPECT_EQ(offsetof(CorrScore, score), 8U);
}

TEST(CorrAlongPoints, FindsTheTemplateWhereItWasCut) {
    Search search;
    double sum = 0.0;
    double squares = 0.0;
    for (std::int32_t row = 0; row < search.h; ++row) {
        for (std::int32_t c = 0; c < search.w; ++c) {
            const double t = *Search::at(search.img, 12 + c, 9 + row);
            sum += t;
            squares += t * t;
        }
    }
    search.mean = sum / 35.0;
    search.sigma = std::sqrt(squares / 35.0 - search.mean * search.mean);
    const std::vector<CorrScore> scores = search.run(innerCorrAlongPointsFull, {{14, 11}, {15, 11}, {16, 11}});
    EXPECT_EQ(search.written, 3);
    // mean * N may fall just short of the sum, and trunc then takes 1 from it: sum(I) / (N * sum(TT) - sum(T)^2) off,
    // 4e3 / 6e6 here.
    EXPECT_NEAR(scores[1].score, 1.0, 1e-3);
    EXPECT_LT(scores[0].score, 0.9);
    EXPECT_LT(scores[2].score, 0.9);
}

TEST(CorrAlongPoints, TheMasksChooseTheModeAndThePatternTheEntryPoints) {
    for (const Processor& processor : {plainProcessor(), sse41Processor(), Processor{}}) {
        if ((processor.leaf7Ebx != 0 && !machineHasAvx2Tier()) || (processor.leaf1Ecx != 0 && !machineHasSse41Tier())) {
            continue;
        }
        const ForcedProcessor forced{processor};
        for (const PatternCase& pattern : kPatterns) {
            for (int masks = 0; masks < 4; ++masks) {
                SCOPED_TRACE(::testing::Message() << pattern.name << ", masks " << masks);
                Search search;
                search.masked = (masks & 1) != 0;
                search.imgMasked = (masks & 2) != 0;
                search.tmplMask[2] = 0;
                *const_cast<std::uint8_t*>(Search::at(search.imgMask, 14, 11)) = 0;
                const std::vector<CorrScore> scores = search.run(pattern.run, kMiddle);
                const std::int32_t n = search.masked ? 34 : 35;
                EXPECT_EQ(search.written, 1);
                EXPECT_EQ(scores[0].index, 0);
                EXPECT_EQ(scores[0].score, static_cast<double>(search.scoreAt(
                                               pattern, 12, 9, n, std::int64_t{70 * n} * (70 * n), 120 * n)));
            }
        }
    }
}

TEST(CorrAlongPoints, CountsOverTheFullWindowForEveryPattern) {
    // Quarter visits 12 of the 35 pixels: N = 35 all the same.
    const ForcedProcessor forced{plainProcessor()};
    for (const PatternCase& pattern : kPatterns) {
        Search search;
        const std::vector<CorrScore> scores = search.run(pattern.run, kMiddle);
        EXPECT_EQ(scores[0].score, static_cast<double>(search.scoreAt(pattern, 12, 9, 35, 2450 * 2450, 4200)));
        EXPECT_NE(scores[0].score, static_cast<double>(search.scoreAt(pattern, 12, 9, 12, 840 * 840, 1440)));
        // The mask's zeros lie at odd columns, which quarter does not visit.
        search.masked = true;
        search.tmplMask[1] = search.tmplMask[3] = 0;
        EXPECT_EQ(search.run(pattern.run, kMiddle)[0].score,
                  static_cast<double>(search.scoreAt(pattern, 12, 9, 33, 2310 * 2310, 3960)));
    }
}

TEST(CorrAlongPoints, StatisticsAreTruncatedTowardsZero) {
    struct {
        double mean, sigma;
        std::int64_t variance;
        std::int32_t sumT;
    } const cases[] = {{100.99, 1.05, 1350, 3534},     // (1.05 * 35)^2 = 1350.56, 100.99 * 35 = 3534.65
                       {-100.99, -1.05, 1350, -3534},  // sigma is squared
                       {0.02, 0.9999, 1224, 0}};       // 1224.76, 0.7
    for (const auto& c : cases) {
        Search search;
        search.mean = c.mean;
        search.sigma = c.sigma;
        EXPECT_EQ(search.run(innerCorrAlongPointsFull, kMiddle)[0].score,
                  static_cast<double>(search.scoreAt(kPatterns[0], 12, 9, 35, c.variance, c.sumT)));
    }
}

TEST(CorrAlongPoints, StatisticsBeyondTheirIntegersTakeTheEndOfTheRange) {
    constexpr auto kMaxInt64 = std::numeric_limits<std::int64_t>::max();
    struct {
        double mean, sigma;
        std::int64_t variance;
        std::int32_t sumT;
    } const cases[] = {{1e300, 1e300, kMaxInt64, kMaxInt},
                       {-kInfinity, kInfinity, kMaxInt64, kMinInt},
                       {kNan, 1.0, 1225, 0},
                       {1.0, kNan, 0, 35},
                       {6.2e7, 8.7e7, kMaxInt64, kMaxInt},
                       {-6.2e7, 8.6e7, 9060100000000000000, kMinInt}};
    for (const auto& c : cases) {
        Search search;
        search.mean = c.mean;
        search.sigma = c.sigma;
        EXPECT_EQ(search.run(innerCorrAlongPointsFull, kMiddle)[0].score,
                  static_cast<double>(search.scoreAt(kPatterns[0], 12, 9, 35, c.variance, c.sumT)));
    }
}

TEST(CorrAlongPoints, OnlyWindowsInsideTheImageAreScored) {
    // Windows of 7 x 5 in 40 x 30: first pixels from (0, 0) to (33, 25).
    for (const PatternCase& pattern : kPatterns) {
        Search search;
        const std::vector<Point2i> positions = {{3, 2},  {2, 2},  {3, 1},  {36, 27}, {37, 27}, {36, 28}, {3, 27},
                                                {36, 2}, {-9, 5}, {5, -9}, {99, 5},  {5, 99},  {20, 15}, {2, 28}};
        const std::vector<CorrScore> scores = search.run(pattern.run, positions);
        for (std::size_t k = 0; k < positions.size(); ++k) {
            const std::int32_t x = positions[k].x - 3;
            const std::int32_t y = positions[k].y - 2;
            if (x >= 0 && y >= 0 && x <= 33 && y <= 25) {
                EXPECT_EQ(scores[k].index, static_cast<std::int32_t>(k));
                EXPECT_EQ(scores[k].score, static_cast<double>(search.scoreAt(pattern, x, y, 35, 2450 * 2450, 4200)));
            } else {
                EXPECT_EQ(scores[k].index, kUntouched) << k;
                EXPECT_EQ(scores[k].score, kUntouched) << k;
            }
            EXPECT_EQ(scores[k].reserved, kUntouched);
        }
        EXPECT_EQ(search.written, 5);
    }
}

TEST(CorrAlongPoints, AWindowOneColumnLeftOfTheImageIsSkipped) {
    Search search;
    EXPECT_EQ(search.run(innerCorrAlongPointsFull, {{2, 10}})[0].index, kUntouched);
    EXPECT_EQ(search.written, 0);
    EXPECT_EQ(search.run(innerCorrAlongPointsFull, {{3, 10}})[0].index, 0);
}

TEST(CorrAlongPoints, PositionsAtTheEndsOfTheIntegersAreSkipped) {
    for (const double anchor : {0.0, 6.0, -5.0, -1e9, 2147483647.0, -2147483648.0}) {
        Search search;
        search.anchorX = search.anchorY = anchor;
        search.run(innerCorrAlongPointsFull,
                   {{kMinInt, 0}, {0, kMinInt}, {kMaxInt, 0}, {0, kMaxInt}, {kMinInt, kMaxInt}, {kMaxInt, kMinInt}});
        EXPECT_EQ(search.written, 0) << anchor;
    }
    // Far anchors and far positions that meet.
    Search search;
    search.anchorX = search.anchorY = 2147483640.0;
    EXPECT_EQ(search.run(innerCorrAlongPointsFull, {{kMaxInt, kMaxInt}})[0].score,
              static_cast<double>(search.scoreAt(kPatterns[0], 7, 7, 35, 2450 * 2450, 4200)));
    EXPECT_EQ(search.written, 1);
}

TEST(CorrAlongPoints, AnchorsAreRoundedByTruncationOfAHalfMore) {
    struct {
        double anchor;
        std::int32_t pixel;
    } const cases[] = {{2.5, 3}, {2.4999, 2}, {3.49, 3}, {0.0, 0}, {-0.7, 0}, {-1.5, -1}, {-1.6, -1}, {6.5, 7}};
    for (const auto& c : cases) {
        Search search;
        search.anchorX = c.anchor;
        EXPECT_EQ(search.run(innerCorrAlongPointsFull, kMiddle)[0].score,
                  static_cast<double>(search.scoreAt(kPatterns[0], 15 - c.pixel, 9, 35, 2450 * 2450, 4200)))
            << c.anchor;
        search.anchorX = 3.0;
        search.anchorY = c.anchor;
        EXPECT_EQ(search.run(innerCorrAlongPointsFull, kMiddle)[0].score,
                  static_cast<double>(search.scoreAt(kPatterns[0], 12, 11 - c.pixel, 35, 2450 * 2450, 4200)))
            << c.anchor;
    }
}

TEST(CorrAlongPoints, AnchorsThatAreNoPixelsAcceptNothing) {
    for (const double anchor : {kNan, kInfinity, -kInfinity, 1e300, -1e300, 1e18, -1e18}) {
        for (const bool alongX : {false, true}) {
            Search search;
            (alongX ? search.anchorX : search.anchorY) = anchor;
            search.run(innerCorrAlongPointsFull, {{15, 11}, {kMaxInt, kMaxInt}, {kMinInt, kMinInt}});
            EXPECT_EQ(search.written, 0) << anchor;
        }
    }
}

TEST(CorrAlongPoints, WithoutASearchMaskEveryScoreIsWritten) {
    // The negative of the template and a flat image: below zero and zero.
    for (const bool masked : {false, true}) {
        Search search;
        search.masked = masked;
        for (std::uint8_t& pixel : search.img) {
            pixel = static_cast<std::uint8_t>(255 - pixel);
        }
        EXPECT_LT(search.run(innerCorrAlongPointsFull, kMiddle)[0].score, 0.0);
        EXPECT_EQ(search.written, 1);
        search.img.assign(search.img.size(), 90);
        search.sigma = 0.0;
        EXPECT_EQ(search.run(innerCorrAlongPointsFull, kMiddle)[0].score, 0.0);
        EXPECT_EQ(search.written, 1);
    }
}

TEST(CorrAlongPoints, WithASearchMaskOnlyPositiveScoresAreWritten) {
    for (const bool masked : {false, true}) {
        Search search;
        search.masked = masked;
        search.imgMasked = true;
        EXPECT_GT(search.run(innerCorrAlongPointsFull, kMiddle)[0].score, 0.99);
        EXPECT_EQ(search.written, 1);
        for (std::uint8_t& pixel : search.img) {
            pixel = static_cast<std::uint8_t>(255 - pixel);
        }
        EXPECT_EQ(search.run(innerCorrAlongPointsFull, kMiddle)[0].index, kUntouched);
        EXPECT_EQ(search.written, 0);
        search.img.assign(search.img.size(), 90);
        EXPECT_EQ(search.run(innerCorrAlongPointsFull, kMiddle)[0].index, kUntouched);
        EXPECT_EQ(search.written, 0);
    }
}

TEST(CorrAlongPoints, AnEmptySearchMaskLeavesNoEntry) {
    for (const PatternCase& pattern : kPatterns) {
        for (const bool masked : {false, true}) {
            Search search;
            search.masked = masked;
            search.imgMasked = true;
            search.imgMask.assign(search.imgMask.size(), 0);
            EXPECT_EQ(search.run(pattern.run, kMiddle)[0].index, kUntouched);
            EXPECT_EQ(search.written, 0);
        }
    }
}

TEST(CorrAlongPoints, AnEmptyTemplateMaskLeavesNoEntry) {
    for (const PatternCase& pattern : kPatterns) {
        Search search;
        search.masked = true;
        search.tmplMask.assign(search.tmplMask.size(), 0);
        EXPECT_EQ(search.run(pattern.run, kMiddle)[0].index, kUntouched);
        EXPECT_EQ(search.written, 0);
    }
}

TEST(CorrAlongPoints, EmptyWindowsLeaveNoEntry) {
    for (const std::int32_t extent : {0, -1, -5}) {
        for (int masks = 0; masks < 4; ++masks) {
            for (const int which : {0, 1, 2}) {
                Search search;
                search.masked = (masks & 1) != 0;
                search.imgMasked = (masks & 2) != 0;
                search.w = which == 1 ? search.w : extent;
                search.h = which == 0 ? search.h : extent;
                search.run(innerCorrAlongPointsFull, kMiddle);
                EXPECT_EQ(search.written, 0);
            }
        }
    }
}

TEST(CorrAlongPoints, TheSearchMaskIsLocatedByTheImagesStride) {
    // A mask with a stride of its own: its window begins where the image's stride says and goes on by its own.
    for (const bool masked : {false, true}) {
        Search search;
        search.masked = masked;
        search.imgMasked = true;
        search.imgMaskStride = Search::kStride - 3;
        search.imgMask.assign(search.imgMask.size(), 0);
        for (std::int32_t row = 0; row < search.h; ++row) {
            search.imgMask[static_cast<std::size_t>(9 * Search::kStride + 12 + row * search.imgMaskStride + row)] = 1;
        }
        const std::vector<CorrScore> scores = search.run(innerCorrAlongPointsFull, kMiddle);
        EXPECT_EQ(search.written, 1);
        EXPECT_EQ(scores[0].score, static_cast<double>(search.scoreAt(kPatterns[0], 12, 9, 0, 0, 0)));
        EXPECT_NEAR(scores[0].score, 1.0, 1e-6);  // five pixels of the diagonal, equal to the template's
    }
}

TEST(CorrAlongPoints, OnlyTheRangeIsReadAndWritten) {
    const std::vector<Point2i> positions(9, Point2i{15, 11});
    Search search;
    std::vector<CorrScore> scores(9, CorrScore{kUntouched, 0, 0.0});
    EXPECT_EQ(search.runRange(innerCorrAlongPointsFull, positions, 2, 5, scores), 4);
    for (std::int32_t k = 0; k < 9; ++k) {
        EXPECT_EQ(scores[static_cast<std::size_t>(k)].index, k >= 2 && k <= 5 ? k : kUntouched);
    }
    EXPECT_EQ(search.runRange(innerCorrAlongPointsFull, positions, 7, 7, scores), 1);
    EXPECT_EQ(scores[7].index, 7);
}

TEST(CorrAlongPoints, ARangeThatEndsBeforeItBeginsWritesNothing) {
    const std::vector<Point2i> positions(4, Point2i{15, 11});
    for (const PatternCase& pattern : kPatterns) {
        for (int masks = 0; masks < 4; ++masks) {
            Search search;
            search.masked = (masks & 1) != 0;
            search.imgMasked = (masks & 2) != 0;
            std::vector<CorrScore> scores(4, CorrScore{kUntouched, 0, 0.0});
            EXPECT_EQ(search.runRange(pattern.run, positions, 2, 1, scores), 0);
            EXPECT_EQ(search.runRange(pattern.run, positions, kMaxInt, kMinInt, scores), 0);
            EXPECT_EQ(scores[1].index, kUntouched);
            EXPECT_EQ(scores[2].index, kUntouched);
        }
    }
}

}  // namespace
