#include "fieldDoubts.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <set>

namespace zelm::tool {
namespace {

// One direction of the field. Columns, or rows, lie to either side of the corner marker.
struct FieldAxis {
    const char* field;
    const char* lines;  // what is counted along it
    double Zelm2ViewPatternDesc::*extent;
    double Zelm2ViewPatternDesc::*pitch;
    int GridIndex::*along;
    int GridIndex::*across;
};

constexpr std::array kAxes{
    FieldAxis{"fieldWidth", "columns", &Zelm2ViewPatternDesc::d0, &Zelm2ViewPatternDesc::d4, &GridIndex::x,
              &GridIndex::y},
    FieldAxis{"fieldHeight", "rows", &Zelm2ViewPatternDesc::d1, &Zelm2ViewPatternDesc::d5, &GridIndex::y,
              &GridIndex::x},
};

// Described lines on either side of the corner marker.
int describedHalf(const Plate& plate, const FieldAxis& axis) {
    return static_cast<int>(std::floor(0.5 * plate.pattern.*axis.extent / (plate.pattern.*axis.pitch) + 1e-9));
}

// The farthest line that any image shows, on either side of the corner marker.
int shownHalf(const Calibration& c, const FieldAxis& axis) {
    int farthest = 0;
    for (const CameraFigures* camera : {&c.figures.left, &c.figures.right}) {
        for (const ImageFigures& image : camera->views) {
            for (const Dot& dot : image.dots) {
                farthest = std::max(farthest, std::abs(dot.index.*axis.along));
            }
        }
    }
    return farthest;
}

// Whether an image shows, on both sides, more than half of the dots of a line that lies one pitch beyond the field.
bool showsDotsBeyond(const Picture& picture, const Plate& plate, const FieldAxis& axis) {
    Plate wider = plate;
    wider.pattern.*axis.extent += 2.0 * plate.pattern.*axis.pitch;
    const int beyond = describedHalf(plate, axis) + 1;
    std::set<int> before;
    std::set<int> behind;
    std::set<int> across;
    for (const Dot& dot : readDots(picture, wider, std::nullopt).dots) {
        const int line = dot.index.*axis.along;
        across.insert(dot.index.*axis.across);
        if (std::abs(line) == beyond) {
            (line < 0 ? before : behind).insert(dot.index.*axis.across);
        }
    }
    return 2 * std::min(before.size(), behind.size()) > across.size();
}

// Whether the first views show them, in all images: one view may have something else lie beside the plate.
bool showDotsBeyond(const Calibration& c, const FieldAxis& axis) {
    constexpr std::size_t kViews = 2;
    bool isAsked = false;
    for (std::size_t i = 0; i < std::min(kViews, c.views.size()); ++i) {
        for (const auto& image : {c.views[i].left, c.views[i].right}) {
            if (!image.empty()) {
                if (!showsDotsBeyond(*c.pictures->get(image), c.plate, axis)) {
                    return false;
                }
                isAsked = true;
            }
        }
    }
    return isAsked;
}

Doubt missingDots(const FieldAxis& axis, const std::string& plateFile) {
    return {"missing-dots",
            fmt::format("{}: no image shows the outermost dots, on either side, that {} promises: are fieldWidth and "
                        "fieldHeight those of this plate, not exchanged, and the images not mirrored?",
                        plateFile, axis.field),
            {},
            false};
}

Doubt dotsBeyond(const FieldAxis& axis, const Plate& plate, const std::string& plateFile) {
    const double next = 2.0 * plate.pattern.*axis.pitch * (describedHalf(plate, axis) + 1);
    return {"dots-beyond",
            fmt::format("{}: the images show {} of dots beyond {} {:g}, on both sides, which are not used: is it {:g} "
                        "or more?",
                        plateFile, axis.lines, axis.field, plate.pattern.*axis.extent, next),
            {},
            false};
}

// Of a plate that the images do not fit, dots beyond are no news.
bool isRefused(const Calibration& c) {
    return c.adjustment && !c.adjustment->refusal.empty();
}

}  // namespace

std::vector<Doubt> fieldDoubts(const Calibration& c, const std::string& plateFile) {
    std::vector<Doubt> doubts;
    if (!c.pointFile.empty()) {
        return doubts;  // points have no field
    }
    for (const FieldAxis& axis : kAxes) {
        if (shownHalf(c, axis) < describedHalf(c.plate, axis)) {
            doubts.push_back(missingDots(axis, plateFile));
        }
    }
    if (!doubts.empty() || !c.pictures || isRefused(c)) {
        return doubts;
    }
    for (const FieldAxis& axis : kAxes) {
        if (showDotsBeyond(c, axis)) {
            doubts.push_back(dotsBeyond(axis, c.plate, plateFile));
        }
    }
    return doubts;
}

}  // namespace zelm::tool
