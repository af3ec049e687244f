// Planes in space, and lines against planes.
#include <numbers>

#include "clp3dVectors.h"
#include "zelm/clp3d.h"

using namespace zelm;

namespace {

Plane3d planeAt(const Point3d& p, const Vector3& unitNormal) {
    return {unitNormal.x, unitNormal.y, unitNormal.z, -dotProduct(unitNormal, p)};
}

}  // namespace

int32_t zelmClp3dPlaneThreePoints(const Point3d* tP1, const Point3d* tP2, const Point3d* tP3, Plane3d* tPlane) {
    const Vector3 u = difference(*tP2, *tP1);
    const Vector3 w = difference(*tP3, *tP1);
    const Vector3 n = crossProduct(u, w);
    const double length = lengthOf(n);
    if (lengthOf(u) < kClp3dDegenerate || lengthOf(w) < kClp3dDegenerate || length < kClp3dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    *tPlane = planeAt(*tP1, quotient(n, length));
    return ZELM_OK;
}

int32_t zelmClp3dVerticalPlanePointAndVector(const Point3d* tP, const Point3d* tVector, Plane3d* tPlane) {
    const double length = lengthOf(*tVector);
    if (length < kClp3dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    *tPlane = planeAt(*tP, quotient(*tVector, length));
    return ZELM_OK;
}

int32_t zelmClp3dVerticalLinePointAndPlane(const Point3d* tP, const Plane3d* tPlane, Line3d* tLine) {
    const Vector3 normal = normalOf(*tPlane);
    const double length = lengthOf(normal);
    if (length < kClp3dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    *tLine = lineOf(*tP, quotient(normal, length));
    return ZELM_OK;
}

int32_t zelmClp3dDistancePointToPlane(const Point3d* tP, const Plane3d* tPlane, double* dDistance) {
    const double length = lengthOf(normalOf(*tPlane));
    if (length < kClp3dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    *dDistance = std::fabs(valueAt(*tPlane, *tP)) / length;
    return ZELM_OK;
}

int32_t zelmClp3dIntersectionLineAndPlane(const Line3d* tLine, const Plane3d* tPlane, Point3d* tPoint) {
    const Vector3 direction = directionOf(*tLine);
    const Vector3 normal = normalOf(*tPlane);
    const double denominator = dotProduct(direction, normal);
    if (lengthOf(direction) < kClp3dDegenerate || lengthOf(normal) < kClp3dDegenerate ||
        std::fabs(denominator) < kClp3dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    const Point3d start = pointOf(*tLine);
    *tPoint = pointAlong(start, -valueAt(*tPlane, start) / denominator, direction);
    return ZELM_OK;
}

int32_t zelmClp3dFootOfPerpendicularToPlane(const Point3d* tP, const Plane3d* tPlane, Point3d* tFoot) {
    const Line3d perpendicular = lineOf(*tP, normalOf(*tPlane));
    return zelmClp3dIntersectionLineAndPlane(&perpendicular, tPlane, tFoot);
}

int32_t zelmClp3dAngleLineAndPlane(const Line3d* tLine, const Plane3d* tPlane, double* dAngle) {
    const Vector3 direction = directionOf(*tLine);
    const Vector3 normal = normalOf(*tPlane);
    if (lengthOf(direction) < kClp3dDegenerate || lengthOf(normal) < kClp3dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    // Signed tests: docs/decisions.md#signed-line-plane.
    if (dotProduct(direction, normal) < kClp3dDegenerate && valueAt(*tPlane, pointOf(*tLine)) > kClp3dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    *dAngle = std::numbers::pi / 2.0 - acuteAngle(direction, normal);
    return ZELM_OK;
}

int32_t zelmClp3dIntersectionTwoPlanes(const Plane3d* tPlane1, const Plane3d* tPlane2, Line3d* tLine) {
    const Vector3 normal1 = normalOf(*tPlane1);
    const Vector3 normal2 = normalOf(*tPlane2);
    const Vector3 m = crossProduct(normal1, normal2);
    const double length1 = lengthOf(normal1);
    const double length2 = lengthOf(normal2);
    const double lengthM = lengthOf(m);
    if (length1 < kClp3dDegenerate || length2 < kClp3dDegenerate || lengthM < kClp3dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    // The point of the line nearest to the origin is a sum of the unit normals u1 and u2; h1 and h2 are the planes'
    // offsets along them.
    const Vector3 u1 = quotient(normal1, length1);
    const Vector3 u2 = quotient(normal2, length2);
    const double h1 = -tPlane1->d / length1;
    const double h2 = -tPlane2->d / length2;
    const double cosine = dotProduct(u1, u2);
    const double sine = lengthM / (length1 * length2);
    const double share1 = h1 - h2 * cosine;
    const double share2 = h2 - h1 * cosine;
    const Vector3 sum{share1 * u1.x + share2 * u2.x, share1 * u1.y + share2 * u2.y, share1 * u1.z + share2 * u2.z};
    *tLine = lineOf(quotient(sum, sine * sine), quotient(m, lengthM));
    return ZELM_OK;
}

int32_t zelmClp3dAngleTwoPlanes(const Plane3d* tPlane1, const Plane3d* tPlane2, double* dAngle) {
    const Vector3 normal1 = normalOf(*tPlane1);
    const Vector3 normal2 = normalOf(*tPlane2);
    const double length1 = lengthOf(normal1);
    const double length2 = lengthOf(normal2);
    if (length1 < kClp3dDegenerate || length2 < kClp3dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    const double angle = acuteAngle(normal1, normal2);
    if (angle < kClp3dDegenerate) {
        const bool normalsOpposed = dotProduct(normal1, normal2) < 0.0;
        const double e1 = tPlane1->d / length1;
        const double e2 = normalsOpposed ? -(tPlane2->d / length2) : tPlane2->d / length2;
        if (std::fabs(e1 - e2) > kClp3dDegenerate) {
            return ZELM_ERR_DEGENERATE;
        }
    }
    *dAngle = angle;
    return ZELM_OK;
}
