// Points and lines in space.
#include "clp3dVectors.h"
#include "zelm/clp3d.h"

using namespace zelm;

void zelmClp3dDistanceTwoPoints(const Point3d* tP1, const Point3d* tP2, double* dDistance) {
    *dDistance = lengthOf(difference(*tP2, *tP1));
}

void zelmClp3dCenterTwoPoints(const Point3d* tP1, const Point3d* tP2, Point3d* tCenter) {
    *tCenter = {(tP1->x + tP2->x) * 0.5, (tP1->y + tP2->y) * 0.5, (tP1->z + tP2->z) * 0.5};
}

int32_t zelmClp3dLineTwoPoints(const Point3d* tP1, const Point3d* tP2, Line3d* tLine) {
    const Vector3 between = difference(*tP2, *tP1);
    const double length = lengthOf(between);
    if (length < kClp3dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    *tLine = lineOf(*tP1, quotient(between, length));
    return ZELM_OK;
}

int32_t zelmClp3dFootOfPerpendicularToLine(const Point3d* tP, const Line3d* tLine, Point3d* tFoot) {
    const Vector3 direction = directionOf(*tLine);
    const double length = lengthOf(direction);
    if (length < kClp3dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    const Vector3 u = quotient(direction, length);
    const Point3d start = pointOf(*tLine);
    *tFoot = pointAlong(start, dotProduct(difference(*tP, start), u), u);
    return ZELM_OK;
}

int32_t zelmClp3dVerticalLinePointAndLine(const Point3d* tP, const Line3d* tLine, Line3d* tOut) {
    Point3d foot;
    if (zelmClp3dFootOfPerpendicularToLine(tP, tLine, &foot) < 0) {
        return ZELM_ERR_DEGENERATE;
    }
    return zelmClp3dLineTwoPoints(tP, &foot, tOut);
}

int32_t zelmClp3dDistancePointToLine(const Point3d* tP, const Line3d* tLine, double* dDistance) {
    Point3d foot;
    if (zelmClp3dFootOfPerpendicularToLine(tP, tLine, &foot) < 0) {
        return ZELM_ERR_DEGENERATE;
    }
    *dDistance = lengthOf(difference(foot, *tP));
    return ZELM_OK;
}

int32_t zelmClp3dDistanceTwoLines(const Line3d* tLine1, const Line3d* tLine2, double* dDistance) {
    const Vector3 direction1 = directionOf(*tLine1);
    const Vector3 direction2 = directionOf(*tLine2);
    if (lengthOf(direction1) < kClp3dDegenerate || lengthOf(direction2) < kClp3dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    const Point3d point1 = pointOf(*tLine1);
    const Vector3 n = crossProduct(direction1, direction2);
    const double length = lengthOf(n);
    if (length < kClp3dDegenerate) {
        return zelmClp3dDistancePointToLine(&point1, tLine2, dDistance);
    }
    *dDistance = std::fabs(dotProduct(n, difference(point1, pointOf(*tLine2)))) / length;
    return ZELM_OK;
}
