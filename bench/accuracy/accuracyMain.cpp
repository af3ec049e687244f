// zelm_accuracy: prints the tables of docs/accuracy.md.
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "dotTables.h"
#include "matchingTables.h"
#include "readingAccuracy.h"

namespace {

using zelm::accuracy::CentreMiss;
using zelm::accuracy::ReadingCase;
using zelm::accuracy::ReadingFigures;

constexpr double kRadii[] = {6.0, 10.0, 20.0};
constexpr double kBlurs[] = {0.5, 1.0, 1.5};

int views = 4;  // of each setting; more with --views

void printError(const ReadingFigures& f) {
    if (f.found == f.dots && f.wrong == 0) {
        std::printf(" %.4f / %.4f |", f.rms, f.limit());
    } else {
        std::printf(" %.4f / %.4f (%d of %d found) |", f.rms, f.limit(), f.found, f.dots);
    }
    std::fflush(stdout);
}

void printErrors(const char* title, double contrast, double falloff) {
    std::printf("\n### %s\n\n", title);
    std::printf("| radius | blur | noise 0 | noise 1 | noise 2 | noise 3 |\n|---:|---:|---:|---:|---:|---:|\n");
    for (const double radius : kRadii) {
        for (const double blur : kBlurs) {
            std::printf("| %.0f | %.1f |", radius, blur);
            for (int noise = 0; noise <= 3; ++noise) {
                ReadingCase setting;
                setting.radius = radius;
                setting.blur = blur;
                setting.noise = noise;
                setting.contrast = contrast;
                setting.falloff = falloff;
                setting.views = views;
                printError(zelm::accuracy::readPlates(setting));
            }
            std::printf("\n");
        }
    }
}

void printShares() {
    std::printf("\n### Dots found, strong noise\n\n");
    std::printf(
        "| radius | blur | noise 4 | noise 5 | noise 6 | noise 7 | noise 8 |\n|---:|---:|---:|---:|---:|---:|---:|\n");
    for (const double radius : kRadii) {
        for (const double blur : kBlurs) {
            std::printf("| %.0f | %.1f |", radius, blur);
            for (int noise = 4; noise <= 8; ++noise) {
                ReadingCase setting;
                setting.radius = radius;
                setting.blur = blur;
                setting.noise = noise;
                setting.views = views;
                const ReadingFigures f = zelm::accuracy::readPlates(setting);
                std::printf(" %.2f %% (%d of %d images) |", 100.0 * f.share(), f.imagesRead, f.images);
                std::fflush(stdout);
            }
            std::printf("\n");
        }
    }
}

void printMisses() {
    std::printf("\n### What the ellipse centre misses\n\n");
    std::printf(
        "| radius | tilt | no lens distortion | k1 -0.12, k2 0.03 | markers, with lens "
        "|\n|---:|---:|---:|---:|---:|\n");
    for (const double radius : kRadii) {
        for (const double tilt : {0.0, 20.0, 40.0}) {
            const CentreMiss plain = zelm::accuracy::ellipseCentreMiss(radius, tilt, 0.0, 0.0, false);
            const CentreMiss lens = zelm::accuracy::ellipseCentreMiss(radius, tilt, -0.12, 0.03, false);
            const CentreMiss marker = zelm::accuracy::ellipseCentreMiss(radius, tilt, -0.12, 0.03, true);
            std::printf("| %.0f | %.0f deg | %.4f / %.4f | %.4f / %.4f | %.4f / %.4f |\n", radius, tilt, plain.rms,
                        plain.worst, lens.rms, lens.worst, marker.rms, marker.worst);
        }
    }
}

void printReading() {
    printErrors("Contrast 120, even light", 120.0, 0.0);
    printErrors("Contrast 120, 40 % of the light lost at the outermost dot", 120.0, 0.4);
    printErrors("Contrast 220, 60 % of the light lost at the outermost dot", 220.0, 0.6);
    printShares();
    printMisses();
}

// Of dots placed by all their pixels, which need the measuring library; the sample's need the tool's picture reader.
void printDots() {
#ifdef ZELM_ACCURACY_DOTS
    zelm::accuracy::printDotTables(views);
#else
    std::printf("\nno tables of dots: built without the measuring library (ZELM_BUILD_MEASURE)\n");
#endif
#ifdef ZELM_ACCURACY_SAMPLE
    zelm::accuracy::printDeskRigDots();
#else
    std::printf("\nno dots of samples/desk-rig: built without the tool (ZELM_BUILD_TOOL)\n");
#endif
}

void printTimes() {
#ifdef ZELM_ACCURACY_DOTS
    zelm::accuracy::printDotTimes();
#else
    std::printf("\nno times of dots: built without the measuring library (ZELM_BUILD_MEASURE)\n");
#endif
}

int usage() {
    std::fprintf(stderr,
                 "usage: zelm_accuracy [reading|dots|dotTimes|matching] [--views N]\n"
                 "  --views N   views of each reading setting and hundreds of trials of each matching setting, "
                 "default 4\n");
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    std::string subject;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (word == "--views" && i + 1 < argc && std::atoi(argv[i + 1]) > 0) {
            views = std::atoi(argv[++i]);
        } else if (subject.empty() &&
                   (word == "reading" || word == "dots" || word == "dotTimes" || word == "matching")) {
            subject = word;
        } else {
            return usage();
        }
    }
    try {
        if (subject.empty() || subject == "reading") {
            printReading();
        }
        if (subject.empty() || subject == "dots") {
            printDots();
        }
        if (subject.empty() || subject == "dotTimes") {
            printTimes();
        }
        if (subject.empty() || subject == "matching") {
            zelm::accuracy::printMatchingTables(100 * views);
        }
    } catch (const std::exception& e) {
        std::fprintf(stderr, "zelm_accuracy: %s\n", e.what());
        return 1;
    }
    return 0;
}
