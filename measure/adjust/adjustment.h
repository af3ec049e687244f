// An adjustment from its start to the adjusted rig, step by step.
#ifndef ZELM_MEASURE_ADJUSTMENT_H
#define ZELM_MEASURE_ADJUSTMENT_H

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

#include "adjustCovariance.h"
#include "adjustStart.h"
#include "adjuster.h"
#include "image.h"
#include "plateSearch.h"
#include "pointTarget.h"
#include "rig.h"

namespace zelm::measure {

struct RefinedCounts {
    int read = 0;
    int refined = 0;
    int refused = 0;
    int added = 0;
};

class Adjustment {
public:
    Adjustment(const Rig& rig, const Pattern& plate, const AdjustOptions& options, DotPlaces places);
    // Of points, by two cameras or one alone.
    Adjustment(PointTarget target, const AdjustOptions& options, DotPlaces places);

    void solve();
    RefinedCounts refine(Side side, std::size_t view, const DenseImage& image);
    // Dots that take part; none: nothing was added.
    std::array<int, kSides> addView(const DenseImage& left, const DenseImage& right);

    // Not so: one camera alone, that of the state's base.
    bool isPair() const { return cameras[kLeft].width > 0 && cameras[kRight].width > 0; }
    // Not so: points, whose pixels nothing is known of.
    bool hasPlate() const { return plate.has_value(); }
    bool isSolved() const { return outcome.has_value(); }
    // Throws Fault before the first solve().
    const AdjustSummary& summary() const { return solved().summary; }
    const AdjustCovariance& covariance() const { return solved().covariance; }
    const AdjustState& state() const { return solved().state; }
    const std::vector<AdjustView>& views() const { return current; }
    bool usesRefinedDots() const { return hasRefined; }
    // Throws Fault unless solve() has seen all dots.
    void requireCurrent() const;
    // What the last solve() estimated.
    const AdjustOptions& solvedOptions() const { return solved().options; }
    // Measured diameters of refined dots over the plate's.
    const std::array<std::vector<double>, kDotKinds>& measuredScales() const { return scales; }
    // The image of a dot's own centre: the measured centre without what projection and lens add to it.
    Point2d centreOf(Side side, std::size_t view, const DotObservation& dot) const;
    Rig adjustedRig() const;
    // Throws Fault for one camera alone.
    Rig startRig() const;
    // As they were before, and as they are; the latter with the poses of the first `views` views, without dots.
    RigCamera startCamera(Side side) const;
    RigCamera adjustedCamera(Side side, std::size_t views) const;
    ZelmCameraExtrinsics adjustedPose(Side side, std::size_t view) const;
    // Of the adjusted cameras; it costs the same however many views there are. Throws Fault for one camera alone.
    Matrix3 adjustedFundamental() const;

private:
    struct Outcome {
        AdjustState state;
        AdjustSummary summary;
        AdjustCovariance covariance;
        AdjustOptions options;
    };
    using Scales = std::array<std::vector<double>, kDotKinds>;
    // What the reader's dots gave, to go back to where its dots are the better ones.
    struct Reading {
        Outcome outcome;
        std::vector<AdjustView> views;
    };

    const Outcome& solved() const;
    void holdTiltOfSeldomSeen();
    // Of the diameters, by the dots that were measured before and these.
    std::array<double, kDotKinds> factorsWith(const Scales& fresh) const;
    // What the reader's dots gave, unless it is kept already.
    std::optional<Reading> keptReading() const;
    void requireSize(Side side, const DenseImage& image) const;
    PlateSearch searchOf(Side side) const;
    std::optional<MotionParameters> basePoseOf(Side side, const DenseImage& image) const;
    void holdWhatIsHeld();
    const Pattern& requirePlate() const;
    void requirePair() const;
    MotionParameters finalPose(std::size_t view) const;
    std::vector<std::vector<Point2d>> usedCentres(Side side) const;

    std::optional<Pattern> plate;
    AdjustOptions options;
    DotPlaces places;
    std::array<RigCamera, kSides> cameras;  // models, sizes and records of the start
    AdjustState start;
    std::vector<AdjustView> current;
    std::optional<Outcome> outcome;
    std::optional<Reading> reading;
    Scales scales;  // of refined dots over the plate's
    bool hasRefined = false;
    bool hasNewDots = false;
};

}  // namespace zelm::measure

#endif
