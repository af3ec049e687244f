// How far the centres of round targets are from the truth, by their circles and by their ellipses: the tables of
// docs/accuracy.md. Discs of known place in space, rendered for both cameras of a rig.
#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <vector>

#include "measureRigs.h"
#include "space3.h"

namespace zelmtest {
namespace {

constexpr int kWidth = 800;
constexpr int kHeight = 600;
constexpr int kViews = 3;

struct Setting {
    double diameter = 6.0;     // plate units
    double tiltDegrees = 0.0;  // against the world's plane
    double noise = 0.0;        // gray levels
};

// Errors of one way of measuring, plate units.
struct Tally {
    int count = 0;
    std::array<double, 3> sum{};
    double squares = 0.0;

    void add(const std::array<double, 3>& error) {
        ++count;
        for (std::size_t i = 0; i < 3; ++i) {
            sum[i] += error[i];
            squares += error[i] * error[i];
        }
    }
    double rms() const { return std::sqrt(squares / count); }
    double bias() const { return std::hypot(sum[0], sum[1], sum[2]) / count; }
};

struct Figures {
    Tally circles;
    Tally ellipses;
    double radius = 0.0;       // pixels, mean
    double chiSquare = 0.0;    // over its three degrees of freedom, mean
    double normalAngle = 0.0;  // square radians
    int dots = 0;
};

render::Plate plateOf(const Setting& setting) {
    render::Plate plate;
    plate.minX = plate.minY = -2;
    plate.maxX = plate.maxY = 2;
    plate.pitchX = plate.pitchY = std::max(2.2 * setting.diameter, 12.0);
    plate.dotDiameter = setting.diameter;
    plate.markerDiameter = 1.4 * setting.diameter;
    plate.markerX = plate.markerY = 2;
    plate.marginX = plate.marginY = 1.3 * setting.diameter + 3.0;
    return plate;
}

std::vector<double> centresOf(const render::RenderedView& view) {
    std::vector<double> pixels;
    for (const render::DotTruth& dot : view.dots) {
        pixels.insert(pixels.end(), {dot.centre.x, dot.centre.y});
    }
    return pixels;
}

std::vector<double> ellipseCentres(const ZelmMeasureImage& image, std::vector<double> pixels,
                                   std::vector<std::int32_t>& statuses) {
    zelmMeasureDotCentres(&image, static_cast<std::int64_t>(statuses.size()), pixels.data(), 0, pixels.data(),
                          statuses.data());
    return pixels;
}

void measureView(const Setting& setting, int view, Figures& figures) {
    const RigTruth truth = trueRig(kWidth, kHeight);
    const OpenedRig rig(truth.block());
    const double tilt = setting.tiltDegrees * std::numbers::pi / 180.0;
    const double axis = 0.2 + 0.7 * view;
    const render::Pose pose{render::rotationFromVector({tilt * std::cos(axis), tilt * std::sin(axis), 0.0}),
                            {0.0, 0.0, 5.0 * view}};
    render::Optics optics;
    optics.noiseSigma = setting.noise;
    const render::Plate plate = plateOf(setting);
    const auto seed = static_cast<std::uint64_t>(view);
    const auto left = render::renderView(plate, truth.left, render::compose(truth.leftPose, pose), optics, 100 + seed);
    const auto right =
        render::renderView(plate, truth.right, render::compose(truth.rightPose, pose), optics, 200 + seed);
    const ZelmMeasureImage leftImage{left.image.pixels.data(), kWidth, kHeight, kWidth};
    const ZelmMeasureImage rightImage{right.image.pixels.data(), kWidth, kHeight, kWidth};
    const std::vector<double> leftSeeds = centresOf(left);
    const std::vector<double> rightSeeds = centresOf(right);
    const std::size_t count = left.dots.size();

    std::vector<std::int32_t> statuses(count);
    std::vector<double> centres(3 * count);
    std::vector<double> normals(3 * count);
    std::vector<double> covariances(9 * count);
    auto targets = emptyRecord<ZelmMeasureTargets>();
    targets.statuses = statuses.data();
    targets.centres = centres.data();
    targets.normals = normals.data();
    targets.covariances = covariances.data();
    zelmMeasureCircles(rig.get(), &leftImage, &rightImage, static_cast<std::int64_t>(count), leftSeeds.data(),
                       rightSeeds.data(), 0, &targets);
    std::vector<std::int32_t> leftFound(count);
    std::vector<std::int32_t> rightFound(count);
    const std::vector<double> leftCentres = ellipseCentres(leftImage, leftSeeds, leftFound);
    const std::vector<double> rightCentres = ellipseCentres(rightImage, rightSeeds, rightFound);
    std::vector<double> positions(3 * count);
    auto points = emptyRecord<ZelmMeasurePoints>();
    points.positions = positions.data();
    zelmMeasureTriangulate(rig.get(), static_cast<std::int64_t>(count), leftCentres.data(), rightCentres.data(),
                           &points);

    for (std::size_t i = 0; i < count; ++i) {
        figures.dots += 1;
        if (statuses[i] != ZELM_MEASURE_CIRCLE_OK || leftFound[i] != 0 || rightFound[i] != 0) {
            continue;
        }
        const render::PlanePoint c = left.dots[i].dot.centre;
        std::array<double, 3> byCircle{};
        std::array<double, 3> byEllipses{};
        double cosine = 0.0;
        for (std::size_t k = 0; k < 3; ++k) {
            const double place = pose.R[3 * k] * c.x + pose.R[3 * k + 1] * c.y + pose.t[k];
            byCircle[k] = centres[3 * i + k] - place;
            byEllipses[k] = positions[3 * i + k] - place;
            cosine -= pose.R[3 * k + 2] * normals[3 * i + k];
        }
        figures.circles.add(byCircle);
        figures.ellipses.add(byEllipses);
        figures.radius += left.dots[i].radius;
        figures.normalAngle += 2.0 * (1.0 - cosine);
        zelm::measure::Matrix3 C{};
        std::copy_n(&covariances[9 * i], 9, C.begin());
        if (const auto inverse = zelm::measure::inverse(C)) {
            figures.chiSquare += zelm::measure::dot(byCircle, zelm::measure::times(*inverse, byCircle)) / 3.0;
        }
    }
}

void printRow(const Setting& setting) {
    Figures f;
    for (int view = 0; view < kViews; ++view) {
        measureView(setting, view, f);
    }
    if (f.circles.count == 0) {
        std::printf("| %.1f | %.0f | %.0f | 0 of %d |\n", setting.diameter, setting.tiltDegrees, setting.noise, f.dots);
        return;
    }
    const double n = f.circles.count;
    std::printf("| %.1f | %.0f° | %.0f | %d of %d | %.4f / %.4f | %.4f / %.4f | %.2f | %.2f° |\n", f.radius / n,
                setting.tiltDegrees, setting.noise, f.circles.count, f.dots, f.circles.rms(), f.circles.bias(),
                f.ellipses.rms(), f.ellipses.bias(), f.chiSquare / n,
                std::sqrt(f.normalAngle / n) * 180.0 / std::numbers::pi);
    std::fflush(stdout);
}

}  // namespace
}  // namespace zelmtest

int main() {
    std::printf(
        "| radius | tilt | noise | circles | circle: RMS / bias | ellipses: RMS / bias | chi² / 3 | normal |\n");
    std::printf("|---:|---:|---:|---:|---:|---:|---:|---:|\n");
    for (const double noise : {0.0, 2.0}) {
        for (const double diameter : {1.5, 3.0, 6.0, 12.0}) {
            for (const double tilt : {0.0, 30.0, 60.0}) {
                zelmtest::printRow({diameter, tilt, noise});
            }
        }
    }
    return 0;
}
