// The counterpart of one pixel of the left image.
#ifndef ZELM_MEASURE_POINT_MATCHER_H
#define ZELM_MEASURE_POINT_MATCHER_H

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "cameraView.h"
#include "surfaceFit.h"
#include "transfer.h"

namespace zelm::measure {

struct MatchSettings {
    int half = 10;                 // windows are 2 half + 1 pixels a side
    double minScore = 0.8;         // of a match, after its surface has been fitted
    double returnTolerance = 1.0;  // pixels by which the way back may miss the start
    double worstPrecision = 0.1;   // pixels; what the texture near the point must promise
    double noise = 1.0;            // standard deviation of a gray level
    DepthLimits limits;
};

// What became of a point; the interface says what each means.
enum class MatchStatus : std::int32_t {
    ok = ZELM_MEASURE_MATCH_OK,
    outside = ZELM_MEASURE_MATCH_OUTSIDE,
    noTexture = ZELM_MEASURE_MATCH_NO_TEXTURE,
    noMatch = ZELM_MEASURE_MATCH_NO_MATCH,
    ambiguous = ZELM_MEASURE_MATCH_AMBIGUOUS,
    inconsistent = ZELM_MEASURE_MATCH_INCONSISTENT,
};

struct PointMatch {
    MatchStatus status = MatchStatus::outside;
    Point2d left{};        // raw pixel, as given
    Point2d right{};       // raw pixel found
    FittedSurface fitted;  // about the undistorted left pixel
};

// Finds counterparts. Each thread has its own.
class PointMatcher {
public:
    // All of them outlive the matcher.
    PointMatcher(const CameraView& left, const CameraView& right, const Transfer& toRight, const Transfer& toLeft,
                 const MatchSettings& settings);

    // Looks along the whole epipolar line.
    PointMatch operator()(Point2d raw);
    // Looks where surfaces found nearby would be, continued to the point.
    PointMatch near(Point2d raw, std::span<const Surface> surfaces);
    // Takes the point to lie on one of the surfaces, which are known to be there.
    PointMatch on(Point2d raw, std::span<const Surface> surfaces);

private:
    struct Candidate {
        double score = 0.0;
        Point2d target{};
        Surface surface;  // to start the fit with
    };
    // A stretch of an epipolar line as a row of pixels.
    struct Strip {
        Point2d origin{};     // undistorted, of the middle row's first pixel
        Point2d direction{};  // of the rows
        int width = 0;
        std::vector<std::uint8_t> pixels;

        Point2d at(double column) const { return {origin.x + column * direction.x, origin.y + column * direction.y}; }
    };

    bool prepare(PointMatch& match);
    bool hasTexture() const;
    bool cutStrip(const CameraView& view, Point2d from, Point2d to);
    bool cutPattern(const CameraView& view, const Matrix3& toView);
    void searchZone(Point2d ideal, Interval zone);
    void searchAll(Point2d ideal);
    void searchNear(const Surface& surface);
    void thinOut();
    std::vector<Surface> differing(std::span<const Surface> surfaces, Point2d ideal) const;
    void settle(PointMatch& match, double leastShare);
    bool returns(const PointMatch& match, double lead);

    const CameraView& left;
    const CameraView& right;
    const Transfer& toRight;
    const Transfer& toLeft;
    const MatchSettings& settings;
    SurfaceFitter fit;
    int side;
    Strip strip;
    std::vector<std::uint8_t> pattern;
    std::vector<float> nearness;  // of its pixels to the middle
    std::vector<Candidate> candidates;
    Interval interval;  // of the point at hand
};

}  // namespace zelm::measure

#endif
