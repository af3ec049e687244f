// Gray levels of one dot as a function of ten unknowns, and their fit to pixels.
#ifndef ZELM_MEASURE_DOT_MODEL_H
#define ZELM_MEASURE_DOT_MODEL_H

#include <zelmLib.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "blurredEllipse.h"
#include "cholesky.h"

namespace zelm::measure {

constexpr std::size_t kDotSectors = 24;  // of the outline, by the parameter of its ellipse
using SectorMask = std::uint32_t;
constexpr SectorMask kAllSectors = (SectorMask{1} << kDotSectors) - 1;

constexpr std::size_t kDotUnknowns = 10;
using DotVector = Vector<kDotUnknowns>;

// The unknowns: shift of the centre and growth of the mean radius in pixels, blur with the pixel's own square, and
// levels linear in the offset from the predicted centre over the mean radius.
enum DotUnknown : std::size_t {
    kShiftX,
    kShiftY,
    kGrowth,
    kBlur,
    kInside,
    kInsideX,
    kInsideY,
    kOutside,
    kOutsideX,
    kOutsideY
};

struct DotOutline {
    std::array<double, 4> axes{};
    std::array<double, 4> inverse{};
    double radius = 0.0;     // of the circle of the same area, pixels
    double perRadius = 0.0;  // its inverse
    double turn = 1.0;       // 1 or -1: the parameter runs from x towards y, or against that
    double longAxis = 0.0;
    double shortAxis = 0.0;
    double longX = 1.0, longY = 0.0;  // direction of the long axis
    double maxCurvature = 0.0;        // 1 / pixels
};

// A pixel near the outline, and the outline at the pixel's foot, its nearest point there.
struct DotSample {
    double x, y;  // from the predicted centre, pixels
    double gray;
    double weight;        // 1 / variance
    double footX, footY;  // parameter of the foot, as a unit vector
    double nx, ny;        // normal at the foot, outwards
    double tangent;       // distance of the foot's tangent from the centre, pixels of the predicted outline
    double curvature;     // of the predicted outline at the foot
    double fourth;        // nx^4 + ny^4
    double coverage;      // by the dot; this and what follows as of review()
    double residual;      // gray levels
    double slope;         // gray levels a pixel by which it changes when the outline moves outwards
    bool counts;          // false for a clipped pixel whose model lies beyond the clip
    std::uint32_t sector;
};

// Pixels that the outline's blur does not reach, summed: x and y are over the mean radius.
struct CoreSums {
    double n = 0, x = 0, y = 0, xx = 0, xy = 0, yy = 0, g = 0, gx = 0, gy = 0, gg = 0;
    void add(double px, double py, double gray);
    void add(const CoreSums& other);
};

struct DotPixels {
    std::vector<DotSample> samples;
    // By class, inside and outside, and sector; clipped: at 255 or 0, where the true level may lie beyond.
    std::array<std::array<CoreSums, kDotSectors>, 2> cores;
    std::array<std::array<CoreSums, kDotSectors>, 2> clipped;
};

// Variances of the gray levels, and what the outline adds to them at its steepest.
struct DotVariance {
    double inside = 1.0;
    double outside = 1.0;
    double edge = 0.0;
    double at(double coverage) const {
        return coverage * inside + (1.0 - coverage) * outside + 4.0 * coverage * (1.0 - coverage) * edge;
    }
};

struct DotLimits {
    double shift = 2.0;     // pixels
    double maxBlur = 5.0;   // pixels
    double contrast = 0.0;  // the scale of what is thought likely of levels
};

// The upper triangle of the normal matrix.
struct DotEquations {
    Matrix<kDotUnknowns> normal{};
    Matrix<kDotUnknowns> prior{};  // the part of it that does not come from pixels
    DotVector right{};
    double cost = 0.0;
};

// What the model says of one sample.
struct SampleView {
    double coverage;  // by the dot
    double byX, byY;  // its derivatives by the shift, the growth and the blur
    double byGrowth;
    double byBlur;
    double inside;  // gray levels here
    double outside;

    double gray() const { return outside + (inside - outside) * coverage; }
    // Gray levels a pixel by which the sample changes when the outline moves outwards.
    double slope() const { return (inside - outside) * std::sqrt(byX * byX + byY * byY); }
};

// Whether the sample is clipped and the model lies beyond the clip, so that it says nothing against the model.
inline bool isBeyondClip(double gray, double modelled) {
    return (gray >= 255.0 && modelled > 255.0) || (gray <= 0.0 && modelled < 0.0);
}

class DotModel {
public:
    DotModel(const DotOutline& outlineOfDot, DotPixels& pixelsOfDot) : outline(outlineOfDot), pixels(pixelsOfDot) {}

    DotVector unknowns{};
    DotVariance variance;
    DotLimits limits;
    DotEquations equations;  // at the unknowns, after fit()

    // Prepares look() for these unknowns: the feet of all samples follow the outline.
    void follow(const DotVector& at);
    // Notes in every sample what the model says of it at the unknowns.
    void review();
    // Gives every reviewed sample its weight by the variance.
    void weigh();
    // Whether it converged: its last step was shorter than the tolerance, pixels, and the next one would be shorter by
    // an order. The equations are those that this step came from.
    bool fit(SectorMask sectors, int maxSteps, double tolerance);
    SampleView look(const DotSample& sample, const DotVector& at) const;
    // Distance from the outline, positive outside.
    double distance(const DotSample& sample, const DotVector& at) const;
    // The unknowns that the feet of newly gathered samples follow.
    void setFeet(const DotVector& at) { feetAt = at; }
    void moveFeet(const DotVector& at);
    // One step of Newton's towards the foot on the outline as it is with these unknowns.
    // Returns how far it turned, in radians of the parameter.
    double moveFoot(DotSample& sample, const DotVector& at) const;
    // Sums over the sectors of one class, 0 inside and 1 outside, as they count at these levels.
    CoreSums coreOf(SectorMask sectors, std::size_t side, const DotVector& at) const;

private:
    void linearise(const DotVector& at, SectorMask sectors, DotEquations& to);
    void addPriors(const DotVector& at, DotEquations& to) const;
    bool isAllowed(const DotVector& at) const;

    const DotOutline& outline;
    DotPixels& pixels;
    DotVector feetAt{};  // the unknowns that the feet follow
    DotEquations trial;
    // What look() needs of the unknowns, by follow().
    double size = 1.0;
    double perBlur = 1.0;
    double blurPerScale = 1.0;
    bool isSmall = false;
    BlurredEllipse ellipse;  // of a dot little larger than the blur
};

}  // namespace zelm::measure

#endif
