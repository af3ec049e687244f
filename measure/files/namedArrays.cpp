#include "namedArrays.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "fault.h"

namespace zelm::measure {
namespace {

constexpr double kMaxCount = 1 << 20;  // pixels a side of a calibrated image

std::string listOf(NamedArrays::Names names) {
    std::string text;
    for (const char* name : names) {
        text += text.empty() ? name : std::string(" or ") + name;
    }
    return text;
}

const NamedArray& checked(const NamedArray& array, std::size_t count, NamedArrays::Names names) {
    if (array.values.size() != count) {
        refuse(listOf(names) + " has " + std::to_string(array.values.size()) + " numbers, not " +
               std::to_string(count));
    }
    return array;
}

}  // namespace

void NamedArrays::add(const std::string& name, NamedArray array) {
    if (!std::all_of(array.values.begin(), array.values.end(), [](double v) { return std::isfinite(v); })) {
        refuse(name + " holds a number that is not finite");
    }
    if (!arrays.emplace(name, std::move(array)).second) {
        refuse(name + " is there twice");
    }
}

void NamedArrays::merge(const NamedArrays& other) {
    for (const auto& [name, array] : other.arrays) {
        add(name, array);
    }
}

const NamedArray* NamedArrays::find(Names names) const {
    for (const char* name : names) {
        if (const auto found = arrays.find(name); found != arrays.end()) {
            return &found->second;
        }
    }
    return nullptr;
}

const NamedArray& NamedArrays::require(Names names) const {
    const NamedArray* const found = find(names);
    if (found == nullptr) {
        refuse("no " + listOf(names) + ": is this a calibration of two cameras?");
    }
    return *found;
}

Matrix3 NamedArrays::matrix3(Names names) const {
    const NamedArray& array = checked(require(names), 9, names);
    Matrix3 matrix{};
    std::copy(array.values.begin(), array.values.end(), matrix.begin());
    return matrix;
}

Vector3 NamedArrays::vector3(Names names) const {
    const NamedArray& array = checked(require(names), 3, names);
    return {array.values[0], array.values[1], array.values[2]};
}

int NamedArrays::count(Names names) const {
    const NamedArray* const found = find(names);
    if (found == nullptr) {
        return 0;
    }
    const double value = checked(*found, 1, names).values[0];
    if (!(value >= 1.0 && value <= kMaxCount) || value != std::floor(value)) {
        refuse(listOf(names) + " is no number of pixels");
    }
    return static_cast<int>(value);
}

}  // namespace zelm::measure
