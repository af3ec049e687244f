#include "viewQuality.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "dots.h"
#include "numberText.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

constexpr char kSideLetters[] = {'L', 'R'};

// Images of one camera differ by some hundredths of a pixel in good sets, by tenths where plates are tilted out of
// focus, and their blur is alike in all directions to 4 %. An image is out of focus when its blur is larger than the
// others' by both of these,
constexpr double kMinBlurFactor = 1.6;
constexpr double kMinBlurMore = 0.35;  // pixels
// and smeared when it is wider in one direction by this factor and wider than the others by so much: 2 pixels of way.
constexpr double kMinElongation = 1.35;
constexpr double kMinSmearMore = 0.2;  // pixels

const fs::path& pathOf(const ViewFiles& view, std::size_t side) {
    return side == 0 ? view.left : view.right;
}

std::optional<double> medianOf(std::vector<double> values) {
    if (values.empty()) {
        return std::nullopt;
    }
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

std::optional<ZelmMeasureSharpness> sharpnessOfImage(const Picture& picture, const std::vector<double>& seeds,
                                                     const Plate& plate) {
    const ZelmMeasureImage image = imageOf(picture);
    ZelmMeasureSharpness sharpness{};
    sharpness.size = sizeof(sharpness);
    const std::int32_t status = zelmMeasureSharpness(&image, static_cast<std::int64_t>(seeds.size() / 2), seeds.data(),
                                                     plate.pattern.polarity, &sharpness);
    return status < 0 || sharpness.dots == 0 ? std::nullopt : std::optional(sharpness);
}

// Centres of the dots that were read.
std::vector<double> seedsOf(const Zelm2ViewCalib* calib, std::size_t side, std::int32_t view) {
    std::int32_t count = 0;
    zelm2ViewGetPtnNum(calib, kSideLetters[side], view, &count);
    std::vector<Point2d> points(static_cast<std::size_t>(std::max(count, 0)));
    zelm2ViewGetPattern(calib, kSideLetters[side], view, points.data());
    std::vector<double> seeds;
    seeds.reserve(2 * points.size());
    for (const Point2d& p : points) {
        seeds.insert(seeds.end(), {p.x, p.y});
    }
    return seeds;
}

// The dots that both images of a view show.
struct SharedDots {
    std::vector<std::int32_t> grid;
    std::vector<double> left;
    std::vector<double> right;

    SharedDots(const ImageFigures& leftImage, const ImageFigures& rightImage) {
        std::map<GridIndex, Point2d> others;
        for (const Dot& dot : rightImage.dots) {
            others[dot.index] = dot.pixel;
        }
        for (const Dot& dot : leftImage.dots) {
            if (const auto other = others.find(dot.index); other != others.end()) {
                grid.insert(grid.end(), {dot.index.x, dot.index.y});
                left.insert(left.end(), {dot.pixel.x, dot.pixel.y});
                right.insert(right.end(), {other->second.x, other->second.y});
            }
        }
    }
    std::int64_t count() const { return static_cast<std::int64_t>(grid.size() / 2); }
};

std::optional<ZelmMeasureLengthFigures> lengthsOf(const LoadedRig& rig, const Plate& plate, const SharedDots& dots) {
    const auto count = static_cast<std::size_t>(dots.count());
    std::vector<std::int32_t> statuses(count);
    std::vector<double> positions(3 * count);
    const ZelmMeasurePlatePoints points{sizeof(points), 0, statuses.data(), positions.data(), nullptr, nullptr};
    ZelmMeasurePlateFit fit{};
    fit.size = sizeof(fit);
    if (zelmMeasurePlatePoints(rig.handle.get(), &plate.pattern, dots.count(), dots.grid.data(), dots.left.data(),
                               dots.right.data(), &points, &fit) < 0 ||
        std::any_of(statuses.begin(), statuses.end(), [](std::int32_t s) { return s != ZELM_MEASURE_POINT_OK; })) {
        return std::nullopt;
    }
    std::int64_t chosen = 0;
    std::vector<std::int64_t> ends;
    std::vector<double> nominal;
    for (int pass = 0; pass < 2; ++pass) {  // the first one counts
        ends.resize(2 * static_cast<std::size_t>(chosen));
        nominal.resize(static_cast<std::size_t>(chosen));
        if (zelmMeasurePlateLengths(&plate.pattern, dots.count(), dots.grid.data(), chosen, ends.data(), nominal.data(),
                                    &chosen) < 0) {
            return std::nullopt;
        }
    }
    const ZelmMeasureLengthErrors arrays{sizeof(arrays), 0, nullptr, nullptr, nullptr, nullptr, nullptr};
    ZelmMeasureLengthSummary summary{};
    summary.size = sizeof(summary);
    const std::int32_t status = zelmMeasureLengthErrors(rig.handle.get(), dots.count(), positions.data(), chosen,
                                                        ends.data(), nominal.data(), &arrays, &summary);
    return status < 0 || summary.all.count == 0 ? std::nullopt : std::optional(summary.all);
}

}  // namespace

