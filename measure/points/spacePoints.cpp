#include "spacePoints.h"

#include <fmt/compile.h>
#include <fmt/format.h>

#include <cmath>
#include <iterator>
#include <numbers>

#include "failure.h"

namespace zelm::tool {
namespace {

constexpr double kDegreesPerRadian = 180.0 / std::numbers::pi;
constexpr std::size_t kBytesPerLine = 96;  // about; of a CSV or PLY line

double dot(const Point3d& a, const Point3d& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

double angleBetween(const Point3d& a, const Point3d& b) {
    const Point3d cross{a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
    return std::atan2(std::sqrt(dot(cross, cross)), dot(a, b)) * kDegreesPerRadian;
}

bool isFinite(const Point3d& X) {
    return std::isfinite(X.x) && std::isfinite(X.y) && std::isfinite(X.z);
}

}  // namespace

std::string_view statusWord(PointStatus status) {
    constexpr std::array<std::string_view, kPointStatuses> kWords{"ok", "behind", "distortion", "parallel", "no_dot"};
    return kWords[static_cast<std::size_t>(status)];
}

Triangulator::Triangulator(const LoadedRig& rig, const std::string& file)
    : handle(rig.handle.get()), left(viewOf(rig.rig.left)), right(viewOf(rig.rig.right)) {
    if (left.parallel && right.parallel) {
        failData("{}: both cameras are parallel projections, calibrated in view 0 alone: points cannot be triangulated",
                 file);
    }
}

Triangulator::View Triangulator::viewOf(const RigCamera& camera) {
    const ZelmCameraExtrinsics& pose = camera.poses.front();
    const double* const R = pose.R;
    const double* const t = pose.t;
    View view;
    view.parallel = camera.model == 2;
    view.centre = {-(R[0] * t[0] + R[3] * t[1] + R[6] * t[2]), -(R[1] * t[0] + R[4] * t[1] + R[7] * t[2]),
                   -(R[2] * t[0] + R[5] * t[1] + R[8] * t[2])};
    view.axis = {R[6], R[7], R[8]};
    return view;
}

Point3d Triangulator::rayTo(const View& view, const Point3d& X) const {
    return view.parallel ? view.axis : Point3d{X.x - view.centre.x, X.y - view.centre.y, X.z - view.centre.z};
}

double Triangulator::reprojectionError(char side, const Point3d& X, const Point2d& pixel) const {
    Point2d projected{};
    zelm2ViewChange3Dto2D(handle, side, &X, &projected);
    return std::hypot(pixel.x - projected.x, pixel.y - projected.y);
}

SpacePoint Triangulator::operator()(const PixelPair& pair) const {
    SpacePoint point;
    const std::int32_t status = zelm2ViewChange2Dto3D(handle, &pair.left, &pair.right, &point.position);
    if (status == ZELM_ERR_MEMORY) {
        failData("out of memory while triangulating: give fewer pairs at a time");
    }
    if (status < 0 || !isFinite(point.position)) {
        point.status = status == ZELM_ERR_UNDISTORT ? PointStatus::distortion : PointStatus::parallel;
        return point;
    }
    const Point3d leftRay = rayTo(left, point.position);
    const Point3d rightRay = rayTo(right, point.position);
    if (!(dot(leftRay, left.axis) > 0.0) || !(dot(rightRay, right.axis) > 0.0)) {
        point.status = PointStatus::behind;
    }
    point.errorLeft = reprojectionError('L', point.position, pair.left);
    point.errorRight = reprojectionError('R', point.position, pair.right);
    point.intersectionDegrees = angleBetween(leftRay, rightRay);
    return point;
}

std::string csvOf(const std::vector<PixelPair>& pairs, const std::vector<SpacePoint>& points) {
    std::string csv = "id,X,Y,Z,error_left_px,error_right_px,angle_deg,status\n";
    csv.reserve(csv.size() + kBytesPerLine * points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        const SpacePoint& p = points[i];
        csv += csvField(pairs[i].id);
        if (p.status == PointStatus::ok || p.status == PointStatus::behind) {
            fmt::format_to(std::back_inserter(csv), FMT_COMPILE(",{:.10g},{:.10g},{:.10g},{:.6f},{:.6f},{:.6f},{}\n"),
                           p.position.x, p.position.y, p.position.z, p.errorLeft, p.errorRight, p.intersectionDegrees,
                           statusWord(p.status));
        } else {
            fmt::format_to(std::back_inserter(csv), FMT_COMPILE(",,,,,,,{}\n"), statusWord(p.status));
        }
    }
    return csv;
}

std::string plyOf(const std::vector<SpacePoint>& points) {
    const std::size_t count = countStatuses(points)[static_cast<std::size_t>(PointStatus::ok)];
    std::string ply = fmt::format(
        "ply\nformat ascii 1.0\ncomment {} of {} pixel pairs; row counts them from 1\n"
        "comment errors in pixels, angle between the rays in degrees\nelement vertex {}\n"
        "property double x\nproperty double y\nproperty double z\nproperty float error_left\n"
        "property float error_right\nproperty float angle\nproperty int row\nend_header\n",
        count, points.size(), count);
    ply.reserve(ply.size() + kBytesPerLine * count);
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (const SpacePoint& p = points[i]; p.status == PointStatus::ok) {
            fmt::format_to(std::back_inserter(ply), FMT_COMPILE("{:.10g} {:.10g} {:.10g} {:.6f} {:.6f} {:.6f} {}\n"),
                           p.position.x, p.position.y, p.position.z, p.errorLeft, p.errorRight, p.intersectionDegrees,
                           i + 1);
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
