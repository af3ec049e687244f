#include "pointAdjustment.h"

#include <cmath>

#include "failure.h"

namespace zelm::tool {

void PointArrays::add(std::size_t ofView, char ofSide, std::int32_t column, std::int32_t row, Point2d pixel) {
    view.push_back(static_cast<std::int32_t>(ofView));
    side.push_back(ofSide);
    grid.insert(grid.end(), {column, row});
    pixels.insert(pixels.end(), {pixel.x, pixel.y});
}

ZelmMeasureTargetPoints PointArrays::record() const {
    ZelmMeasureTargetPoints record{};
    record.size = sizeof(record);
    record.views = views;
    record.count = static_cast<std::int64_t>(view.size());
    record.view = view.data();
    record.side = side.data();
    record.grid = grid.data();
    record.places = places.empty() ? nullptr : places.data();
    record.pixels = pixels.data();
    record.left = left;
    record.right = right;
    return record;
}

std::vector<std::int32_t> viewStatuses(const PointArrays& points, const std::string& culprit) {
    std::vector<std::int32_t> statuses(static_cast<std::size_t>(points.views));
    const ZelmMeasureTargetPoints record = points.record();
    if (const std::int32_t status = zelmMeasurePointViews(&record, statuses.data()); status < 0) {
        failData("{}: the points cannot be used (status {}): are all coordinates meant?", culprit, status);
    }
    return statuses;
}

const char* viewStatusText(std::int32_t status) {
    return status == ZELM_MEASURE_POINT_VIEW_LINE ? "its points are all on one line, or nearly"
                                                  : "no image of it has 6 points or more";
}

CameraFigures cameraFiguresOf(const AdjustmentPtr& adjustment, char side, std::int32_t views) {
    CameraFigures figures;
    std::vector<double> all;
    for (std::int32_t view = 0; view < views; ++view) {
        const AdjustedPoints points(adjustment.get(), side, view);
        ImageFigures image;
        std::vector<double> distances;
        for (std::size_t i = 0; i < points.count; ++i) {
            if (points.statuses[i] != ZELM_MEASURE_ADJUSTED_USED) {
                continue;
            }
            const Point2d error{points.residuals[2 * i], points.residuals[2 * i + 1]};
            image.dots.push_back({{points.grid[2 * i], points.grid[2 * i + 1]},
                                  {},
                                  {points.centres[2 * i], points.centres[2 * i + 1]},
                                  error});
            distances.push_back(std::hypot(error.x, error.y));
        }
        image.found = image.dots.size();
        image.distances = figuresOf(distances);
        all.insert(all.end(), distances.begin(), distances.end());
        figures.views.push_back(std::move(image));
    }
    figures.distances = figuresOf(all);
    return figures;
}

void addEpipolar(const AdjustmentPtr& adjustment, std::int32_t views, const std::string& culprit, RigFigures& figures) {
    std::vector<double> all;
    for (std::int32_t view = 0; view < views; ++view) {
        std::int64_t count = 0;
        requireAdjusted(zelmMeasureAdjustEpipolar(adjustment.get(), view, 0, nullptr, &count), adjustment, culprit);
        std::vector<double> distances(static_cast<std::size_t>(count));
        requireAdjusted(zelmMeasureAdjustEpipolar(adjustment.get(), view, count, distances.data(), &count), adjustment,
                        culprit);
        figures.epipolarViews.push_back(figuresOf(distances));
        all.insert(all.end(), distances.begin(), distances.end());
    }
    figures.dotPairs = all.size() / 2;
    figures.epipolar = figuresOf(all);
}

}  // namespace zelm::tool
