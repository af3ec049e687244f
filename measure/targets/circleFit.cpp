#include "circleFit.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

#include "cholesky.h"

namespace zelm::measure {
namespace {

constexpr std::size_t kUnknowns = 6;  // centre, turns of the normal about both axes of the circle's plane, radius
constexpr int kMaxSteps = 40;
constexpr double kStartDamping = 1e-3;
constexpr double kMaxDamping = 1e8;
constexpr double kSettled = 1e-9;  // relative change of the cost
constexpr int kFirstPlaces = 24;   // on the circle that are tried for an edge's nearest
constexpr int kFootSteps = 5;

using Row = Vector<kUnknowns>;

Vector3 along(const Vector3& from, double length, const Vector3& direction) {
    return {from[0] + length * direction[0], from[1] + length * direction[1], from[2] + length * direction[2]};
}

// Two unit vectors in the circle's plane, which hold still for all but the circle's normal.
struct Plane {
    Vector3 u{};
    Vector3 v{};

    explicit Plane(const Vector3& normal) {
        std::size_t least = 0;
        for (std::size_t i = 1; i < 3; ++i) {
            least = std::fabs(normal[i]) < std::fabs(normal[least]) ? i : least;
        }
        Vector3 axis{};
        axis[least] = 1.0;
        u = unit(cross(normal, axis));
        v = cross(normal, u);
    }
};

// A place of the circle's image: its pixel and how it moves with the angle on the circle.
struct ImagePlace {
    Vector3 radial{};  // from the circle's centre to the place, unit length
    TargetPixel seen;
    Point2d tangent{};  // pixels a radian
};

std::optional<ImagePlace> placeAt(const TargetCamera& camera, const SpaceCircle& circle, const Plane& plane,
                                  double angle) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    ImagePlace place;
    Vector3 forward{};
    for (std::size_t i = 0; i < 3; ++i) {
        place.radial[i] = c * plane.u[i] + s * plane.v[i];
        forward[i] = circle.radius * (c * plane.v[i] - s * plane.u[i]);
    }
    const auto seen = camera.project(along(circle.centre, circle.radius, place.radial));
    if (!seen) {
        return std::nullopt;
    }
    place.seen = *seen;
    place.tangent = {dot(seen->dx, forward), dot(seen->dy, forward)};
    return place;
}

double squareTo(const ImagePlace& place, Point2d pixel) {
    const double x = pixel.x - place.seen.pixel.x;
    const double y = pixel.y - place.seen.pixel.y;
    return x * x + y * y;
}

// An edge's distance from the circle's image and its derivatives by the unknowns, both over the deviation.
struct Equation {
    double residual = 0.0;
    Row slopes{};
};

class Fitter {
public:
    Fitter(const std::array<TargetCamera, 2>& bothCameras, const std::array<std::span<const OutlineEdge>, 2>& bothEdges)
        : cameras(bothCameras), edges(bothEdges) {}

    // The equations of all edges, left ones first; nothing when part of the circle cannot be seen.
    bool form(const SpaceCircle& circle, std::vector<Equation>& equations) const {
        equations.clear();
        const Plane plane(circle.normal);
        for (std::size_t side = 0; side < 2; ++side) {
            std::array<ImagePlace, kFirstPlaces> around;
            for (int k = 0; k < kFirstPlaces; ++k) {
                const auto place = placeAt(cameras[side], circle, plane, angleOf(k));
                if (!place) {
                    return false;
                }
                around[static_cast<std::size_t>(k)] = *place;
            }
            for (const OutlineEdge& edge : edges[side]) {
                const auto nearest = std::min_element(around.begin(), around.end(), [&](const auto& a, const auto& b) {
                    return squareTo(a, edge.pixel) < squareTo(b, edge.pixel);
                });
                const auto place = footOf(cameras[side], circle, plane, edge.pixel,
                                          angleOf(static_cast<int>(nearest - around.begin())));
                if (!place) {
                    return false;
                }
                equations.push_back(equationOf(*place, edge, circle, plane));
            }
        }
        return true;
    }

private:
    static double angleOf(int k) { return 2.0 * std::numbers::pi * k / kFirstPlaces; }

    // Steps along the image, which is nearly straight between the places tried first.
    static std::optional<ImagePlace> footOf(const TargetCamera& camera, const SpaceCircle& circle, const Plane& plane,
                                            Point2d pixel, double angle) {
        constexpr double kMaxTurn = std::numbers::pi / kFirstPlaces;
        std::optional<ImagePlace> place = placeAt(camera, circle, plane, angle);
        for (int step = 0; step < kFootSteps && place; ++step) {
            const Point2d& t = place->tangent;
            const double turn = (t.x * (pixel.x - place->seen.pixel.x) + t.y * (pixel.y - place->seen.pixel.y)) /
                                (t.x * t.x + t.y * t.y);
            if (!std::isfinite(turn)) {
                return std::nullopt;
            }
            angle += std::clamp(turn, -kMaxTurn, kMaxTurn);
            place = placeAt(camera, circle, plane, angle);
            if (std::fabs(turn) < 1e-9) {
                break;
            }
        }
        return place;
    }

