// The descending heap sort: order, the travelling indices, and where equal values end up, against a literal model.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <numeric>
#include <vector>

#include "heapSort.h"
#include "random.h"

namespace {

using zelmtest::Random;

// The sort as it is described, on arrays that count from 1.
struct Model {
    std::vector<double> v;
    std::vector<int32_t> x;

    explicit Model(const std::vector<double>& values) : v(values.size() + 1), x(values.size() + 1) {
        const auto n = static_cast<int>(values.size());
        for (int i = 1; i <= n; ++i) {
            at(v, i) = values[static_cast<std::size_t>(i - 1)];
            at(x, i) = i - 1;
        }
        for (int l = n / 2; l >= 1; --l) {
            siftDown(l, n, at(v, l), at(x, l));
        }
        for (int i = n; i >= 1; --i) {
            const double value = at(v, i);
            const int32_t index = at(x, i);
            at(v, i) = at(v, 1);
            at(x, i) = at(x, 1);
            if (i > 1) {
                siftDown(1, i - 1, value, index);
            }
        }
    }

    template <class T>
    static T& at(std::vector<T>& array, int i) {
        return array[static_cast<std::size_t>(i)];
    }
    void siftDown(int hole, int size, double value, int32_t index) {
        while (2 * hole <= size) {
            int child = 2 * hole;
            if (child + 1 <= size && at(v, child) >= at(v, child + 1)) {
                child = child + 1;
            }
            if (at(v, child) > value) {
                break;
            }
            at(v, hole) = at(v, child);
            at(x, hole) = at(x, child);
            hole = child;
        }
        at(v, hole) = value;
        at(x, hole) = index;
    }
};

void expectAsModel(const std::vector<double>& values) {
    const auto n = static_cast<int32_t>(values.size());
    std::vector<double> sorted = values;
    std::vector<int32_t> index(values.size());
    std::iota(index.begin(), index.end(), 0);
    zelm::innerHeapSortDescending(n, sorted.data(), index.data());
    EXPECT_TRUE(std::is_sorted(sorted.begin(), sorted.end(), std::greater<>()));
    for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_EQ(sorted[i], values[static_cast<std::size_t>(index[i])]);
    }
    const Model model(values);
    EXPECT_EQ(std::vector<int32_t>(model.x.begin() + 1, model.x.end()), index);

    std::vector<double> alone = values;
    zelm::innerHeapSortDescending(n, alone.data(), nullptr);
    EXPECT_EQ(alone, sorted);
}

TEST(HeapSort, EveryShortSequenceOfThreeValuesSortsAsDescribed) {
    for (std::size_t n = 2; n <= 7; ++n) {
        std::vector<double> values(n, 0.0);
        for (;;) {
            expectAsModel(values);
            std::size_t i = 0;
            while (i < n && values[i] == 2.0) {
                values[i++] = 0.0;
            }
            if (i == n) {
                break;
            }
            values[i] += 1.0;
        }
    }
}

TEST(HeapSort, RandomSequencesWithTiesSortAsDescribed) {
    Random random(41);
    for (int trial = 0; trial < 500; ++trial) {
        std::vector<double> values(static_cast<std::size_t>(random.integer(2, 60)));
        const bool ties = trial % 2 == 0;
        for (double& value : values) {
            value = ties ? random.integer(0, 5) : random.normal();
        }
        expectAsModel(values);
    }
}

TEST(HeapSort, EqualValuesAreNotKeptInOrder) {
    // Worked by hand. Built, the heap holds 2 3 0 1; taking the root out four times gives the order below.
    std::vector<double> values = {1, 1, 1, 1};
    std::vector<int32_t> index = {0, 1, 2, 3};
    zelm::innerHeapSortDescending(4, values.data(), index.data());
    EXPECT_EQ(index, (std::vector<int32_t>{1, 3, 0, 2}));
}

TEST(HeapSort, FewerThanTwoValuesStayAsTheyAre) {
    double value = 3.0;
    int32_t index = 5;
    zelm::innerHeapSortDescending(1, &value, &index);
    zelm::innerHeapSortDescending(0, &value, &index);
    zelm::innerHeapSortDescending(-4, nullptr, nullptr);
    EXPECT_EQ(value, 3.0);
    EXPECT_EQ(index, 5);
}

TEST(HeapSort, ValuesThatAreNotNumbersDoNotHangIt) {
    Random random(42);
    for (int trial = 0; trial < 200; ++trial) {
        std::vector<double> values(20);
        std::vector<int32_t> index(20);
        std::iota(index.begin(), index.end(), 0);
        for (double& value : values) {
            value = random.integer(0, 2) == 0 ? std::numeric_limits<double>::quiet_NaN() : random.normal();
        }
        zelm::innerHeapSortDescending(20, values.data(), index.data());
        std::sort(index.begin(), index.end());
        for (int32_t i = 0; i < 20; ++i) {
            EXPECT_EQ(index[static_cast<std::size_t>(i)], i) << "still a permutation";
        }
    }
}

}  // namespace
