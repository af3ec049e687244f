#include "adjustOutcome.h"

#include <algorithm>

#include "failure.h"

namespace zelm::tool {
namespace {

constexpr char kSideLetters[] = {'L', 'R'};

std::vector<ZelmMeasureCheck> checksOf(const AdjustmentPtr& adjustment, const std::string& culprit) {
    std::int64_t count = 0;
    requireAdjusted(zelmMeasureAdjustChecks(adjustment.get(), nullptr, 0, &count), adjustment, culprit);
    std::vector<ZelmMeasureCheck> checks(static_cast<std::size_t>(count));
    if (count > 0) {
        checks.front().size = sizeof(ZelmMeasureCheck);
        requireAdjusted(zelmMeasureAdjustChecks(adjustment.get(), checks.data(), count, &count), adjustment, culprit);
    }
    return checks;
}

}  // namespace

ZelmMeasureAdjustOptions optionsOf(const AdjustSettings& settings, const DotPositions& positions) {
    ZelmMeasureAdjustOptions options{};
    options.size = sizeof(options);
    options.holdSkew = settings.noSkew ? 1 : 0;
    options.squarePixels = settings.squarePixels ? 1 : 0;
    options.estimateDiameters = settings.dotDiameters ? 1 : 0;
    options.estimateBow = settings.bow ? 1 : 0;
    options.noise = settings.noise.value_or(0.0);
    options.placeCount = static_cast<std::int64_t>(positions.grid.size() / 2);
    options.placeGrid = positions.grid.data();
    options.places = positions.places.data();
    return options;
}

void requireAdjusted(std::int32_t status, const AdjustmentPtr& adjustment, const std::string& culprit) {
    if (status < 0) {
        const std::string words = adjustment ? zelmMeasureAdjustError(adjustment.get()) : "";
        failData("{}: {}", culprit, words.empty() ? fmt::format("cannot be adjusted (status {})", status) : words);
    }
}

AdjustedPoints::AdjustedPoints(ZelmMeasureAdjustment* adjustment, char side, std::int32_t view) {
    std::int64_t number = 0;
    if (zelmMeasureAdjustDots(adjustment, side, view, nullptr, &number) < 0) {
        return;  // of a camera that is not there
    }
    count = static_cast<std::size_t>(number);
    grid.resize(2 * count);
    pixels.resize(2 * count);
    centres.resize(2 * count);
    residuals.resize(2 * count);
    statuses.resize(count);
    ZelmMeasureAdjustedDots dots{};
    dots.size = sizeof(dots);
    dots.capacity = number;
    dots.grid = grid.data();
    dots.pixels = pixels.data();
    dots.centres = centres.data();
    dots.residuals = residuals.data();
    dots.statuses = statuses.data();
    zelmMeasureAdjustDots(adjustment, side, view, &dots, &number);
}

AdjustedImage AdjustedPoints::counts(int added) const {
    const auto number = [this](std::int32_t status) {
        return static_cast<int>(std::count(statuses.begin(), statuses.end(), status));
    };
    return {number(ZELM_MEASURE_ADJUSTED_USED), added, number(ZELM_MEASURE_ADJUSTED_OUTLIER),
            number(ZELM_MEASURE_ADJUSTED_NOT_CONFIRMED)};
}

void takeOutcome(const AdjustmentPtr& adjustment, const std::vector<std::array<int, 2>>& added,
                 const std::string& culprit, AdjustReport& report) {
    report.summary.size = sizeof(report.summary);
    requireAdjusted(zelmMeasureAdjustSummary(adjustment.get(), &report.summary), adjustment, culprit);
    for (std::int32_t view = 0; view < report.summary.views; ++view) {
        report.leftOut.emplace_back(zelmMeasureAdjustView(adjustment.get(), view));
        auto& images = report.images.emplace_back();
        for (std::size_t side = 0; side < 2; ++side) {
            const auto index = static_cast<std::size_t>(view);
            images[side] = AdjustedPoints(adjustment.get(), kSideLetters[side], view)
                               .counts(index < added.size() ? added[index][side] : 0);
        }
    }
    report.checks = checksOf(adjustment, culprit);
}

}  // namespace zelm::tool
