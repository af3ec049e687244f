#include "dotProfile.h"

namespace zelm::measure {
namespace {

constexpr double exponential(double x) {
    double sum = 1.0;
    double term = 1.0;
    for (int k = 1; k < 20; ++k) {
        term *= x / k;
        sum += term;
    }
    return sum;
}

}  // namespace

// From node to node, so that it needs no library function and is made by the compiler.
constexpr NormalTable::NormalTable() {
    constexpr double kRoot2Pi = 2.5066282746310005024;
    constexpr double h = 1.0 / kNodesPerUnit;
    const std::size_t middle = kNodes / 2;
    nodes[middle] = {0.5, 1.0 / kRoot2Pi};
    for (std::size_t k = middle; k + 1 < kNodes; ++k) {
        const double a = static_cast<double>(k - middle) * h;
        const double a2 = a * a;
        const double series = 1.0 - a * h / 2.0 + (a2 - 1.0) * h * h / 6.0 - a * (a2 - 3.0) * h * h * h / 24.0 +
                              (a2 * a2 - 6.0 * a2 + 3.0) * h * h * h * h / 120.0;
        nodes[k + 1] = {nodes[k].below + nodes[k].density * h * series,
                        nodes[k].density * exponential(-a * h - h * h / 2)};
        nodes[2 * middle - k - 1] = {1.0 - nodes[k + 1].below, nodes[k + 1].density};
    }
}

constinit const NormalTable kNormalTable;

}  // namespace zelm::measure
