// Only the auto-correlations and the threshold of a list allocate.
#include <array>

#include "faultCase.h"
#include "zelm/math.h"
#include "zelm/mathCorrelation.h"
#include "zelm/mathRoots.h"

namespace {

constexpr std::array<double, 3> kU = {1, 2, 3};
constexpr std::array<double, 3> kV = {3, -1, 2};
constexpr Point2d kPoint = {1, 2};
constexpr std::array<double, 5> kQuartic = {1, 0, -5, 0, 4};

}  // namespace

// Each case: the arguments in which outputs are p, q and r.
#define MATH_CASE(function, ...)                              \
    ZELM_NO_ALLOCATION_CASE(function) {                       \
        [[maybe_unused]] double p = 0.0;                      \
        [[maybe_unused]] double q = 0.0;                      \
        [[maybe_unused]] double r = 0.0;                      \
        [[maybe_unused]] std::array<double, 9> out{1, 0, 0};  \
        probe.call([&] { return function(__VA_ARGS__), 0; }); \
    }

MATH_CASE(zelmMathCalcInnerProduct, 3, kU.data(), kV.data())
MATH_CASE(zelmMathCalcOuterProduct, kU.data(), kV.data(), out.data())
MATH_CASE(zelmMathCalcNorm, 3, kU.data())
MATH_CASE(zelmMathCalcArgument, &kPoint)
MATH_CASE(zelmMathNormalization, 3, out.data())
MATH_CASE(zelmMathCalcAngle, 3, kU.data(), kV.data(), &p)
MATH_CASE(zelmMathStat, 3, kU.data(), &p, &q, &r)
MATH_CASE(zelmMathAreaTriangle, 0, 0, 1, 0, 0, 1)
MATH_CASE(zelmMathSignAreaTriangle, 0, 0, 1, 0, 0, 1)
ZELM_NO_ALLOCATION_CASE(zelmMathInvMatrixOfSyn3X3) {
    constexpr std::array<double, 9> m = {2, 0, 0, 0, 2, 0, 0, 0, 2};
    std::array<double, 9> inverse{};
    probe.call([&] { return zelmMathInvMatrixOfSyn3X3(m.data(), inverse.data()), 0; });
    EXPECT_EQ(inverse[0], 0.5);
}
MATH_CASE(zelmMathRotatePoint, 1, 2, 0.5, 3, 4, &p, &q)
MATH_CASE(zelmMathCreateTransParam, 0, 1, 2, 3, 4, &p, &q, &r)
MATH_CASE(zelmMathTransCoordOfPoint, 1, 2, 0.5, 3, 4, &p, &q)
MATH_CASE(zelmMathTransCoord, 1, 2, 0.5, 3, 4, &p, &q)
MATH_CASE(zelmMathInvTransCoordOfPoint, 1, 2, 0.5, 3, 4, &p, &q)
MATH_CASE(zelmMathInvCoord, 1, 2, 0.5, &p, &q, &r)
MATH_CASE(zelmMathComposeCoord, 1, 2, 0.5, 3, 4, 0.25, &p, &q, &r)
MATH_CASE(zelmMathAddAngle, 1, 1, 100, 200)
MATH_CASE(zelmMathPrimeAngle, 1, 1, 1000)
MATH_CASE(zelmMathCheckAngle, 1, 2, 3)
MATH_CASE(zelmMathCrossAngle, 1, 0, 1, 0, 1, 1)
MATH_CASE(zelmMathGetDistFromPointToPoint, 1, 2, 3, 4)
MATH_CASE(zelmMathGetDistFromPointToLine, 1, 2, 3, 4, 5)
MATH_CASE(zelmMathGetDistAndCrossPointFromPointToLine, 1, 2, 3, 4, 5, &p, &q)
MATH_CASE(zelmMathCrossPoint, 1, 0, -1, 0, 1, -2, &p, &q)
MATH_CASE(zelmMathGetLineFrom2Points, 1, 2, 3, 4, &p, &q, &r)
MATH_CASE(zelmMathGetOrthogonalLineFromLineAndPoint, 1, 2, 3, 4, 5, &p, &q, &r)
MATH_CASE(zelmMathTransAbcToRq, 1, 2, 3, &p, &q)
MATH_CASE(zelmMathGetDistFromPointToCircle, 1, 2, 3, 4, 5, &p, &q)
MATH_CASE(zelmMathExtremumOfQuadraticCurves, 1, 2, 3, &p)
MATH_CASE(zelmMathExtremumOfQuadraticSurface, 1, 0, 1, 2, 3, 4, &p, &q)
MATH_CASE(zelmMathQuadraticRoots, kQuartic.data(), out.data())
MATH_CASE(zelmMathCubicRoots, kQuartic.data(), out.data())
MATH_CASE(zelmMathQuarticRoots, kQuartic.data(), out.data())
MATH_CASE(zelmMathGetDistFromPointToEllipse, 0, 0, 2, 1, 0.5, 3, 4, &p, &q, &r)
MATH_CASE(zelmMathCrossCorrelation, 3, kU.data(), kV.data())
MATH_CASE(zelmMathNormCorrelation, 3, kU.data(), kV.data())
ZELM_NO_ALLOCATION_CASE(zelmMathSearchOf1DWithNormCorrelation) {
    std::int32_t index = -1;
    double score = 0.0;
    probe.call([&] { return zelmMathSearchOf1DWithNormCorrelation(3, kU.data(), 2, kV.data(), &index, &score); });
    EXPECT_EQ(index, 1);
}

// Without memory the auto-correlations report success and write nothing: deliberate.
ZELM_FAULT_CASE(zelmMathAutoCorrelation) {
    std::array<double, 2> out = {77.0, 77.0};
    EXPECT_EQ(probe.call([&] { return zelmMathAutoCorrelation(3, kU.data(), 2, out.data()); }), ZELM_OK);
    EXPECT_EQ(out[0], probe.failed() ? 77.0 : 14.0);
    EXPECT_EQ(out[1], probe.failed() ? 77.0 : 11.0);
}

ZELM_FAULT_CASE(zelmMathNormAutoCorrelation) {
    std::array<double, 2> out = {77.0, 77.0};
    EXPECT_EQ(probe.call([&] { return zelmMathNormAutoCorrelation(3, kU.data(), 2, out.data()); }), ZELM_OK);
    EXPECT_EQ(out[0] == 77.0, probe.failed());
    EXPECT_EQ(out[1] == 77.0, probe.failed());
}

// Without memory the threshold reports what it reports of bad arguments: deliberate.
ZELM_FAULT_CASE(zelmMathOtsuThreshold1d) {
    double threshold = 77.0;
    const std::int32_t status = probe.call([&] { return zelmMathOtsuThreshold1d(3, kU.data(), &threshold); });
    EXPECT_EQ(status, probe.failed() ? ZELM_ERR_DEGENERATE : ZELM_OK);
    EXPECT_EQ(threshold, probe.failed() ? 77.0 : 1.5);
}
