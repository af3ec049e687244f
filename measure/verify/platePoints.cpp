#include "platePoints.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "adjustStart.h"
#include "dotOutline.h"

namespace zelm::measure {
namespace {

constexpr std::size_t kMinDots = 4;
constexpr double kMinBreadth = 1e-6;  // of the squared breadth of the dots to that of their length: less is a row
constexpr int kPasses = 2;            // the offsets of the second pass differ from the first's by millionths of a pixel

Vector3 vectorOf(const Point3d& X) {
    return {X.x, X.y, X.z};
}

Vector3 sum(const Vector3& a, const Vector3& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

Vector3 difference(const Vector3& a, const Vector3& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

Vector3 column(const Matrix3& m, std::size_t i) {
    return {m[i], m[3 + i], m[6 + i]};
}

Vector3 scaled(const Vector3& v, double s) {
    return {s * v[0], s * v[1], s * v[2]};
}

Point2d placeOf(const Pattern& plate, GridIndex index) {
    const Vector3 place = plateDot(plate, index, {}).place;
    return {place[0], place[1]};
}

// A dot's place on the plate and in space.
struct PlacedPoint {
    Point2d place{};
    Vector3 X{};
};

std::vector<PlacedPoint> placedPoints(const Pattern& plate, const std::vector<DotPair>& dots,
                                      const std::vector<SpacePoint>& points) {
    std::vector<PlacedPoint> placed;
    for (std::size_t i = 0; i < dots.size(); ++i) {
        if (points[i].status == PointStatus::ok) {
            placed.push_back({placeOf(plate, dots[i].index), vectorOf(points[i].position)});
        }
    }
    if (placed.size() < kMinDots) {
        refuse("only " + std::to_string(placed.size()) + " of " + std::to_string(dots.size()) +
               " dots give a point of space, and " + std::to_string(kMinDots) +
               " are needed: are left and right exchanged, or is this the calibration of other cameras?");
    }
    return placed;
}

// A symmetric 2 x 2 matrix (a b; b d).
struct Symmetric2 {
    double a = 0.0, b = 0.0, d = 0.0;
    double determinant() const { return a * d - b * b; }
    double trace() const { return a + d; }
};

// The pose and scale that lay the plane on the points with least squares. Of plane places the correlation H = sum X P'
// has two columns, and the rotation's first two are its polar factor H (H'H)^-1/2.
class PlaneFit {
public:
    explicit PlaneFit(const std::vector<PlacedPoint>& list) : points(list) {
        const double n = static_cast<double>(points.size());
        for (const PlacedPoint& p : points) {
            middle.place.x += p.place.x / n;
            middle.place.y += p.place.y / n;
            middle.X = sum(middle.X, scaled(p.X, 1.0 / n));
        }
        correlate();
        turn();
    }

    Motion pose() const {
        const Vector3 moved = times(R, {middle.place.x, middle.place.y, 0.0});
        return {R, difference(middle.X, moved)};
    }

    PlateFit figures() const {
        PlateFit fit;
        fit.count = points.size();
        fit.pose = pose();
        // The plane z = a + b x + c y of what the pose leaves along the normal; a vanishes about the middle.
        double xz = 0.0;
        double yz = 0.0;
        double squares = 0.0;
        for (const PlacedPoint& p : points) {
            const Vector3 r = residual(p, 0.0);
            squares += dot(r, r);
            xz += (p.place.x - middle.place.x) * r[2];
            yz += (p.place.y - middle.place.y) * r[2];
        }
        const double n = static_cast<double>(points.size());
        fit.rms = std::sqrt(squares / n);
        fit.scale = root / spread.trace() - 1.0;
        addFlatness((spread.d * xz - spread.b * yz) / spread.determinant(),
                    (spread.a * yz - spread.b * xz) / spread.determinant(), fit);
        addScaleDeviation(fit);
        return fit;
    }

private:
    void correlate() {
        for (const PlacedPoint& p : points) {
            const double x = p.place.x - middle.place.x;
            const double y = p.place.y - middle.place.y;
            const Vector3 X = difference(p.X, middle.X);
            spread = {spread.a + x * x, spread.b + x * y, spread.d + y * y};
            first = sum(first, scaled(X, x));
            second = sum(second, scaled(X, y));
        }
        if (!(spread.determinant() > kMinBreadth * spread.trace() * spread.trace())) {
            refuse("the dots lie in a row: give a view that shows dots of several rows and columns");
        }
    }

    void turn() {
        const Symmetric2 M{dot(first, first), dot(first, second), dot(second, second)};
        const double s = std::sqrt(std::max(M.determinant(), 0.0));
        root = std::sqrt(M.trace() + 2.0 * s);  // the trace of the square root of M, (M + s I) / root
        const Symmetric2 S{(M.a + s) / root, M.b / root, (M.d + s) / root};
        const double w = 1.0 / S.determinant();
        const Vector3 u = sum(scaled(first, S.d * w), scaled(second, -S.b * w));
        const Vector3 v = sum(scaled(second, S.a * w), scaled(first, -S.b * w));
        const Vector3 normal = cross(u, v);
        R = {u[0], v[0], normal[0], u[1], v[1], normal[1], u[2], v[2], normal[2]};
        if (!std::isfinite(w)) {
            refuse("the points of the dots lie in a row: are left and right exchanged?");
        }
    }

    // In the plate's frame: the measured place, as large as the plate, less the true one.
    Vector3 residual(const PlacedPoint& p, double scale) const {
        const Vector3 seen = scaled(timesTransposed(R, difference(p.X, middle.X)), 1.0 / (1.0 + scale));
        return {seen[0] - (p.place.x - middle.place.x), seen[1] - (p.place.y - middle.place.y), seen[2]};
    }

    void addFlatness(double b, double c, PlateFit& fit) const {
        double squares = 0.0;
        for (const PlacedPoint& p : points) {
            const double z = residual(p, 0.0)[2] - b * (p.place.x - middle.place.x) - c * (p.place.y - middle.place.y);
            squares += z * z;
            fit.flatnessMax = std::max(fit.flatnessMax, std::fabs(z));
        }
        fit.flatnessRms = std::sqrt(squares / static_cast<double>(points.size()));
    }

    void addScaleDeviation(PlateFit& fit) const {
        double squares = 0.0;
        for (const PlacedPoint& p : points) {
            const Vector3 r = residual(p, fit.scale);
            squares += r[0] * r[0] + r[1] * r[1];
        }
        // Two coordinates a dot, less two of the middle, one turn and the scale.
        const double freedom = 2.0 * static_cast<double>(points.size()) - 4.0;
        fit.scaleDeviation = std::sqrt(squares / freedom / spread.trace());
    }

    const std::vector<PlacedPoint>& points;
    PlacedPoint middle;
    Symmetric2 spread;  // of the places
    Vector3 first{};    // columns of the correlation
    Vector3 second{};
    double root = 0.0;  // of the correlation: its nuclear norm
    Matrix3 R{};
};

// Centre of the ellipse less image of the centre.
Point2d offsetOf(const RigCamera& camera, const Motion& plate, const Pattern& pattern, GridIndex index) {
    const DotObservation printed = plateDot(pattern, index, {});
    if (!(printed.radius > 0.0)) {
        return {};
    }
    Matrix3 R{};
    std::copy_n(camera.pose().R, 9, R.begin());
    const Matrix3 turn = product(R, plate.R);
    const Vector3 t{camera.pose().t[0], camera.pose().t[1], camera.pose().t[2]};
    const Vector3 X = sum(times(plate.R, printed.place), plate.t);
    const CircleInCamera circle{sum(times(R, X), t), scaled(column(turn, 0), printed.radius),
                                scaled(column(turn, 1), printed.radius)};
    const ProjectionCamera projection = projectionOf(camera);
    const Point2d ellipse = dotOutline(projection, circle).centre;
    const Point2d centre = pixelOf(projection, circle.centre);
    const Point2d offset{ellipse.x - centre.x, ellipse.y - centre.y};
    return std::isfinite(offset.x) && std::isfinite(offset.y) ? offset : Point2d{};
}

std::vector<SpacePoint> triangulated(const Triangulator& triangulate, const std::vector<DotPair>& dots) {
    std::vector<SpacePoint> points(dots.size());
    std::transform(dots.begin(), dots.end(), points.begin(),
                   [&](const DotPair& dot) { return triangulate(dot.left, dot.right); });
    return points;
}

}  // namespace

PlatePoints platePoints(const Rig& rig, const Pattern& plate, const std::vector<DotPair>& dots) {
    const Triangulator triangulate(rig);
    PlatePoints result{triangulated(triangulate, dots), dots, {}};
    double maxOffset = 0.0;
    for (int pass = 0; pass < kPasses; ++pass) {
        const Motion pose = PlaneFit(placedPoints(plate, dots, result.points)).pose();
        maxOffset = 0.0;
        for (std::size_t i = 0; i < dots.size(); ++i) {
            const Point2d left = offsetOf(rig.left, pose, plate, dots[i].index);
            const Point2d right = offsetOf(rig.right, pose, plate, dots[i].index);
            result.centres[i].left = {dots[i].left.x - left.x, dots[i].left.y - left.y};
            result.centres[i].right = {dots[i].right.x - right.x, dots[i].right.y - right.y};
            maxOffset = std::max({maxOffset, std::hypot(left.x, left.y), std::hypot(right.x, right.y)});
        }
        result.points = triangulated(triangulate, result.centres);
    }
    result.fit = PlaneFit(placedPoints(plate, dots, result.points)).figures();
    result.fit.maxOffset = maxOffset;
    return result;
}

}  // namespace zelm::measure
