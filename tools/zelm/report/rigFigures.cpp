#include "rigFigures.h"

#include <cmath>

#include "failure.h"

namespace zelm::tool {
namespace {

ImageFigures imageFigures(const LoadedRig& rig, const Plate& plate, char side, std::int32_t view,
                          std::vector<double>& all) {
    std::int64_t placed = 0;
    std::int64_t found = 0;
    rig.require(zelmMeasureRigDots(rig.handle.get(), &plate.pattern, side, view, nullptr, &placed, &found), "dots");
    DotArrays arrays(placed);
    rig.require(zelmMeasureRigDots(rig.handle.get(), &plate.pattern, side, view, arrays.record(), &placed, &found),
                "dots");
    ImageFigures figures{static_cast<std::size_t>(found), arrays.dots(), {}};
    std::vector<double> distances;
    for (const Dot& dot : figures.dots) {
        distances.push_back(std::hypot(dot.error.x, dot.error.y));
    }
    figures.distances = figuresOf(distances);
    all.insert(all.end(), distances.begin(), distances.end());
    return figures;
}

CameraFigures cameraFigures(const LoadedRig& rig, const Plate& plate, char side) {
    CameraFigures figures;
    std::vector<double> all;
    for (std::size_t view = 0; view < rig.rig.views(); ++view) {
        figures.views.push_back(imageFigures(rig, plate, side, static_cast<std::int32_t>(view), all));
    }
    figures.distances = figuresOf(all);
    return figures;
}

std::vector<double> epipolarDistances(const LoadedRig& rig, const Plate& plate, std::int32_t view) {
    std::int64_t count = 0;
    rig.require(zelmMeasureRigEpipolar(rig.handle.get(), &plate.pattern, view, 0, nullptr, &count), "epipolar lines");
    std::vector<double> distances(static_cast<std::size_t>(count));
    rig.require(zelmMeasureRigEpipolar(rig.handle.get(), &plate.pattern, view, count, distances.data(), &count),
                "epipolar lines");
    return distances;
}

}  // namespace

DistanceFigures figuresOf(const std::vector<double>& distances) {
    DistanceFigures figures{};
    figures.size = sizeof(figures);
    if (zelmMeasureFigures(static_cast<std::int64_t>(distances.size()), distances.data(), &figures) < 0) {
        failData("out of memory: use fewer views");
    }
    return figures;
}

RigFigures rigFigures(const LoadedRig& rig, const Plate& plate) {
    RigFigures figures;
    figures.left = cameraFigures(rig, plate, 'L');
    figures.right = cameraFigures(rig, plate, 'R');
    std::vector<double> all;
    for (std::size_t view = 0; view < rig.rig.views(); ++view) {
        const std::vector<double> distances = epipolarDistances(rig, plate, static_cast<std::int32_t>(view));
        figures.epipolarViews.push_back(figuresOf(distances));
        all.insert(all.end(), distances.begin(), distances.end());
    }
    figures.dotPairs = all.size() / 2;
    figures.epipolar = figuresOf(all);
    return figures;
}

}  // namespace zelm::tool
