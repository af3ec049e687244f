// What files of other programs say of a pair.
#ifndef ZELM_MEASURE_PAIR_FIGURES_H
#define ZELM_MEASURE_PAIR_FIGURES_H

#include <array>
#include <optional>
#include <string>

#include "rig.h"
#include "rowAlignment.h"

namespace zelm::measure {

struct CameraFigures {
    int width = 0;
    int height = 0;
    CameraParameters p{};
    ZelmCameraExtrinsics pose{};  // of view 0

    // [fx skew cx; 0 fy cy; 0 0 1]; without the skew for readers that do not know one.
    Matrix3 matrix() const { return {p[kFx], p[kSkew], p[kCx], 0.0, p[kFy], p[kCy], 0.0, 0.0, 1.0}; }
    Matrix3 squareMatrix() const { return {p[kFx], 0.0, p[kCx], 0.0, p[kFy], p[kCy], 0.0, 0.0, 1.0}; }
    // k1 k2 p1 p2 k3.
    std::array<double, 5> lens() const { return {p[kK1], p[kK2], 0.0, 0.0, 0.0}; }
    // Pixels that the skew moves a pixel at most.
    double skewEffect() const;
};

struct PairFigures {
    CameraFigures left;
    CameraFigures right;
    Motion motion;  // X_right = R X_left + t
    Matrix3 E{};    // x_right' E x_left = 0, normalised undistorted coordinates
    Matrix3 F{};    // x_right' F x_left = 0, undistorted pixels; its last element 1 unless it is 0
    // Row-aligned: each image centred, or with one principal point, as ROS has it; none when a camera looks along the
    // baseline.
    std::optional<RowAlignment> rows;
    std::optional<RowAlignment> rowsOfOnePoint;

    const CameraFigures& camera(char side) const { return side == 'L' ? left : right; }
};

// Throws Fault for a rig with a parallel camera.
PairFigures figuresOf(const Rig& rig);

// Metres of a length in plate units, and the length whose metres these are bit by bit where there is one.
double metresOf(double length, double metres);
double lengthOf(double inMetres, double metres);

// Files as text.
std::string openCvText(const PairFigures& figures);
std::string rosText(const PairFigures& figures, char side, double metres);
std::string kalibrText(const PairFigures& figures, double metres);
std::string mrcalText(const PairFigures& figures, char side, double metres);
std::string matlabBytes(const PairFigures& figures);
std::string numpyBytes(const PairFigures& figures);

}  // namespace zelm::measure

#endif
