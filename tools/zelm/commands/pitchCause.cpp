#include "pitchCause.h"

#include <fmt/format.h>
#include <zelmMeasure.h>

#include <cmath>

namespace zelm::tool {

std::string pitchCause(const Zelm2ViewCalib* calib, const Plate& plate) {
    constexpr double kMinOff = 2e-4;           // of the ratio: less never kept a calibration from its end
    constexpr double kMaxError = 0.5;          // pixels, mean: with the right ratio a camera sees the plate
    constexpr double kMaxDisagreement = 2e-3;  // of what the two cameras tell
    double ratio = 0.0;
    int told = 0;
    for (const char side : {'L', 'R'}) {
        ZelmMeasurePitchRatio found{};
        found.size = sizeof(found);
        if (zelmMeasurePitchRatio(calib, side, &found) < 0 || found.isDetermined == 0 || found.error > kMaxError) {
            continue;
        }
        if (told > 0 && std::fabs(found.ratio - ratio) > kMaxDisagreement) {
            return {};
        }
        ratio = (ratio * told + found.ratio) / (told + 1);
        told += 1;
    }
    if (told == 0 || std::fabs(ratio - 1.0) < kMinOff) {
        return {};
    }
    const double x = plate.pattern.d4;
    const double y = plate.pattern.d5;
    return fmt::format(
        "the ratio of the pitches disagrees with the images by {:#.2g} %: dotPitchX {:.7g} over dotPitchY {:.7g} would "
        "have to be {:.5f} times as large: if dotPitchY is right, dotPitchX is {:.7g}; if dotPitchX is, dotPitchY is "
        "{:.7g}: measure both and correct the plate file",
        100.0 * std::fabs(ratio - 1.0), x, y, ratio, std::round(x * ratio * 1e4) / 1e4,
        std::round(y / ratio * 1e4) / 1e4);
}

}  // namespace zelm::tool
