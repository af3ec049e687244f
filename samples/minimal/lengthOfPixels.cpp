// Measures the distance of two points, with its uncertainty, from their pixels in both images:
//
//     lengthOfPixels rig.zcal 377 331 401 334  363 459 374 457
//
// are the left and the right pixel of the first point, then of the second. rig.zcov is expected beside rig.zcal.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "zelmMeasure.h"

namespace {

struct RigCloser {
    void operator()(ZelmMeasureRig* rig) const { zelmMeasureRigClose(&rig); }
};
using Rig = std::unique_ptr<ZelmMeasureRig, RigCloser>;

std::vector<char> contentOf(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    if (!file) {
        throw std::runtime_error(name + ": cannot be read");
    }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// The library tells in words why it refuses a file.
Rig openRig(const std::string& name, const std::string& covarianceName) {
    const std::vector<char> block = contentOf(name);
    ZelmMeasureRig* opened = nullptr;
    const std::int32_t status = zelmMeasureRigOpen(block.data(), static_cast<std::int64_t>(block.size()), &opened);
    Rig rig(opened);
    if (status < 0) {
        throw std::runtime_error(name + ": " + (rig ? zelmMeasureRigError(rig.get()) : "out of memory"));
    }
    const std::vector<char> covariance = contentOf(covarianceName);
    if (zelmMeasureCovarianceLoad(rig.get(), covariance.data(), static_cast<std::int64_t>(covariance.size())) < 0) {
        throw std::runtime_error(covarianceName + ": " + zelmMeasureRigError(rig.get()));
    }
    return rig;
}

void printLength(ZelmMeasureRig* rig, const double (&left)[4], const double (&right)[4]) {
    const std::int64_t ends[2] = {0, 1};
    std::int32_t status = ZELM_MEASURE_LENGTH_NO_POINT;
    double length = 0.0;
    double expanded = 0.0;
    const ZelmMeasureLengths lengths = {sizeof(lengths), 0, &status, &length, nullptr, nullptr, nullptr, &expanded};
    if (zelmMeasureLengths(rig, 2, left, right, nullptr, 1, ends, &lengths) < 0) {
        throw std::runtime_error(zelmMeasureRigError(rig));
    }
    if (status != ZELM_MEASURE_LENGTH_OK) {
        throw std::runtime_error("these pixels show no two points in front of the cameras");
    }
    std::printf("%.4f +- %.4f (95 %%)\n", length, expanded);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 10) {
        std::fprintf(stderr, "usage: lengthOfPixels rig.zcal xL yL xR yR xL yL xR yR\n");
        return 2;
    }
    try {
        const std::string name = argv[1];
        const Rig rig = openRig(name, name.substr(0, name.rfind('.')) + ".zcov");
        double numbers[8];
        for (int i = 0; i < 8; ++i) {
            numbers[i] = std::strtod(argv[2 + i], nullptr);
        }
        printLength(rig.get(), {numbers[0], numbers[1], numbers[4], numbers[5]},
                    {numbers[2], numbers[3], numbers[6], numbers[7]});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
