// The exported functions that tell how well points and lengths are known.
#include <algorithm>
#include <cmath>
#include <vector>

#include "covarianceBlock.h"
#include "expandedUncertainty.h"
#include "lengthUncertainty.h"
#include "pixelNoise.h"
#include "records.h"
#include "triangulator.h"

using namespace zelm::measure;

namespace {

// Raw pixels of pairs.
struct Pairs {
    Pairs(std::int64_t number, const double* leftPixels, const double* rightPixels)
        : left(leftPixels), right(rightPixels) {
        require(number >= 0 && ((left != nullptr && right != nullptr) || number == 0),
                "the pixels are NULL, or their number is negative");
        count = static_cast<std::size_t>(number);
    }

    SpacePoint triangulated(const Triangulator& triangulate, std::size_t i) const {
        return triangulate({left[2 * i], left[2 * i + 1]}, {right[2 * i], right[2 * i + 1]});
    }

    std::size_t count = 0;
    const double* left;
    const double* right;
};

struct PointResult {
    PointStatus status = PointStatus::ok;
    Point3d position{};
    Symmetric3 image{};
    Symmetric3 calibration{};
    std::array<double, 2> depths{};
};

bool hasNumbers(PointStatus status) {
    return status == PointStatus::ok || status == PointStatus::behind;
}

// Whether no number has grown beyond what a double holds.
bool isFinite(const PointResult& p) {
    double sum = 0.0;
    for (std::size_t k = 0; k < p.image.size(); ++k) {
        sum += 0.0 * (p.image[k] + p.calibration[k]);
    }
    return sum + 0.0 * (p.depths[0] + p.depths[1]) == 0.0;
}

// Makes the numbers of points; those of the calibration, which has a covariance then, as they are wanted.
class PointUncertainty {
public:
    PointUncertainty(const Rig& rig, const PixelNoise& pixelNoise, const ZelmMeasurePointCovariances& wanted)
        : model(rig),
          noise(pixelNoise),
          covariance(rig.covariance ? &*rig.covariance : nullptr),
          wantsCovariance(wanted.calibration != nullptr),
          wantsDepth(wanted.depths != nullptr) {}

    PointResult operator()(const SpacePoint& point, std::size_t i) const {
        PointResult result;
        result.status = point.status;
        result.position = point.position;
        if (!hasNumbers(point.status)) {
            return result;
        }
        const std::optional<PointSensitivity> s = model.at(point.position);
        if (!s) {
            result.status = PointStatus::parallel;
            return result;
        }
        const Symmetric3 image = noise.ofPoint(model, *s, i);
        result.image = model.inPlate(image);
        result.depths[0] = std::sqrt(std::max(image[5], 0.0));
        if (wantsCovariance) {
            result.calibration = calibrationCovariance(model.inPlate(*s), *covariance);
        }
        if (wantsDepth) {
            result.depths[1] = std::sqrt(varianceOf(s->byParameters[2], *covariance));
        }
        result.status = isFinite(result) ? result.status : PointStatus::parallel;
        return result;
    }

private:
    SensitivityModel model;
    const PixelNoise& noise;
    const CalibrationCovariance* covariance;
    bool wantsCovariance;
    bool wantsDepth;
};

template <class Numbers>
void give(const Numbers& numbers, std::size_t i, double* out) {
    if (out != nullptr) {
        std::copy(numbers.begin(), numbers.end(), out + i * numbers.size());
    }
}

void give(const PointResult& p, std::size_t i, const ZelmMeasurePointCovariances& out) {
    if (out.statuses != nullptr) {
        out.statuses[i] = static_cast<std::int32_t>(p.status);
    }
    if (hasNumbers(p.status)) {
        give(Vector3{p.position.x, p.position.y, p.position.z}, i, out.positions);
        give(p.image, i, out.image);
        give(p.calibration, i, out.calibration);
        give(p.depths, i, out.depths);
    }
}

// Makes lengths of points that have been triangulated.
class LengthMaker {
public:
    LengthMaker(const Rig& rig, const PixelNoise& pixelNoise, const std::vector<SpacePoint>& triangulated)
        : model(rig),
          noise(pixelNoise),
          points(triangulated),
          covariance(rig.covariance ? &*rig.covariance : nullptr) {}

    Length operator()(std::size_t from, std::size_t to) const {
        const std::optional<LengthEnd> a = end(from);
        const std::optional<LengthEnd> b = end(to);
        const Length l = a && b ? lengthBetween(*a, *b, covariance) : Length{};
        return std::isfinite(l.length + l.imageVariance + l.calibrationVariance) ? l : Length{};
    }

