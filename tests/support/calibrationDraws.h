// Rigs whose parameters were drawn from the covariance of a simulated calibration.
#ifndef ZELM_TEST_CALIBRATION_DRAWS_H
#define ZELM_TEST_CALIBRATION_DRAWS_H

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "cholesky.h"
#include "measureRigs.h"
#include "rig.h"

namespace zelmtest {

constexpr std::size_t kParameters = zelm::measure::kRigParameters;
using ParameterVector = zelm::measure::Vector<kParameters>;
using ParameterMatrix = zelm::measure::Matrix<kParameters>;

// exp(d) R and t + dt.
inline void movePose(ZelmCameraExtrinsics& pose, const double* d, const double* dt) {
    double vector[3] = {d[0], d[1], d[2]};
    double turn[9];
    zelmCalibRodrigues(0, vector, turn);
    const ZelmCameraExtrinsics before = pose;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            pose.R[3 * i + j] = 0.0;
            for (std::size_t k = 0; k < 3; ++k) {
                pose.R[3 * i + j] += turn[3 * i + k] * before.R[3 * k + j];
            }
        }
        pose.t[i] += dt[i];
    }
    zelmCalibRodrigues(1, pose.r, pose.R);
}

inline void moveCamera(ZelmCameraIntrinsics& camera, const double* d) {
    camera.A[0] = camera.alpha += d[0];
    camera.A[1] += d[1];
    camera.gamma += d[1];
    camera.A[4] = camera.beta += d[2];
    camera.A[2] = camera.cx += d[3];
    camera.A[5] = camera.cy += d[4];
    camera.k1 += d[5];
    camera.k2 += d[6];
}

// b after a: world -> a -> b.
inline ZelmCameraExtrinsics afterPose(const ZelmCameraExtrinsics& a, const ZelmCameraExtrinsics& b) {
    ZelmCameraExtrinsics both{};
    for (std::size_t i = 0; i < 3; ++i) {
        both.t[i] = b.t[i];
        for (std::size_t k = 0; k < 3; ++k) {
            both.t[i] += b.R[3 * i + k] * a.t[k];
            for (std::size_t j = 0; j < 3; ++j) {
                both.R[3 * i + j] += b.R[3 * i + k] * a.R[3 * k + j];
            }
        }
    }
    zelmCalibRodrigues(1, both.r, both.R);
    return both;
}

inline ZelmCameraExtrinsics relativePose(const TruePair& pair) {
    ZelmCameraExtrinsics back{};  // from the left camera to the world
    const ZelmCameraExtrinsics& l = pair.left.pose;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            back.R[3 * i + j] = l.R[3 * j + i];
            back.t[i] -= l.R[3 * j + i] * l.t[j];
        }
    }
    return afterPose(back, pair.right.pose);
}

// The pair with every parameter changed by so much.
inline TruePair moved(const TruePair& pair, const ParameterVector& by) {
    using namespace zelm::measure;
    TruePair result = pair;
    moveCamera(result.left.intrinsics, &by[kLeftCamera]);
    moveCamera(result.right.intrinsics, &by[kRightCamera]);
    ZelmCameraExtrinsics relative = relativePose(pair);
    movePose(relative, &by[kRelativeRotation], &by[kRelativeTranslation]);
    movePose(result.left.pose, &by[kFrameRotation], &by[kFrameTranslation]);
    result.right.pose = afterPose(result.left.pose, relative);
    return result;
}

// Changes of the parameters that move pixels by some tenths: the core's correction does not settle for less than about
// a hundredth, and leaves pixels as they are.
inline ParameterVector smallSteps(const TruePair& pair) {
    using namespace zelm::measure;
    ParameterVector steps{};
    for (const char side : {'L', 'R'}) {
        const bool isParallel = pair.camera(side).model == ZELM_CAMERA_PARALLEL;
        const double f = isParallel ? 2e-3 : 1.0;
        const double k1 = isParallel ? 1e-7 : 0.03;
        const double k2 = isParallel ? 2e-11 : 1.0;
        const CameraParameters camera{f, f, f, 0.2, 0.2, k1, k2};
        std::copy(camera.begin(), camera.end(), &steps[side == 'L' ? kLeftCamera : kRightCamera]);
    }
    for (std::size_t k = 0; k < 3; ++k) {
        steps[kRelativeRotation + k] = steps[kFrameRotation + k] = 2e-4;
        steps[kRelativeTranslation + k] = steps[kFrameTranslation + k] = 0.06;
    }
    return steps;
}

// Parameters that a calibration of the pair does not estimate: those that no image determines, or that a model lacks.
inline std::vector<std::size_t> heldParameters(const TruePair& pair) {
    using namespace zelm::measure;
    std::vector<std::size_t> held;
    for (const std::size_t camera : {std::size_t{kLeftCamera}, std::size_t{kRightCamera}}) {
        const int model = pair.camera(camera == kLeftCamera ? 'L' : 'R').model;
        if (model != ZELM_CAMERA_TILTED) {
            held.push_back(camera + kSkew);
        }
        if (model == ZELM_CAMERA_PARALLEL) {
            held.insert(held.end(), {camera + kCx, camera + kCy, camera + kK2});
        }
    }
    if (pair.left.model == ZELM_CAMERA_PARALLEL) {
        held.push_back(kFrameTranslation + 2);
    }
    return held;
}

