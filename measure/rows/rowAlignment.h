// Two perspective cameras turned so that the images of a point lie in the same row.
//
// Both are turned about their centres until their x axes lie along the baseline and their z axes are one, the mean of
// the two optical axes made square to it (Fusiello, Trucco and Verri 2000). Both then have the same focal length and
// rows.
#ifndef ZELM_MEASURE_ROW_ALIGNMENT_H
#define ZELM_MEASURE_ROW_ALIGNMENT_H

#include <array>
#include <optional>

#include "rig.h"

namespace zelm::measure {

struct RowOptions {
    int width = 0;                // of the aligned images; 0: the larger of the cameras' widths
    int height = 0;               // likewise
    double focal = 0.0;           // pixels; 0: the mean of the cameras' four focal lengths, or less (zeroAtInfinity)
    double nearest = 0.0;         // depth that disparities are told of; 0: by the plates
    double farthest = 0.0;        // likewise
    bool zeroAtInfinity = false;  // the principal points are the same, so that disparity 0 is at infinity
};

struct RowAlignment {
    int width = 0;
    int height = 0;
    double focal = 0.0;
    Matrix3 leftRotation{};   // X_aligned = leftRotation X_left
    Matrix3 rightRotation{};  // X_aligned = rightRotation X_right + (shift, 0, 0)
    double leftX = 0.0;       // principal point, x
    double rightX = 0.0;      // likewise
    double centreY = 0.0;     // of both
    double shift = 0.0;  // of the right camera's coordinates, plate units: minus the baseline, if it is to the right

    const Matrix3& rotation(char side) const { return side == 'L' ? leftRotation : rightRotation; }
    double centreX(char side) const { return side == 'L' ? leftX : rightX; }

    // Column in the left image less that in the right one, of a point so deep in the aligned frame.
    double disparityAt(double depth) const { return leftX - rightX - focal * shift / depth; }
    std::array<double, 12> projection(char side) const;
    // Takes (column, row, disparity, 1) to a point of the aligned left camera's frame.
    std::array<double, 16> reprojection() const;
};

// Throws Fault for a parallel camera, for cameras in one place, and where one of them would have to look backwards.
RowAlignment alignRows(const Rig& rig, const RowOptions& options);

// The disparities of the depths told, or of those that the rig is good for: the least and the greatest; nothing where
// neither tells depths. Depths are along the left camera's axis, near enough to the aligned one.
std::optional<std::array<double, 2>> disparitiesOf(const Rig& rig, const RowAlignment& alignment,
                                                   const RowOptions& options);

// Where an aligned image takes its pixels from.
class RowMapper {
public:
    RowMapper(const RigCamera& camera, const RowAlignment& alignment, char side);

    // The raw pixel of an aligned one; false when the camera does not see it.
    bool rawOf(Point2d aligned, Point2d& raw) const;

private:
    ProjectionCamera camera;
    Matrix3 rotation;
    double focal;
    Point2d centre;
    Point2d corner;  // the last pixel
    double fold;
};

}  // namespace zelm::measure

#endif
