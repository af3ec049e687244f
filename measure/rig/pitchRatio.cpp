#include "pitchRatio.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "coreStatus.h"

namespace zelm::measure {
namespace {

constexpr double kNone = std::numeric_limits<double>::infinity();
constexpr double kMaxFactor = 1.3;    // between true and stated ratio: more is another plate
constexpr int kFirstRatios = 200;     // tried in closed form
constexpr double kReach = 0.02;       // about the closed form's ratio, which lens distortion moves by some thousandths
constexpr int kRatios = 16;           // tried within this reach
constexpr double kSettled = 1e-6;     // of the ratio
constexpr double kCurvature = 0.005;  // at this distance from the best ratio
constexpr double kMinRise = 1.5;      // the error is larger by this factor, if the images tell the ratio
constexpr double kGolden = 0.61803398875;

// Columns of a homography that give the camera's constraints, in pixels from the image's middle over its width.
struct Columns {
    std::array<double, 3> x{};
    std::array<double, 3> y{};
};

std::optional<Columns> columnsOf(const ViewPlaces& view, int width, int height) {
    double H[9] = {};
    const auto count = static_cast<std::int32_t>(view.plane.size());
    const std::int32_t status = statusOfCore(ZELM_ERR_CALIB_NOT_CONVERGED, [&] {
        return zelmCalibCalcHomography(count, view.plane.data(), view.image.data(), 0.0, H);
    });
    if (status < 0) {
        return std::nullopt;
    }
    const double cx = 0.5 * (width - 1);
    const double cy = 0.5 * (height - 1);
    Columns c{{(H[0] - cx * H[6]) / width, (H[3] - cy * H[6]) / width, H[6]},
              {(H[1] - cx * H[7]) / width, (H[4] - cy * H[7]) / width, H[7]}};
    const double length = std::hypot(std::hypot(c.x[0], c.x[1]), std::hypot(c.y[0], c.y[1]));
    for (std::size_t i = 0; i < 3; ++i) {
        c.x[i] /= length;
        c.y[i] /= length;
    }
    return c;
}

// What a camera with square pixels leaves of its constraints, its focal length chosen best: the columns of each view
// are at right angles, and as long as one another once y is divided by the ratio.
double misfitOf(const std::vector<Columns>& views, double ratio) {
    double ww = 0.0;
    double wr = 0.0;
    double rr = 0.0;
    const auto add = [&](double byFocal, double rest) {
        ww += byFocal * byFocal;
        wr += byFocal * rest;
        rr += rest * rest;
    };
    for (const Columns& c : views) {
        const auto& [x, y] = c;
        const double s = ratio;  // x / ratio, y: both as long as one plate unit
        add((x[0] * y[0] + x[1] * y[1]) / s, x[2] * y[2] / s);
        add((x[0] * x[0] + x[1] * x[1]) / (s * s) - y[0] * y[0] - y[1] * y[1], x[2] * x[2] / (s * s) - y[2] * y[2]);
    }
    return ww > 0.0 ? rr - wr * wr / ww : kNone;
}

double closedForm(const std::vector<ViewPlaces>& views, int width, int height) {
    std::vector<Columns> columns;
    columns.reserve(views.size());
    for (const ViewPlaces& view : views) {
        if (const auto c = columnsOf(view, width, height)) {
            columns.push_back(*c);
        }
    }
    double best = 1.0;
    double least = kNone;
    for (int i = 0; i <= kFirstRatios; ++i) {
        const double ratio = std::pow(kMaxFactor, 2.0 * i / kFirstRatios - 1.0);
        if (const double misfit = misfitOf(columns, ratio); misfit < least) {
            least = misfit;
            best = ratio;
        }
    }
    return best;
}

// The estimation of the camera with x of the plate stretched by a ratio.
class Estimation {
public:
    Estimation(const std::vector<ViewPlaces>& allViews, int cameraModel)
        : views(allViews), stretched(allViews), model(cameraModel), poses(allViews.size()) {
        entries.reserve(views.size());
        for (ViewPlaces& view : stretched) {
            entries.push_back({static_cast<std::int32_t>(view.plane.size()), view.plane.data(), view.image.data()});
        }
    }

    // Mean reprojection error, pixels; infinite where no camera fits.
    double error(double ratio) {
        for (std::size_t v = 0; v < views.size(); ++v) {
            for (std::size_t i = 0; i < views[v].plane.size(); ++i) {
                stretched[v].plane[i].x = ratio * views[v].plane[i].x;
            }
        }
        ZelmCameraIntrinsics camera{};
        double mean = 0.0;
        const std::int32_t status = statusOfCore(ZELM_ERR_CALIB_HOMOGRAPHY, [&] {
            return zelmCalibCameraParam(static_cast<std::int32_t>(views.size()), entries.data(), 0.0, &camera,
                                        poses.data(), &mean, model);
        });
        if (status < 0 || !std::isfinite(mean)) {
            return kNone;
        }
        return mean;
    }

private:
    const std::vector<ViewPlaces>& views;
    std::vector<ViewPlaces> stretched;
    int model;
    std::vector<Zelm2ViewPtnEntry> entries;
    std::vector<ZelmCameraExtrinsics> poses;
};

// The least error between two ratios.
double goldenSection(Estimation& estimation, double low, double high) {
    double a = high - kGolden * (high - low);
    double b = low + kGolden * (high - low);
    double atA = estimation.error(a);
    double atB = estimation.error(b);
    while (high - low > kSettled) {
        if (atA <= atB) {
            high = b;
            b = a;
            atB = atA;
            a = high - kGolden * (high - low);
            atA = estimation.error(a);
        } else {
            low = a;
            a = b;
            atA = atB;
            b = low + kGolden * (high - low);
            atB = estimation.error(b);
        }
    }
    return 0.5 * (low + high);
}

}  // namespace

PitchRatio pitchRatioOf(const std::vector<ViewPlaces>& views, int model, int width, int height) {
    Estimation estimation(views, model);
    PitchRatio found;
    if (const double stated = estimation.error(1.0); stated < kNone) {
        found.stated = stated;
    }
    const double middle = closedForm(views, width, height);
    constexpr double kStep = 2.0 * kReach / kRatios;
    double best = 0.0;
    double least = kNone;
    for (int i = 0; i <= kRatios; ++i) {
        const double ratio = middle * (1.0 - kReach + kStep * i);
        if (const double error = estimation.error(ratio); error < least) {
            least = error;
            best = ratio;
        }
    }
    if (!(least < kNone)) {
        return found;
    }
    found.ratio = goldenSection(estimation, best - kStep, best + kStep);
    found.error = estimation.error(found.ratio);
    if (!(found.error <= least)) {
        found.ratio = best;
        found.error = least;
    }
    const double around =
        std::min(estimation.error(found.ratio - kCurvature), estimation.error(found.ratio + kCurvature));
    found.isDetermined = around >= kMinRise * found.error;
    return found;
}

}  // namespace zelm::measure
