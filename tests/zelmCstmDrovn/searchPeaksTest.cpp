// Local maxima along a line, their selection, and the list of matches.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "matchList.h"
#include "peaks.h"
#include "random.h"
#include "scorer.h"

namespace {

using namespace zelm;

constexpr double kNone = kUnscored;

std::vector<CorrScore> scoresOf(const std::vector<double>& values) {
    std::vector<CorrScore> scores(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        scores[i].score = values[i];
    }
    return scores;
}

std::vector<std::int32_t> peaksOf(const std::vector<double>& values) {
    const std::vector<CorrScore> scores = scoresOf(values);
    std::vector<CorrScore> peaks(scores.size() + 1);
    const std::int32_t count = innerFindPeaks(static_cast<std::int32_t>(scores.size()), scores.data(), peaks.data());
    std::vector<std::int32_t> indices;
    for (std::int32_t i = 0; i < count; ++i) {
        const CorrScore& peak = peaks[static_cast<std::size_t>(i)];
        EXPECT_EQ(peak.score, values[static_cast<std::size_t>(peak.index)]);
        indices.push_back(peak.index);
    }
    return indices;
}

using Indices = std::vector<std::int32_t>;

TEST(SearchPeaks, AreNoLowerThanBothNeighbours) {
    EXPECT_EQ(peaksOf({0.1, 0.5, 0.2, 0.3, 0.9, 0.4}), (Indices{1, 4}));
    EXPECT_EQ(peaksOf({-0.5, -0.2, -0.4}), (Indices{1}));
}

TEST(SearchPeaks, APlateauGivesSeveral) {
    EXPECT_EQ(peaksOf({0.1, 0.5, 0.5, 0.5, 0.2}), (Indices{1, 2, 3}));
    EXPECT_EQ(peaksOf({0.1, 0.5, 0.5, 0.6, 0.2}), (Indices{1, 3}));
    EXPECT_EQ(peaksOf({0.5, 0.5, 0.5}), (Indices{1}));
}

TEST(SearchPeaks, NeedBothNeighboursScored) {
    EXPECT_EQ(peaksOf({kNone, kNone, 0.9, 0.5, 0.6, 0.5, kNone, kNone}), (Indices{4}));
    EXPECT_EQ(peaksOf({0.1, 0.9, kNone, 0.9, 0.1}), (Indices{}));
    EXPECT_EQ(peaksOf({0.9, 0.5, 0.9}), (Indices{}));
    EXPECT_EQ(peaksOf({kNone, kNone, kNone}), (Indices{}));
    EXPECT_EQ(peaksOf({0.9, 0.1}), (Indices{}));
    EXPECT_EQ(peaksOf({0.9}), (Indices{}));
}

// Peaks on a horizontal lattice: the place is the index.
struct Selection {
    std::vector<double> values;  // by index
    Indices at;
    PeakSelection rules{0.0, 0, true};

