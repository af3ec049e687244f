// How well 3-D points are known, and the columns of files that tell it.
#ifndef ZELM_TOOL_SPACE_UNCERTAINTY_H
#define ZELM_TOOL_SPACE_UNCERTAINTY_H

#include <array>
#include <string>
#include <vector>

#include "pairFile.h"
#include "rigFile.h"

namespace zelm::tool {

// The two independent parts of a point's covariance, plate units^2: xx, xy, xz, yy, yz, zz.
struct PointUncertainty {
    bool isKnown = false;  // not so of pairs without a point
    std::array<double, 6> noise{};
    std::array<double, 6> calibration{};
    double depthByCalibration = 0.0;  // standard deviation along the left camera's axis

    // Standard deviations along the axes.
    std::array<double, 3> ofNoise() const;
    std::array<double, 3> ofCalibration() const;
    std::array<double, 3> total() const;
};

// What makes points uncertain beside the calibration.
struct ImageNoise {
    double sigma = 0.0;  // standard deviation of a pixel's coordinate; 0: that of the calibration's dots
    std::vector<double>
        points{};  // 6 a pair: covariances of points by their images, NaN where these tell none; or none

    ZelmMeasurePixelNoise record() const;  // valid as long as this
};

// Throws Failure, naming the rig's file, when its covariance is not known.
std::vector<PointUncertainty> uncertaintyOf(const LoadedRig& rig, const std::vector<PixelPair>& pairs,
                                            const ImageNoise& noise);

// Medians over the points that are known.
struct UncertaintyMedians {
    std::array<double, 3> total{};
    std::array<double, 3> noise{};
    std::array<double, 3> calibration{};
};
UncertaintyMedians mediansOf(const std::vector<PointUncertainty>& points);

// Names and fields of columns, each with a comma in front; with both covariances when they are wanted.
std::string uncertaintyHeader(bool withCovariances);
std::string uncertaintyFields(const PointUncertainty& point, bool withCovariances);

// Likewise the properties of a PLY's vertices, and the numbers of one with a blank in front of each: -1 where they are
// not known, as readers of text files stumble over nan.
std::string plySigmaProperties();
std::string plySigmas(const PointUncertainty& point);
void appendPlySigmas(std::string& bytes, const PointUncertainty& point);

}  // namespace zelm::tool

#endif
