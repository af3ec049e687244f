// Which values the colours of a picture span.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "colourScale.h"

using namespace zelm::tool;

namespace {

// From 100 to 200 in even steps.
std::vector<double> bulk() {
    std::vector<double> values;
    for (int i = 0; i <= 1000; ++i) {
        values.push_back(100.0 + 0.1 * i);
    }
    return values;
}

TEST(ColourScale, WithoutFarValuesTheRangeIsThatOfAll) {
    const ColourRange range = colourRange(bulk());
    EXPECT_EQ(range.from, 100.0);
    EXPECT_EQ(range.to, 200.0);
    EXPECT_FALSE(range.isCutBelow);
    EXPECT_FALSE(range.isCutAbove);
}

TEST(ColourScale, AFewFarValuesDoNotTakeTheColours) {
    std::vector<double> values = bulk();
    values.insert(values.end(), 10, 5000.0);
    const ColourRange above = colourRange(values);
    EXPECT_LT(above.to, 206.0);  // a twentieth of the span beyond
    EXPECT_EQ(above.from, 100.0);
    EXPECT_TRUE(above.isCutAbove);
    EXPECT_FALSE(above.isCutBelow);
    values.insert(values.end(), 10, -1e9);
    const ColourRange both = colourRange(values);
    EXPECT_GT(both.from, 94.0);
    EXPECT_TRUE(both.isCutBelow);
}

TEST(ColourScale, OneValueAndNoneHaveARangeToo) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const ColourRange one = colourRange({7.0, nan, 7.0});
    EXPECT_LT(one.from, 7.0);
    EXPECT_GT(one.to, 7.0);
    EXPECT_EQ(one.partOf(7.0), 0.5);
    EXPECT_EQ(colourRange({nan}).to, 1.0);
    EXPECT_EQ(colourRange({}).from, 0.0);
}

TEST(ColourScale, ColoursDarkenEvenlyAndEndAtTheEnds) {
    const auto light = [](double part) {
        const Colour c = scaleColour(part);
        return 0.2126 * c.red + 0.7152 * c.green + 0.0722 * c.blue;
    };
    for (double part = 0.0; part < 0.99; part += 0.01) {
        EXPECT_GT(light(part), light(part + 0.01)) << part;
    }
    EXPECT_EQ(light(-3.0), light(0.0));
    EXPECT_EQ(light(9.0), light(1.0));
}

}  // namespace
