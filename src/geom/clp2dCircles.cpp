#include "clp2dCommon.h"
#include "zelm/clp2d.h"
#include "zelm/mat.h"

using zelm::distanceOf;
using zelm::kClp2dDegenerate;
using zelm::normalLength;

int32_t zelmClp2dCircleThreePoints(const Point2d* tP1, const Point2d* tP2, const Point2d* tP3, Circle2d* tCircle) {
    // |p|^2 = 2 c.p - k for every point, with k = |c|^2 - r^2.
    const Point2d* const points[3] = {tP1, tP2, tP3};
    double rows[9];
    double rhs[3];
    for (int i = 0; i < 3; ++i) {
        const Point2d& p = *points[i];
        rows[3 * i] = -2.0 * p.x;
        rows[3 * i + 1] = -2.0 * p.y;
        rows[3 * i + 2] = 1.0;
        rhs[i] = -(p.x * p.x + p.y * p.y);
    }
    double solution[3];
    if (zelmMatSolveLU(3, rows, rhs, solution) < 0) {
        return ZELM_ERR_DEGENERATE;
    }
    const double squaredRadius = solution[0] * solution[0] + solution[1] * solution[1] - solution[2];
    if (squaredRadius < 0.0) {
        return ZELM_ERR_DEGENERATE;
    }
    *tCircle = {solution[0], solution[1], std::sqrt(squaredRadius)};
    return ZELM_OK;
}

void zelmClp2dCircleTwoPoints(const Point2d* tP1, const Point2d* tP2, Circle2d* tCircle) {
    *tCircle = {(tP1->x + tP2->x) * 0.5, (tP1->y + tP2->y) * 0.5, distanceOf(*tP1, *tP2) * 0.5};
}

int32_t zelmClp2dIntersectionLineAndCircle(const Line2d* tLine, const Circle2d* tCircle, Point2d* tQ1, Point2d* tQ2) {
    const double r = tCircle->r;
    if (normalLength(*tLine) < kClp2dDegenerate || r < kClp2dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    const Point2d centre{tCircle->x, tCircle->y};
    double d = 0.0;
    Point2d foot;
    if (zelmClp2dDistancePointToLine(&centre, tLine, &d) < 0 || r - d <= -kClp2dDegenerate ||
        zelmClp2dFootOfPerpendicularToLine(&centre, tLine, &foot) < 0) {
        return ZELM_ERR_DEGENERATE;
    }
    if (std::fabs(r - d) < kClp2dDegenerate) {
        d = r;
    }
    const double h = std::sqrt(r * r - d * d);
    // a and b as stored: the points are right for a normalised line only (docs/decisions.md#circle-line-scale).
    *tQ1 = {foot.x - tLine->b * h, foot.y + tLine->a * h};
    *tQ2 = {foot.x + tLine->b * h, foot.y - tLine->a * h};
    return ZELM_OK;
}

int32_t zelmClp2dTangentPointToCircle(const Point2d* tP, const Circle2d* tCircle, Line2d* tLine1, Point2d* tPoint1,
                                      Line2d* tLine2, Point2d* tPoint2) {
    const double r = tCircle->r;
    if (r < kClp2dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    const Point2d centre{tCircle->x, tCircle->y};
    double distance = distanceOf(centre, *tP);
    if (distance - r <= -kClp2dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    if (std::fabs(distance - r) < kClp2dDegenerate) {
        distance = r;
    }
    const double h = std::sqrt(distance * distance - r * r);
    // The unit normal u of a tangent has u.w = r along w = p - centre and +-h across it.
    const Point2d w{tP->x - centre.x, tP->y - centre.y};
    const double rows[4] = {w.x, w.y, -w.y, w.x};
    const double rhs1[2] = {r, h};
    const double rhs2[2] = {r, -h};
    double u1[2];
    double u2[2];
    if (zelmMatSolveLU(2, rows, rhs1, u1) < 0 || zelmMatSolveLU(2, rows, rhs2, u2) < 0) {
        return ZELM_ERR_DEGENERATE;
    }
    *tLine1 = {u1[0], u1[1], -(tP->x * u1[0]) - u1[1] * tP->y};
    *tPoint1 = {centre.x + r * u1[0], centre.y + r * u1[1]};
    *tLine2 = {u2[0], u2[1], -(tP->x * u2[0]) - u2[1] * tP->y};
    *tPoint2 = {centre.x + r * u2[0], centre.y + r * u2[1]};
    return ZELM_OK;
}

int32_t zelmClp2dClosestToCircle(const Point2d* tP, const Circle2d* tCircle, Point2d* tPoint, double* dDistance) {
    const double r = tCircle->r;
    if (r < kClp2dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    const double vx = tP->x - tCircle->x;
    const double vy = tP->y - tCircle->y;
    const double m = std::sqrt(vx * vx + vy * vy);
    *tPoint = {tCircle->x + r * vx / m, tCircle->y + r * vy / m};
    *dDistance = std::fabs(m - r);
    return ZELM_OK;
}
