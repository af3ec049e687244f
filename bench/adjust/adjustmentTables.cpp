// zelm_adjustment: prints the tables of docs/accuracy.md on the adjustment.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "adjustScene.h"
#include "adjuster.h"
#include "coverageTable.h"
#include "outlineAccuracy.h"

namespace {

using namespace zelm::measure;
using zelmtest::AdjustScene;
using zelmtest::Random;

constexpr double kMaxOfSamePlace = 1.0;  // pixels; a dot farther away was taken for another

void printOutlines() {
    std::printf("| model | radius | tilt 0° | tilt 20° | tilt 40° | tilt 60° |\n|---:|---:|---:|---:|---:|---:|\n");
    for (const int model : {0, 1, 2}) {
        for (const double radius : {5.0, 10.0, 20.0}) {
            std::printf("| %d | %.0f |", model, radius);
            for (const double tilt : {0.0, 20.0, 40.0, 60.0}) {
                Random random(11);
                zelmtest::OutlineErrors errors;
                for (int i = 0; i < 500; ++i) {
                    errors.add(zelmtest::outlineError(zelmtest::randomOutline(model, radius, tilt, random)));
                }
                std::printf(" %.5f / %.5f |", errors.rms(), errors.worst);
            }
            std::printf("\n");
        }
    }
}

void printReader() {
    std::printf("| k1 | radius | tilt 0° | tilt 20° | tilt 40° | tilt 60° |\n|---:|---:|---:|---:|---:|---:|\n");
    for (const double k1 : {-0.3, 0.1}) {
        for (const double radius : {5.0, 10.0, 20.0}) {
            std::printf("| %.1f | %.0f |", k1, radius);
            for (const double tilt : {0.0, 20.0, 40.0, 60.0}) {
                zelmtest::OutlineErrors errors;
                for (const int model : {0, 1, 2}) {
                    errors.add(zelmtest::readerErrors(model, radius, tilt, k1));
                }
                if (errors.count == 0) {
                    std::printf(" not read |");
                } else if (errors.worst > kMaxOfSamePlace) {
                    std::printf(" misread |");
                } else {
                    std::printf(" %.4f / %.4f (%zu) |", errors.rms(), errors.worst, errors.count);
                }
                std::fflush(stdout);
            }
            std::printf("\n");
        }
    }
}

void printCovariance(int draws) {
    static constexpr std::array<const char*, kRigParameters> kNames{
        "left fx",      "left skew",    "left fy",       "left cx",       "left cy",      "left k1",  "left k2",
        "right fx",     "right skew",   "right fy",      "right cx",      "right cy",     "right k1", "right k2",
        "turn x",       "turn y",       "turn z",        "shift x",       "shift y",      "shift z",  "frame turn x",
        "frame turn y", "frame turn z", "frame shift x", "frame shift y", "frame shift z"};
    constexpr double kNoise = 0.02;  // pixels
    zelmtest::AdjustSceneOptions sceneOptions;
    sceneOptions.views = 8;
    const AdjustScene scene = zelmtest::makeAdjustScene(sceneOptions);
    const Rig truth = rigOfState(scene, scene.truth);
    AdjustOptions options;
    options.knownNoise = kNoise;
    std::vector<double> products(kRigParameters * kRigParameters, 0.0);
    CalibrationCovariance stated;
    Random random(12);
    for (int draw = 0; draw < draws; ++draw) {
        AdjustState state = scene.truth;
        std::vector<AdjustView> views = scene.noisy(kNoise, random);
        const AdjustSummary summary = adjust(state, views, options);
        const auto errors = zelmtest::rigErrors(truth, rigOfState(scene, state));
        for (std::size_t i = 0; i < kRigParameters; ++i) {
            for (std::size_t j = 0; j < kRigParameters; ++j) {
                products[i * kRigParameters + j] += errors[i] * errors[j] / draws;
            }
        }
        if (draw == 0) {
            AdjustState there = scene.truth;
            std::vector<AdjustView> all = scene.views;
            stated = covarianceOf(there, all, options, summary).rig;
        }
    }
    std::printf("| parameter | stated standard deviation | of the draws over it |\n|---|---:|---:|\n");
    double worst = 0.0;
    double worstProduct = 0.0;
    const auto at = [&](std::size_t i, std::size_t j) { return stated.matrix[i * kRigParameters + j]; };
    for (std::size_t i = 0; i < kRigParameters; ++i) {
        const double ratio = std::sqrt(products[i * (kRigParameters + 1)] / at(i, i));
        worst = std::max(worst, std::fabs(ratio - 1.0));
        std::printf("| %s | %.3e | %.3f |\n", kNames[i], std::sqrt(at(i, i)), ratio);
        for (std::size_t j = 0; j < i; ++j) {
            worstProduct = std::max(
                worstProduct, std::fabs(products[i * kRigParameters + j] - at(i, j)) / std::sqrt(at(i, i) * at(j, j)));
        }
    }
    std::printf(
        "\n%d draws: standard deviations differ by up to %.1f %%, covariances by up to %.1f %% of the product "
        "of both\n",
        draws, 100.0 * worst, 100.0 * worstProduct);
}

}  // namespace

int main(int argc, char** argv) {
    const std::string what = argc > 1 ? argv[1] : "";
    const int count = argc > 2 ? std::atoi(argv[2]) : 0;
    if (what == "outline") {
        printOutlines();
    } else if (what == "reader") {
        printReader();
    } else if (what == "covariance") {
        printCovariance(count > 0 ? count : 2000);
    } else if (what == "coverage") {
        zelmbench::printCoverage(count > 0 ? count : 1000);
    } else {
        std::fprintf(stderr, "usage: zelm_adjustment outline | reader | covariance [DRAWS] | coverage [RIGS]\n");
        return 2;
    }
    return 0;
}
