// An adjustment of points: their arrays as the measuring library takes them, and figures of what came out.
#ifndef ZELM_TOOL_POINT_ADJUSTMENT_H
#define ZELM_TOOL_POINT_ADJUSTMENT_H

#include <cstddef>
#include <vector>

#include "adjustOutcome.h"
#include "rigFigures.h"

namespace zelm::tool {

// Points of views; a point takes part with its place or, of a plate's dot, with its grid index alone.
struct PointArrays {
    std::vector<std::int32_t> view;
    std::vector<std::int32_t> side;
    std::vector<std::int32_t> grid;
    std::vector<double> places;
    std::vector<double> pixels;
    std::int32_t views = 0;
    ZelmMeasurePointCamera left{};
    ZelmMeasurePointCamera right{};

    void add(std::size_t ofView, char ofSide, std::int32_t column, std::int32_t row, Point2d pixel);
    ZelmMeasureTargetPoints record() const;  // valid as long as this
    std::size_t size() const { return view.size(); }
};

// Of each view whether it can be used, ZelmMeasurePointViewStatus. Throws Failure.
std::vector<std::int32_t> viewStatuses(const PointArrays& points, const std::string& culprit);
// Why a view of that status cannot be used.
const char* viewStatusText(std::int32_t status);

// The adjusted points of one camera, those that take part.
CameraFigures cameraFiguresOf(const AdjustmentPtr& adjustment, char side, std::int32_t views);
// Adds what both cameras tell together.
void addEpipolar(const AdjustmentPtr& adjustment, std::int32_t views, const std::string& culprit, RigFigures& figures);

}  // namespace zelm::tool

#endif
