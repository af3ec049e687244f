// What the tests of matching share: a textured plane rendered in closed form, and the CSV of matched points.
#ifndef ZELM_TEST_MATCH_FIXTURES_H
#define ZELM_TEST_MATCH_FIXTURES_H

#include <cmath>
#include <map>
#include <string>
#include <vector>

#include "measureFixtures.h"

namespace zelmtest {

// One line of the CSV of matched points; the numbers of a point that was not found are missing.
struct MatchLine {
    std::map<std::string, std::string> fields;

    [[nodiscard]] const std::string& text(const std::string& name) const { return fields.at(name); }
    [[nodiscard]] double number(const std::string& name) const { return std::stod(fields.at(name)); }
    [[nodiscard]] bool isOk() const { return fields.at("status") == "ok"; }
    [[nodiscard]] Point3d position() const { return {number("X"), number("Y"), number("Z")}; }
};

inline std::vector<MatchLine> readMatches(const fs::path& path) {
    const auto split = [](const std::string& line) {
        std::vector<std::string> fields(1);
        for (const char c : line) {
            if (c == ',') {
                fields.emplace_back();
            } else {
                fields.back() += c;
            }
        }
        return fields;
    };
    const std::vector<std::string> lines = splitLines(readFile(path));
    std::vector<MatchLine> rows;
    if (lines.empty()) {
        ADD_FAILURE() << path << " is empty";
        return rows;
    }
    const std::string plain = "id,xL,yL,xR,yR,score,X,Y,Z,depth,depth_sigma,error_left_px,error_right_px";
    // With the part of the calibration where its covariance is known.
    EXPECT_TRUE(lines.front() == plain + ",status" || lines.front() == plain + ",depth_sigma_calibration,status")
        << lines.front();
    const std::vector<std::string> names = split(lines.front());
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const std::vector<std::string> fields = split(lines[i]);
        EXPECT_EQ(fields.size(), names.size()) << lines[i];
        MatchLine& row = rows.emplace_back();
        for (std::size_t k = 0; k < std::min(fields.size(), names.size()); ++k) {
            row.fields[names[k]] = fields[k];
        }
    }
    return rows;
}

// A pair whose images are small cut-outs around the principal points.
inline TruePair smallPair(std::int32_t leftModel, std::int32_t rightModel) {
    TruePair pair = makePair(leftModel, rightModel);
    pair.width = 240;
    pair.height = 180;
    for (zelm::CalibratedCamera* camera : {&pair.left, &pair.right}) {
        ZelmCameraIntrinsics& k = camera->intrinsics;
        k.cx = k.A[2] = 121.3;
        k.cy = k.A[5] = 88.6;
    }
    return pair;
}

// The plane Z = slopeX X + slopeY Y + offset of the world.
struct Plane {
    double slopeX = 0.0;
    double slopeY = 0.0;
    double offset = 0.0;

    [[nodiscard]] double distanceOf(const Point3d& X) const {
        return (X.z - slopeX * X.x - slopeY * X.y - offset) / std::sqrt(1.0 + slopeX * slopeX + slopeY * slopeY);
    }
};

// Where the ray of a raw pixel meets a plane: the two projections are linear in a point once its depth is known, so
// the point is found by Newton's method on the raw projection, whatever the camera's model.
inline Point3d pointOn(const Plane& plane, const TruePair& pair, char side, Point2d pixel) {
    double x = 0.0;
    double y = 0.0;
    const auto project = [&](double u, double v) {
        return pair.project(side, {u, v, plane.slopeX * u + plane.slopeY * v + plane.offset});
    };
    constexpr double kStep = 1e-4;  // units; the projections are smooth over thousands of them
    for (int i = 0; i < 8; ++i) {
        const Point2d p = project(x, y);
        const Point2d px = project(x + kStep, y);
        const Point2d py = project(x, y + kStep);
        const double a = (px.x - p.x) / kStep;
        const double b = (py.x - p.x) / kStep;
        const double c = (px.y - p.y) / kStep;
        const double d = (py.y - p.y) / kStep;
        const double rx = pixel.x - p.x;
        const double ry = pixel.y - p.y;
        const double determinant = a * d - b * c;
        x += (d * rx - b * ry) / determinant;
        y += (a * ry - c * rx) / determinant;
    }
    return {x, y, plane.slopeX * x + plane.slopeY * y + plane.offset};
}

