// The readers of files of other programs. Each throws Fault for what it does not take.
#ifndef ZELM_MEASURE_READERS_H
#define ZELM_MEASURE_READERS_H

#include <span>
#include <string_view>

#include "foreignPair.h"

namespace zelm::measure {

ForeignPair openCvPair(std::span<const std::string_view> files);
ForeignPair rosPair(std::string_view left, std::string_view right, double metres);
ForeignPair kalibrPair(std::string_view file, double metres);
ForeignPair matlabPair(std::string_view file);
ForeignPair mrcalPair(std::string_view left, std::string_view right, double metres);
ForeignPair numpyPair(std::string_view file);

}  // namespace zelm::measure

#endif
