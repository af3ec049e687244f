// Numbers in text that people write.
#ifndef ZELM_TOOL_NUMBER_TEXT_H
#define ZELM_TOOL_NUMBER_TEXT_H

#include <cstddef>
#include <numbers>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelm::tool {

// Angles are told to people in degrees.
inline constexpr double kDegreesPerRadian = 180.0 / std::numbers::pi;

// The number that the whole text is, with a point for decimals whatever the locale; nothing when it is none or not
// finite.
std::optional<double> numberOf(std::string_view text);

// "1 view", "2 views": a number with what it counts.
std::string counted(std::size_t count, std::string_view what);

// The numbers of a list "x,y,..."; empty when one of them is none.
std::vector<double> numbersOf(std::string_view list);

}  // namespace zelm::tool

#endif
