// The exported functions of row-aligned pairs.
#include <algorithm>
#include <cmath>
#include <limits>

#include "records.h"
#include "rowMaps.h"

using namespace zelm::measure;

namespace {

constexpr int kMaxSide = 32768;  // pixels

RowOptions optionsOf(const ZelmMeasureRowOptions* given) {
    if (given == nullptr) {
        return {};
    }
    const ZelmMeasureRowOptions o = recordOf(given);
    require(o.width >= 0 && o.width <= kMaxSide && o.height >= 0 && o.height <= kMaxSide,
            "the aligned images' size is not one of up to 32768 pixels a side");
    require(o.focal >= 0.0 && std::isfinite(o.focal), "the aligned images' focal length is negative");
    require(o.nearest >= 0.0 && o.farthest >= 0.0, "a depth is negative");
    return {o.width, o.height, o.focal, o.nearest, o.farthest, o.zeroAtInfinity != 0};
}

void give(const PixelRectangle& r, std::int32_t* to) {
    to[0] = r.x;
    to[1] = r.y;
    to[2] = r.width;
    to[3] = r.height;
}

template <class Numbers>
void give(const Numbers& numbers, double* to) {
    std::copy(numbers.begin(), numbers.end(), to);
}

}  // namespace

std::int32_t zelmMeasureAlignRows(ZelmMeasureRig* handle, const ZelmMeasureRowOptions* options, ZelmMeasureRows* rows) {
    return withRig(handle, [&](const Rig& rig) {
        const RowOptions wanted = optionsOf(options);
        const RowAlignment a = alignRows(rig, wanted);
        ZelmMeasureRows r{};
        if (const auto disparities = disparitiesOf(rig, a, wanted)) {
            give(*disparities, r.disparities);
        }
        r.width = a.width;
        r.height = a.height;
        give(a.leftRotation, r.R1);
        give(a.rightRotation, r.R2);
        give(a.projection('L'), r.P1);
        give(a.projection('R'), r.P2);
        give(a.reprojection(), r.Q);
        give(seenRectangle(rig.left, a, 'L'), r.leftSeen);
        give(seenRectangle(rig.right, a, 'R'), r.rightSeen);
        giveRecord(r, rows);
    });
}

std::int32_t zelmMeasureAlignRowsMap(ZelmMeasureRig* handle, const ZelmMeasureRowOptions* options, std::int32_t side,
                                     float* map) {
    return withRig(handle, [&](const Rig& rig) {
        require(map != nullptr, "the map's place is NULL");
        const char camera = sideOf(side);
        const RowAlignment a = alignRows(rig, optionsOf(options));
        const std::size_t size = 2 * static_cast<std::size_t>(a.width) * static_cast<std::size_t>(a.height);
        fillRowMap(rig.camera(camera), a, camera, {map, size});
    });
}

std::int32_t zelmMeasureAlignRowsPoints(ZelmMeasureRig* handle, const ZelmMeasureRowOptions* options, std::int32_t side,
                                        std::int64_t count, const double* raw, double* aligned) {
    return withRig(handle, [&](const Rig& rig) {
        require(count >= 0 && (count == 0 || (raw != nullptr && aligned != nullptr)), "the pixels are NULL");
        const char camera = sideOf(side);
        const RowAlignment a = alignRows(rig, optionsOf(options));
        constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
        for (std::int64_t i = 0; i < count; ++i) {
            Point2d found{kNone, kNone};
            if (!alignedOf(rig, a, camera, {raw[2 * i], raw[2 * i + 1]}, found)) {
                found = {kNone, kNone};
            }
            aligned[2 * i] = found.x;
            aligned[2 * i + 1] = found.y;
        }
    });
}
