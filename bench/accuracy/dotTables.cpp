#include "dotTables.h"

#include <cstdio>

#include "dotAccuracy.h"
#include "dotTrials.h"

namespace zelm::accuracy {
namespace {

constexpr double kAside = 1.4;  // pixels of the predictions, in x and y

void printErrors(const char* title, double contrast, double falloff, int views) {
    std::printf("\n### %s\n\n", title);
    std::printf(
        "| radius | blur | noise 0 | noise 1 | noise 3 | noise 8 | mean error x, y at noise 1 | time |\n"
        "|---:|---:|---:|---:|---:|---:|---:|---:|\n");
    for (const double radius : {4.0, 6.0, 10.0, 20.0}) {
        for (const double blur : {0.4, 1.0, 1.5, 2.5}) {
            std::printf("| %.0f | %.1f |", radius, blur);
            DotFigures atOne;
            for (const double noise : {0.0, 1.0, 3.0, 8.0}) {
                ReadingCase setting;
                setting.radius = radius;
                setting.blur = blur;
                setting.noise = noise;
                setting.contrast = contrast;
                setting.falloff = falloff;
                setting.views = views;
                const DotFigures f = refinePlates(setting, kAside, true);
                if (f.reader > 0.0) {
                    std::printf(" %.4f", f.reader);
                } else {
                    std::printf(" —");  // found none
                }
                std::printf(" / %.4f / %.4f", f.rms, f.bound);
                if (f.placed < f.dots) {
                    std::printf(" (%d of %d placed)", f.placed, f.dots);
                }
                std::printf(" |");
                std::fflush(stdout);
                atOne = noise == 1.0 ? f : atOne;
            }
            std::printf(" %+.4f, %+.4f | %.0f us |\n", atOne.biasX, atOne.biasY, atOne.microseconds);
        }
    }
}

void printWrongPlaces(int trials) {
    constexpr const char* kNames[kWrongPlaces] = {"beside a dot", "anywhere",         "other polarity",
                                                  "other size",   "ellipse too long", "speckles"};
    std::printf("\n### Predictions where no such dot is\n\n| predicted | trials | led to a dot | accepted wrongly |\n");
    std::printf("|---|---:|---:|---:|\n");
    const WrongPlaceFigures f = tryWrongPlaces(trials, 11);
    for (std::size_t k = 0; k < kWrongPlaces; ++k) {
        std::printf("| %s | %d | %d | %d |\n", kNames[k], f.trials[k], f.accepted[k], f.wrong[k]);
    }
}

void printDisturbed(int trials) {
    struct Row {
        const char* name;
        Disturbance kind;
        double least, most;
    };
    constexpr Row kRows[] = {{"nothing", Disturbance::nothing, 0.0, 0.0},
                             {"5 to 20 % of the outline hidden", Disturbance::halfPlane, 0.05, 0.2},
                             {"20 to 40 % hidden", Disturbance::halfPlane, 0.2, 0.4},
                             {"40 to 60 % hidden", Disturbance::halfPlane, 0.4, 0.6},
                             {"a bar over it", Disturbance::bar, 0.0, 0.0},
                             {"a highlight", Disturbance::highlight, 0.0, 0.0},
                             {"clipped levels", Disturbance::saturation, 0.0, 0.0},
                             {"another disc near", Disturbance::nearDisc, 0.0, 0.0}};
    std::printf(
        "\n### Disturbed dots\n\n| what disturbs | placed | flagged of these | error | over its standard deviation | "
        "worst | beyond 0.05 pixel and 5 standard deviations |\n|---|---:|---:|---:|---:|---:|---:|\n");
    for (const Row& row : kRows) {
        const DisturbanceFigures f = tryDisturbed(row.kind, trials, 21, row.least, row.most);
        std::printf("| %s | %d of %d | %d | %.4f | %.2f | %.3f | %d |\n", row.name, f.accepted, f.trials, f.flagged,
                    f.rms, f.pull, f.worst, f.astray);
        std::fflush(stdout);
    }
}

}  // namespace

void printDotTables(int views) {
    printErrors("Contrast 120, even light: reader / by all pixels / bound", 120.0, 0.0, views);
    printErrors("Contrast 220, 60 % of the light lost at the outermost dot: reader / by all pixels / bound", 220.0, 0.6,
                views);
    printWrongPlaces(2500 * views);
    printDisturbed(250 * views);
}

}  // namespace zelm::accuracy
