#include "spacePoints.h"

#include <fmt/compile.h>
#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <limits>

#include "numberText.h"
#include "plyBytes.h"

namespace zelm::tool {
namespace {

constexpr std::size_t kBytesPerLine = 96;  // about; of a CSV or PLY line

// Columns of a target: both centres, and how much is seen of both outlines.
std::string dotFields(const SpacePoint& point) {
    std::string fields;
    for (const std::optional<SeenDot>& dot : point.dots) {
        fields += dot ? fmt::format(",{:.4f},{:.4f}", dot->centre.x, dot->centre.y) : ",,";
    }
    for (const std::optional<SeenDot>& dot : point.dots) {
        fields += dot ? fmt::format(",{:.2f}", dot->share) : ",";
    }
    return fields;
}

}  // namespace

std::string_view statusWord(PointStatus status) {
    constexpr std::array<std::string_view, kPointStatuses> kWords{"ok",       "behind",  "distortion", "parallel",
                                                                  "mismatch", "outside", "no_dot",     "hidden"};
    return kWords[static_cast<std::size_t>(status)];
}

std::vector<SpacePoint> triangulate(const LoadedRig& rig, const std::string& file, const std::vector<PixelPair>& pairs,
                                    const PointLimits& limits) {
    const PairArrays pixels(pairs);
    const std::size_t count = pairs.size();
    std::vector<std::int32_t> statuses(count);
    std::vector<double> positions(3 * count);
    std::vector<double> errors(2 * count);
    std::vector<double> angles(count);
    const ZelmMeasurePoints out{sizeof(out),
                                0,
                                statuses.data(),
                                positions.data(),
                                errors.data(),
                                angles.data(),
                                limits.maxError,
                                limits.isInside ? 1 : 0,
                                0};
    rig.require(zelmMeasureTriangulate(rig.handle.get(), pixels.count, pixels.left.data(), pixels.right.data(), &out),
                file);
    std::vector<SpacePoint> points(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double* const X = &positions[3 * i];
        points[i] = {static_cast<PointStatus>(statuses[i]),
                     {X[0], X[1], X[2]},
                     errors[2 * i],
                     errors[2 * i + 1],
                     angles[i] * kDegreesPerRadian,
                     {},
                     {}};
    }
    return points;
}

ImageNoise imageNoiseOf(const std::vector<SpacePoint>& points, const std::optional<double>& sigma) {
    ImageNoise noise{sigma.value_or(0.0)};
    const auto isDisc = [](const SpacePoint& point) { return point.disc.has_value(); };
    if (sigma || std::none_of(points.begin(), points.end(), isDisc)) {
        return noise;
    }
    noise.points.assign(6 * points.size(), std::numeric_limits<double>::quiet_NaN());
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (points[i].disc) {
            std::copy_n(points[i].disc->covariance.begin(), 6, &noise.points[6 * i]);
        }
    }
    return noise;
}

std::string csvOf(const std::vector<PixelPair>& pairs, const std::vector<SpacePoint>& points,
                  const std::vector<PointUncertainty>& known, bool withCovariances) {
    const bool isKnown = !known.empty();
    std::string csv = "id,X,Y,Z,error_left_px,error_right_px,angle_deg";
    const bool areTargets = std::any_of(points.begin(), points.end(),
                                        [](const SpacePoint& point) { return point.dots[0] || point.dots[1]; });
    csv += isKnown ? uncertaintyHeader(withCovariances) : "";
    csv += areTargets ? ",left_x,left_y,right_x,right_y,seen_left,seen_right" : "";
    csv += ",status\n";
    csv.reserve(csv.size() + kBytesPerLine * points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        const SpacePoint& p = points[i];
        csv += csvField(pairs[i].id);
        if (p.hasNumbers()) {
            fmt::format_to(std::back_inserter(csv), FMT_COMPILE(",{:.10g},{:.10g},{:.10g},{:.6f},{:.6f},{:.6f}"),
                           p.position.x, p.position.y, p.position.z, p.errorLeft, p.errorRight, p.degrees);
        } else {
            csv += ",,,,,,";
        }
        csv += isKnown ? uncertaintyFields(known[i], withCovariances) : "";
        csv += areTargets ? dotFields(p) : "";
        fmt::format_to(std::back_inserter(csv), FMT_COMPILE(",{}\n"), statusWord(p.status));
    }
    return csv;
}

namespace {

std::string plyHeader(const std::vector<SpacePoint>& points, bool isKnown, const std::string& units, const char* format,
                      const char* coordinate) {
    const std::size_t count = countStatuses(points)[static_cast<std::size_t>(PointStatus::ok)];
    std::string ply = fmt::format(
        "ply\nformat {} 1.0\ncomment {} of {} pixel pairs; row counts them from 1\n"
        "comment errors in pixels, angle between the rays in degrees\n",
        format, count, points.size());
    ply += "comment units " + units + "\n";
    ply += isKnown ? "comment sigma: standard deviations by noise and by the calibration\n" : "";
    ply += fmt::format("element vertex {}\n", count);
    for (const char* axis : {"x", "y", "z"}) {
        ply += fmt::format("property {} {}\n", coordinate, axis);
    }
    ply += "property float error_left\nproperty float error_right\nproperty float angle\nproperty int row\n";
    ply += isKnown ? plySigmaProperties() : "";
    return ply + "end_header\n";
}

}  // namespace

std::string plyOf(const std::vector<SpacePoint>& points, const std::vector<PointUncertainty>& known,
                  const std::string& units) {
    std::string ply = plyHeader(points, !known.empty(), units, "ascii", "double");
    ply.reserve(ply.size() + (known.empty() ? 1 : 2) * kBytesPerLine * points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (const SpacePoint& p = points[i]; p.status == PointStatus::ok) {
            fmt::format_to(std::back_inserter(ply), FMT_COMPILE("{:.10g} {:.10g} {:.10g} {:.6f} {:.6f} {:.6f} {}"),
                           p.position.x, p.position.y, p.position.z, p.errorLeft, p.errorRight, p.degrees, i + 1);
            ply += (known.empty() ? "" : plySigmas(known[i])) + "\n";
        }
    }
    return ply;
}

std::string binaryPlyOf(const std::vector<SpacePoint>& points, const std::vector<PointUncertainty>& known,
                        const std::string& units) {
    std::string ply = plyHeader(points, !known.empty(), units, "binary_little_endian", "float");
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (const SpacePoint& p = points[i]; p.status == PointStatus::ok) {
            for (const double number :
                 {p.position.x, p.position.y, p.position.z, p.errorLeft, p.errorRight, p.degrees}) {
                appendFloat(ply, number);
            }
            appendWord(ply, static_cast<std::uint32_t>(i + 1));
            if (!known.empty()) {
                appendPlySigmas(ply, known[i]);
            }
        }
    }
    return ply;
}

std::string csvField(const std::string& text) {
    if (text.find_first_of(",\"") == std::string::npos) {
        return text;
    }
    std::string field = "\"";
    for (const char c : text) {
        field += c == '"' ? std::string("\"\"") : std::string(1, c);
    }
    return field + "\"";
}

std::array<std::size_t, kPointStatuses> countStatuses(const std::vector<SpacePoint>& points) {
    std::array<std::size_t, kPointStatuses> counts{};
    for (const SpacePoint& point : points) {
        counts[static_cast<std::size_t>(point.status)] += 1;
    }
    return counts;
}

}  // namespace zelm::tool
