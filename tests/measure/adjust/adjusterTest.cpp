// The adjustment of simulated dots whose truth is known: without noise, within the stated covariance with it, and with
// dots and views that do not belong.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "adjustCovariance.h"
#include "adjustScene.h"
#include "adjuster.h"
#include "fault.h"

namespace zelmtest {
namespace {

using namespace zelm::measure;

struct Adjusted {
    AdjustState state;
    std::vector<AdjustView> views;
    AdjustSummary summary;
    AdjustCovariance covariance;
};

Adjusted adjusted(const AdjustState& start, const std::vector<AdjustView>& views, const AdjustOptions& options) {
    Adjusted result{start, views, {}, {}};
    result.summary = adjust(result.state, result.views, options);
    result.covariance = covarianceOf(result.state, result.views, options, result.summary);
    return result;
}

void expectTruth(const AdjustScene& scene, const Adjusted& found, double tolerance) {
    const auto near = [&](double a, double b, double scale, const std::string& what) {
        EXPECT_NEAR(a, b, tolerance * scale) << what;
    };
    const AdjustState& t = scene.truth;
    for (const Side side : {kLeft, kRight}) {
        const auto& p = found.state.cameras[side].p;
        const auto& q = t.cameras[side].p;
        const double f = q[kFx];
        // k1 and k2 move the outermost dots, 650 pixels from the middle.
        const double r2 = t.cameras[side].isParallel ? 130.0 * 130.0 : 0.15;
        const std::array<double, kCameraParameters> scales{f, f, f, 1e3, 1e3, 1.0 / r2, 1.0 / (r2 * r2)};
        for (std::size_t i = 0; i < kCameraParameters; ++i) {
            near(p[i], q[i], scales[i], "camera " + std::to_string(side) + " parameter " + std::to_string(i));
        }
    }
    for (std::size_t i = 0; i < 6; ++i) {
        near(found.state.relative[i], t.relative[i], i < 3 ? 1.0 : 300.0, "relative " + std::to_string(i));
        near(found.state.poses[1][i], t.poses[1][i], i < 3 ? 1.0 : 300.0, "pose " + std::to_string(i));
    }
}

struct RecoveryCase {
    const char* name;
    AdjustSceneOptions scene;
    AdjustOptions options;
};

void PrintTo(const RecoveryCase& c, std::ostream* out) {
    *out << c.name;
}

std::vector<RecoveryCase> recoveryCases() {
    std::vector<RecoveryCase> cases;
    const auto add = [&cases](const char* name, int left, int right, auto change) {
        RecoveryCase c{name, {}, {}};
        c.scene.models = {left, right};
        change(c);
        cases.push_back(c);
    };
    const auto skewed = [](RecoveryCase& c) { c.scene.skewed = true; };
    add("perspective", 0, 0, skewed);
    add("tilted", 1, 1, skewed);
    add("perspectiveAndTilted", 0, 1, skewed);
    add("tiltedAndPerspective", 1, 0, skewed);
    add("parallelAndPerspective", 2, 0, [](RecoveryCase&) {});
    add("parallelAndTilted", 2, 1, skewed);
    add("skewHeld", 0, 0, [](RecoveryCase& c) { c.options.holdSkew = true; });
    add("squarePixels", 0, 0, [](RecoveryCase& c) { c.options.squarePixels = c.scene.squarePixels = true; });
    add("diameters", 0, 0, [](RecoveryCase& c) {
        c.options.estimateFactors = true;
        c.scene.factors = {1.06, 0.97};
    });
    // 0.05 plate units over half the diagonal of 156.
    add("bow", 0, 0, [](RecoveryCase& c) {
        c.options.estimateBow = true;
        c.scene.bow = {0.05, -0.02, 0.04};
    });
    add("all", 1, 1, [](RecoveryCase& c) {
        c.options.estimateBow = c.options.estimateFactors = true;
        c.scene.bow = {0.05, -0.02, 0.04};
        c.scene.factors = {1.06, 0.97};
        c.scene.skewed = true;
    });
    return cases;
}

class Recovery : public testing::TestWithParam<RecoveryCase> {};

TEST_P(Recovery, FindsTheTruthWithoutNoise) {
    const AdjustScene scene = makeAdjustScene(GetParam().scene);
    Random random(2);
    AdjustState start = scene.start(random);
    if (GetParam().options.squarePixels) {
        for (ProjectionCamera& camera : start.cameras) {
            camera.p[kFy] = camera.p[kFx];
        }
    }
    const Adjusted found = adjusted(start, scene.views, GetParam().options);
    // Rounding of pixels is 1e-13; bow and diameters are known some 1e5 times less well than a pixel.
    expectTruth(scene, found, 1e-9);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(found.state.bow.b[i], GetParam().scene.bow[i], 1e-7);
    }
    for (const DotKind kind : {kPlainDot, kMarkerDot}) {
        EXPECT_NEAR(found.state.factors[kind], GetParam().scene.factors[kind], 1e-7);
    }
    EXPECT_LE(found.summary.rms[kLeft] + found.summary.rms[kRight], 1e-9);
    EXPECT_EQ(found.summary.outliers, 0U);
    EXPECT_EQ(found.summary.viewsLeftOut, 0U);
    EXPECT_GT(found.summary.rmsBefore[kLeft], 0.05);
}

TEST_P(Recovery, ErrorsLieWithinTheCovariance) {
    const AdjustScene scene = makeAdjustScene(GetParam().scene);
    const Rig truth = rigOfState(scene, scene.truth);
    Random random(3);
    AdjustOptions options = GetParam().options;
    options.knownNoise = 0.03;
    double sum = 0.0;
    double freedom = 0.0;
    for (int draw = 0; draw < 12; ++draw) {
        AdjustState start = scene.truth;
        const Adjusted found = adjusted(start, scene.noisy(0.03, random), options);
        const Rig rig = rigOfState(scene, found.state);
        const Consistency c = consistencyOf(rigErrors(truth, rig), found.covariance.rig);
        sum += c.square;
        freedom += c.freedom;
        EXPECT_GE(c.freedom, 17);
    }
    // Chi-square of some 280 degrees: its standard deviation is sqrt(2 * freedom); five of them.
    EXPECT_NEAR(sum, freedom, 5.0 * std::sqrt(2.0 * freedom));
}

INSTANTIATE_TEST_SUITE_P(Options, Recovery, testing::ValuesIn(recoveryCases()),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(Adjuster, UsesMeasuredPlacesOfDots) {
    AdjustScene scene = makeAdjustScene({});
    Random random(4);
    DotPlaces places;
    for (int y = -5; y <= 5; ++y) {
        for (int x = -6; x <= 6; ++x) {
            places[{x, y}] = {10.0 * x + 0.05 * random.normal(), 10.0 * y + 0.05 * random.normal(),
                              0.05 * random.normal()};
        }
    }
    predictDots(scene, places);
    const Adjusted found = adjusted(scene.start(random), scene.views, {});
    expectTruth(scene, found, 1e-9);
}

// The diagonal of the covariance and its trace against many draws.
TEST(Adjuster, CovarianceIsThatOfManyDraws) {
    AdjustSceneOptions sceneOptions;
    sceneOptions.views = 8;
    const AdjustScene scene = makeAdjustScene(sceneOptions);
    const Rig truth = rigOfState(scene, scene.truth);
    Random random(5);
    AdjustOptions options;
    options.knownNoise = 0.02;
    constexpr int kDraws = 200;
    std::array<double, kRigParameters> squares{};
    CalibrationCovariance stated;
    for (int draw = 0; draw < kDraws; ++draw) {
        const Adjusted found = adjusted(scene.truth, scene.noisy(0.02, random), options);
        const auto errors = rigErrors(truth, rigOfState(scene, found.state));
        for (std::size_t i = 0; i < kRigParameters; ++i) {
            squares[i] += errors[i] * errors[i] / kDraws;
        }
        stated = found.covariance.rig;
    }
    for (std::size_t i = 0; i < kRigParameters; ++i) {
        const double variance = stated.matrix[i * kRigParameters + i];
        // A variance of 200 draws spreads by sqrt(2 / 200) = 10 %; the largest of 26 goes to four of that.
        EXPECT_NEAR(squares[i] / variance, 1.0, 0.4) << i;
    }
}

TEST(Adjuster, EstimatesTheNoiseOfEachCamera) {
    const AdjustScene scene = makeAdjustScene({});
    Random random(6);
    std::vector<AdjustView> views = scene.noisy(0.02, random);
    for (AdjustView& view : views) {
        for (DotObservation& dot : view.dots[kRight]) {
            dot.pixel.x += 0.06 * random.normal();
            dot.pixel.y += 0.06 * random.normal();
        }
    }
    const Adjusted found = adjusted(scene.truth, views, {});
    // 3400 coordinates a camera: 1.2 %, and the parameters are shared evenly.
    EXPECT_NEAR(found.summary.noise[kLeft], 0.02, 0.001);
    EXPECT_NEAR(found.summary.noise[kRight], std::hypot(0.02, 0.06), 0.003);
    EXPECT_NEAR(found.summary.chiSquare, found.summary.freedom, 0.02 * found.summary.freedom);
}

TEST(Adjuster, OutliersTakeNoPartAndMoveNothing) {
    const AdjustScene scene = makeAdjustScene({});
    Random random(7);
    const std::vector<AdjustView> clean = scene.noisy(0.03, random);
    std::vector<AdjustView> views = clean;
    std::vector<DotObservation*> wrong;
    for (AdjustView& view : views) {
        for (auto& list : view.dots) {
            for (DotObservation& dot : list) {
                if (random.uniform() < 0.02) {
                    const double angle = random.uniform(0.0, 6.283);
                    const double distance = random.uniform(0.5, 5.0);
                    dot.pixel.x += distance * std::cos(angle);
                    dot.pixel.y += distance * std::sin(angle);
                    wrong.push_back(&dot);
                }
            }
        }
    }
    ASSERT_GT(wrong.size(), 40U);
    Random again(8);
    const AdjustState start = scene.start(again);
    const Adjusted with = adjusted(start, views, {});
    std::size_t thrownOut = 0;
    std::size_t i = 0;
    for (std::size_t view = 0; view < views.size(); ++view) {
        for (const Side side : {kLeft, kRight}) {
            for (std::size_t k = 0; k < views[view].dots[side].size(); ++k) {
                if (i < wrong.size() && wrong[i] == &views[view].dots[side][k]) {
                    thrownOut += with.views[view].dots[side][k].fate == DotFate::outlier ? 1U : 0U;
                    ++i;
                }
            }
        }
    }
    EXPECT_EQ(thrownOut, wrong.size());  // the least is 16 standard deviations off
    EXPECT_LE(with.summary.outliers, wrong.size() + 2);
    // Beside the adjustment of the same dots without the wrong ones: the same.
    std::vector<AdjustView> rest = clean;
    for (std::size_t view = 0; view < views.size(); ++view) {
        for (const Side side : {kLeft, kRight}) {
            for (std::size_t k = 0; k < views[view].dots[side].size(); ++k) {
                if (with.views[view].dots[side][k].fate == DotFate::outlier) {
                    rest[view].dots[side][k].fate = DotFate::notConfirmed;
                }
            }
        }
    }
    const Adjusted without = adjusted(start, rest, {});
    for (std::size_t k = 0; k < kCameraParameters; ++k) {
        const double sigma = std::sqrt(without.covariance.shared[k * (kSharedParameters + 1)]);
        EXPECT_NEAR(with.state.cameras[kLeft].p[k], without.state.cameras[kLeft].p[k], 1e-3 * sigma) << k;
    }
}

// Moves what the right camera sees of a view as if the plate had moved between both exposures.
void movePlate(AdjustScene& scene, std::vector<AdjustView>& views, std::size_t view, double degrees, double shift) {
    AdjustScene other = scene;
    MotionParameters& pose = other.truth.poses[view];
    const double angle = degrees * 0.0174533;
    pose = composed({angle * 0.6, angle * 0.8, 0.0, shift, 0.0, 0.0}, pose);
    predictDots(other);
    for (std::size_t k = 0; k < views[view].dots[kRight].size(); ++k) {
        DotObservation& dot = views[view].dots[kRight][k];
        for (const DotObservation& moved : other.views[view].dots[kRight]) {
            if (moved.index == dot.index) {
                for (const DotObservation& before : scene.views[view].dots[kRight]) {
                    if (before.index == dot.index) {
                        dot.pixel.x += moved.pixel.x - before.pixel.x;
                        dot.pixel.y += moved.pixel.y - before.pixel.y;
                    }
                }
            }
        }
    }
}

TEST(Adjuster, AViewMovedBetweenItsImagesIsLeftOutAndNamed) {
    for (const bool turned : {true, false}) {
        AdjustScene scene = makeAdjustScene({});
        Random random(9);
        std::vector<AdjustView> views = scene.noisy(0.03, random);
        movePlate(scene, views, 4, turned ? 0.2 : 0.0, turned ? 0.0 : 0.5);
        const Adjusted found = adjusted(scene.start(random), views, {});
        EXPECT_EQ(found.summary.viewsLeftOut, 1U);
        for (std::size_t view = 0; view < views.size(); ++view) {
            EXPECT_EQ(found.views[view].leftOut.empty(), view != 4) << view;
        }
        EXPECT_NE(found.views[4].leftOut.find("moved"), std::string::npos) << found.views[4].leftOut;
        const Consistency c = consistencyOf(rigErrors(rigOfState(scene, scene.truth), rigOfState(scene, found.state)),
                                            found.covariance.rig);
        EXPECT_LE(c.square, c.freedom + 5.0 * std::sqrt(2.0 * c.freedom));
    }
}

TEST(Adjuster, OneWrongDotDoesNotCostItsView) {
    const AdjustScene scene = makeAdjustScene({});
    Random random(12);
    std::vector<AdjustView> views = scene.noisy(0.01, random);
    views[3].dots[kLeft][40].pixel.x += 5.0;
    const Adjusted found = adjusted(scene.truth, views, {});
    EXPECT_EQ(found.summary.viewsLeftOut, 0U);
    EXPECT_EQ(found.views[3].dots[kLeft][40].fate, DotFate::outlier);
}

TEST(Adjuster, SeveralMovedViewsAreAllLeftOut) {
    AdjustSceneOptions options;
    options.views = 30;
    AdjustScene scene = makeAdjustScene(options);
    Random random(10);
    std::vector<AdjustView> views = scene.noisy(0.03, random);
    for (const std::size_t view : {2U, 5U, 9U, 11U, 17U, 20U, 21U, 25U, 28U}) {
        movePlate(scene, views, view, 0.0, 0.5 + 0.1 * static_cast<double>(view));
    }
    const Adjusted found = adjusted(scene.truth, views, {});
    EXPECT_EQ(found.summary.viewsLeftOut, 9U);
    EXPECT_NEAR(found.summary.noise[kLeft], 0.03, 0.002);
    // It ends with plain least squares: the residuals are those of the noise, and the gradient is nothing.
    EXPECT_NEAR(found.summary.chiSquare, found.summary.freedom, 5.0 * std::sqrt(2.0 * found.summary.freedom));
    const Consistency c =
        consistencyOf(rigErrors(rigOfState(scene, scene.truth), rigOfState(scene, found.state)), found.covariance.rig);
    EXPECT_LE(c.square, c.freedom + 5.0 * std::sqrt(2.0 * c.freedom));
}

// Either refused in words that name a parameter, or with finite results.
void expectFiniteOrNamed(const AdjustState& start, const std::vector<AdjustView>& views, const AdjustOptions& options,
                         const char* what) {
    try {
        const Adjusted found = adjusted(start, views, options);
        for (const double value : found.covariance.rig.matrix) {
            EXPECT_TRUE(std::isfinite(value)) << what;
        }
        for (std::size_t i = 0; i < kRigParameters; ++i) {
            EXPECT_GE(found.covariance.rig.matrix[i * (kRigParameters + 1)], 0.0) << what;
        }
        for (const Side side : {kLeft, kRight}) {
            for (const double value : found.state.cameras[side].p) {
                EXPECT_TRUE(std::isfinite(value)) << what;
            }
        }
        for (const MotionParameters& pose : found.state.poses) {
            for (const double value : pose) {
                EXPECT_TRUE(std::isfinite(value)) << what;
            }
        }
        EXPECT_TRUE(std::isfinite(found.summary.chiSquare));
    } catch (const Fault& fault) {
        EXPECT_FALSE(std::string(fault.what()).empty()) << what;
        std::printf("%s: %s\n", what, fault.what());
    }
}

// A library does not print: also where the solver meets equations that it cannot solve.
TEST(Adjuster, PoorDataAreRefusedOrHonest) {
    testing::internal::CaptureStderr();
    Random random(11);
    AdjustSceneOptions few;
    few.views = 3;
    const AdjustScene three = makeAdjustScene(few);
    expectFiniteOrNamed(three.truth, three.noisy(0.03, random), {}, "three views");

    AdjustScene same = makeAdjustScene({});
    for (MotionParameters& pose : same.truth.poses) {
        pose = same.truth.poses.front();
    }
    predictDots(same);
    expectFiniteOrNamed(same.truth, same.noisy(0.03, random), {}, "all views from one place");

    AdjustScene parallel = makeAdjustScene({});
    for (std::size_t view = 0; view < parallel.truth.poses.size(); ++view) {
        MotionParameters& pose = parallel.truth.poses[view];
        pose = {0.0, 0.0, 0.2 * static_cast<double>(view), 0.0, 0.0, 330.0 + 5.0 * static_cast<double>(view)};
    }
    predictDots(parallel);
    AdjustOptions factors;
    factors.estimateFactors = true;
    factors.estimateBow = true;
    expectFiniteOrNamed(parallel.truth, parallel.noisy(0.03, random), {}, "all plates parallel");
    expectFiniteOrNamed(parallel.truth, parallel.noisy(0.03, random), factors, "all plates parallel, all estimated");

    const AdjustScene scene = makeAdjustScene({});
    for (const std::size_t dots : {0U, 1U, 2U, 3U, 5U, 6U, 9U}) {
        std::vector<AdjustView> views = scene.noisy(0.03, random);
        for (std::size_t view = 3; view < 6; ++view) {
            for (auto& list : views[view].dots) {
                list.resize(dots);
            }
        }
        expectFiniteOrNamed(scene.truth, views, {}, "views with few dots");
        for (AdjustView& view : views) {
            for (auto& list : view.dots) {
                list.resize(std::min<std::size_t>(dots, list.size()));
            }
        }
        expectFiniteOrNamed(scene.truth, views, {}, "few dots in every view");
    }
    // Dots along one line of the plate.
    std::vector<AdjustView> line = scene.noisy(0.03, random);
    for (AdjustView& view : line) {
        for (auto& list : view.dots) {
            std::erase_if(list, [](const DotObservation& dot) { return dot.index.y != 2; });
        }
    }
    expectFiniteOrNamed(scene.truth, line, {}, "a line of dots");
    line = scene.noisy(0.03, random);
    for (auto& list : line[5].dots) {
        std::erase_if(list, [](const DotObservation& dot) { return dot.index.y != 2; });
    }
    expectFiniteOrNamed(scene.truth, line, {}, "a line of dots in one view");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

// A camera that no dot measures must not pass for one that is known without error.
TEST(Adjuster, ACameraWhoseDotsFallOutIsRefusedByName) {
    const AdjustScene scene = makeAdjustScene({});
    Random random(12);
    for (const Side side : {kLeft, kRight}) {
        std::vector<AdjustView> views = scene.noisy(0.03, random);
        for (std::size_t view = 0; view < views.size(); ++view) {
            views[view].dots[side].resize(view < 3 ? 5 : 0);
        }
        AdjustState state = scene.truth;
        try {
            adjust(state, views, {});
            ADD_FAILURE() << "adjusted with 15 dots of a camera";
        } catch (const Fault& fault) {
            const std::string name =
                side == kLeft ? "the left camera has too few dots" : "the right camera has too few";
            EXPECT_NE(std::string(fault.what()).find(name), std::string::npos) << fault.what();
        }
    }
}

TEST(Adjuster, AViewOfTheParallelCameraAloneTakesNoPart) {
    AdjustSceneOptions options;
    options.models = {2, 0};
    const AdjustScene scene = makeAdjustScene(options);
    Random random(13);
    std::vector<AdjustView> views = scene.noisy(0.03, random);
    views[4].dots[kRight].clear();
    const Adjusted found = adjusted(scene.truth, views, {});
    EXPECT_NE(found.views[4].leftOut.find("parallel camera alone"), std::string::npos) << found.views[4].leftOut;
    EXPECT_EQ(found.summary.viewsLeftOut, 1U);
    for (const double value : found.covariance.poses[4]) {
        EXPECT_EQ(value, 0.0);
    }
    expectTruth(scene, found, 1e-3);
}

TEST(Adjuster, GarbageIsRefused) {
    const AdjustScene scene = makeAdjustScene({});
    for (const double bad : {std::nan(""), std::numeric_limits<double>::infinity(), 1e300, -1e300}) {
        for (int what = 0; what < 5; ++what) {
            AdjustState start = scene.truth;
            std::vector<AdjustView> views = scene.views;
            if (what == 0) {
                start.cameras[kLeft].p[kFx] = bad;
            } else if (what == 1) {
                start.poses[2][1] = bad;
            } else if (what == 2) {
                start.relative[4] = bad;
            } else if (what == 3) {
                views[1].dots[kRight][5].pixel.x = bad;
            } else {
                views[0].dots[kLeft][0].place[1] = bad;
            }
            testing::internal::CaptureStderr();
            expectFiniteOrNamed(start, views, {}, "garbage");
            EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << what << " " << bad;
        }
    }
}

}  // namespace
}  // namespace zelmtest
