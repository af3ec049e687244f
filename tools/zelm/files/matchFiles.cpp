#include "matchFiles.h"

#include <fmt/compile.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <iterator>

#include "plyBytes.h"
#include "spacePoints.h"

namespace zelm::tool {
namespace {

constexpr std::size_t kBytesPerLine = 160;  // about; of a CSV line

void appendVertexText(std::string& ply, const MatchedPoint& p, char gray, bool withCalibration) {
    const Point3d& X = p.position;
    const auto level = static_cast<unsigned>(static_cast<unsigned char>(gray));
    fmt::format_to(std::back_inserter(ply), FMT_COMPILE("{:.9g} {:.9g} {:.9g} {} {} {} {:.6g}"), X.x, X.y, X.z, level,
                   level, level, p.deviation);
    if (withCalibration) {
        fmt::format_to(std::back_inserter(ply), FMT_COMPILE(" {:.6g}"), p.calibrationDeviation.value_or(-1.0));
    }
    ply += '\n';
}

void appendVertexBytes(std::string& ply, const MatchedPoint& p, char gray, bool withCalibration) {
    appendFloat(ply, p.position.x);
    appendFloat(ply, p.position.y);
    appendFloat(ply, p.position.z);
    ply.append(3, gray);
    appendFloat(ply, p.deviation);
    if (withCalibration) {
        appendFloat(ply, p.calibrationDeviation.value_or(-1.0));
    }
}

}  // namespace

std::string_view statusWord(MatchStatus status) {
    constexpr std::array<std::string_view, kMatchStatuses> kWords{"ok",       "outside",   "no_texture",
                                                                  "no_match", "ambiguous", "inconsistent"};
    return kWords[static_cast<std::size_t>(status)];
}

std::array<std::size_t, kMatchStatuses> countStatuses(const std::vector<MatchedPoint>& points) {
    std::array<std::size_t, kMatchStatuses> counts{};
    for (const MatchedPoint& point : points) {
        counts[static_cast<std::size_t>(point.status)] += 1;
    }
    return counts;
}

int grayAt(const Picture& picture, Point2d p) {
    const auto x = static_cast<std::size_t>(std::clamp(p.x + 0.5, 0.0, picture.width - 1.0));
    const auto y = static_cast<std::size_t>(std::clamp(p.y + 0.5, 0.0, picture.height - 1.0));
    return picture.pixels[y * static_cast<std::size_t>(picture.width) + x];
}

std::string matchCsv(const std::vector<MatchedPoint>& points, bool withCalibration) {
    std::string csv = "id,xL,yL,xR,yR,score,X,Y,Z,depth,depth_sigma,error_left_px,error_right_px";
    csv += withCalibration ? ",depth_sigma_calibration,status\n" : ",status\n";
    csv.reserve(csv.size() + kBytesPerLine * points.size());
    const auto out = std::back_inserter(csv);
    for (const MatchedPoint& p : points) {
        csv += csvField(p.id);
        fmt::format_to(out, FMT_COMPILE(",{:.10g},{:.10g},"), p.left.x, p.left.y);
        if (p.status == MatchStatus::ok) {
            const Point3d& X = p.position;
            fmt::format_to(out, FMT_COMPILE("{:.4f},{:.4f},{:.4f},{:.9g},{:.9g},{:.9g},{:.9g},{:.3g},{:.6f},{:.6f}"),
                           p.right.x, p.right.y, p.score, X.x, X.y, X.z, p.depth, p.deviation, p.errorLeft,
                           p.errorRight);
        } else {
            csv += ",,,,,,,,,";
        }
        if (withCalibration) {
            csv += p.calibrationDeviation ? fmt::format(FMT_COMPILE(",{:.3g}"), *p.calibrationDeviation) : ",";
        }
        fmt::format_to(out, FMT_COMPILE(",{}\n"), statusWord(p.status));
    }
    return csv;
}

std::string matchPly(const std::vector<MatchedPoint>& points, const Picture& left, bool withCalibration, bool isText,
                     const std::string& units) {
    const std::size_t count = countStatuses(points)[static_cast<std::size_t>(MatchStatus::ok)];
    std::string ply = fmt::format(
        "ply\nformat {} 1.0\ncomment units {}\n"
        "comment {} of {} points; depth_sigma: expected standard deviation of the depth\n"
        "element vertex {}\nproperty float x\nproperty float y\nproperty float z\nproperty uchar red\n"
        "property uchar green\nproperty uchar blue\nproperty float depth_sigma\n",
        isText ? "ascii" : "binary_little_endian", units, count, points.size(), count);
    ply += withCalibration ? "property float depth_sigma_calibration\nend_header\n" : "end_header\n";
    constexpr std::size_t kBytesPerVertex = 23;
    ply.reserve(ply.size() + kBytesPerVertex * count);
    for (const MatchedPoint& p : points) {
        if (p.status == MatchStatus::ok) {
            (isText ? appendVertexText : appendVertexBytes)(ply, p, static_cast<char>(grayAt(left, p.left)),
                                                            withCalibration);
        }
    }
    return ply;
}

}  // namespace zelm::tool
