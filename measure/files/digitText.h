// Numbers as text that every reader takes for the same number.
#ifndef ZELM_MEASURE_DIGIT_TEXT_H
#define ZELM_MEASURE_DIGIT_TEXT_H

#include <span>
#include <string>

namespace zelm::measure {

// As few digits as give the number back bit by bit, at most 17, always with a decimal point: readers of YAML take
// "1e-05" for a word.
std::string numberText(double value);

// "a, b, c", at most `perLine` numbers a line; later lines begin with `indent`.
std::string numberList(std::span<const double> values, std::size_t perLine, const std::string& indent);

}  // namespace zelm::measure

#endif
