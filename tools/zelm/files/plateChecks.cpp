#include "plateChecks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "failure.h"

namespace zelm::tool {
namespace {

constexpr double kMaxGridDots = 1e6;    // a field with more dots is a mistake in the units
constexpr double kMinDotShare = 0.05;   // of the pitch: a smaller dot is one too, and no image shows it
constexpr double kMaxPitchRatio = 4.0;  // of the pitches: more is a misplaced decimal point
// Pitches off a whole number of them: decimals that were rounded to six digits leave less, a pitch that is wrong by a
// hundredth of a per cent more.
constexpr double kMaxPitchesOff = 1e-4;

// A length of the description, and what the file calls it.
struct Named {
    const char* name;
    double length;
};

class SizeChecks {
public:
    SizeChecks(const std::string& plateFile, const Zelm2ViewPatternDesc& p, bool isTruth)
        : file(plateFile),
          fieldX{isTruth ? "d0" : "fieldWidth", p.d0},
          fieldY{isTruth ? "d1" : "fieldHeight", p.d1},
          dot{isTruth ? "d2" : "dotDiameter", p.d2},
          marker{isTruth ? "d3" : "markerDiameter", p.d3},
          pitchX{isTruth ? "d4" : "dotPitchX", p.d4},
          pitchY{isTruth ? "d5" : "dotPitchY", p.d5},
          markerX{isTruth ? "d6" : "markerDistanceX", p.d6},
          markerY{isTruth ? "d7" : "markerDistanceY", p.d7} {}

    void run() const {
        checkPitches();
        checkDots();
        checkAxis(fieldX, pitchX, markerX);
        checkAxis(fieldY, pitchY, markerY);
    }

private:
    void checkPitches() const {
        const double larger = std::max(pitchX.length, pitchY.length);
        const double smaller = std::min(pitchX.length, pitchY.length);
        if (larger > kMaxPitchRatio * smaller) {
            failUsage("{}: {} {} and {} {} differ by a factor of {:.3g}: correct the one that is wrong", file,
                      pitchX.name, pitchX.length, pitchY.name, pitchY.length, larger / smaller);
        }
        if ((fieldX.length / pitchX.length + 1.0) * (fieldY.length / pitchY.length + 1.0) > kMaxGridDots) {
            failUsage("{}: {} and {} hold over a million dots: are all lengths in the same units?", file, fieldX.name,
                      fieldY.name);
        }
    }

    void checkDots() const {
        const Named& pitch = pitchX.length <= pitchY.length ? pitchX : pitchY;
        if (marker.length <= dot.length) {
            failUsage("{}: {} {} must be larger than {} {}: markers are told from dots by their size", file,
                      marker.name, marker.length, dot.name, dot.length);
        }
        if (dot.length >= pitch.length) {
            failUsage("{}: {} {} must be smaller than the dot pitch {}: dots would overlap", file, dot.name, dot.length,
                      pitch.length);
        }
        if (0.5 * (dot.length + marker.length) >= pitch.length) {
            failUsage("{}: {} {} is too large: a marker and the dot beside it, {} {} away, would overlap", file,
                      marker.name, marker.length, pitch.name, pitch.length);
        }
        if (dot.length < kMinDotShare * pitch.length) {
            failUsage("{}: {} {} is less than a twentieth of {} {}: are all lengths in the same units?", file, dot.name,
                      dot.length, pitch.name, pitch.length);
        }
    }

    // Markers are dots of the grid, the corner marker is in its middle.
    void checkAxis(const Named& field, const Named& pitch, const Named& distance) const {
        if (distance.length < 0.5 * pitch.length) {
            failUsage("{}: {} {} must be at least one dot pitch, {} {}", file, distance.name, distance.length,
                      pitch.name, pitch.length);
        }
        requireMultiple(distance, pitch, "markers take the place of dots");
        requireMultiple(field, pitch, "it is the distance of the outermost dot centres");
        if (distance.length > 0.5 * field.length + kMaxPitchesOff * pitch.length) {
            failUsage(
                "{}: {} {} puts a marker outside the dot field, which reaches {} to either side of the corner marker: "
                "correct it, or {} {}",
                file, distance.name, distance.length, 0.5 * field.length, field.name, field.length);
        }
    }

    void requireMultiple(const Named& length, const Named& pitch, const char* reason) const {
        const double pitches = length.length / pitch.length;
        if (std::fabs(pitches - std::round(pitches)) <= kMaxPitchesOff) {
            return;
        }
        const double below = std::floor(pitches);
        const std::string least = below > 0.0 ? fmt::format("{:.9g} or ", below * pitch.length) : "";
        failUsage("{}: {} {} is no multiple of {} {} ({}): {}{:.9g} would be, if the pitch is right", file, length.name,
                  length.length, pitch.name, pitch.length, reason, least, (below + 1.0) * pitch.length);
    }

    const std::string& file;
    Named fieldX;
    Named fieldY;
    Named dot;
    Named marker;
    Named pitchX;
    Named pitchY;
    Named markerX;
    Named markerY;
};

}  // namespace

void checkPlateSizes(const std::string& file, const Zelm2ViewPatternDesc& pattern, bool isTruth) {
    SizeChecks(file, pattern, isTruth).run();
}

}  // namespace zelm::tool
