// MATLAB's MAT-files, level 5: numbers, text and structures.
#ifndef ZELM_MEASURE_MAT_BYTES_H
#define ZELM_MEASURE_MAT_BYTES_H

#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "namedArrays.h"

namespace zelm::measure {

// One element as its bytes, without a name: those of a structure's fields, or of a whole variable.
class MatElement {
public:
    static MatElement numbers(std::size_t rows, std::span<const double> values);  // given row by row
    static MatElement text(std::string_view words);
    static MatElement structure(const std::vector<std::pair<std::string, MatElement>>& fields);

    // As an array of this name; "" as a field.
    std::string bytes(std::string_view name) const;

private:
    std::string flags;    // class
    std::string shape;    // dimensions
    std::string content;  // what follows the name
};

// A file with one variable.
std::string matFile(std::string_view name, const MatElement& variable);

// All arrays of numbers of a file, also those within structures; text and other things are passed over. Throws Fault.
NamedArrays arraysOfMatFile(std::string_view file);

}  // namespace zelm::measure

#endif
