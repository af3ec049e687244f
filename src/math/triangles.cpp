// Areas of triangles.
#include <cmath>

#include "zelm/math.h"

double zelmMathSignAreaTriangle(double dX1, double dY1, double dX2, double dY2, double dX3, double dY3) {
    return ((dY3 - dY1) * (dX2 - dX1) - (dX3 - dX1) * (dY2 - dY1)) * 0.5;
}

double zelmMathAreaTriangle(double dX1, double dY1, double dX2, double dY2, double dX3, double dY3) {
    return std::fabs(zelmMathSignAreaTriangle(dX1, dY1, dX2, dY2, dX3, dY3));
}