    // At the nearest place the distance changes with the unknowns as the place does across the outline: what the place
    // moves along it does not count.
    static Equation equationOf(const ImagePlace& place, const OutlineEdge& edge, const SpaceCircle& circle,
                               const Plane& plane) {
        const double length = std::hypot(place.tangent.x, place.tangent.y);
        const Point2d normal{place.tangent.y / length, -place.tangent.x / length};
        const double weight = 1.0 / edge.deviation;
        Equation equation;
        equation.residual =
            weight * (normal.x * (edge.pixel.x - place.seen.pixel.x) + normal.y * (edge.pixel.y - place.seen.pixel.y));
        Vector3 across{};
        for (std::size_t i = 0; i < 3; ++i) {
            across[i] = weight * (normal.x * place.seen.dx[i] + normal.y * place.seen.dy[i]);
        }
        const double lift = -circle.radius * dot(across, circle.normal);
        equation.slopes = {across[0],
                           across[1],
                           across[2],
                           lift * dot(place.radial, plane.u),
                           lift * dot(place.radial, plane.v),
                           dot(across, place.radial)};
        return equation;
    }

    const std::array<TargetCamera, 2>& cameras;
    const std::array<std::span<const OutlineEdge>, 2>& edges;
};

struct Normal {
    Matrix<kUnknowns> N{};
    Row right{};
    double cost = 0.0;
};

Normal normalOf(const std::vector<Equation>& equations) {
    Normal normal;
    for (const Equation& e : equations) {
        for (std::size_t i = 0; i < kUnknowns; ++i) {
            for (std::size_t j = i; j < kUnknowns; ++j) {
                normal.N[i][j] += e.slopes[i] * e.slopes[j];
            }
            normal.right[i] += e.slopes[i] * e.residual;
        }
        normal.cost += e.residual * e.residual;
    }
    return normal;
}

SpaceCircle moved(const SpaceCircle& circle, const Row& step) {
    const Plane plane(circle.normal);
    SpaceCircle result = circle;
    for (std::size_t i = 0; i < 3; ++i) {
        result.centre[i] += step[i];
        result.normal[i] += step[3] * plane.u[i] + step[4] * plane.v[i];
    }
    result.normal = unit(result.normal);
    result.radius += step[5];
    return result;
}

bool isUsable(const SpaceCircle& circle) {
    const auto finite = [](double value) { return std::isfinite(value); };
    return circle.radius > 0.0 && finite(circle.radius) &&
           std::all_of(circle.centre.begin(), circle.centre.end(), finite) &&
           std::all_of(circle.normal.begin(), circle.normal.end(), finite);
}

std::optional<Row> dampedStep(const Normal& normal, double damping) {
    Matrix<kUnknowns> N = normal.N;
    for (std::size_t i = 0; i < kUnknowns; ++i) {
        N[i][i] *= 1.0 + damping;
    }
    return factor(N) ? std::optional<Row>(solve(N, normal.right)) : std::nullopt;
}

// The centre's part of the inverse.
std::optional<Matrix3> covarianceOf(const Normal& normal, double scale) {
    Matrix<kUnknowns> N = normal.N;
    if (!factor(N)) {
        return std::nullopt;
    }
    Matrix3 covariance{};
    for (std::size_t j = 0; j < 3; ++j) {
        Row unitRow{};
        unitRow[j] = scale;
        const Row column = solve(N, unitRow);
        for (std::size_t i = 0; i < 3; ++i) {
            covariance[3 * i + j] = column[i];
        }
    }
    return covariance;
}

double rmsOf(std::span<const Equation> equations, std::span<const OutlineEdge> edges) {
    double squares = 0.0;
    for (std::size_t i = 0; i < edges.size(); ++i) {
        const double distance = equations[i].residual * edges[i].deviation;
        squares += distance * distance;
    }
    return std::sqrt(squares / static_cast<double>(edges.size()));
}

}  // namespace

std::optional<CircleFit> fitCircle(const std::array<TargetCamera, 2>& cameras,
                                   const std::array<std::span<const OutlineEdge>, 2>& edges, const SpaceCircle& start) {
    const std::size_t count = edges[0].size() + edges[1].size();
    const Fitter fitter(cameras, edges);
    CircleFit fit;
    fit.circle = start;
    std::vector<Equation> equations;
    if (count <= kUnknowns || !isUsable(start) || !fitter.form(start, equations)) {
        return std::nullopt;
    }
    Normal normal = normalOf(equations);
    double damping = kStartDamping;
    std::vector<Equation> tried;
    for (int step = 0; step < kMaxSteps && damping <= kMaxDamping; ++step) {
        const auto change = dampedStep(normal, damping);
        const SpaceCircle circle = change ? moved(fit.circle, *change) : fit.circle;
        if (!change || !isUsable(circle) || !fitter.form(circle, tried)) {
            damping *= 10.0;
            continue;
        }
        const Normal next = normalOf(tried);
        if (!(next.cost <= normal.cost)) {
            damping *= 10.0;
            continue;
        }
        const bool isSettled = normal.cost - next.cost <= kSettled * normal.cost;
        fit.circle = circle;
        normal = next;
        equations.swap(tried);
        damping *= 0.1;
        if (isSettled) {
            break;
        }
    }
    const auto covariance = covarianceOf(normal, normal.cost / static_cast<double>(count - kUnknowns));
    if (!covariance || !std::isfinite(normal.cost)) {
        return std::nullopt;
    }
    fit.cost = normal.cost;
    fit.covariance = *covariance;
    const std::span<const Equation> all(equations);
    fit.rms = {rmsOf(all.first(edges[0].size()), edges[0]), rmsOf(all.subspan(edges[0].size()), edges[1])};
    return fit;
}

}  // namespace zelm::measure
