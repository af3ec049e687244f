// NumPy .npz.
#include "arraysPair.h"
#include "npyArray.h"
#include "pairFigures.h"
#include "readers.h"

namespace zelm::measure {
namespace {

using Entries = std::vector<std::pair<std::string, std::string>>;

void addMatrix(Entries& entries, const char* name, std::size_t rows, std::span<const double> values) {
    entries.emplace_back(name, npyBytes(std::array{rows, values.size() / rows}, values));
}

void addVector(Entries& entries, const std::string& name, std::span<const double> values) {
    entries.emplace_back(name, npyBytes(std::array{values.size()}, values));
}

void addCamera(Entries& entries, const std::string& side, const CameraFigures& c) {
    addMatrix(entries, ("K_" + side).c_str(), 3, c.matrix());
    addVector(entries, "D_" + side, c.lens());
    addVector(entries, "size_" + side, std::array{static_cast<double>(c.width), static_cast<double>(c.height)});
    addMatrix(entries, ("R_" + side).c_str(), 3, c.pose.R);
    addMatrix(entries, ("t_" + side).c_str(), 3, c.pose.t);
}

}  // namespace

std::string numpyBytes(const PairFigures& f) {
    Entries entries;
    addCamera(entries, "left", f.left);
    addCamera(entries, "right", f.right);
    addMatrix(entries, "R", 3, f.motion.R);
    addMatrix(entries, "T", 3, f.motion.t);
    addMatrix(entries, "E", 3, f.E);
    addMatrix(entries, "F", 3, f.F);
    if (f.rows) {
        addVector(entries, "size_rectified",
                  std::array{static_cast<double>(f.rows->width), static_cast<double>(f.rows->height)});
        addMatrix(entries, "R1", 3, f.rows->leftRotation);
        addMatrix(entries, "R2", 3, f.rows->rightRotation);
        addMatrix(entries, "P1", 3, f.rows->projection('L'));
        addMatrix(entries, "P2", 3, f.rows->projection('R'));
        addMatrix(entries, "Q", 4, f.rows->reprojection());
    }
    return npzBytes(entries);
}

ForeignPair numpyPair(std::string_view file) {
    return pairOfArrays(arraysOfNpz(file));
}

}  // namespace zelm::measure
