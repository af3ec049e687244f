#include "pairedImages.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "coreStatus.h"
#include "platePose.h"
#include "predictedDot.h"

namespace zelm::measure {
namespace {

constexpr double kCutoff = 3.5;          // robust deviations
constexpr std::size_t kMinDots = 6;      // of an image; its pose takes three
constexpr std::size_t kEnoughDots = 24;  // of an image: a view out of place is off by pixels, not by hundredths
constexpr std::size_t kMinImages = 3;    // that determine a camera

int markerColumns(const Pattern& plate) {
    return static_cast<int>(std::lround(plate.d6 / plate.d4));
}
int markerRows(const Pattern& plate) {
    return static_cast<int>(std::lround(plate.d7 / plate.d5));
}

// A pixel of an image that was turned clockwise by a quarter, in the image before: its size was height x width.
Point2d turnedBack(Point2d pixel, ImageSize stored) {
    return {pixel.y, stored.width - 1 - pixel.x};
}

}  // namespace

bool hasMirroredTwin(const Pattern& plate) {
    return markerColumns(plate) == markerRows(plate);
}

ImageDots restored(const SetOfImages& set, Side side, const ImageDots& dots, Storing storing) {
    ImageDots result = dots;
    for (Dot& dot : result) {
        ImageSize size = set.sizes[side];
        for (int turn = 0; turn < storing.quarterTurns; ++turn) {
            dot.pixel = turnedBack(dot.pixel, size);
            std::swap(size.width, size.height);
        }
        if (storing.isMirrored) {
            dot.pixel.x = size.width - 1 - dot.pixel.x;
            std::swap(dot.index.x, dot.index.y);
            dot.plane = {dot.index.x * set.plate.d4, dot.index.y * set.plate.d5};
        }
    }
    return result;
}

MotionParameters parametersOf(const PlatePose& pose) {
    return motionParameters(pose.R, pose.t);
}

PlatePose platePoseOf(const MotionParameters& motion) {
    return {rotationOf({motion[0], motion[1], motion[2]}), {motion[3], motion[4], motion[5]}};
}

std::optional<SingleCamera> calibratedAlone(const SetOfImages& set, Side side) {
    const std::vector<ImageDots>& images = set.images[side];
    std::vector<std::size_t> used;
    std::vector<std::vector<Point2d>> planes(images.size());
    std::vector<std::vector<Point2d>> pixels(images.size());
    std::vector<Zelm2ViewPtnEntry> entries;
    entries.reserve(images.size());
    for (std::size_t i = 0; i < images.size(); ++i) {
        if (images[i].size() < kMinDots) {
            continue;
        }
        for (const Dot& dot : images[i]) {
            planes[i].push_back(dot.plane);
            pixels[i].push_back(dot.pixel);
        }
        entries.push_back({static_cast<std::int32_t>(planes[i].size()), planes[i].data(), pixels[i].data()});
        used.push_back(i);
    }
    if (used.size() < kMinImages) {
        return std::nullopt;
    }
    SingleCamera single;
    ZelmCameraIntrinsics intrinsics{};
    std::vector<ZelmCameraExtrinsics> poses(used.size());
    const std::int32_t status = statusOfCore(ZELM_ERR_CALIB_HOMOGRAPHY, [&] {
        return zelmCalibCameraParam(static_cast<std::int32_t>(used.size()), entries.data(), kCutoff, &intrinsics,
                                    poses.data(), &single.error, set.models[side]);
    });
    if (status < 0) {
        return std::nullopt;
    }
    single.camera = {false, parametersOf(intrinsics)};
    single.poses.resize(images.size());
    for (std::size_t k = 0; k < used.size(); ++k) {
        PlatePose pose;
        std::copy_n(poses[k].R, pose.R.size(), pose.R.begin());
        std::copy_n(poses[k].t, pose.t.size(), pose.t.begin());
        single.poses[used[k]] = pose;
    }
    return single;
}

std::optional<SingleCamera> roughlyCalibrated(const SetOfImages& set, Side side) {
    constexpr double kMinFocal = 0.7;  // of the image's longer side
    constexpr double kMaxFocal = 4.0;
    constexpr double kStep = 1.1;
    const ImageSize size = set.sizes[side];
    const double longer = std::max(size.width, size.height);
    std::optional<SingleCamera> best;
    for (double f = kMinFocal * longer; f <= kMaxFocal * longer; f *= kStep) {
        AdjustState state;
        state.cameras[side] = {false, {f, 0.0, f, 0.5 * (size.width - 1), 0.5 * (size.height - 1), 0.0, 0.0}};
        SingleCamera single{state.cameras[side], {}, 0.0};
        double sum = 0.0;
        std::size_t count = 0;
        for (const ImageDots& dots : set.images[side]) {
            const std::vector<DotObservation> observed = observationsOf(set.plate, dots);
            const auto pose = posedPlate(state, side, observed);
            single.poses.push_back(pose ? std::optional(platePoseOf(*pose)) : std::nullopt);
            for (const DotObservation& dot : observed) {
                if (pose) {
                    const ImageParameters image{single.camera, nullptr, pose->data(), 1.0, state.bow.b.data(), 1.0};
                    const Point2d centre = dotOutline(image.camera, circleOf(image, dot.place, dot.radius)).centre;
                    sum += std::hypot(dot.pixel.x - centre.x, dot.pixel.y - centre.y);
                    count += 1;
                }
            }
        }
        single.error = count > 0 ? sum / static_cast<double>(count) : 0.0;
        if (count > 0 && std::isfinite(single.error) && (!best || single.error < best->error)) {
            best = std::move(single);
        }
    }
    return best;
}

std::vector<DotObservation> observationsOf(const Pattern& plate, const ImageDots& dots) {
    std::vector<DotObservation> observations;
    observations.reserve(std::min(dots.size(), kEnoughDots));
    // Neighbours in the list are neighbours on the plate: every so many dots reach all over it.
    const double step = std::max(1.0, static_cast<double>(dots.size()) / static_cast<double>(kEnoughDots));
    for (double at = 0.0; at < static_cast<double>(dots.size()); at += step) {
        const Dot& dot = dots[static_cast<std::size_t>(at)];
        DotObservation observation = plateDot(plate, dot.index, {});
        observation.pixel = dot.pixel;
        observations.push_back(observation);
    }
    return observations;
}

}  // namespace zelm::measure
