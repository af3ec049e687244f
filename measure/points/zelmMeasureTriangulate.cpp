// The exported function that makes points of pixel pairs.
#include <cmath>
#include <vector>

#include "records.h"
#include "triangulator.h"

using namespace zelm::measure;

namespace {

void give(const SpacePoint& p, std::size_t i, const ZelmMeasurePoints& out) {
    if (out.statuses != nullptr) {
        out.statuses[i] = static_cast<std::int32_t>(p.status);
    }
    if (!p.hasNumbers()) {
        return;
    }
    if (out.positions != nullptr) {
        out.positions[3 * i] = p.position.x;
        out.positions[3 * i + 1] = p.position.y;
        out.positions[3 * i + 2] = p.position.z;
    }
    if (out.errors != nullptr) {
        out.errors[2 * i] = p.errorLeft;
        out.errors[2 * i + 1] = p.errorRight;
    }
    if (out.angles != nullptr) {
        out.angles[i] = p.angle;
    }
}

}  // namespace

std::int32_t zelmMeasureTriangulate(ZelmMeasureRig* handle, std::int64_t count, const double* left, const double* right,
                                    const ZelmMeasurePoints* points) {
    return withRig(handle, [&](const Rig& rig) {
        require(count >= 0 && ((left != nullptr && right != nullptr) || count == 0),
                "the pixels are NULL, or their number is negative");
        const ZelmMeasurePoints out = recordOf(points);
        require(std::isfinite(out.maxError) && out.maxError >= 0.0, "the largest error is negative or not finite");
        require(out.outside == 0 || out.outside == 1, "the field outside is 0 or 1");
        const Triangulator triangulate(rig, {out.maxError, out.outside == 1});
        // Written at the end alone: a failure leaves the caller's arrays untouched.
        std::vector<SpacePoint> results(static_cast<std::size_t>(count));
        for (std::size_t i = 0; i < results.size(); ++i) {
            results[i] = triangulate({left[2 * i], left[2 * i + 1]}, {right[2 * i], right[2 * i + 1]});
        }
        for (std::size_t i = 0; i < results.size(); ++i) {
            give(results[i], i, out);
        }
    });
}
