// How often the cause of an image that cannot be read is named rightly, and how often a good image is accused, over
// random plates, cameras, poses, noise and sizes: the tables of docs/diagnosis.md.
//
//   zelm_diagnosis_power [IMAGES [GOOD [FIRST [FOLDER [FAULT]]]]]
//
// IMAGES of each fault (60), GOOD ones (1000), the FIRST seed (1); a FOLDER takes the images that are named wrongly,
// "" none; FAULT: of the faults, that one alone.
#include <zelmMeasure.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "imageFaultTrials.h"
#include "platelessScenes.h"

using namespace zelm::accuracy;

namespace {

struct Judged {
    std::uint64_t seed = 0;
    bool isMade = false;  // false: the reader reads it
    bool isRight = false;
    double directionError = 0.0;  // degrees
    double seconds = 0.0;
    double megapixels = 0.0;
    TrialImage trial;  // without its pixels
    ZelmMeasureImageDiagnosis diagnosis{};
};

// Calls work(0) to work(count - 1), on all processors.
void parallel(std::size_t count, const std::function<void(std::size_t)>& work) {
    std::atomic<std::size_t> next{0};
    std::vector<std::thread> threads;
    for (unsigned k = 0; k < std::max(1U, std::thread::hardware_concurrency()); ++k) {
        threads.emplace_back([&] {
            for (std::size_t i = next++; i < count; i = next++) {
                work(i);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

void writeImage(const std::string& file, const zelm::render::GrayImage& image) {
    if (std::FILE* const out = std::fopen(file.c_str(), "wb")) {
        std::fprintf(out, "P5\n%d %d\n255\n", image.width, image.height);
        std::fwrite(image.pixels.data(), 1, image.pixels.size(), out);
        std::fclose(out);
    }
}

// Fills in what the image shows; wrong ones go to the folder.
void judge(TrialImage trial, const TrialFault* fault, const std::string& folder, Judged& judged) {
    const auto start = std::chrono::steady_clock::now();
    judged.diagnosis = diagnosisOf(trial);
    judged.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    judged.megapixels = 1e-6 * trial.image.width * trial.image.height;
    judged.isMade = true;
    judged.isRight =
        fault != nullptr ? isNamed(*fault, trial, judged.diagnosis) : judged.diagnosis.cause == ZELM_MEASURE_IMAGE_FINE;
    judged.directionError = directionError(trial, judged.diagnosis);
    if (!judged.isRight && !folder.empty()) {
        std::ostringstream file;
        file << folder << '/' << (fault != nullptr ? fault->name : "good") << ' ' << judged.seed << " is "
             << zelmMeasureImageCauseName(judged.diagnosis.cause) << ".pgm";
        writeImage(file.str(), trial.image);
    }
    trial.image.pixels = {};
    judged.trial = std::move(trial);
}

std::vector<Judged> judgeGood(int count, std::uint64_t first, const std::string& folder) {
    std::vector<Judged> list(static_cast<std::size_t>(count));
    parallel(list.size(), [&](std::size_t i) {
        list[i].seed = first + i;
        judge(goodImage(list[i].seed), nullptr, folder, list[i]);
    });
    return list;
}

// Images of a fault, of seeds one after the other; `read` counts those that are read all the same.
std::vector<Judged> judgeFaulty(const TrialFault& fault, int count, std::uint64_t first, const std::string& folder,
                                int& read) {
    constexpr int kMaxRead = 20;  // times as many as are wanted
    std::vector<Judged> made;
    read = 0;
    for (std::uint64_t seed = first; static_cast<int>(made.size()) < count && read < kMaxRead * count;) {
        std::vector<Judged> list(static_cast<std::size_t>(count) - made.size());
        parallel(list.size(), [&](std::size_t i) {
            list[i].seed = seed + i;
            if (auto trial = faultyImage(fault, list[i].seed)) {
                judge(std::move(*trial), &fault, folder, list[i]);
            }
        });
        seed += list.size();
        for (Judged& judged : list) {
            read += judged.isMade ? 0 : 1;
            if (judged.isMade) {
                made.push_back(std::move(judged));
            }
        }
    }
    return made;
}

void printFaulty(const TrialFault& fault, const std::vector<Judged>& list, int read) {
    std::map<std::string, int> others;
    int right = 0;
    for (const Judged& judged : list) {
        right += judged.isRight ? 1 : 0;
        if (!judged.isRight) {
            const std::int32_t cause = judged.diagnosis.cause;
            others[zelmMeasureImageCauseName(cause) + std::string(cause == fault.cause ? " elsewhere" : "")] += 1;
        }
    }
    std::printf("| %s | `%s` | %d | %zu | %d | %.1f %% |", fault.name, zelmMeasureImageCauseName(fault.cause), read,
                list.size(), right, 100.0 * right / static_cast<double>(std::max<std::size_t>(list.size(), 1)));
    for (const auto& [name, times] : others) {
        std::printf(" `%s` %d", name.c_str(), times);
    }
    std::printf(" |\n");
    for (const Judged& judged : list) {
        if (!judged.isRight) {
            std::fprintf(stderr, "%s %llu: %s\n", fault.name, static_cast<unsigned long long>(judged.seed),
                         zelmMeasureImageCauseName(judged.diagnosis.cause));
        }
    }
    std::fflush(stdout);
}

// What decides a cause, of good images and of those of the fault; nothing where the image does not tell.
struct Figure {
    const char* fault;
    const char* name;
    std::optional<double> (*of)(const Judged&);
};

std::optional<double> ifMeasured(const ZelmMeasureImageDiagnosis& d, double value) {
    return d.dots > 0 && d.radius > 0.0 && d.largest > 0.0 ? std::optional(value) : std::nullopt;
}

const Figure kFigures[] = {
    {"no plate", "dots on a lattice", [](const Judged& j) { return std::optional<double>(j.diagnosis.dots); }},
    {"out of focus", "blur over radius",
     [](const Judged& j) { return ifMeasured(j.diagnosis, j.diagnosis.largest / j.diagnosis.radius); }},
    {"out of focus", "largest over smallest blur",
     [](const Judged& j) {
         return ifMeasured(j.diagnosis, j.diagnosis.largest / std::max(j.diagnosis.smallest, 0.05));
     }},
    {"motion blur", "largest over smallest blur",
     [](const Judged& j) {
         return ifMeasured(j.diagnosis, j.diagnosis.largest / std::max(j.diagnosis.smallest, 0.05));
     }},
    {"motion blur", "error of the direction, degrees",
     [](const Judged& j) { return j.trial.direction != 0.0 ? std::optional(j.directionError) : std::nullopt; }},
    {"saturated", "share at the largest levels", [](const Judged& j) { return std::optional(j.diagnosis.saturated); }},
    {"too dark", "bright level", [](const Judged& j) { return std::optional<double>(j.diagnosis.brightLevel); }},
    {"10 or 12 bits in 16", "bright level",
     [](const Judged& j) { return std::optional<double>(j.diagnosis.brightLevel); }},
    {"low contrast", "levels between dots and ground",
     [](const Judged& j) { return ifMeasured(j.diagnosis, std::fabs(j.diagnosis.ground - j.diagnosis.inside)); }},
    {"tilted", "width of a circle", [](const Judged& j) { return ifMeasured(j.diagnosis, j.diagnosis.axisRatio); }},
    {"small dots", "radius, pixels", [](const Judged& j) { return ifMeasured(j.diagnosis, j.diagnosis.radius); }},
    {"another plate", "size of the markers over the described one",
     [](const Judged& j) {
         return j.diagnosis.markers > 0
                    ? std::optional(j.diagnosis.markerRatio * j.trial.pattern.d2 / j.trial.pattern.d3)
                    : std::nullopt;
     }},
    {"another plate", "dots over the least number",
     [](const Judged& j) {
         return ifMeasured(j.diagnosis, static_cast<double>(j.diagnosis.dots) / j.trial.pattern.minDots);
     }},
    {"cut off", "places outside", [](const Judged& j) { return std::optional<double>(j.diagnosis.outside); }},
    {"reflection", "bright places over hidden ones",
     [](const Judged& j) {
         return j.diagnosis.hidden > 0 ? std::optional(static_cast<double>(j.diagnosis.highlights) / j.diagnosis.hidden)
                                       : std::nullopt;
     }},
    {"covered", "hidden places", [](const Judged& j) { return std::optional<double>(j.diagnosis.hidden); }},
    {"a marker is missing", "markers", [](const Judged& j) { return std::optional<double>(j.diagnosis.markers); }},
};

void printSpread(const std::vector<Judged>& list, const Figure& figure) {
    std::vector<double> values;
    for (const Judged& judged : list) {
        if (const auto value = figure.of(judged)) {
            values.push_back(*value);
        }
    }
    std::sort(values.begin(), values.end());
    for (const double share : {0.0, 0.01, 0.5, 0.99, 1.0}) {
        if (!values.empty()) {
            const auto rank = static_cast<std::size_t>(share * static_cast<double>(values.size() - 1) + 0.5);
            std::printf(" %.3g", values[rank]);
        }
    }
    std::printf(" |");
}

void printFigures(const TrialFault& fault, const std::vector<Judged>& good, const std::vector<Judged>& faulty) {
    for (const Figure& figure : kFigures) {
        if (std::string(figure.fault) == fault.name) {
            std::printf("| %s | %s |", fault.name, figure.name);
            printSpread(good, figure);
            printSpread(faulty, figure);
            std::printf("\n");
        }
    }
}

void printGood(const std::vector<Judged>& good) {
    std::size_t unread = 0;
    std::size_t accused = 0;
    for (const Judged& judged : good) {
        unread += judged.diagnosis.status < 0 ? 1U : 0U;
        accused += judged.isRight ? 0U : 1U;
        if (!judged.isRight || judged.diagnosis.status < 0) {
            std::fprintf(stderr, "good %llu: %s\n", static_cast<unsigned long long>(judged.seed),
                         zelmMeasureImageCauseName(judged.diagnosis.cause));
        }
    }
    std::printf("good images: %zu, not read: %zu, accused: %zu\n\n", good.size(), unread, accused);
}

// Sums over all faults.
struct Total {
    std::size_t images = 0;
    std::size_t right = 0;
    double seconds = 0.0;
    double megapixels = 0.0;

    void add(const std::vector<Judged>& list) {
        for (const Judged& judged : list) {
            ++images;
            right += judged.isRight ? 1U : 0U;
            seconds += judged.seconds;
            megapixels += judged.megapixels;
        }
    }
};

}  // namespace

int main(int argc, char** argv) {
    const int count = argc > 1 ? std::atoi(argv[1]) : 60;
    const int goods = argc > 2 ? std::atoi(argv[2]) : 1000;
    const auto first = static_cast<std::uint64_t>(argc > 3 ? std::atoll(argv[3]) : 1);
    const std::string folder = argc > 4 ? argv[4] : "";
    const std::string only = argc > 5 ? argv[5] : "";
    if (count < 0 || goods < 0) {
        std::fprintf(stderr, "zelm_diagnosis_power: numbers of images must be 0 or more\n");
        return 2;
    }
    const std::vector<Judged> good = judgeGood(goods, first, folder);
    printGood(good);
    std::printf(
        "| fault | cause | read all the same | images | named rightly | share | taken for |\n"
        "|---|---|---:|---:|---:|---:|---|\n");
    std::vector<std::pair<const TrialFault*, std::vector<Judged>>> all;
    Total total;
    for (const TrialFault& fault : trialFaults()) {
        if (only.empty() || only == fault.name) {
            int read = 0;
            all.emplace_back(&fault, judgeFaulty(fault, count, first, folder, read));
            printFaulty(fault, all.back().second, read);
            total.add(all.back().second);
        }
    }
    std::printf("\nall: %zu of %zu, %.1f %%; %.2f s a megapixel\n\n", total.right, total.images,
                100.0 * static_cast<double>(total.right) / static_cast<double>(std::max<std::size_t>(total.images, 1)),
                total.seconds / std::max(total.megapixels, 1e-9));
    std::printf(
        "Minimum, 1 %%, median, 99 %%, maximum:\n\n| fault | figure | good images | faulty images |\n"
        "|---|---|---|---|\n");
    for (const auto& [fault, list] : all) {
        printFigures(*fault, good, list);
    }
    return 0;
}
