#include "plate.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

namespace zelm::render {
namespace {

bool holds(const std::vector<GridIndex>& list, GridIndex index) {
    return std::find(list.begin(), list.end(), index) != list.end();
}

bool isMarker(const Plate& plate, GridIndex index) {
    const bool designed =
        index == GridIndex{0, 0} || index == GridIndex{plate.markerX, 0} || index == GridIndex{0, plate.markerY};
    return (designed && !holds(plate.shrunkMarkers, index)) || holds(plate.extraMarkers, index);
}

void requirePositive(double value, const char* name) {
    if (!(value > 0.0) || !std::isfinite(value)) {
        throw std::invalid_argument(std::string("the ") + name + " must be a positive number");
    }
}

void require(bool condition, const char* message) {
    if (!condition) {
        throw std::invalid_argument(message);
    }
}

void checkLists(const Plate& plate) {
    const auto onGrid = [&plate](GridIndex i) {
        return i.x >= plate.minX && i.x <= plate.maxX && i.y >= plate.minY && i.y <= plate.maxY;
    };
    for (const auto* list : {&plate.missing, &plate.shrunkMarkers, &plate.extraMarkers}) {
        require(std::all_of(list->begin(), list->end(), onGrid),
                "a dot listed as missing or changed is not on the grid");
    }
}

void checkSpacing(const Plate& plate) {
    const double largest = 0.5 * std::max(plate.dotDiameter, plate.markerDiameter);
    require(largest < plate.marginX && largest < plate.marginY, "the dots reach the edge; make the margin larger");
    const std::vector<PlateDot> dots = plateDots(plate);
    for (std::size_t i = 0; i < dots.size(); ++i) {
        for (std::size_t j = i + 1; j < dots.size(); ++j) {
            const double distance =
                std::hypot(dots[i].centre.x - dots[j].centre.x, dots[i].centre.y - dots[j].centre.y);
            require(distance > dots[i].radius + dots[j].radius, "dots touch each other; make the pitch larger");
        }
    }
}

}  // namespace

void checkPlate(const Plate& plate) {
    requirePositive(plate.pitchX, "pitch along x");
    requirePositive(plate.pitchY, "pitch along y");
    requirePositive(plate.dotDiameter, "dot diameter");
    requirePositive(plate.markerDiameter, "marker diameter");
    requirePositive(plate.marginX, "margin along x");
    requirePositive(plate.marginY, "margin along y");
    constexpr int kMaxDots = 100;  // a side, either way from the corner marker
    require(plate.minX >= -kMaxDots && plate.maxX <= kMaxDots && plate.minY >= -kMaxDots && plate.maxY <= kMaxDots,
            "more than 100 dots from the corner marker to the edge");
    require(plate.minX <= 0 && plate.minY <= 0, "the corner marker (0, 0) is not on the grid");
    require(plate.markerX > 0 && plate.markerX <= plate.maxX, "the x marker is not on the grid");
    require(plate.markerY > 0 && plate.markerY <= plate.maxY, "the y marker is not on the grid");
    checkLists(plate);
    checkSpacing(plate);
}

std::vector<PlateDot> plateDots(const Plate& plate) {
    std::vector<PlateDot> dots;
    for (int y = plate.minY; y <= plate.maxY; ++y) {
        for (int x = plate.minX; x <= plate.maxX; ++x) {
            const GridIndex index{x, y};
            if (holds(plate.missing, index)) {
                continue;
            }
            const bool marker = isMarker(plate, index);
            dots.push_back({index,
                            {x * plate.pitchX, y * plate.pitchY},
                            0.5 * (marker ? plate.markerDiameter : plate.dotDiameter),
                            marker});
        }
    }
    return dots;
}

PlateBounds plateBounds(const Plate& plate) {
    return {plate.minX * plate.pitchX - plate.marginX, plate.maxX * plate.pitchX + plate.marginX,
            plate.minY * plate.pitchY - plate.marginY, plate.maxY * plate.pitchY + plate.marginY};
}

double fieldExtentX(const Plate& plate) {
    return 2.0 * std::max(-plate.minX, plate.maxX) * plate.pitchX;
}

double fieldExtentY(const Plate& plate) {
    return 2.0 * std::max(-plate.minY, plate.maxY) * plate.pitchY;
}

}  // namespace zelm::render