// Adds J'J of the dots of a view: the parameters' and, in the places of the frame's, those of the view's pose.
inline ParameterMatrix viewNormals(const TruePair& view) {
    const ParameterVector steps = smallSteps(view);
    ParameterMatrix N{};
    for (int gy = -2; gy <= 2; ++gy) {
        for (int gx = -3; gx <= 3; ++gx) {
            const Point3d X{20.0 * gx, 20.0 * gy, 0.0};
            std::array<ParameterVector, 4> rows{};
            for (std::size_t k = 0; k < kParameters; ++k) {
                ParameterVector by{};
                by[k] = steps[k];
                const TruePair plus = moved(view, by);
                by[k] = -steps[k];
                const TruePair minus = moved(view, by);
                for (const std::size_t side : {0U, 1U}) {
                    const Point2d a = plus.project(side == 0 ? 'L' : 'R', X);
                    const Point2d b = minus.project(side == 0 ? 'L' : 'R', X);
                    rows[2 * side][k] = (a.x - b.x) / (2.0 * steps[k]);
                    rows[2 * side + 1][k] = (a.y - b.y) / (2.0 * steps[k]);
                }
            }
            for (const ParameterVector& row : rows) {
                for (std::size_t i = 0; i < kParameters; ++i) {
                    for (std::size_t j = 0; j < kParameters; ++j) {
                        N[i][j] += row[i] * row[j];
                    }
                }
            }
        }
    }
    return N;
}

// Makes the rows and columns of parameters those of unknowns that nothing depends on.
inline void holdParameters(ParameterMatrix& N, const std::vector<std::size_t>& held) {
    for (const std::size_t k : held) {
        for (std::size_t i = 0; i < kParameters; ++i) {
            N[i][k] = N[k][i] = 0.0;
        }
        N[k][k] = 1.0;
    }
}

// The inverse of a positive definite matrix, scaled to a diagonal of ones before.
inline ParameterMatrix inverseOf(const ParameterMatrix& N) {
    ParameterMatrix U{};
    for (std::size_t i = 0; i < kParameters; ++i) {
        for (std::size_t j = 0; j < kParameters; ++j) {
            U[i][j] = N[i][j] / std::sqrt(N[i][i] * N[j][j]);
        }
    }
    EXPECT_TRUE(zelm::measure::factor(U));
    ParameterMatrix inverse{};
    for (std::size_t k = 0; k < kParameters; ++k) {
        ParameterVector e{};
        e[k] = 1.0;
        inverse[k] = zelm::measure::solve(U, e);
        for (std::size_t i = 0; i < kParameters; ++i) {
            inverse[k][i] /= std::sqrt(N[i][i] * N[k][k]);
        }
    }
    return inverse;
}

// What a calibration from views of a plate of 35 dots, turned by some 20 degrees, would know of the pair when its dots
// have this noise, pixels.
inline ZelmMeasureCovariance simulatedCovariance(const TruePair& pair, double noise, int views = 8) {
    using namespace zelm::measure;
    const std::vector<std::size_t> held = heldParameters(pair);
    ParameterMatrix N = viewNormals(pair);
    Random random(20260101);
    const ZelmCameraExtrinsics relative = relativePose(pair);
    for (int v = 1; v < views; ++v) {
        TruePair view = pair;
        const double turn[3] = {random.uniform(-0.4, 0.4), random.uniform(-0.4, 0.4), random.uniform(-0.4, 0.4)};
        const double shift[3] = {random.uniform(-30.0, 30.0), random.uniform(-30.0, 30.0), random.uniform(-40.0, 40.0)};
        movePose(view.left.pose, turn, shift);
        view.right.pose = afterPose(view.left.pose, relative);
        ParameterMatrix V = viewNormals(view);
        // Eliminates the view's pose, whose places are those of the frame in view 0.
        for (std::size_t p = kParameters; p-- > kFrameRotation;) {
            const double pivot = V[p][p];
            for (std::size_t i = 0; i < p; ++i) {
                for (std::size_t j = 0; j < p; ++j) {
                    V[i][j] -= V[i][p] * V[p][j] / pivot;
                }
            }
        }
        for (std::size_t i = 0; i < kFrameRotation; ++i) {
            for (std::size_t j = 0; j < kFrameRotation; ++j) {
                N[i][j] += V[i][j];
            }
        }
    }
    holdParameters(N, held);
    ParameterMatrix inverse = inverseOf(N);
    auto covariance = emptyRecord<ZelmMeasureCovariance>();
    covariance.noise = noise;
    for (const std::size_t k : held) {
        inverse[k][k] = 0.0;
    }
    for (std::size_t i = 0; i < kParameters; ++i) {
        for (std::size_t j = 0; j < kParameters; ++j) {
            covariance.matrix[kParameters * i + j] = noise * noise * 0.5 * (inverse[i][j] + inverse[j][i]);
        }
    }
    return covariance;
}

// Draws parameters from a covariance.
class ParameterDraws {
public:
    explicit ParameterDraws(const ZelmMeasureCovariance& covariance) {
        for (std::size_t i = 0; i < kParameters; ++i) {
            deviations[i] = std::sqrt(covariance.matrix[(kParameters + 1) * i]);
        }
        for (std::size_t i = 0; i < kParameters; ++i) {
            for (std::size_t j = 0; j < kParameters; ++j) {
                const double both = deviations[i] * deviations[j];
                U[i][j] = both > 0.0 ? covariance.matrix[kParameters * i + j] / both : (i == j ? 1.0 : 0.0);
            }
        }
        EXPECT_TRUE(zelm::measure::factor(U));
    }

    ParameterVector draw(Random& random) const {
        ParameterVector n{};
        std::generate(n.begin(), n.end(), [&] { return random.normal(); });
        ParameterVector drawn{};
        for (std::size_t i = 0; i < kParameters; ++i) {
            for (std::size_t k = 0; k <= i; ++k) {
                drawn[i] += U[k][i] * n[k];
            }
            drawn[i] *= deviations[i];
        }
        return drawn;
    }

private:
    ParameterVector deviations{};
    ParameterMatrix U{};  // of the correlations, U'U
};

}  // namespace zelmtest

#endif
