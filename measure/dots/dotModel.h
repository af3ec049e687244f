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
#include "dotLanes.h"

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

// Pixels near the outline, and the outline at each pixel's foot, its nearest point there. What each step of a fit needs
// comes first.
struct DotQuad {
    Lanes x{}, y{};  // from the predicted centre, pixels
    Lanes gray{};
    Lanes fitted{};          // the weight where the sector is fitted, or 0
    Lanes nx{}, ny{};        // normal at the foot, outwards
    Lanes tangent{};         // distance of the foot's tangent from the centre of the predicted outline, over its radius
    Lanes curvature{};       // of the predicted outline at the foot
    Lanes fourth{};          // nx^4 + ny^4
    Lanes offset{};          // distance from the predicted outline
    Lanes weight{};          // 1 / variance
    Lanes footX{}, footY{};  // parameter of the foot, as a unit vector
    Lanes coverage{};        // by the dot; this and what follows as of review()
    Lanes residual{};        // gray levels
    Lanes slope{};           // gray levels a pixel by which it changes when the outline moves outwards
    Lanes counts{};          // 0 for a clipped pixel whose model lies beyond the clip, or 1
    std::array<std::uint8_t, kLanes> sector{};
};

// The pixels, in fours; the last four are filled up with pixels of no sector.
struct DotSamples {
    static constexpr std::uint8_t kNoSector = 31;  // a bit that no mask has

    std::vector<DotQuad> quads;
    std::size_t count = 0;

    void clear();
    void add(double x, double y, double gray) {
        const std::size_t lane = count++ % kLanes;
        if (lane == 0) {
            addQuad();
        }
        DotQuad& quad = quads.back();
        quad.x[lane] = static_cast<float>(x);
        quad.y[lane] = static_cast<float>(y);
        quad.gray[lane] = static_cast<float>(gray);
    }
    // Of the last one added.
    void setFoot(double footX, double footY, std::size_t sector);
    // Puts a sample where another one was that is not wanted.
    void moveLane(std::size_t from, std::size_t to);
    // Leaves the first ones.
    void shrink(std::size_t newCount);

private:
    void addQuad();
};

// Pixels that the outline's blur does not reach, summed: x and y are over the mean radius.
struct CoreSums {
    double n = 0, x = 0, y = 0, xx = 0, xy = 0, yy = 0, g = 0, gx = 0, gy = 0, gg = 0;
    void add(double px, double py, double gray) {
        n += 1.0;
        x += px;
        y += py;
        xx += px * px;
        xy += px * py;
        yy += py * py;
        g += gray;
        gx += gray * px;
        gy += gray * py;
        gg += gray * gray;
    }
    void add(const CoreSums& other);
};

struct DotPixels {
    DotSamples samples;
    // By class, inside and outside, and sector; clipped: at 255 or 0, where the true level may lie beyond.
    std::array<std::array<CoreSums, kDotSectors>, 2> cores;
    std::array<std::array<CoreSums, kDotSectors>, 2> clipped;
};

// Variances of the gray levels, and what the outline adds to them at its steepest.
struct DotVariance {
    double inside = 1.0;
    double outside = 1.0;
    double edge = 0.0;
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

// What the model says of four samples.
struct QuadView {
    Lanes coverage;  // by the dot
    Lanes byX, byY;  // its derivatives by the shift, the growth and the blur
    Lanes byGrowth;
    Lanes byBlur;
    Lanes inside;  // gray levels here
    Lanes outside;

    Lanes gray() const { return outside + (inside - outside) * coverage; }
};

class DotModel {
public:
    DotModel(const DotOutline& outlineOfDot, DotPixels& pixelsOfDot) : outline(outlineOfDot), pixels(pixelsOfDot) {}

    DotVector unknowns{};
    DotVariance variance;
    DotLimits limits;
    DotEquations equations;  // at the unknowns, after fit()

    // Notes in every sample what the model says of it at the unknowns.
    void review();
    // Gives every reviewed sample its weight by the variance.
    void weigh();
    // Whether it converged: its last step was shorter than the tolerance, pixels, and the next one would be shorter by
    // an order. The normal equations are those of a place less than a step of kFrozenStep away.
    bool fit(SectorMask sectors, int maxSteps, double tolerance);
    // Distances from the outline, positive outside.
    Lanes distances(const DotQuad& quad, const DotVector& at) const;
    // The feet of all samples go where they are with these unknowns, starting from what they are.
    void moveFeet(const DotVector& at);
    // Likewise, from nothing.
    void findFeet(const DotVector& at);
    // Sums over the sectors of one class, 0 inside and 1 outside, as they count at these levels.
    CoreSums coreOf(SectorMask sectors, std::size_t side, const DotVector& at) const;

private:
    enum class Wanted { all, gradient };
    void linearise(const DotVector& at, Wanted wanted, DotEquations& to);
    void sumQuads(Wanted wanted, DotEquations& to) const;
    void addPriors(const DotVector& at, Wanted wanted, DotEquations& to) const;
    void useSectors(SectorMask sectors);
    // Prepares look() for these unknowns; the feet of all samples follow the outline.
    void follow(const DotVector& at);
    QuadView look(const DotQuad& quad) const;
    bool isAllowed(const DotVector& at) const;

    const DotOutline& outline;
    DotPixels& pixels;
    DotVector feetAt{};  // the unknowns that the feet follow
    SectorMask fitted = 0;
    DotEquations trial;
    // What look() needs of the unknowns, by follow().
    std::array<float, kDotUnknowns> now{};
    float perBlur = 1.0F;
    float blurPerScale = 1.0F;
    bool isSmall = false;
    BlurredEllipse ellipse;  // of a dot little larger than the blur
};

}  // namespace zelm::measure

#endif
