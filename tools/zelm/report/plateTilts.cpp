#include "plateTilts.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <vector>

#include "numberText.h"

namespace zelm::tool {

std::string tiltList(const ImageSetFindings& findings) {
    constexpr std::size_t kMaxTilts = 12;
    const auto side = [&](double ZelmMeasurePairedView::*tilt) {
        std::vector<std::string> list;
        for (const ZelmMeasurePairedView& view : findings.views) {
            list.push_back(view.*tilt < 0.0 ? "?" : fmt::format("{:.0f}", kDegreesPerRadian * view.*tilt));
        }
        if (list.size() > kMaxTilts) {
            list.resize(kMaxTilts);
            list.emplace_back("...");
        }
        return fmt::format("{}", fmt::join(list, ", "));
    };
    return fmt::format("left {}, right {} degrees", side(&ZelmMeasurePairedView::leftTilt),
                       side(&ZelmMeasurePairedView::rightTilt));
}

double maxTilt(const ImageSetFindings& findings) {
    double most = 0.0;
    for (const ZelmMeasurePairedView& view : findings.views) {
        most = std::max({most, view.leftTilt, view.rightTilt});
    }
    return kDegreesPerRadian * most;
}

}  // namespace zelm::tool
