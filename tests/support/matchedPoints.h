// Matching pictures of planes by the interface, and what it gives.
#ifndef ZELM_TEST_MATCHED_POINTS_H
#define ZELM_TEST_MATCHED_POINTS_H

#include <algorithm>
#include <cstdint>
#include <functional>
#include <vector>

#include "texturedPlane.h"

namespace zelmtest {

inline constexpr double kNotWritten = -7.0;

// Arrays of a call, filled with numbers that no result has.
struct MatchedPoints {
    std::vector<std::int32_t> statuses;
    std::vector<double> pixels;
    std::vector<double> scores;
    std::vector<double> positions;
    std::vector<double> depths;
    std::vector<double> deviations;
    std::vector<double> errors;
    bool operator==(const MatchedPoints&) const = default;

    explicit MatchedPoints(std::size_t count, std::int32_t status = -7)
        : statuses(count, status),
          pixels(2 * count, kNotWritten),
          scores(count, kNotWritten),
          positions(3 * count, kNotWritten),
          depths(count, kNotWritten),
          deviations(count, kNotWritten),
          errors(2 * count, kNotWritten) {}
    ZelmMeasureMatches record() {
        auto matches = emptyRecord<ZelmMeasureMatches>();
        matches.statuses = statuses.data();
        matches.pixels = pixels.data();
        matches.scores = scores.data();
        matches.positions = positions.data();
        matches.depths = depths.data();
        matches.deviations = deviations.data();
        matches.errors = errors.data();
        return matches;
    }
};

inline int count(const MatchedPoints& m, std::int32_t status) {
    return static_cast<int>(std::count(m.statuses.begin(), m.statuses.end(), status));
}

inline ZelmMeasureMatchOptions defaultsOf(const OpenedRig& rig) {
    auto options = emptyRecord<ZelmMeasureMatchOptions>();
    EXPECT_EQ(zelmMeasureMatchDefaults(rig.get(), &options), ZELM_OK);
    return options;
}

inline std::vector<double> flatPixels(const std::vector<Point2d>& pixels) {
    std::vector<double> flat;
    for (const Point2d& p : pixels) {
        flat.insert(flat.end(), {p.x, p.y});
    }
    return flat;
}

using Change = std::function<void(ZelmMeasureMatchOptions&)>;

inline MatchedPoints matched(const PlanePictures& pictures, const std::vector<Point2d>& pixels,
                             const Change& change = nullptr) {
    const OpenedRig rig(pictures.rig.block());
    ZelmMeasureMatchOptions options = defaultsOf(rig);
    if (change) {
        change(options);
    }
    const ZelmMeasureImage left = pictures.image('L');
    const ZelmMeasureImage right = pictures.image('R');
    const std::vector<double> flat = flatPixels(pixels);
    MatchedPoints result(pixels.size());
    const ZelmMeasureMatches matches = result.record();
    EXPECT_EQ(zelmMeasureMatch(rig.get(), &left, &right, &options, static_cast<std::int64_t>(pixels.size()),
                               flat.data(), &matches),
              ZELM_OK)
        << rig.error();
    return result;
}

// Pixels on a grid, half a step from the edges.
inline std::vector<Point2d> gridOver(int width, int height, int step) {
    std::vector<Point2d> pixels;
    for (int y = step / 2; y < height; y += step) {
        for (int x = step / 2; x < width; x += step) {
            pixels.push_back({static_cast<double>(x), static_cast<double>(y)});
        }
    }
    return pixels;
}

// Whether both images hold a whole window around the point of a left pixel: 11 pixels and the border of the fit, and
// some more in the right one, where the window may be wider.
inline bool isSeen(const PlanePictures& pictures, Point2d pixel) {
    const auto isInner = [&](Point2d p, double margin) {
        return p.x >= margin && p.y >= margin && p.x <= pictures.rig.left.width - 1 - margin &&
               p.y <= pictures.rig.left.height - 1 - margin;
    };
    return isInner(pixel, 12.5) &&
           isInner(pictures.rig.raw('R', worldPointAt(pictures.rig, pictures.plane, pixel)), 16.0);
}

}  // namespace zelmtest

#endif
