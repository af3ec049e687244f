// Points on shapes with known truth, and features asked of them through the interface.
#ifndef ZELM_TEST_FEATURE_SCENES_H
#define ZELM_TEST_FEATURE_SCENES_H

#include <zelmMeasure.h>

#include <Eigen/Core>
#include <Eigen/Geometry>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <vector>

#include "random.h"

namespace zelmtest {

using V3 = Eigen::Vector3d;

// Points with covariances of their errors, as a pair of cameras makes them: one direction is known less.
struct FeatureScene {
    std::vector<double> points;
    std::vector<double> noise;  // none: not stated

    [[nodiscard]] std::size_t size() const { return points.size() / 3; }
    void add(const V3& X) { points.insert(points.end(), {X[0], X[1], X[2]}); }
    [[nodiscard]] std::vector<std::int64_t> all() const {
        std::vector<std::int64_t> ids(size());
        std::iota(ids.begin(), ids.end(), 0);
        return ids;
    }
    // States that every point has the standard deviation `across`, and `along` in the direction of sight.
    void state(double across, double along) {
        const V3 sight = V3(0.1, -0.2, 1.0).normalized();
        const Eigen::Matrix3d C = across * across * Eigen::Matrix3d::Identity() +
                                  (along * along - across * across) * sight * sight.transpose();
        noise.clear();
        for (std::size_t i = 0; i < size(); ++i) {
            noise.insert(noise.end(), {C(0, 0), C(0, 1), C(0, 2), C(1, 1), C(1, 2), C(2, 2)});
        }
    }
    // Moves the points by errors as they are stated.
    [[nodiscard]] FeatureScene disturbed(Random& random) const {
        FeatureScene result = *this;
        for (std::size_t i = 0; i < size(); ++i) {
            const double* c = &noise[6 * i];
            Eigen::Matrix3d C;
            C << c[0], c[1], c[2], c[1], c[3], c[4], c[2], c[4], c[5];
            const Eigen::Matrix3d L = C.llt().matrixL();
            const V3 e = L * V3(random.normal(), random.normal(), random.normal());
            for (std::size_t k = 0; k < 3; ++k) {
                result.points[3 * i + k] += e[static_cast<Eigen::Index>(k)];
            }
        }
        return result;
    }
};

inline Eigen::Matrix3d someRotation(double a = 0.4, double b = -0.7) {
    return (Eigen::AngleAxisd(a, V3::UnitX()) * Eigen::AngleAxisd(b, V3::UnitY())).toRotationMatrix();
}

// In its own frame, z along the direction; then turned and shifted.
inline FeatureScene shapePoints(std::int32_t kind, int count, std::uint64_t seed = 1) {
    Random random(seed);
    FeatureScene scene;
    const Eigen::Matrix3d R = someRotation();
    const V3 t(12.0, -7.0, 400.0);
    for (int i = 0; i < count; ++i) {
        const double angle = random.uniform(0.0, 6.283185307179586);
        const double x = random.uniform(-30.0, 30.0);
        const double y = random.uniform(-20.0, 20.0);
        V3 p;
        switch (kind) {
            case ZELM_MEASURE_FEATURE_LINE:
                p = V3(0.0, 0.0, x);
                break;
            case ZELM_MEASURE_FEATURE_PLANE:
                p = V3(x, y, 0.0);
                break;
            case ZELM_MEASURE_FEATURE_CIRCLE:
                p = V3(25.0 * std::cos(angle), 25.0 * std::sin(angle), 0.0);
                break;
            case ZELM_MEASURE_FEATURE_SPHERE:
                p = 25.0 *
                    V3(std::cos(angle) * std::cos(x / 30.0), std::sin(angle) * std::cos(x / 30.0), std::sin(x / 30.0));
                break;
            case ZELM_MEASURE_FEATURE_CYLINDER:
                p = V3(25.0 * std::cos(angle), 25.0 * std::sin(angle), x);
                break;
            default:
                p = V3::Zero();
        }
        scene.add(R * p + t);
    }
    return scene;
}

struct AskedFeature {
    std::int32_t kind;
    std::vector<std::int64_t> points;
    bool robust = false;
    bool plain = false;
};

struct FeatureAnswer {
    std::int32_t status = 0;
    std::vector<ZelmMeasureFeatureResult> features;
    std::vector<ZelmMeasureRelationResult> relations;
    std::vector<std::vector<std::int32_t>> uses;
};

inline FeatureAnswer ask(const FeatureScene& scene, const std::vector<AskedFeature>& asked,
                         const std::vector<ZelmMeasureRelation>& relations = {}, ZelmMeasureRig* rig = nullptr) {
    const ZelmMeasureFeaturePoints points{sizeof(ZelmMeasureFeaturePoints),
                                          0,
                                          static_cast<std::int64_t>(scene.size()),
                                          scene.points.data(),
                                          scene.noise.empty() ? nullptr : scene.noise.data(),
                                          0.0};
    FeatureAnswer answer;
    answer.features.resize(asked.size());
    answer.relations.resize(relations.size());
    answer.uses.resize(asked.size());
    std::vector<ZelmMeasureFeature> features;
    for (std::size_t i = 0; i < asked.size(); ++i) {
        const AskedFeature& a = asked[i];
        features.push_back({sizeof(ZelmMeasureFeature), a.kind, a.robust ? 1 : 0, a.plain ? 1 : 0,
                            static_cast<std::int64_t>(a.points.size()), a.points.data()});
        answer.uses[i].resize(a.points.size());
        answer.features[i].size = sizeof(ZelmMeasureFeatureResult);
        answer.features[i].uses = answer.uses[i].data();
    }
    for (ZelmMeasureRelationResult& r : answer.relations) {
        r.size = sizeof(r);
    }
    answer.status = zelmMeasureFeatures(&points, rig, static_cast<std::int64_t>(features.size()), features.data(),
                                        answer.features.data(), static_cast<std::int64_t>(relations.size()),
                                        relations.data(), answer.relations.data());
    return answer;
}

inline ZelmMeasureRelation relationOfTwo(std::int32_t kind, std::int64_t first, std::int64_t second) {
    return {sizeof(ZelmMeasureRelation), kind, first, second};
}

}  // namespace zelmtest

#endif
