// The view whose plate is the world frame: the first one that a calibration is given.
#ifndef ZELM_TOOL_REFERENCE_VIEW_H
#define ZELM_TOOL_REFERENCE_VIEW_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "pairReading.h"
#include "viewQuality.h"

namespace zelm::tool {

// Reads the views of a calibration with the reference in front. It is the one that the user names, else view 0; if that
// cannot be read or is blurred against the others, the sharpest of the others.
class ReferenceReader {
public:
    // Throws Failure for a view that does not exist. All outlive the reader.
    ReferenceReader(const std::vector<ViewFiles>& views, const std::optional<int>& wanted, const PairSettings& settings,
                    const Console& console);

    // Throws what readPairs() throws, and Failure when the view that the user names cannot be read.
    PairReading read();

    // After an adjustment that left out the reference: whether another one was put in its place, so that all has to be
    // done again with `reading`.
    bool replace(PairReading& reading, const std::vector<std::string>& leftOut);

    // Takes the views that have a reason out of the reading. Throws Failure when that of the user's reference has one.
    void setAside(PairReading& reading, const std::vector<std::string>& reasons);

    // How sharp the views of the reading are.
    const std::vector<ViewSharpness>& sharpness() const { return sharp; }

    // What to tell of the reference; says why where it is not view 0 as given.
    ReferenceView described(const PairReading& reading) const;

private:
    // The place of the sharpest view; views[i] with isFit[i] false are none.
    std::optional<std::size_t> sharpest(const std::vector<bool>& isFit) const;
    void putFirst(PairReading& reading, std::size_t place);
    std::size_t numberOf(const ViewFiles& view) const;

    const std::vector<ViewFiles>& given;
    std::optional<int> wanted;
    const PairSettings& settings;
    const Console& console;
    std::vector<ViewSharpness> sharp;
    std::string reason;  // why the reference is another view than 0
};

}  // namespace zelm::tool

#endif
