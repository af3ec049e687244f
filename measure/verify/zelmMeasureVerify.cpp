// The exported functions that verify a rig.
#include <algorithm>
#include <cmath>
#include <vector>

#include "driftTest.h"
#include "lengthErrors.h"
#include "plateLengths.h"
#include "platePair.h"
#include "platePoints.h"
#include "records.h"

using namespace zelm::measure;

namespace {

// The caller's record; with all arrays NULL where there is none.
template <class Record>
Record arraysOf(const Record* given) {
    return given == nullptr ? Record{} : recordOf(given);
}

void checkPattern(const Zelm2ViewPatternDesc* pattern) {
    require(pattern != nullptr, "the plate is NULL");
    const auto isLength = [](double d) { return d > 0.0 && std::isfinite(d); };
    require(isLength(pattern->d4) && isLength(pattern->d5), "the plate's pitches must be greater than 0");
}

void checkSizes(const Zelm2ViewPatternDesc& p) {
    const auto isLength = [](double d) { return d >= 0.0 && std::isfinite(d); };
    require(isLength(p.d2) && isLength(p.d3) && isLength(p.d6) && isLength(p.d7),
            "the plate's diameters and marker distances must not be negative");
}

// What dots that are looked for all over the plate need besides.
void checkField(const Zelm2ViewPatternDesc& p) {
    constexpr double kMaxDots = 1e4;  // along a side; more is a mistake in a unit
    require(p.d0 >= 0.0 && p.d1 >= 0.0 && p.d0 / p.d4 < kMaxDots && p.d1 / p.d5 < kMaxDots,
            "the plate's sides are negative, not finite or far too long for its pitches");
    require(p.polarity == 0 || p.polarity == 1, "the plate's polarity is neither 0 nor 1");
}

void checkPicture(const ZelmMeasureImage* image, const RigCamera& camera) {
    checkImage(image);
    require(image->width == camera.width && image->height == camera.height,
            "an image has not the size of its camera's");
}

std::vector<GridIndex> gridOf(std::int64_t count, const std::int32_t* grid) {
    require(count >= 0 && (grid != nullptr || count == 0), "the grid is NULL, or the number of dots negative");
    const auto dots = static_cast<std::size_t>(count);
    std::vector<GridIndex> list;
    list.reserve(dots);
    for (std::size_t i = 0; i < dots; ++i) {
        list.push_back({grid[2 * i], grid[2 * i + 1]});
    }
    return list;
}

std::vector<DotPair> dotPairs(std::int64_t count, const std::int32_t* grid, const double* left, const double* right) {
    require(count == 0 || (left != nullptr && right != nullptr), "the pixels are NULL");
    const std::vector<GridIndex> indices = gridOf(count, grid);
    std::vector<DotPair> dots(indices.size());
    for (std::size_t i = 0; i < dots.size(); ++i) {
        dots[i] = {indices[i], {left[2 * i], left[2 * i + 1]}, {right[2 * i], right[2 * i + 1]}};
    }
    return dots;
}

template <class T, std::size_t n>
void put(T* array, std::size_t i, const std::array<T, n>& values) {
    if (array != nullptr) {
        std::copy(values.begin(), values.end(), array + n * i);
    }
}

void give(const PlatePoints& plate, const ZelmMeasurePlatePoints& out) {
    for (std::size_t i = 0; i < plate.points.size(); ++i) {
        const SpacePoint& p = plate.points[i];
        const DotPair& c = plate.centres[i];
        put(out.statuses, i, std::array{static_cast<std::int32_t>(p.status)});
        if (p.status == PointStatus::ok) {
            put(out.positions, i, Vector3{p.position.x, p.position.y, p.position.z});
            put(out.left, i, std::array{c.left.x, c.left.y});
            put(out.right, i, std::array{c.right.x, c.right.y});
        }
    }
}

ZelmMeasurePlateFit recordOfFit(const PlateFit& fit) {
    ZelmMeasurePlateFit record{};
    record.count = static_cast<std::int64_t>(fit.count);
    std::copy(fit.pose.R.begin(), fit.pose.R.end(), record.R);
    std::copy(fit.pose.t.begin(), fit.pose.t.end(), record.t);
    record.rms = fit.rms;
    record.flatnessRms = fit.flatnessRms;
    record.flatnessMax = fit.flatnessMax;
    record.scale = fit.scale;
    record.scaleDeviation = fit.scaleDeviation;
    record.maxOffset = fit.maxOffset;
    return record;
}

Vector3 pointAt(std::int64_t pointCount, const double* positions, std::int64_t index) {
    require(index >= 0 && index < pointCount, "a length ends at a point that is not there");
    const double* const X = positions + 3 * index;
    require(std::isfinite(X[0]) && std::isfinite(X[1]) && std::isfinite(X[2]), "a length ends at no finite point");
    return {X[0], X[1], X[2]};
}

void give(const LengthErrors& errors, const ZelmMeasureLengthErrors& out) {
    for (std::size_t i = 0; i < errors.lengths.size(); ++i) {
        const MeasuredLength& length = errors.lengths[i];
        put(out.measured, i, std::array{length.measured});
        put(out.middles, i, length.middle);
        put(out.depths, i, std::array{length.depth});
        put(out.regions, i, std::array{static_cast<std::int32_t>(length.region)});
        put(out.slabs, i, std::array{static_cast<std::int32_t>(length.slab)});
    }
}

DriftOptions optionsOf(const ZelmMeasureDriftOptions* given) {
    DriftOptions options;
    if (given == nullptr) {
        return options;
    }
    const ZelmMeasureDriftOptions record = recordOf(given);
    const auto isPixels = [](double d) { return d >= 0.0 && std::isfinite(d); };
    require(isPixels(record.noise), "the noise is negative or not finite");
    require(isPixels(record.calibrationError), "the calibration's error is negative or not finite");
    require(record.level >= 0.0 && record.level < 1.0, "the level is not between 0 and 1");
    options.noise = record.noise;
    options.calibrationError = record.calibrationError;
    options.level = record.level > 0.0 ? record.level : options.level;
    return options;
}

}  // namespace

