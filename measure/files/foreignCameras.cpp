#include "foreignCameras.h"

#include <algorithm>
#include <cmath>

namespace zelm::measure {

void takeCameraMatrix(ForeignCamera& camera, const Matrix3& K, const std::string& name) {
    const bool isCameraMatrix =
        K[0] > 0.0 && K[4] > 0.0 && K[3] == 0.0 && K[6] == 0.0 && K[7] == 0.0 && std::abs(K[8] - 1.0) < 1e-12;
    if (!isCameraMatrix) {
        refuse(name + " is no camera matrix [fx 0 cx; 0 fy cy; 0 0 1] with positive focal lengths");
    }
    camera.fx = K[0];
    camera.skew = K[1];
    camera.cx = K[2];
    camera.fy = K[4];
    camera.cy = K[5];
}

ForeignLens radialTangentialLens(std::span<const double> coefficients, const std::string& name) {
    ForeignLens lens;
    const std::size_t count = coefficients.size();
    if (count != 0 && count != 2 && count != 4 && count != 5 && count != 8 && count != 12 && count != 14) {
        refuse(name + " has " + std::to_string(count) + " distortion coefficients, not 4, 5, 8, 12 or 14");
    }
    std::copy_n(coefficients.begin(), std::min(count, kLensCoefficients), lens.c.begin());
    if (count == 14 && (coefficients[12] != 0.0 || coefficients[13] != 0.0)) {
        refuse(name + " has a tilted sensor (tx, ty): calibrate without that");
    }
    return lens;
}

ForeignLens equidistantLens(std::span<const double> coefficients, const std::string& name) {
    if (coefficients.size() != 4) {
        refuse(name + " has " + std::to_string(coefficients.size()) + " distortion coefficients, not 4");
    }
    ForeignLens lens;
    lens.kind = LensKind::equidistant;
    std::copy(coefficients.begin(), coefficients.end(), lens.c.begin());
    return lens;
}

}  // namespace zelm::measure
