#include <algorithm>

#include "clp2dCommon.h"
#include "zelm/clp2d.h"
#include "zelm/mat.h"

using zelm::distanceOf;
using zelm::kClp2dDegenerate;
using zelm::normalLength;

void zelmClp2dDistanceTwoPoints(const Point2d* tP1, const Point2d* tP2, double* dDistance) {
    *dDistance = distanceOf(*tP1, *tP2);
}

void zelmClp2dCenterTwoPoints(const Point2d* tP1, const Point2d* tP2, Point2d* tCenter) {
    *tCenter = {(tP1->x + tP2->x) * 0.5, (tP1->y + tP2->y) * 0.5};
}

int32_t zelmClp2dLineTwoPoints(const Point2d* tP1, const Point2d* tP2, Line2d* tLine) {
    const double length = distanceOf(*tP1, *tP2);
    if (length < kClp2dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    const double a = -(tP2->y - tP1->y) / length;
    const double b = (tP2->x - tP1->x) / length;
    *tLine = {a, b, -(a * tP1->x) - b * tP1->y};
    return ZELM_OK;
}

int32_t zelmClp2dMidperpendicularTwoPoints(const Point2d* tP1, const Point2d* tP2, Line2d* tLine) {
    const double length = distanceOf(*tP1, *tP2);
    if (length < kClp2dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    const double a = (tP2->x - tP1->x) / length;
    const double b = (tP2->y - tP1->y) / length;
    *tLine = {a, b, -a * (tP1->x + tP2->x) * 0.5 - b * (tP1->y + tP2->y) * 0.5};
    return ZELM_OK;
}

int32_t zelmClp2dVerticalLinePointAndLine(const Point2d* tP, const Line2d* tLine, Line2d* tOut) {
    const double n = normalLength(*tLine);
    if (n < kClp2dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    const double a = tLine->a / n;
    const double b = tLine->b / n;
    *tOut = {b, -a, -b * tP->x + a * tP->y};
    return ZELM_OK;
}

void zelmClp2dLinePointAndSlope(const Point2d* tP, double dAngle, Line2d* tLine) {
    const double sine = std::sin(dAngle);
    const double cosine = std::cos(dAngle);
    *tLine = {-sine, cosine, sine * tP->x - cosine * tP->y};
}

int32_t zelmClp2dIntersectionTwoLines(const Line2d* tLine1, const Line2d* tLine2, Point2d* tPoint) {
    if (normalLength(*tLine1) < kClp2dDegenerate || normalLength(*tLine2) < kClp2dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    const double normals[4] = {tLine1->a, tLine1->b, tLine2->a, tLine2->b};
    const double offsets[2] = {-tLine1->c, -tLine2->c};
    double solution[2];
    if (zelmMatSolveLU(2, normals, offsets, solution) < 0) {
        return ZELM_ERR_DEGENERATE;
    }
    *tPoint = {solution[0], solution[1]};
    return ZELM_OK;
}

int32_t zelmClp2dAngleTwoLines(const Line2d* tLine1, const Line2d* tLine2, double* dAngle) {
    const double length1 = normalLength(*tLine1);
    const double length2 = normalLength(*tLine2);
    if (length1 < kClp2dDegenerate || length2 < kClp2dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    const double cross = std::fabs(tLine1->a * tLine2->b - tLine2->a * tLine1->b);
    const double angle = std::asin(std::clamp(cross / (length1 * length2), -1.0, 1.0));
    if (angle < kClp2dDegenerate) {
        const bool normalsOpposed = tLine1->a * tLine2->a + tLine1->b * tLine2->b < 0.0;
        const double c1 = tLine1->c / length1;
        const double c2 = normalsOpposed ? -(tLine2->c / length2) : tLine2->c / length2;
        if (std::fabs(c1 - c2) > kClp2dDegenerate) {
            return ZELM_ERR_DEGENERATE;
        }
    }
    *dAngle = angle;
    return ZELM_OK;
}

int32_t zelmClp2dCenterLineOfTwoLines(const Line2d* tLine1, const Line2d* tLine2, Line2d* tOut) {
    const double length1 = normalLength(*tLine1);
    const double length2 = normalLength(*tLine2);
    if (length1 < kClp2dDegenerate || length2 < kClp2dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    const Line2d first{tLine1->a / length1, tLine1->b / length1, tLine1->c / length1};
    Line2d second{tLine2->a / length2, tLine2->b / length2, tLine2->c / length2};
    if (first.a * second.a + first.b * second.b < 0.0) {
        second = {-second.a, -second.b, -second.c};
    }
    const Line2d sum{first.a + second.a, first.b + second.b, first.c + second.c};
    const double length = normalLength(sum);
    *tOut = {sum.a / length, sum.b / length, sum.c / length};
    return ZELM_OK;
}

int32_t zelmClp2dDistancePointToLine(const Point2d* tP, const Line2d* tLine, double* dDistance) {
    const double n = normalLength(*tLine);
    if (n < kClp2dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    *dDistance = std::fabs(tLine->a * tP->x + tLine->b * tP->y + tLine->c) / n;
    return ZELM_OK;
}

int32_t zelmClp2dFootOfPerpendicularToLine(const Point2d* tP, const Line2d* tLine, Point2d* tFoot) {
    Line2d perpendicular;
    if (zelmClp2dVerticalLinePointAndLine(tP, tLine, &perpendicular) < 0) {
        return ZELM_ERR_DEGENERATE;
    }
    return zelmClp2dIntersectionTwoLines(tLine, &perpendicular, tFoot);
}

int32_t zelmClp2dTranslationOfLine(const Line2d* tLine, const Point2d* tShift, Line2d* tOut) {
    if (normalLength(*tLine) < kClp2dDegenerate) {
        return ZELM_ERR_DEGENERATE;
    }
    *tOut = {tLine->a, tLine->b, tLine->c - tLine->a * tShift->x - tLine->b * tShift->y};
    return ZELM_OK;
}

void zelmClp2dSignAreaTriangle(const Point2d* tP1, const Point2d* tP2, const Point2d* tP3, double* dArea) {
    *dArea = ((tP3->y - tP1->y) * (tP2->x - tP1->x) - (tP3->x - tP1->x) * (tP2->y - tP1->y)) * 0.5;
}

void zelmClp2dAreaTriangle(const Point2d* tP1, const Point2d* tP2, const Point2d* tP3, double* dArea) {
    double signedArea = 0.0;
    zelmClp2dSignAreaTriangle(tP1, tP2, tP3, &signedArea);
    *dArea = std::fabs(signedArea);
}