// Waves of many directions, none shorter than about `shortest` units; never the same twice.
class Texture {
public:
    explicit Texture(double shortest, unsigned seed = 5) {
        Random random(seed);
        for (int i = 0; i < 24; ++i) {
            const double angle = random.uniform(0.0, 3.14159265358979);
            const double frequency = 2.0 * 3.14159265358979 / (shortest * random.uniform(1.0, 3.0));
            waves.push_back({frequency * std::cos(angle), frequency * std::sin(angle), random.uniform(0.0, 6.28)});
        }
    }
    [[nodiscard]] double operator()(double x, double y) const {
        double sum = 0.0;
        for (const auto& w : waves) {
            sum += std::cos(w[0] * x + w[1] * y + w[2]);
        }
        return 128.0 + 16.0 * sum;
    }

private:
    std::vector<std::array<double, 3>> waves;
};

// A camera's picture of a plane, sampled at the pixels' centres; a pixel wide texture would alias, so it is not.
template <typename Gray>
Pgm pictureOf(const TruePair& pair, char side, const Plane& plane, Gray gray, double noise = 0.0) {
    Random random(side == 'L' ? 11 : 12);
    Pgm pgm{pair.width, pair.height, {}};
    for (int y = 0; y < pgm.height; ++y) {
        for (int x = 0; x < pgm.width; ++x) {
            const Point3d X = pointOn(plane, pair, side, {static_cast<double>(x), static_cast<double>(y)});
            // Four uniform numbers make a normal one, near enough.
            const double sum = random.uniform(-1.0, 1.0) + random.uniform(-1.0, 1.0) + random.uniform(-1.0, 1.0) +
                               random.uniform(-1.0, 1.0);
            const double value = gray(X.x, X.y) + noise * sum / std::sqrt(4.0 / 3.0);
            pgm.pixels += static_cast<char>(static_cast<unsigned char>(std::clamp(value + 0.5, 0.0, 255.0)));
        }
    }
    return pgm;
}

// A rig, its two pictures of a plane, and matching them.
struct PlaneScene {
    TemporaryFolder folder;
    TruePair pair;
    Plane plane;

    template <typename Gray>
    PlaneScene(const TruePair& truePair, const Plane& truePlane, Gray gray, double noise = 0.0)
        : pair(truePair), plane(truePlane) {
        writePair(pair, folder / "rig.zcal");
        writeFile(folder / "left.pgm", pgmBytes(pictureOf(pair, 'L', plane, gray, noise)));
        writeFile(folder / "right.pgm", pgmBytes(pictureOf(pair, 'R', plane, gray, noise)));
    }
    [[nodiscard]] std::string file(const std::string& name) const { return (folder / name).string(); }
    [[nodiscard]] CommandResult match(const std::vector<std::string>& more = {}) const {
        std::vector<std::string> arguments{"match", file("rig.zcal"),  file("left.pgm"), file("right.pgm"),
                                           "-o",    file("points.csv")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return zelm(arguments);
    }
    // Whether both images hold a whole window around the point of a left pixel: 11 pixels and the border of the fit,
    // and some more in the right one, where the window may be wider.
    [[nodiscard]] bool isSeen(Point2d pixel) const {
        const auto isInner = [&](Point2d p, double margin) {
            return p.x >= margin && p.y >= margin && p.x <= pair.width - 1 - margin && p.y <= pair.height - 1 - margin;
        };
        return isInner(pixel, 12.5) && isInner(pair.project('R', pointOn(plane, pair, 'L', pixel)), 16.0);
    }
    [[nodiscard]] std::vector<MatchLine> points() const { return readMatches(folder / "points.csv"); }
};

}  // namespace zelmtest

#endif
