#include "adjustCall.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>

#include "adjustOutcome.h"
#include "dots.h"
#include "failure.h"

namespace zelm::tool {
namespace {

constexpr char kSideLetters[] = {'L', 'R'};

class Adjuster {
public:
    Adjuster(const LoadedRig& calibrated, PairReading& pairReading, const Plate& usedPlate,
             const AdjustSettings& adjustSettings, const Console& pairConsole)
        : rig(calibrated), reading(pairReading), plate(usedPlate), settings(adjustSettings), console(pairConsole) {}

    Adjusted run() {
        result.report.before = rig.rig;
        if (open() && solve()) {
            if (settings.dots == "refined") {
                refineAll();
                completeSkipped();
                if (!solve()) {
                    return std::move(result);
                }
            }
            finish();
        }
        return std::move(result);
    }

private:
    bool open() {
        const ZelmMeasureAdjustOptions options = optionsOf(settings, plate.positions);
        ZelmMeasureAdjustment* handle = nullptr;
        const std::int32_t status = zelmMeasureAdjustOpen(rig.handle.get(), &plate.pattern, &options, &handle);
        adjustment.reset(handle);
        return isDone(status);
    }

    // Whether a step was done; else the report says why not. Throws Failure where that is not the data's fault.
    bool isDone(std::int32_t status) {
        if (status == ZELM_MEASURE_ERR_DATA) {
            result.report.refusal = zelmMeasureAdjustError(adjustment.get());
        } else if (status < 0) {
            failData("the calibration cannot be adjusted: {}",
                     adjustment ? zelmMeasureAdjustError(adjustment.get()) : "out of memory, or a plate without size");
        }
        return status >= 0;
    }

    bool solve() { return isDone(zelmMeasureAdjustSolve(adjustment.get())); }

    void refineAll() {
        Progress progress(console, "measuring dots", 2 * reading.used.size());
        added.assign(reading.used.size(), {0, 0});
        for (std::size_t view = 0; view < reading.used.size(); ++view) {
            for (std::size_t side = 0; side < 2; ++side) {
                const auto& path = side == 0 ? reading.used[view].left : reading.used[view].right;
                progress.advance();
                if (path.empty()) {
                    continue;
                }
                const auto picture = reading.pictures->get(path);
                const ZelmMeasureImage image = imageOf(*picture);
                ZelmMeasureRefined refined{};
                refined.size = sizeof(refined);
                if (isDone(zelmMeasureAdjustRefine(adjustment.get(), kSideLetters[side],
                                                   static_cast<std::int32_t>(view), &image, &refined))) {
                    added[view][side] = refined.added;
                }
            }
        }
    }

    // Views of which one image could be read.
    void completeSkipped() {
        std::vector<SkippedView> still;
        for (SkippedView& view : reading.skipped) {
            std::array<std::int32_t, 2> counts{};
            if (!complete(view, counts)) {
                still.push_back(std::move(view));
                continue;
            }
            console.warn(completionText(view.files, counts));
            reading.used.push_back(view.files);
            added.push_back({counts[0], counts[1]});
        }
        reading.skipped = std::move(still);
    }

    static std::string completionText(const ViewFiles& files, const std::array<std::int32_t, 2>& counts) {
        if (counts[0] > 0 && counts[1] > 0) {
            return fmt::format(
                "{} and {}: used all the same: {} and {} dots were found where the calibration expects them",
                files.left.string(), files.right.string(), counts[0], counts[1]);
        }
        const bool isLeft = counts[0] > 0;
        return fmt::format("{}: used for its own camera alone, with {} dots: none were found in {}",
                           (isLeft ? files.left : files.right).string(), counts[isLeft ? 0 : 1],
                           (isLeft ? files.right : files.left).string());
    }