std::vector<ViewSharpness> sharpnessOf(const PairReading& reading, const Plate& plate, const Console& console) {
    std::vector<ViewSharpness> views(reading.used.size());
    Progress progress(console, "judging sharpness", views.size());
    for (std::size_t view = 0; view < views.size(); ++view) {
        for (std::size_t side = 0; side < 2; ++side) {
            const fs::path& path = pathOf(reading.used[view], side);
            const std::vector<double> seeds = path.empty()
                                                  ? std::vector<double>()
                                                  : seedsOf(reading.calib.get(), side, static_cast<std::int32_t>(view));
            if (!seeds.empty()) {
                views[view][side] = sharpnessOfImage(*reading.pictures->get(path), seeds, plate);
            }
        }
        progress.advance();
    }
    return views;
}

std::vector<BlurredImage> blurredImages(const std::vector<ViewSharpness>& views) {
    std::vector<BlurredImage> found;
    for (std::size_t view = 0; view < views.size(); ++view) {
        for (std::size_t side = 0; side < 2; ++side) {
            std::vector<double> others;
            for (std::size_t other = 0; other < views.size(); ++other) {
                if (other != view && views[other][side]) {
                    others.push_back(views[other][side]->largest);
                }
            }
            const auto& s = views[view][side];
            const std::optional<double> usual = medianOf(std::move(others));
            if (!s || !usual) {
                continue;
            }
            const bool isSmeared = s->largest > kMinElongation * s->smallest && s->largest > *usual + kMinSmearMore;
            const bool isBlurred = s->largest > kMinBlurFactor * *usual && s->largest > *usual + kMinBlurMore;
            if (isSmeared || isBlurred) {
                found.push_back({view, side, isSmeared, *usual});
            }
        }
    }
    return found;
}

std::string blurText(const BlurredImage& blurred, const ZelmMeasureSharpness& s, const fs::path& file) {
    if (blurred.isSmeared) {
        return fmt::format(
            "{}: view {} {}: smeared by {:.1f} px at {:.0f} deg from the rows (blur {:.2f} px along it, {:.2f} across, "
            "{:.2f} usual): plate or camera moved during the exposure, which shifts its dots along that direction: "
            "take the view anew with plate and cameras at rest, or a shorter exposure",
            file.string(), blurred.view, blurred.side == 0 ? "left" : "right", s.smear, s.direction * kDegreesPerRadian,
            s.largest, s.smallest, blurred.usual);
    }
    return fmt::format(
        "{}: view {} {}: out of focus, blur {:.2f} px against {:.2f} usual: its dots are known less well: take it anew "
        "where the lens is sharp, or stop the lens down",
        file.string(), blurred.view, blurred.side == 0 ? "left" : "right", s.largest, blurred.usual);
}

PlateLengths plateLengthsOf(const LoadedRig& rig, const Plate& plate, const RigFigures& figures) {
    PlateLengths lengths;
    double squares = 0.0;
    double sum = 0.0;
    for (std::size_t view = 0; view < figures.left.views.size() && view < figures.right.views.size(); ++view) {
        const SharedDots dots(figures.left.views[view], figures.right.views[view]);
        auto& own = lengths.views.emplace_back(lengthsOf(rig, plate, dots));
        if (own) {
            const auto count = static_cast<double>(own->count);
            lengths.measured += 1;
            lengths.all.count += own->count;
            sum += count * own->mean;
            squares += count * own->rms * own->rms;
            lengths.all.worst = std::fabs(own->worst) > std::fabs(lengths.all.worst) ? own->worst : lengths.all.worst;
        }
    }
    if (lengths.all.count > 0) {
        lengths.all.mean = sum / static_cast<double>(lengths.all.count);
        lengths.all.rms = std::sqrt(squares / static_cast<double>(lengths.all.count));
    }
    return lengths;
}

std::vector<Doubt> qualityDoubts(const std::vector<ViewFiles>& views, const std::vector<ViewSharpness>& sharpness,
                                 const std::vector<std::string>& leftOut, const PlateLengths& lengths,
                                 const std::string& units) {
    constexpr double kMinFactor = 3.0;  // of the others' median: good sets stay below 2
    std::vector<Doubt> doubts;
    for (const BlurredImage& blurred : blurredImages(sharpness)) {
        const ZelmMeasureSharpness& s = *sharpness[blurred.view][blurred.side];
        const std::filesystem::path& image = pathOf(views[blurred.view], blurred.side);
        const bool isOut = blurred.view < leftOut.size() && !leftOut[blurred.view].empty();
        doubts.push_back({"blurred-view",
                          fmt::format("{}{}", blurText(blurred, s, image), isOut ? "; this view takes no part" : ""),
                          {image},
                          false});
    }
    for (std::size_t view = 0; view < lengths.views.size(); ++view) {
        std::vector<double> others;
        for (std::size_t other = 0; other < lengths.views.size(); ++other) {
            if (other != view && lengths.views[other]) {
                others.push_back(lengths.views[other]->rms);
            }
        }
        const auto& own = lengths.views[view];
        const std::optional<double> usual = medianOf(std::move(others));
        if (own && usual && own->rms > kMinFactor * *usual) {
            std::string text = fmt::format(
                "{} and {}: view {}: lengths on the plate are off by {:.2g} {} RMS, {:.2g} in the other views: look at "
                "its images (blur, reflections, dots half hidden, a plate that moved), and leave it out or take it "
                "anew",
                views[view].left.string(), views[view].right.string(), view, own->rms, units, *usual);
            doubts.push_back({"view-lengths", std::move(text), {views[view].left, views[view].right}, false});
        }
    }
    return doubts;
}

}  // namespace zelm::tool