std::int32_t zelmMeasureRefinePlate(ZelmMeasureRig* handle, const Zelm2ViewPatternDesc* pattern,
                                    const ZelmMeasureImage* leftImage, const ZelmMeasureImage* rightImage,
                                    std::int64_t count, const std::int32_t* grid, double* left, double* right,
                                    std::int32_t* statuses) {
    return withRig(handle, [&](const Rig& rig) {
        checkPattern(pattern);
        checkSizes(*pattern);
        checkField(*pattern);
        checkPicture(leftImage, rig.left);
        checkPicture(rightImage, rig.right);
        require(statuses != nullptr || count == 0, "the statuses are NULL");
        const auto refined = refinedPair(rig, *pattern, dotPairs(count, grid, left, right), DenseImage(*leftImage),
                                         DenseImage(*rightImage));
        for (std::size_t i = 0; i < refined.size(); ++i) {
            statuses[i] = refined[i] ? ZELM_MEASURE_DOT_OK : ZELM_MEASURE_DOT_MISSING;
            if (refined[i]) {
                put(left, i, std::array{refined[i]->left.x, refined[i]->left.y});
                put(right, i, std::array{refined[i]->right.x, refined[i]->right.y});
            }
        }
    });
}

std::int32_t zelmMeasurePlatePoints(ZelmMeasureRig* handle, const Zelm2ViewPatternDesc* pattern, std::int64_t count,
                                    const std::int32_t* grid, const double* left, const double* right,
                                    const ZelmMeasurePlatePoints* points, ZelmMeasurePlateFit* fit) {
    return withRig(handle, [&](const Rig& rig) {
        checkPattern(pattern);
        checkSizes(*pattern);
        recordOf(fit);
        const ZelmMeasurePlatePoints out = arraysOf(points);
        const PlatePoints plate = platePoints(rig, *pattern, dotPairs(count, grid, left, right));
        give(plate, out);
        giveRecord(recordOfFit(plate.fit), fit);
    });
}

std::int32_t zelmMeasurePlateLengths(const Zelm2ViewPatternDesc* pattern, std::int64_t count, const std::int32_t* grid,
                                     std::int64_t capacity, std::int64_t* ends, double* nominal, std::int64_t* chosen) {
    return guarded(nullptr, [&] {
        checkPattern(pattern);
        require(capacity >= 0 && chosen != nullptr, "the capacity is negative, or the number's place NULL");
        const std::vector<PlateLength> lengths = plateLengths(*pattern, gridOf(count, grid));
        for (std::size_t i = 0; i < lengths.size() && i < static_cast<std::size_t>(capacity); ++i) {
            const PlateLength& l = lengths[i];
            put(ends, i, std::array{static_cast<std::int64_t>(l.from), static_cast<std::int64_t>(l.to)});
            put(nominal, i, std::array{l.nominal});
        }
        *chosen = static_cast<std::int64_t>(lengths.size());
    });
}

std::int32_t zelmMeasureLengthErrors(ZelmMeasureRig* handle, std::int64_t pointCount, const double* positions,
                                     std::int64_t count, const std::int64_t* ends, const double* nominal,
                                     const ZelmMeasureLengthErrors* lengths, ZelmMeasureLengthSummary* summary) {
    return withRig(handle, [&](const Rig& rig) {
        require(pointCount >= 0 && positions != nullptr, "the points are NULL, or their number negative");
        require(count > 0 && ends != nullptr && nominal != nullptr, "the lengths are NULL, or there is none");
        recordOf(summary);
        const ZelmMeasureLengthErrors out = arraysOf(lengths);
        std::vector<KnownLength> known(static_cast<std::size_t>(count));
        for (std::size_t i = 0; i < known.size(); ++i) {
            require(nominal[i] > 0.0 && std::isfinite(nominal[i]), "a length's true size is not greater than 0");
            known[i] = {pointAt(pointCount, positions, ends[2 * i]), pointAt(pointCount, positions, ends[2 * i + 1]),
                        nominal[i]};
        }
        const LengthErrors errors = lengthErrors(rig, known);
        give(errors, out);
        giveRecord(errors.summary, summary);
    });
}

std::int32_t zelmMeasureDrift(ZelmMeasureRig* handle, std::int64_t count, const double* left, const double* right,
                              const ZelmMeasureDriftOptions* options, std::int32_t* statuses, ZelmMeasureDrift* drift) {
    return withRig(handle, [&](const Rig& rig) {
        require(count >= 0 && ((left != nullptr && right != nullptr) || count == 0),
                "the pixels are NULL, or their number is negative");
        recordOf(drift);
        const DriftOptions asked = optionsOf(options);
        std::vector<PixelPair> pairs(static_cast<std::size_t>(count));
        for (std::size_t i = 0; i < pairs.size(); ++i) {
            pairs[i] = {{left[2 * i], left[2 * i + 1]}, {right[2 * i], right[2 * i + 1]}};
        }
        const DriftVerdict verdict = testDrift(rig, pairs, asked);
        if (statuses != nullptr) {
            std::copy(verdict.statuses.begin(), verdict.statuses.end(), statuses);
        }
        giveRecord(verdict.drift, drift);
    });
}
