#include "predictedDot.h"

#include <algorithm>

namespace zelm::measure {
namespace {

// A circle of the plate on its way to the image.
struct Placed {
    Matrix3 R{};       // of the pose
    Vector3 turned{};  // R P
    CircleInCamera circle;
};

Vector3 column(const Matrix3& m, std::size_t i) {
    return {m[i], m[3 + i], m[6 + i]};
}

Vector3 scaledSum(const Vector3& a, double s, const Vector3& b, double scale) {
    return {scale * (a[0] + s * b[0]), scale * (a[1] + s * b[1]), scale * (a[2] + s * b[2])};
}

Vector3 sum(const Vector3& a, const Vector3& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

Vector3 head(const double* v) {
    return {v[0], v[1], v[2]};
}

Placed placed(const ImageParameters& image, const Vector3& place, double radius) {
    const double e2 = image.bowExtent * image.bowExtent;
    const double x = place[0];
    const double y = place[1];
    const double* b = image.bow;
    const double z = place[2] + (b[0] * x * x + b[1] * x * y + b[2] * y * y) / e2;
    const double slopeX = (2.0 * b[0] * x + b[1] * y) / e2;
    const double slopeY = (b[1] * x + 2.0 * b[2] * y) / e2;
    Placed p;
    p.R = rotationOf(head(image.pose));
    p.turned = times(p.R, {x, y, z});
    p.circle.centre = sum(p.turned, head(image.pose + 3));
    const double r = radius * image.factor;
    p.circle.first = scaledSum(column(p.R, 0), slopeX, column(p.R, 2), r);
    p.circle.second = scaledSum(column(p.R, 1), slopeY, column(p.R, 2), r);
    return p;
}

CircleInCamera moved(const CircleInCamera& circle, const Matrix3& R, const double* t) {
    return {sum(times(R, circle.centre), head(t)), times(R, circle.first), times(R, circle.second)};
}

// What a turn d, exp(d) v, changes: g . (d x v) = (v x g) . d.
Vector3 byTurn(const Vector3& turned, const CircleInCamera& circle, const std::array<Vector3, 3>& g) {
    return sum(cross(turned, g[0]), sum(cross(circle.first, g[1]), cross(circle.second, g[2])));
}

void put(const Vector3& rotation, const Vector3& translation, std::array<double, 6>& row) {
    std::copy(rotation.begin(), rotation.end(), row.begin());
    std::copy(translation.begin(), translation.end(), row.begin() + 3);
}

}  // namespace

CircleInCamera circleOf(const ImageParameters& image, const Vector3& place, double radius) {
    const Placed p = placed(image, place, radius);
    return image.relative == nullptr ? p.circle : moved(p.circle, rotationOf(head(image.relative)), image.relative + 3);
}

PredictedDot predictDot(const ImageParameters& image, const Vector3& place, double radius, RotationDerivative kind) {
    const Placed p = placed(image, place, radius);
    const bool isOther = image.relative != nullptr;
    const Matrix3 R = isOther ? rotationOf(head(image.relative)) : Matrix3{1, 0, 0, 0, 1, 0, 0, 0, 1};
    const CircleInCamera circle = isOther ? moved(p.circle, R, image.relative + 3) : p.circle;
    const OutlineCentre outline = outlineCentre(image.camera, circle);
    const bool byVector = kind == RotationDerivative::byVector;
    const Matrix3 poseJacobian = byVector ? leftJacobian(head(image.pose)) : Matrix3{};
    const Matrix3 relativeJacobian = byVector && isOther ? leftJacobian(head(image.relative)) : Matrix3{};
    const double e2 = image.bowExtent * image.bowExtent;
    const Vector3 up = column(p.R, 2);
    const double r = radius * image.factor;

    PredictedDot model;
    model.centre = outline.centre;
    model.byCamera = outline.byParameters;
    for (std::size_t row = 0; row < 2; ++row) {
        const auto& c = outline.byCircle[row];
        std::array<Vector3, 3> g{Vector3{c[0], c[1], c[2]}, Vector3{c[3], c[4], c[5]}, Vector3{c[6], c[7], c[8]}};
        if (isOther) {
            const Vector3 turned = times(R, p.circle.centre);
            const Vector3 turn = byTurn(turned, circle, g);
            put(byVector ? timesTransposed(relativeJacobian, turn) : turn, g[0], model.byRelative[row]);
            for (Vector3& part : g) {
                part = timesTransposed(R, part);
            }
        }
        const Vector3 turn = byTurn(p.turned, p.circle, g);
        put(byVector ? timesTransposed(poseJacobian, turn) : turn, g[0], model.byPose[row]);
        model.byFactor[row][0] = (dot(g[1], p.circle.first) + dot(g[2], p.circle.second)) / image.factor;
        const double x = place[0];
        const double y = place[1];
        const double centre = dot(g[0], up);
        const double first = r * dot(g[1], up);
        const double second = r * dot(g[2], up);
        model.byBow[row] = {(centre * x * x + first * 2.0 * x) / e2, (centre * x * y + first * y + second * x) / e2,
                            (centre * y * y + second * 2.0 * y) / e2};
    }
    return model;
}

ImageParameters imageParameters(const AdjustState& state, Side side, std::size_t view, DotKind kind) {
    return {state.cameras[side],      side == state.base ? nullptr : state.relative.data(),
            state.poses[view].data(), state.factors[kind],
            state.bow.b.data(),       state.bow.extent};
}

}  // namespace zelm::measure
