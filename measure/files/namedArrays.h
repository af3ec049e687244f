// Arrays of numbers with the names that a file gives them.
#ifndef ZELM_MEASURE_NAMED_ARRAYS_H
#define ZELM_MEASURE_NAMED_ARRAYS_H

#include <cstddef>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "space3.h"

namespace zelm::measure {

struct NamedArray {
    std::vector<std::size_t> shape;  // rows before columns; empty for a single number
    std::vector<double> values;      // row by row
};

// "a.b" is the member b of the structure a.
class NamedArrays {
public:
    using Names = std::initializer_list<const char*>;

    // Refuses a second array of the same name.
    void add(const std::string& name, NamedArray array);
    void merge(const NamedArrays& other);

    // The first of the names that is there; NULL when none is.
    const NamedArray* find(Names names) const;
    const NamedArray& require(Names names) const;
    Matrix3 matrix3(Names names) const;
    Vector3 vector3(Names names) const;
    // A whole number from 1 on; 0 when there is none of the names.
    int count(Names names) const;

private:
    std::map<std::string, NamedArray> arrays;
};

}  // namespace zelm::measure

#endif