    bool complete(const SkippedView& view, std::array<std::int32_t, 2>& counts) {
        if (view.isSetAside || view.files.left.empty() || view.files.right.empty()) {
            return false;
        }
        try {
            const auto left = reading.pictures->get(view.files.left);
            const auto right = reading.pictures->get(view.files.right);
            const ZelmMeasureImage leftImage = imageOf(*left);
            const ZelmMeasureImage rightImage = imageOf(*right);
            return zelmMeasureAdjustAddView(adjustment.get(), &leftImage, &rightImage, counts.data(),
                                            counts.data() + 1) >= 0 &&
                   counts[0] + counts[1] > 0;
        } catch (const Failure&) {
            return false;  // an image that cannot be opened, which was told before
        }
    }

    AdjustedImage countsOf(std::int32_t view, std::size_t side) {
        const auto index = static_cast<std::size_t>(view);
        return AdjustedPoints(adjustment.get(), kSideLetters[side], view)
            .counts(index < added.size() ? added[index][side] : 0);
    }

    void takeChecks() {
        std::int64_t count = 0;
        if (!isDone(zelmMeasureAdjustChecks(adjustment.get(), nullptr, 0, &count))) {
            return;
        }
        std::vector<ZelmMeasureCheck> checks(static_cast<std::size_t>(count));
        if (count > 0) {
            checks.front().size = sizeof(ZelmMeasureCheck);
        }
        if (isDone(zelmMeasureAdjustChecks(adjustment.get(), checks.data(), count, &count))) {
            nameUnits(checks, plate.units);
            result.report.checks = std::move(checks);
        }
    }

    void finish() {
        AdjustReport& report = result.report;
        report.summary.size = sizeof(report.summary);
        if (!isDone(zelmMeasureAdjustSummary(adjustment.get(), &report.summary))) {
            return;
        }
        if (report.summary.refinedDots == 0) {
            added.clear();
        }
        // Views that were added with dots that did not prove better are gone with them.
        reading.used.resize(std::min(reading.used.size(), static_cast<std::size_t>(report.summary.views)));
        for (std::int32_t view = 0; view < report.summary.views; ++view) {
            report.leftOut.emplace_back(zelmMeasureAdjustView(adjustment.get(), view));
            report.images.push_back({countsOf(view, 0), countsOf(view, 1)});
        }
        takeChecks();
        ZelmMeasureRig* adjusted = nullptr;
        if (isDone(zelmMeasureAdjustRig(adjustment.get(), &adjusted))) {
            result.rig = rigOfHandle(MeasurePtr(adjusted));
        }
    }

    const LoadedRig& rig;
    PairReading& reading;
    const Plate& plate;
    const AdjustSettings& settings;
    const Console& console;
    AdjustmentPtr adjustment;
    std::vector<std::array<int, 2>> added;  // dots that the reader had missed, of each view
    Adjusted result;
};

}  // namespace

void addAdjustOptions(Subcommand& sub, AdjustSettings& settings) {
    sub.flag("--no-adjust", settings.off, "Calibrate each camera on its own, and take the pair from view 0");
    sub.option("--dots", settings.dots,
               "refined: measure each dot anew on its pixels once the cameras are known; reader: keep the reader's")
        .oneOf({"refined", "reader"})
        .showDefault();
    sub.flag("--no-skew", settings.noSkew, "Adjust with orthogonal image axes");
    sub.flag("--square-pixels", settings.squarePixels, "Adjust with one focal length for both axes");
    sub.flag("--dot-diameters", settings.dotDiameters,
             "Adjust the diameters of dots and markers too, each by a factor, as print bleeds");
    sub.flag("--bow", settings.bow, "Adjust a bend of the plate too");
    sub.option("--noise", settings.noise,
               "Standard deviation of a dot's coordinate in pixels, where it is known; default: from the residuals")
        .positive();
    sub.option("--dot-positions", settings.positions,
               "CSV of measured positions of the plate's dots: column,row,x,y or column,row,x,y,z; before those of the "
               "plate's file");
}

Adjusted adjustRig(const LoadedRig& rig, PairReading& reading, const Plate& plate, const AdjustSettings& settings,
                   const Console& console) {
    return Adjuster(rig, reading, plate, settings, console).run();
}

}  // namespace zelm::tool
