// Arrays in NumPy's format .npy, and archives of them, .npz.
#ifndef ZELM_MEASURE_NPY_ARRAY_H
#define ZELM_MEASURE_NPY_ARRAY_H

#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "namedArrays.h"

namespace zelm::measure {

// A file of doubles; the shape's product is their number.
std::string npyBytes(std::span<const std::size_t> shape, std::span<const double> values);
// Throws Fault for anything but an array of doubles, floats or integers, little-endian, of at most two dimensions.
NamedArray npyArray(std::string_view bytes, const std::string& name);

// An archive, not compressed.
std::string npzBytes(const std::vector<std::pair<std::string, std::string>>& arrays);
// Throws Fault; arrays of other types are passed over.
NamedArrays arraysOfNpz(std::string_view bytes);

}  // namespace zelm::measure

#endif