    [[nodiscard]] Indices kept() const {
        std::vector<Point2i> lattice;
        for (std::int32_t i = 0; i < 200; ++i) {
            lattice.push_back({i, 0});
        }
        std::vector<CorrScore> peaks;
        for (std::size_t i = 0; i < at.size(); ++i) {
            peaks.push_back({at[i], 0, values[i]});
        }
        const std::int32_t count =
            innerSelectPeaks(static_cast<std::int32_t>(peaks.size()), lattice.data(), rules, peaks.data());
        Indices indices;
        for (std::int32_t i = 0; i < count; ++i) {
            indices.push_back(peaks[static_cast<std::size_t>(i)].index);
        }
        return indices;
    }
};

TEST(SearchPeaks, AreSortedByScoreAndEqualOnesByPlace) {
    EXPECT_EQ((Selection{{0.3, 0.9, 0.5, 0.9, 0.5}, {1, 2, 3, 4, 5}}.kept()), (Indices{2, 4, 3, 5, 1}));
}

TEST(SearchPeaks, AreHeldToTheThreshold) {
    const std::vector<double> values = {0.59, 0.6, 0.61, 0.39, 0.41};
    const Indices at = {10, 20, 30, 40, 50};
    EXPECT_EQ((Selection{values, at, {0.6, 0, true}}.kept()), (Indices{30, 20}));
    EXPECT_EQ((Selection{values, at, {0.6, 0, false}}.kept()), (Indices{30, 20, 10, 50}));  // 0.4
    EXPECT_EQ((Selection{{-0.1, 0.0, 0.1}, {1, 2, 3}, {-5.0, 0, true}}.kept()), (Indices{3, 2}));
    EXPECT_EQ((Selection{{-0.21, -0.2, 0.1}, {1, 2, 3}, {-5.0, 0, false}}.kept()), (Indices{3, 2}));
    EXPECT_EQ((Selection{{-0.1, 0.1}, {1, 2}, {std::numeric_limits<double>::quiet_NaN(), 0, true}}.kept()),
              (Indices{2}));
    EXPECT_EQ((Selection{{0.1, 0.2}, {1, 2}, {0.9, 0, true}}.kept()), (Indices{}));
}

TEST(SearchPeaks, ASinglePeakIsNotHeldToTheThreshold) {
    EXPECT_EQ((Selection{{0.1}, {7}, {0.9, 50, true}}.kept()), (Indices{7}));
    EXPECT_EQ((Selection{{}, {}, {0.9, 50, true}}.kept()), (Indices{}));
}

// Closer than r = minDistance - 2 (all pixels) or - 4 to a better one that is kept.
TEST(SearchPeaks, AreThinnedByDistance) {
    const std::vector<double> values = {0.9, 0.8, 0.7, 0.6};
    const Indices at = {10, 13, 15, 16};
    EXPECT_EQ((Selection{values, at, {0.0, 7, true}}.kept()), (Indices{10, 15}));       // r = 5, 15 is not closer
    EXPECT_EQ((Selection{values, at, {0.0, 8, true}}.kept()), (Indices{10, 16}));       // r = 6
    EXPECT_EQ((Selection{values, at, {0.0, 9, false}}.kept()), (Indices{10, 15}));      // r = 5
    EXPECT_EQ((Selection{values, at, {0.0, 3, true}}.kept()), at);                      // r = 1: none
    EXPECT_EQ((Selection{values, at, {0.0, 5, false}}.kept()), at);                     // r = 1: none
    EXPECT_EQ((Selection{values, at, {0.0, 4, true}}.kept()), (Indices{10, 13, 15}));   // r = 2: 16 is at 1
    EXPECT_EQ((Selection{values, at, {0.0, 6, false}}.kept()), (Indices{10, 13, 15}));  // r = 2
    const std::int32_t most = std::numeric_limits<std::int32_t>::max();
    EXPECT_EQ((Selection{values, at, {0.0, most, true}}.kept()), (Indices{10}));
    EXPECT_EQ((Selection{values, at, {0.0, -most - 1, false}}.kept()), at);
}

TEST(SearchPeaks, ThinningMeasuresInThePlane) {
    const Point2i lattice[] = {{0, 0}, {3, 3}, {6, 6}};
    CorrScore peaks[] = {{0, 0, 0.9}, {1, 0, 0.8}, {2, 0, 0.7}};
    EXPECT_EQ(innerSelectPeaks(3, lattice, {0.0, 6, true}, peaks), 3);  // r = 4 < 3 sqrt 2
    EXPECT_EQ(innerSelectPeaks(3, lattice, {0.0, 7, true}, peaks), 2);  // r = 5
}

using Matches = std::vector<ZelmCstmMatch>;

// All at once, by the rule as it reads: append, sort, drop every later one closer than minDistance to an earlier one.
Matches modelList(const Matches& added, std::int32_t minDistance, bool sorted) {
    const double least = minDistance <= 0 ? 1e-24 : static_cast<double>(minDistance) * minDistance;
    Matches list;
    for (const ZelmCstmMatch& match : added) {
        list.push_back(match);
        if (sorted) {
            std::stable_sort(list.begin(), list.end(),
                             [](const ZelmCstmMatch& a, const ZelmCstmMatch& b) { return a.score > b.score; });
        }
        Matches kept;
        for (const ZelmCstmMatch& m : list) {
            bool isNear = false;
            for (const ZelmCstmMatch& k : kept) {
                isNear = isNear || (k.x - m.x) * (k.x - m.x) + (k.y - m.y) * (k.y - m.y) < least;
            }
            if (!isNear) {
                kept.push_back(m);
            }
        }
        list = kept;
    }
    return list;
}

TEST(SearchMatches, AreSortedAndThinnedAsTheRuleReads) {
    zelmtest::Random random(8);
    for (int round = 0; round < 2000; ++round) {
        const bool sorted = round % 2 == 0;
        const std::int32_t minDistance = random.integer(-1, 6);
        Matches added;
        Matches room(12);
        MatchList list(room.data(), minDistance, sorted);
        for (int i = 0; i < 12; ++i) {
            const double score = random.integer(0, 5) / 5.0;
            added.push_back({score, 0.5 * random.integer(0, 40), 0.5 * random.integer(0, 4)});
            list.add(added.back());
        }
        const Matches expected = modelList(added, minDistance, sorted);
        ASSERT_EQ(static_cast<std::size_t>(list.size()), expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i) {
            EXPECT_EQ(room[i].score, expected[i].score);
            EXPECT_EQ(room[i].x, expected[i].x);
            EXPECT_EQ(room[i].y, expected[i].y);
        }
    }
}

TEST(SearchMatches, WithoutADistanceOnlyIdenticalPlacesAreDropped) {
    for (const std::int32_t minDistance : {0, -3}) {
        Matches room(4);
        MatchList list(room.data(), minDistance, true);
        list.add({0.5, 10.0, 5.0});
        list.add({0.6, 10.0 + 2e-12, 5.0});
        EXPECT_EQ(list.size(), 2);
        list.add({0.4, 10.0 + 0.9e-12, 5.0});
        EXPECT_EQ(list.size(), 2);
    }
}

TEST(SearchMatches, UnsortedOnesKeepTheOrderOfDiscovery) {
    Matches room(3);
    MatchList list(room.data(), 0, false);
    list.add({0.5, 10.0, 0.0});
    list.add({0.9, 20.0, 0.0});
    list.add({0.7, 30.0, 0.0});
    EXPECT_EQ(room[0].score, 0.5);
    EXPECT_EQ(room[1].score, 0.9);
    EXPECT_EQ(room[2].score, 0.7);
}

}  // namespace
