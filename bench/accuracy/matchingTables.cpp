#include "matchingTables.h"

#include <cstdio>
#include <initializer_list>

#include "matchingAccuracy.h"

namespace zelm::accuracy {
namespace {

struct Course {
    const char* name;
    LineThrough through;
    double lowAngle;
    double highAngle;
};

constexpr Course kCourses[] = {{"parallel to an axis, through pixel centres", LineThrough::pixelCentres, 0.0, 0.0},
                               {"parallel to an axis, anywhere", LineThrough::anywhere, 0.0, 0.0},
                               {"up to 5 deg", LineThrough::anywhere, 0.0, 5.0},
                               {"5 to 20 deg", LineThrough::anywhere, 5.0, 20.0},
                               {"20 to 40 deg", LineThrough::anywhere, 20.0, 40.0},
                               {"45 deg", LineThrough::anywhere, 45.0, 45.0}};

constexpr const char* kModes[] = {"Quarter", "Checker", "Full"};

MatchingCase onCourse(const Course& course, int trials) {
    MatchingCase setting;
    setting.through = course.through;
    setting.lowAngleDegrees = course.lowAngle;
    setting.highAngleDegrees = course.highAngle;
    setting.trials = trials;
    return setting;
}

void printFound(const MatchingFigures& figures) {
    if (figures.found < figures.trials) {
        std::printf(" (%.1f %%)", 100.0 * figures.found / figures.trials);
    }
    std::printf(" |");
    std::fflush(stdout);
}

void printBiasAndError(const MatchingCase& setting) {
    const MatchingFigures figures = matchTextures(setting);
    std::printf(" %+.4f / %.4f", figures.bias, figures.rms);
    printFound(figures);
}

void printErrorAndBound(const MatchingCase& setting) {
    const MatchingFigures figures = matchTextures(setting);
    std::printf(" %.4f / %.4f", figures.rms, figures.bound);
    printFound(figures);
}

void printGrains(int trials) {
    std::printf("\n### Line and grain, no noise, template 33 x 33: bias / error\n\n");
    std::printf(
        "| line | grain 0.8 | grain 1.0 | grain 1.5 | grain 2.5 | grain 4.0 |\n|---|---:|---:|---:|---:|---:|\n");
    for (const Course& course : kCourses) {
        std::printf("| %s |", course.name);
        for (const double grain : {0.8, 1.0, 1.5, 2.5, 4.0}) {
            MatchingCase setting = onCourse(course, trials);
            setting.grain = grain;
            printBiasAndError(setting);
        }
        std::printf("\n");
    }
}

void printSizes(int trials) {
    std::printf("\n### Line and template size, no noise, grain 1.5: bias / error\n\n");
    std::printf("| line | 11 x 11 | 17 x 17 | 33 x 33 | 49 x 49 |\n|---|---:|---:|---:|---:|\n");
    for (const Course& course : kCourses) {
        std::printf("| %s |", course.name);
        for (const int size : {11, 17, 33, 49}) {
            MatchingCase setting = onCourse(course, trials);
            setting.size = size;
            printBiasAndError(setting);
        }
        std::printf("\n");
    }
}

void printMasksAndModes(int trials) {
    std::printf("\n### Masks and coarse sampling, no noise, template 33 x 33, grain 1.5: bias / error\n\n");
    std::printf("| masks | line | Quarter | Checker | Full |\n|---|---|---:|---:|---:|\n");
    constexpr const char* kMasks[] = {"none", "template", "image", "both"};
    for (int masks = 0; masks < 4; ++masks) {
        for (const Course* course : {&kCourses[0], &kCourses[2]}) {
            std::printf("| %s | %s |", kMasks[masks], course->name);
            for (int mode = 0; mode < 3; ++mode) {
                MatchingCase setting = onCourse(*course, trials);
                setting.templateMask = (masks & 1) != 0;
                setting.searchMask = (masks & 2) != 0;
                setting.mode = mode;
                printBiasAndError(setting);
            }
            std::printf("\n");
        }
    }
}

void printNoise(int trials) {
    std::printf("\n### Noise, lines through pixel centres, grain 1.5, contrast 40: error / bound\n\n");
    std::printf("| template | sampling | noise 1 | noise 2 | noise 5 | noise 10 | noise 20 |\n");
    std::printf("|---|---|---:|---:|---:|---:|---:|\n");
    for (const int size : {11, 17, 33}) {
        for (int mode = 0; mode < 3; ++mode) {
            std::printf("| %d x %d | %s |", size, size, kModes[mode]);
            for (const double noise : {1.0, 2.0, 5.0, 10.0, 20.0}) {
                MatchingCase setting = onCourse(kCourses[0], trials);
                setting.size = size;
                setting.mode = mode;
                setting.noise = noise;
                printErrorAndBound(setting);
            }
            std::printf("\n");
        }
    }
}

}  // namespace

void printMatchingTables(int trials) {
    printGrains(trials);
    printSizes(trials);
    printMasksAndModes(trials);
    printNoise(trials);
}

}  // namespace zelm::accuracy
