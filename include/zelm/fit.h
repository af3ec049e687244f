/// Robust least-squares fits of means, lines, planes and conics.
#ifndef ZELM_FIT_H
#define ZELM_FIT_H

#include "zelm/base.h"

ZELM_BEGIN_DECLS

ZELM_API int32_t zelmFitMean1dim(int32_t iN, const double* daPoints, int32_t iRobust, double dThreshold,
                                 double* dResult);
ZELM_API int32_t zelmFitMean2dim(int32_t iN, const Point2d* taPoints, int32_t iRobust, double dThreshold,
                                 Point2d* tResult);
ZELM_API int32_t zelmFitMean3dim(int32_t iN, const Point3d* taPoints, int32_t iRobust, double dThreshold,
                                 Point3d* tResult);
ZELM_API int32_t zelmFitLine(int32_t iN, const Point2d* taPoints, int32_t iRobust, double dThreshold, Line2d* tResult);
ZELM_API int32_t zelmFitLineIn3d(int32_t iN, const Point3d* taPoints, int32_t iRobust, double dThreshold,
                                 double* daResult);
ZELM_API int32_t zelmFitPlane(int32_t iN, const Point3d* taPoints, int32_t iRobust, double dThreshold,
                              double* daResult);

ZELM_API int32_t zelmFitEllipse(int32_t iN, const Point2d* taPoints, int32_t iRobust, double dThreshold,
                                Ellipse2d* tResult);
ZELM_API int32_t zelmFitEllipseC(int32_t iN, const Point2d* taPoints, int32_t iRobust, double dThreshold,
                                 double* daResult);
ZELM_API int32_t zelmFitConics(int32_t iN, const Point2d* taPoints, int32_t iRobust, double dThreshold,
                               double* daResult);
ZELM_API int32_t zelmFitCircle(int32_t iN, const Point2d* taPoints, int32_t iRobust, double dThreshold,
                               Circle2d* tResult);

ZELM_END_DECLS

#endif