    // Half the interval at 95 %.
    double expanded(const Length& l) const {
        const double freedom = covariance == nullptr ? 0.0 : covariance->freedom;
        // The noise of the calibration's dots is one estimate, which scales both variances.
        const double effective = noise.isOfCalibration() ? freedom
                                                         : effectiveFreedom({l.imageVariance, noise.freedom()},
                                                                            {l.calibrationVariance, freedom});
        return coverageFactor(effective) * std::sqrt(l.imageVariance + l.calibrationVariance);
    }

private:
    std::optional<LengthEnd> end(std::size_t i) const {
        const std::optional<PointSensitivity> s =
            points[i].status == PointStatus::ok ? model.at(points[i].position) : std::nullopt;
        return s ? std::optional(LengthEnd{*s, noise.ofPoint(model, *s, i)}) : std::nullopt;
    }

    SensitivityModel model;
    const PixelNoise& noise;
    const std::vector<SpacePoint>& points;
    const CalibrationCovariance* covariance;
};

void give(const Length& l, double expanded, std::size_t i, const ZelmMeasureLengths& out) {
    const auto put = [i](double* to, double value) {
        if (to != nullptr) {
            to[i] = value;
        }
    };
    if (out.statuses != nullptr) {
        out.statuses[i] = static_cast<std::int32_t>(l.status);
    }
    if (l.status != LengthStatus::noPoint) {
        put(out.lengths, l.length);
    }
    if (l.status == LengthStatus::ok) {
        put(out.image, std::sqrt(l.imageVariance));
        put(out.calibration, std::sqrt(l.calibrationVariance));
        put(out.deviations, std::sqrt(l.imageVariance + l.calibrationVariance));
        put(out.expanded, expanded);
    }
}

// Places of points that a length may name.
std::vector<std::size_t> endsOf(std::int64_t lengthCount, const std::int64_t* ends, std::size_t points) {
    require(lengthCount >= 0 && (ends != nullptr || lengthCount == 0),
            "the ends of the lengths are NULL, or their number is negative");
    std::vector<std::size_t> places;
    places.reserve(2 * static_cast<std::size_t>(lengthCount));
    for (std::size_t i = 0; i < 2 * static_cast<std::size_t>(lengthCount); ++i) {
        require(ends[i] >= 0 && static_cast<std::uint64_t>(ends[i]) < points, "a length's end is no point's number");
        places.push_back(static_cast<std::size_t>(ends[i]));
    }
    return places;
}

}  // namespace

std::int32_t zelmMeasurePointCovariance(ZelmMeasureRig* handle, std::int64_t count, const double* left,
                                        const double* right, const ZelmMeasurePixelNoise* noise,
                                        const ZelmMeasurePointCovariances* covariances) {
    return withRig(handle, [&](const Rig& rig) {
        const Pairs pairs(count, left, right);
        const ZelmMeasurePointCovariances out = recordOf(covariances);
        const PixelNoise pixelNoise(rig, noise, pairs.count);
        if (out.calibration != nullptr || out.depths != nullptr) {
            static_cast<void>(covarianceOf(rig));
        }
        const Triangulator triangulate(rig);
        const PointUncertainty uncertainty(rig, pixelNoise, out);
        std::vector<PointResult> results(pairs.count);
        for (std::size_t i = 0; i < results.size(); ++i) {
            results[i] = uncertainty(pairs.triangulated(triangulate, i), i);
        }
        for (std::size_t i = 0; i < results.size(); ++i) {
            give(results[i], i, out);
        }
    });
}

std::int32_t zelmMeasureLengths(ZelmMeasureRig* handle, std::int64_t count, const double* left, const double* right,
                                const ZelmMeasurePixelNoise* noise, std::int64_t lengthCount, const std::int64_t* ends,
                                const ZelmMeasureLengths* lengths) {
    return withRig(handle, [&](const Rig& rig) {
        const Pairs pairs(count, left, right);
        const ZelmMeasureLengths out = recordOf(lengths);
        const std::vector<std::size_t> places = endsOf(lengthCount, ends, pairs.count);
        const PixelNoise pixelNoise(rig, noise, pairs.count);
        if (out.calibration != nullptr || out.deviations != nullptr || out.expanded != nullptr) {
            static_cast<void>(covarianceOf(rig));
        }
        const Triangulator triangulate(rig);
        std::vector<SpacePoint> points(pairs.count);
        for (std::size_t i = 0; i < points.size(); ++i) {
            points[i] = pairs.triangulated(triangulate, i);
        }
        const LengthMaker lengthOf(rig, pixelNoise, points);
        std::vector<Length> results(places.size() / 2);
        for (std::size_t i = 0; i < results.size(); ++i) {
            results[i] = lengthOf(places[2 * i], places[2 * i + 1]);
        }
        for (std::size_t i = 0; i < results.size(); ++i) {
            give(results[i], lengthOf.expanded(results[i]), i, out);
        }
    });
}
