#include "matchCall.h"

#include <optional>
#include <utility>

#include "dots.h"
#include "failure.h"
#include "spaceUncertainty.h"

namespace zelm::tool {
namespace {

// Draws the progress that the measuring library tells.
class MatchProgress {
public:
    explicit MatchProgress(const Console& theConsole) : console(theConsole) {}

    static std::int32_t tell(void* self, const char* stage, std::int64_t done, std::int64_t total) {
        static_cast<MatchProgress*>(self)->show(stage, done, total);
        return 0;
    }

private:
    void show(const char* stage, std::int64_t done, std::int64_t total) {
        if (done == 0) {
            bar.reset();  // erases the stage before
            bar.emplace(console, stage, static_cast<std::size_t>(total));
        } else {
            bar->advance();
        }
    }

    const Console& console;
    std::optional<Progress> bar;
};

// Arrays in which the measuring library leaves matches.
struct MatchArrays {
    explicit MatchArrays(std::size_t count)
        : statuses(count),
          pixels(2 * count),
          scores(count),
          positions(3 * count),
          depths(count),
          deviations(count),
          errors(2 * count) {}

    ZelmMeasureMatches record() {
        return {sizeof(ZelmMeasureMatches),
                0,
                statuses.data(),
                pixels.data(),
                scores.data(),
                positions.data(),
                depths.data(),
                deviations.data(),
                errors.data()};
    }
    MatchedPoint at(std::size_t i, const ImagePoint& point) const {
        const double* const X = &positions[3 * i];
        return {point.id,
                static_cast<MatchStatus>(statuses[i]),
                point.pixel,
                {pixels[2 * i], pixels[2 * i + 1]},
                scores[i],
                {X[0], X[1], X[2]},
                depths[i],
                deviations[i],
                errors[2 * i],
                errors[2 * i + 1],
                {}};
    }

    std::vector<std::int32_t> statuses;
    std::vector<double> pixels;
    std::vector<double> scores;
    std::vector<double> positions;
    std::vector<double> depths;
    std::vector<double> deviations;
    std::vector<double> errors;
};

// What the calibration adds to the depths, where its covariance is known.
void addCalibration(const LoadedRig& rig, std::vector<MatchedPoint>& points) {
    if (!rig.rig.covariance) {
        return;
    }
    std::vector<PixelPair> pairs;
    for (const MatchedPoint& point : points) {
        if (point.status == MatchStatus::ok) {
            pairs.push_back({point.left, point.right, {}});
        }
    }
    const std::vector<PointUncertainty> known = uncertaintyOf(rig, pairs, {});
    std::size_t next = 0;
    for (MatchedPoint& point : points) {
        if (point.status == MatchStatus::ok) {
            const PointUncertainty& uncertainty = known[next++];
            if (uncertainty.isKnown) {
                point.calibrationDeviation = uncertainty.depthByCalibration;
            }
        }
    }
}

}  // namespace

ZelmMeasureMatchOptions defaultSearch(const ZelmMeasureRig* rig) {
    ZelmMeasureMatchOptions options{};
    options.size = sizeof(options);
    zelmMeasureMatchDefaults(rig, &options);
    return options;
}

double noiseOf(const Picture& left, const Picture& right) {
    const auto noise = [](const Picture& picture) {
        const ZelmMeasureImage image = imageOf(picture);
        double deviation = 0.0;
        if (zelmMeasureNoise(&image, &deviation) < 0) {
            failData("out of memory: use smaller images");
        }
        return deviation;
    };
    return 0.5 * (noise(left) + noise(right));
}

std::vector<double> pixelsOf(const std::vector<ImagePoint>& points) {
    std::vector<double> pixels;
    for (const ImagePoint& p : points) {
        pixels.insert(pixels.end(), {p.pixel.x, p.pixel.y});
    }
    return pixels;
}

std::vector<MatchedPoint> matchedPoints(const MatchCall& call, const std::vector<ImagePoint>& points,
                                        const Console& console) {
    MatchProgress progress(console);
    ZelmMeasureMatchOptions search = call.search;
    search.progress = MatchProgress::tell;
    search.context = &progress;
    MatchArrays arrays(points.size());
    const ZelmMeasureMatches out = arrays.record();
    const ZelmMeasureImage leftImage = imageOf(call.left);
    const ZelmMeasureImage rightImage = imageOf(call.right);
    const std::vector<double> pixels = pixelsOf(points);
    call.rig.require(call.dense ? zelmMeasureMatchDense(call.rig.handle.get(), &leftImage, &rightImage, &search, &out)
                                : zelmMeasureMatch(call.rig.handle.get(), &leftImage, &rightImage, &search,
                                                   static_cast<std::int64_t>(points.size()), pixels.data(), &out),
                     call.file);
    std::vector<MatchedPoint> result;
    for (std::size_t i = 0; i < points.size(); ++i) {
        MatchedPoint point = arrays.at(i, points[i]);
        const bool isHopeless = point.status == MatchStatus::noTexture || point.status == MatchStatus::outside;
        if (!call.dense || !isHopeless) {
            result.push_back(std::move(point));
        }
    }
    addCalibration(call.rig, result);
    return result;
}

}  // namespace zelm::tool
