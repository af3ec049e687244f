// Standard deviations of features against thousands of draws.
#include <gtest/gtest.h>

#include <Eigen/Cholesky>

#include "featureScenes.h"

namespace zelmtest {
namespace {

// Cylinders take ten times as long.
int drawsOf(std::int32_t kind) {
    return kind == ZELM_MEASURE_FEATURE_CYLINDER ? 2000 : 6000;
}
constexpr double kSigmas = 3.3;  // of chance; 40 figures are looked at
constexpr double kCoverage = 0.95;

struct Draws {
    std::vector<double> errors;
    double stated = 0.0;
    double covered = 0.0;

    void add(double error, double deviation, double expanded) {
        errors.push_back(error);
        stated += deviation;
        covered += std::fabs(error) <= expanded ? 1.0 : 0.0;
    }
    void check(const std::string& what) const {
        double squares = 0.0;
        for (const double error : errors) {
            squares += error * error;
        }
        const auto n = static_cast<double>(errors.size());
        // Of a standard deviation from n draws the relative standard deviation is 1 / sqrt(2 n): 3 % of 6000 draws.
        EXPECT_NEAR(std::sqrt(squares / n) / (stated / n), 1.0, kSigmas / std::sqrt(2.0 * n)) << what;
        EXPECT_NEAR(covered / n, kCoverage, kSigmas * std::sqrt(kCoverage * (1.0 - kCoverage) / n)) << what;
    }
};

class FeatureDraws : public testing::TestWithParam<std::int32_t> {};

TEST_P(FeatureDraws, TheStatedDeviationsAreThoseOfTheErrors) {
    const std::int32_t kind = GetParam();
    FeatureScene truth = shapePoints(kind, 24, 3);
    truth.state(0.02, 0.08);
    const V3 probe(40.0, 10.0, 350.0);
    truth.add(probe);
    truth.noise.insert(truth.noise.end(), truth.noise.begin(), truth.noise.begin() + 6);
    std::vector<std::int64_t> ids = truth.all();
    ids.pop_back();
    const std::vector<AskedFeature> asked{{kind, ids}, {ZELM_MEASURE_FEATURE_POINT, {24}}};
    const std::vector<ZelmMeasureRelation> relations{relationOfTwo(ZELM_MEASURE_RELATION_DISTANCE, 0, 1)};
    const FeatureAnswer exact = ask(truth, asked, relations);
    ASSERT_EQ(exact.features[0].status, ZELM_MEASURE_FEATURE_OK);
    std::array<Draws, 8> draws;
    Random random(static_cast<std::uint64_t>(kind) + 11);
    double misfit = 0.0;
    const int count = drawsOf(kind);
    for (int i = 0; i < count; ++i) {
        const FeatureAnswer a = ask(truth.disturbed(random), asked, relations);
        const ZelmMeasureFeatureResult& r = a.features[0];
        ASSERT_EQ(r.status, ZELM_MEASURE_FEATURE_OK);
        for (std::size_t k = 0; k < 7; ++k) {
            draws[k].add(r.values[k] - exact.features[0].values[k], r.deviations[k], r.expanded[k]);
        }
        draws[7].add(a.relations[0].value - exact.relations[0].value, a.relations[0].deviation,
                     a.relations[0].expanded);
        misfit += r.misfit * r.misfit / count;
    }
    for (std::size_t k = 0; k < 7; ++k) {
        if (exact.features[0].deviations[k] > 0.0) {
            draws[k].check("number " + std::to_string(k));
        }
    }
    draws[7].check("distance");
    // The mean of chi-square over its freedom: of 6000 draws with f degrees of freedom, sqrt(2 / (6000 f)) < 0.5 %.
    EXPECT_NEAR(misfit, 1.0, 0.02);
}

INSTANTIATE_TEST_SUITE_P(Kinds, FeatureDraws,
                         testing::Values(ZELM_MEASURE_FEATURE_LINE, ZELM_MEASURE_FEATURE_PLANE,
                                         ZELM_MEASURE_FEATURE_CIRCLE, ZELM_MEASURE_FEATURE_SPHERE,
                                         ZELM_MEASURE_FEATURE_CYLINDER));

}  // namespace
}  // namespace zelmtest
