// The exported functions of plates' designs.
#include <algorithm>
#include <array>
#include <cmath>

#include "plateDesign.h"
#include "records.h"

using namespace zelm::measure;

namespace {

constexpr double Pattern::*kLengths[] = {&Pattern::d0, &Pattern::d1, &Pattern::d2, &Pattern::d3,
                                         &Pattern::d4, &Pattern::d5, &Pattern::d6, &Pattern::d7};

bool isLength(double value) {
    return value > 0.0 && std::isfinite(value);
}

void requireLengths(const Pattern* plate) {
    require(plate != nullptr, "the plate is NULL");
    require(std::all_of(std::begin(kLengths), std::end(kLengths),
                        [plate](double Pattern::*length) { return isLength(plate->*length); }),
            "the plate's lengths must be greater than 0");
}

// The records of a caller stand as far from one another as the caller's are large.
ZelmMeasureCamera cameraAt(const ZelmMeasureCamera* cameras, std::int32_t index) {
    const auto* const first = reinterpret_cast<const unsigned char*>(cameras);
    const auto* const at = first + static_cast<std::ptrdiff_t>(index) * cameras->size;
    ZelmMeasureCamera record = recordOf(cameras);
    std::memcpy(&record, at, std::min(sizeof record, static_cast<std::size_t>(cameras->size)));
    return record;
}

PlateSightScale sightOf(const ZelmMeasureCamera& camera, double nearest, double farthest) {
    const double fx = camera.intrinsics.alpha;
    const double fy = camera.intrinsics.beta;
    require(isLength(fx) && isLength(fy), "a camera's focal lengths must be greater than 0");
    require(camera.width >= 0 && camera.height >= 0, "an image's size is negative");
    require(camera.model >= ZELM_CAMERA_PERSPECTIVE && camera.model <= ZELM_CAMERA_PARALLEL, "no such camera model");
    PlateSightScale sight{fx, fy, fx, fy, static_cast<double>(camera.width), static_cast<double>(camera.height)};
    if (camera.model != ZELM_CAMERA_PARALLEL) {
        require(isLength(nearest) && isLength(farthest) && nearest <= farthest,
                "the distances must be greater than 0, the least one first");
        sight.nearX = fx / nearest;
        sight.nearY = fy / nearest;
        sight.farX = fx / farthest;
        sight.farY = fy / farthest;
    }
    return sight;
}

void give(const std::vector<ZelmMeasurePlateFinding>& records, ZelmMeasurePlateFinding* to, std::size_t capacity) {
    const std::int32_t size = to->size;
    auto* at = reinterpret_cast<unsigned char*>(to);
    for (std::size_t i = 0; i < std::min(records.size(), capacity); ++i) {
        ZelmMeasurePlateFinding record = records[i];
        record.size = size;
        std::memcpy(at, &record, std::min(sizeof record, static_cast<std::size_t>(size)));
        at += size;
    }
}

}  // namespace

std::int32_t zelmMeasurePlateDesign(const Zelm2ViewPatternDesc* plate, std::int32_t cameraCount,
                                    const ZelmMeasureCamera* cameras, double nearest, double farthest,
                                    ZelmMeasurePlateFinding* findings, std::int64_t capacity, std::int64_t* count) {
    return guarded(nullptr, [&] {
        requireLengths(plate);
        require(cameraCount == 0 || (cameraCount > 0 && cameras != nullptr), "the cameras are NULL");
        require(count != nullptr && capacity >= 0, "the number's place is NULL, or the capacity negative");
        const bool isGiven = findings != nullptr && capacity > 0;
        if (isGiven) {
            recordOf(findings);
            require(findings->size % 8 == 0, "a record's size is not a multiple of 8");
        }
        if (cameraCount > 0) {
            recordOf(cameras);
            require(cameras->size % 8 == 0, "a record's size is not a multiple of 8");
        }
        std::vector<ZelmMeasurePlateFinding> found = plateFindings(*plate);
        for (std::int32_t i = 0; i < cameraCount; ++i) {
            const auto more = cameraFindings(*plate, sightOf(cameraAt(cameras, i), nearest, farthest), i);
            found.insert(found.end(), more.begin(), more.end());
        }
        if (isGiven) {
            give(found, findings, static_cast<std::size_t>(capacity));
        }
        *count = static_cast<std::int64_t>(found.size());
    });
}

std::int32_t zelmMeasurePlateExpanded(const Zelm2ViewPatternDesc* plate, double expansion, double difference,
                                      std::int64_t placeCount, const double* places, Zelm2ViewPatternDesc* expanded,
                                      double* expandedPlaces, double* factor) {
    return guarded(nullptr, [&] {
        requireLengths(plate);
        require(expanded != nullptr, "the place of the expanded plate is NULL");
        require(placeCount >= 0 && (placeCount == 0 || (places != nullptr && expandedPlaces != nullptr)),
                "an array of positions is NULL, or their number negative");
        const double growth = 1.0 + expansion * difference;
        require(isLength(growth), "the factor of the lengths is not greater than 0");
        Pattern grown = *plate;
        for (double Pattern::*const length : kLengths) {
            grown.*length *= growth;
        }
        requireLengths(&grown);
        require(std::all_of(places, places + 3 * placeCount,
                            [growth](double coordinate) { return std::isfinite(growth * coordinate); }),
                "a position is not finite");
        std::transform(places, places + 3 * placeCount, expandedPlaces,
                       [growth](double coordinate) { return growth * coordinate; });
        *expanded = grown;
        if (factor != nullptr) {
            *factor = growth;
        }
    });
}
