#include "spaceUncertainty.h"

#include <fmt/compile.h>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>

#include "plyBytes.h"

namespace zelm::tool {
namespace {

constexpr const char* kParts[] = {"sigma", "noise_sigma", "calibration_sigma"};  // of the standard deviations

std::array<double, 3> deviationsOf(const std::array<double, 6>& c) {
    return {std::sqrt(c[0]), std::sqrt(c[3]), std::sqrt(c[5])};
}

double medianOf(std::vector<double>& values) {
    if (values.empty()) {
        return 0.0;
    }
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

}  // namespace

std::array<double, 3> PointUncertainty::ofNoise() const {
    return deviationsOf(noise);
}

std::array<double, 3> PointUncertainty::ofCalibration() const {
    return deviationsOf(calibration);
}

std::array<double, 3> PointUncertainty::total() const {
    const std::array<double, 3> a = ofNoise();
    const std::array<double, 3> b = ofCalibration();
    return {std::hypot(a[0], b[0]), std::hypot(a[1], b[1]), std::hypot(a[2], b[2])};
}

ZelmMeasurePixelNoise ImageNoise::record() const {
    return {sizeof(ZelmMeasurePixelNoise), 0, sigma, 0.0, nullptr, nullptr, points.empty() ? nullptr : points.data()};
}

std::vector<PointUncertainty> uncertaintyOf(const LoadedRig& rig, const std::vector<PixelPair>& pairs,
                                            const ImageNoise& noise) {
    rig.requireCovariance();
    const PairArrays pixels(pairs);
    const std::size_t count = pairs.size();
    std::vector<std::int32_t> statuses(count);
    std::vector<double> image(6 * count);
    std::vector<double> calibration(6 * count);
    std::vector<double> depths(2 * count);
    const ZelmMeasurePixelNoise record = noise.record();
    const ZelmMeasurePointCovariances out{sizeof(out),  0, statuses.data(), nullptr, image.data(), calibration.data(),
                                          depths.data()};
    rig.require(zelmMeasurePointCovariance(rig.handle.get(), pixels.count, pixels.left.data(), pixels.right.data(),
                                           &record, &out),
                rig.file.string());
    std::vector<PointUncertainty> points(count);
    for (std::size_t i = 0; i < count; ++i) {
        points[i].isKnown = statuses[i] == ZELM_MEASURE_POINT_OK || statuses[i] == ZELM_MEASURE_POINT_BEHIND;
        std::copy_n(&image[6 * i], 6, points[i].noise.begin());
        std::copy_n(&calibration[6 * i], 6, points[i].calibration.begin());
        points[i].depthByCalibration = depths[2 * i + 1];
    }
    return points;
}

UncertaintyMedians mediansOf(const std::vector<PointUncertainty>& points) {
    UncertaintyMedians medians;
    const auto median = [&](std::size_t axis, std::array<double, 3> (PointUncertainty::*part)() const) {
        std::vector<double> values;
        for (const PointUncertainty& point : points) {
            if (point.isKnown) {
                values.push_back((point.*part)()[axis]);
            }
        }
        return medianOf(values);
    };
    for (std::size_t axis = 0; axis < 3; ++axis) {
        medians.total[axis] = median(axis, &PointUncertainty::total);
        medians.noise[axis] = median(axis, &PointUncertainty::ofNoise);
        medians.calibration[axis] = median(axis, &PointUncertainty::ofCalibration);
    }
    return medians;
}

std::string plySigmaProperties() {
    std::string properties;
    for (const char* part : kParts) {
        for (const char* axis : {"x", "y", "z"}) {
            properties += fmt::format("property float {}_{}\n", part, axis);
        }
    }
    return properties;
}

std::string plySigmas(const PointUncertainty& point) {
    std::string numbers;
    for (const auto& part : {point.total(), point.ofNoise(), point.ofCalibration()}) {
        for (const double deviation : part) {
            fmt::format_to(std::back_inserter(numbers), FMT_COMPILE(" {:.6g}"), point.isKnown ? deviation : -1.0);
        }
    }
    return numbers;
}

void appendPlySigmas(std::string& bytes, const PointUncertainty& point) {
    for (const auto& part : {point.total(), point.ofNoise(), point.ofCalibration()}) {
        for (const double deviation : part) {
            appendFloat(bytes, point.isKnown ? deviation : -1.0);
        }
    }
}

std::string uncertaintyHeader(bool withCovariances) {
    std::string header;
    for (const char* part : kParts) {
        header += fmt::format(",{0}_X,{0}_Y,{0}_Z", part);
    }
    for (const char* part : {"noise", "calibration"}) {
        if (withCovariances) {
            header += fmt::format(",{0}_XX,{0}_XY,{0}_XZ,{0}_YY,{0}_YZ,{0}_ZZ", part);
        }
    }
    return header;
}

std::string uncertaintyFields(const PointUncertainty& point, bool withCovariances) {
    if (!point.isKnown) {
        return std::string(withCovariances ? 21 : 9, ',');
    }
    std::string fields;
    for (const auto& part : {point.total(), point.ofNoise(), point.ofCalibration()}) {
        for (const double deviation : part) {
            fmt::format_to(std::back_inserter(fields), FMT_COMPILE(",{:.6g}"), deviation);
        }
    }
    for (const auto* covariance : {&point.noise, &point.calibration}) {
        for (const double element : *covariance) {
            if (withCovariances) {
                fmt::format_to(std::back_inserter(fields), FMT_COMPILE(",{:.10g}"), element);
            }
        }
    }
    return fields;
}

}  // namespace zelm::tool
