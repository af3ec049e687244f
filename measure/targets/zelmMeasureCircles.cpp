// The exported function that measures round targets.
#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "records.h"
#include "targetMeasurer.h"

using namespace zelm::measure;

namespace {

void give(const Target& target, std::size_t i, const ZelmMeasureTargets& out) {
    if (out.statuses != nullptr) {
        out.statuses[i] = static_cast<std::int32_t>(target.status);
    }
    const auto put = [](double* array, std::size_t place, const auto& values) {
        if (array != nullptr) {
            std::copy(values.begin(), values.end(), array + place * values.size());
        }
    };
    for (std::size_t side = 0; side < 2; ++side) {
        if (const auto& outline = target.outlines[side]) {
            put(out.ellipses, 2 * i + side, std::array{outline->ellipse.x, outline->ellipse.y});
            put(out.shares, 2 * i + side, std::array{outline->share});
        }
    }
    if (!target.hasCentre()) {
        return;
    }
    put(out.centres, i, target.circle.centre);
    put(out.errors, i, target.rms);
    put(out.angles, i, std::array{target.angle});
    if (target.status == TargetStatus::ok) {
        put(out.normals, i, target.circle.normal);
        put(out.radii, i, std::array{target.circle.radius});
        put(out.covariances, i, target.covariance);
    }
}

void checkPicture(const ZelmMeasureImage* image, const RigCamera& camera) {
    checkImage(image);
    require(image->width == camera.width && image->height == camera.height,
            "an image has not the size of its camera's");
}

}  // namespace

std::int32_t zelmMeasureCircles(ZelmMeasureRig* handle, const ZelmMeasureImage* left, const ZelmMeasureImage* right,
                                std::int64_t count, const double* leftSeeds, const double* rightSeeds,
                                std::int32_t polarity, const ZelmMeasureTargets* targets) {
    return withRig(handle, [&](const Rig& rig) {
        checkPicture(left, rig.left);
        checkPicture(right, rig.right);
        require(count >= 0 && ((leftSeeds != nullptr && rightSeeds != nullptr) || count == 0),
                "the seeds are NULL, or their number is negative");
        require(polarity == 0 || polarity == 1, "the polarity is 0, dark, or 1, bright");
        const ZelmMeasureTargets out = recordOf(targets);
        require(std::isfinite(out.maxError) && out.maxError >= 0.0, "the largest error is negative or not finite");
        require(out.minShare >= 0.0 && out.minShare <= 1.0, "the least share is not from 0 to 1");
        const DenseImage leftImage(*left);
        const DenseImage rightImage(*right);
        const TargetMeasurer measure(rig, leftImage, rightImage,
                                     polarity == 1 ? DotPolarity::bright : DotPolarity::dark,
                                     {out.maxError, out.minShare});
        // Written at the end alone: a failure leaves the caller's arrays untouched.
        std::vector<Target> results(static_cast<std::size_t>(count));
        for (std::size_t i = 0; i < results.size(); ++i) {
            results[i] = measure({leftSeeds[2 * i], leftSeeds[2 * i + 1]}, {rightSeeds[2 * i], rightSeeds[2 * i + 1]});
        }
        for (std::size_t i = 0; i < results.size(); ++i) {
            give(results[i], i, out);
        }
    });
}
