// The exported functions that tell what is wrong with an image of a plate.
#include <vector>

#include "records.h"
#include "sharpness.h"

using namespace zelm::measure;

std::int32_t zelmMeasureSharpness(const ZelmMeasureImage* image, std::int64_t count, const double* seeds,
                                  std::int32_t polarity, ZelmMeasureSharpness* sharpness) {
    return guarded(nullptr, [&] {
        checkImage(image);
        require(count >= 0, "the number of dots is negative");
        require(seeds != nullptr || count == 0, "the dots are NULL");
        require(polarity == 0 || polarity == 1, "the polarity is 0, dark, or 1, bright");
        const DenseImage dense(*image);
        std::vector<Point2d> places(static_cast<std::size_t>(count));
        for (std::size_t i = 0; i < places.size(); ++i) {
            places[i] = {seeds[2 * i], seeds[2 * i + 1]};
        }
        const Sharpness s = sharpnessOf(dense, spotsAt(dense, places, polarity), polarity);
        giveRecord({0, static_cast<std::int32_t>(s.dots), s.spread.largest, s.spread.smallest, s.spread.direction,
                    s.smear, s.radius, s.inside, s.outside, s.noise},
                   sharpness);
    });
}
