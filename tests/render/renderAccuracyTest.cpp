// The renderer's images against independent integrations: exact pixel levels of discs and edges, centroids, clipping at
// the image's border, light and symmetries. Geometry and truth records are in renderTruthTest.cpp, poses and noise in
// renderSceneTest.cpp.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "random.h"
#include "renderView.h"

namespace {

using namespace zelm::render;

// One dot (the corner marker has the dots' size) in the middle of a plate that fills the image and more.
Plate singleDotPlate(double radius) {
    Plate plate;
    plate.minX = plate.minY = 0;
    plate.maxX = plate.maxY = 1;
    plate.markerX = plate.markerY = 1;
    plate.pitchX = plate.pitchY = 45.0;
    plate.dotDiameter = plate.markerDiameter = 2.0 * radius;
    plate.marginX = plate.marginY = 105.0;
    plate.missing = {{1, 0}, {0, 1}, {1, 1}};
    return plate;
}

// One pixel a plane unit in the middle; a small picture keeps the independent integration cheap.
Camera smallCamera() {
    Camera camera;
    camera.width = 96;
    camera.height = 80;
    camera.fx = 1000.0;
    camera.fy = 990.0;
    camera.cx = 30.0;
    camera.cy = 55.0;
    return camera;
}

Optics blurredBy(double sigma) {
    Optics optics;
    optics.levels = {20.0, 190.0, 20.0};
    optics.blurSigma = sigma;
    return optics;
}

// Where the centre of the dot is put, and how the plate is turned.
Pose poseAt(const Camera& camera, double x, double y, double tilt = 0.0, double tiltAxis = 0.0) {
    Aim aim;
    aim.pixel = {x, y};
    aim.scale = 1.0;
    aim.rollDegrees = 25.0;
    aim.tiltDegrees = tilt;
    aim.tiltAxisDegrees = tiltAxis;
    return aimedPose(camera, aim);
}

// The camera's inverse by its own route: the radius is undone by bisection, the ray is cut with the plane.
PlanePoint backProject(const Camera& c, const Pose& p, double x, double y) {
    const double yd = (y - c.cy) / c.fy;
    const double xd = (x - c.cx - (c.skew + c.fy * std::tan(c.theta)) * yd) / c.fx;
    const double rd = std::hypot(xd, yd);
    double low = 0.5 * rd, high = 2.0 * rd;
    for (int i = 0; i < 36; ++i) {  // to 1e-11 of the radius
        const double r = 0.5 * (low + high);
        (r * (1.0 + c.k1 * r * r + c.k2 * r * r * r * r) < rd ? low : high) = r;
    }
    const double shrink = rd > 0.0 ? 0.5 * (low + high) / rd : 1.0;
    const double u = xd * shrink, v = yd * shrink;
    // (R X + t)_x = u (R X + t)_z, likewise y, with X = (X, Y, 0).
    const double a = p.R[0] - u * p.R[6], b = p.R[1] - u * p.R[7], e = u * p.t[2] - p.t[0];
    const double f = p.R[3] - v * p.R[6], g = p.R[4] - v * p.R[7], h = v * p.t[2] - p.t[1];
    const double det = a * g - b * f;
    return {(e * g - b * h) / det, (a * h - e * f) / det};
}

bool isInDot(const Camera& camera, const Pose& pose, double radius, double x, double y) {
    const PlanePoint p = backProject(camera, pose, x, y);
    return std::hypot(p.x, p.y) < radius;
}

struct Chord {
    double y, left, right;
};

// The dot's image cut into thin rows, by asking whether points of the image lie on it.
std::vector<Chord> chordsOf(const Camera& camera, const Pose& pose, double radius, double step) {
    const Pixel centre = project(camera, pose, {0.0, 0.0}).pixel;
    const double reach = 1.5 * radius;
    std::vector<Chord> chords;
    double start = centre.x - reach;  // the rows' middles wander slowly, so the last one is a good start
    const double top = std::floor(centre.y - reach) - 0.5;  // rows are kept within rows of pixels
    for (int row = 0; top + (row + 0.5) * step < centre.y + reach; ++row) {
        const double y = top + (row + 0.5) * step;
        // A convex dot's row is a chord around the middle of the points found on it.
        double inside = NAN;
        for (double x = start; x < centre.x + reach && std::isnan(inside); x += 0.25) {
            inside = isInDot(camera, pose, radius, x, y) ? x : NAN;
        }
        if (std::isnan(inside)) {
            continue;  // outside, or a chord shorter than a quarter of a pixel
        }
        Chord chord{y, 0.0, 0.0};
        for (const double side : {-1.0, 1.0}) {
            double in = inside, out = inside + side * 2.0 * reach;
            for (int i = 0; i < 26; ++i) {  // to 1e-6 pixel
                const double middle = 0.5 * (in + out);
                (isInDot(camera, pose, radius, middle, y) ? in : out) = middle;
            }
            (side < 0.0 ? chord.left : chord.right) = in;
        }
        chords.push_back(chord);
        start = 0.5 * (chord.left + chord.right) - 1.0;
    }
    return chords;
}

// Share of a pixel's blurred square that lies left of v; `sigma` 0 means no blur.
double squareLeftOf(double v, double sigma) {
    if (sigma == 0.0) {
        return std::fmin(std::fmax(v + 0.5, 0.0), 1.0);
    }
    const auto integral = [sigma](double w) {
        const double z = w / sigma;
        return 0.5 * w * std::erfc(-z / std::numbers::sqrt2) +
               sigma * std::exp(-0.5 * z * z) / std::sqrt(2.0 * std::numbers::pi);
    };
    return integral(v + 0.5) - integral(v - 0.5);
}

double squareProfile(double v, double sigma) {
    if (sigma == 0.0) {
        return std::abs(v) <= 0.5 ? 1.0 : 0.0;
    }
    const double unit = sigma * std::numbers::sqrt2;
    return 0.5 * (std::erf((v + 0.5) / unit) - std::erf((v - 0.5) / unit));
}

// Coverage of one pixel by area integration over the chords.
double coverageFromChords(const std::vector<Chord>& chords, double step, int px, int py, double sigma) {
    double sum = 0.0;
    const double reach = 0.5 + 7.0 * sigma;
    for (const Chord& chord : chords) {
        if (std::abs(chord.y - py) < reach) {
            const double weight = squareProfile(chord.y - py, sigma);
            sum += weight * (squareLeftOf(chord.right - px, sigma) - squareLeftOf(chord.left - px, sigma));
        }
    }
    return sum * step;
}

// Centroid of the darkness of a single dark dot.
struct Measured {
    double x, y, area;
};

template <typename Image>
Measured darkCentroid(const Image& image, const GrayLevels& levels) {
    double m = 0.0, mx = 0.0, my = 0.0;
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            const double dark = levels.plate - static_cast<double>(image.at(x, y));
            m += dark;
            mx += dark * x;
            my += dark * y;
        }
    }
    return {mx / m, my / m, m / (levels.plate - levels.dots)};
}

struct View {
    double radius, x, y, tilt, tiltAxis, sigma, k1;
};

TEST(RenderAccuracy, PixelLevelsEqualAnIndependentAreaIntegral) {
    // Rows 1/400 pixel high; missed chord ends leave less than 2e-4 pixel^2 of area, 0.03 gray levels of 170.
    constexpr double kStep = 1.0 / 400.0, kTolerance = 0.03;
    for (const View& v :
         {View{8.0, 41.3, 40.2, 0.0, 0.0, 0.6, 0.0}, View{8.0, 41.3, 40.2, 0.0, 0.0, 0.0, 0.0},
          View{14.0, 48.71, 39.5, 38.0, 70.0, 0.5, -4.0}, View{14.0, 48.71, 39.5, 38.0, 70.0, 0.0, -4.0},
          View{20.0, 44.0, 41.25, 30.0, 160.0, 1.5, 5.0}}) {
        Camera camera = smallCamera();
        camera.k1 = v.k1;  // the small picture needs a strong lens to bend the outline
        const Pose pose = poseAt(camera, v.x, v.y, v.tilt, v.tiltAxis);
        const Optics optics = blurredBy(v.sigma);
        const LevelImage image = renderLevels(singleDotPlate(v.radius), camera, pose, optics);
        const std::vector<Chord> chords = chordsOf(camera, pose, v.radius, kStep);
        double worst = 0.0;
        for (int y = 0; y < camera.height; ++y) {
            for (int x = 2 * y % 5; x < camera.width; x += 5) {  // every fifth pixel, at all distances from the edge
                const double expected = 190.0 - 170.0 * coverageFromChords(chords, kStep, x, y, v.sigma);
                worst = std::fmax(worst, std::abs(image.at(x, y) - expected));
            }
        }
        EXPECT_LT(worst, kTolerance) << "radius " << v.radius << " sigma " << v.sigma << " k1 " << v.k1;
    }
}

TEST(RenderAccuracy, CentroidOfABlurredDotIsTheCentroidOfItsOutline) {
    zelmtest::Random random(11);
    for (int i = 0; i < 60; ++i) {
        Camera camera = smallCamera();
        camera.k1 = random.uniform(-4.0, 6.0);
        const double sigma = random.uniform(0.5, 1.5);
        const Plate plate = singleDotPlate(random.uniform(5.0, 20.0));
        const Pose pose = poseAt(camera, random.uniform(44.0, 52.0), random.uniform(38.0, 42.0),
                                 random.uniform(0.0, 45.0), random.uniform(0.0, 360.0));
        const DotTruth truth = dotTruths(plate, camera, pose).at(0);
        const Optics optics = blurredBy(sigma);
        const Measured measured = darkCentroid(renderLevels(plate, camera, pose, optics), optics.levels);
        // What is left is the sampling of a blurred edge once a pixel, which falls as exp(-2 (pi sigma)^2): 0.007 of
        // the unblurred 0.003 pixel at sigma 0.5.
        EXPECT_NEAR(measured.x, truth.centroid.x, 5e-5);
        EXPECT_NEAR(measured.y, truth.centroid.y, 5e-5);
        EXPECT_NEAR(std::sqrt(measured.area / std::numbers::pi), truth.radius, 5e-5);
    }
}

// Rounding to 8 bits is part of the picture, not of the renderer's error, but it must not move dots systematically.
TEST(RenderAccuracy, RoundingToEightBitsMovesDotsByLessThanTwoThousandthsOfAPixel) {
    zelmtest::Random random(12);
    double squares = 0.0, sumX = 0.0, sumY = 0.0;
    constexpr int kDots = 300;
    for (int i = 0; i < kDots; ++i) {
        Camera camera = smallCamera();
        camera.k1 = random.uniform(-4.0, 6.0);
        const Plate plate = singleDotPlate(random.uniform(5.0, 20.0));
        const Pose pose = poseAt(camera, random.uniform(44.0, 52.0), random.uniform(38.0, 42.0),
                                 random.uniform(0.0, 45.0), random.uniform(0.0, 360.0));
        const Optics optics = blurredBy(random.uniform(0.5, 1.5));
        const RenderedView view = renderView(plate, camera, pose, optics);
        const Measured measured = darkCentroid(view.image, optics.levels);
        const double dx = measured.x - view.dots.at(0).centroid.x, dy = measured.y - view.dots.at(0).centroid.y;
        squares += dx * dx + dy * dy;
        sumX += dx;
        sumY += dy;
    }
    const double rms = std::sqrt(squares / kDots);
    RecordProperty("rms_px", std::to_string(rms));
    EXPECT_LT(rms, 0.002);
    // The mean of independent errors, at three and a half times its spread.
    EXPECT_LT(std::hypot(sumX, sumY) / kDots, 3.5 * rms / std::sqrt(kDots));
}

TEST(RenderAccuracy, CentroidDoesNotMoveWithBlur) {
    const Camera camera = smallCamera();
    const Plate plate = singleDotPlate(9.0);
    const Pose pose = poseAt(camera, 47.37, 40.61, 35.0, 20.0);
    const Optics reference = blurredBy(0.8);
    const Measured expected = darkCentroid(renderLevels(plate, camera, pose, reference), reference.levels);
    for (const double sigma : {1.0, 1.5, 2.0, 3.0}) {
        const Optics optics = blurredBy(sigma);
        const Measured measured = darkCentroid(renderLevels(plate, camera, pose, optics), optics.levels);
        EXPECT_NEAR(measured.x, expected.x, 1e-6) << sigma;
        EXPECT_NEAR(measured.y, expected.y, 1e-6) << sigma;
    }
}

TEST(RenderAccuracy, SharpImagesAreTheLimitOfVanishingBlur) {
    const Camera camera = smallCamera();
    const Plate plate = singleDotPlate(9.0);
    const Pose pose = poseAt(camera, 47.37, 40.61, 35.0, 20.0);
    const LevelImage sharp = renderLevels(plate, camera, pose, blurredBy(0.0));
    const LevelImage blurred = renderLevels(plate, camera, pose, blurredBy(0.02));
    for (std::size_t i = 0; i < sharp.levels.size(); ++i) {
        // A blur of sigma moves at most sigma / sqrt(2 pi) of light per pixel of edge over a pixel's side.
        EXPECT_NEAR(sharp.levels[i], blurred.levels[i], 170.0 * 0.02 * 0.4 * std::numbers::sqrt2);
    }
}

// A plate whose edges and dots run out of the image on all sides.
TEST(RenderAccuracy, WhatIsOutsideTheImageChangesNothingInside) {
    Plate plate;
    Camera large;
    large.width = 900;
    large.height = 700;
    large.cx = 455.2;
    large.cy = 340.9;
    large.k1 = -0.1;
    Camera window = large;
    window.width = 500;
    window.height = 300;
    window.cx -= 200.0;
    window.cy -= 150.0;
    Aim aim;
    aim.pixel = {450.0, 350.0};
    aim.scale = 4.4;
    aim.rollDegrees = 33.0;
    aim.tiltDegrees = 20.0;
    const Pose pose = aimedPose(large, aim);
    for (const double sigma : {0.0, 0.7}) {
        const LevelImage whole = renderLevels(plate, large, pose, blurredBy(sigma));
        const LevelImage part = renderLevels(plate, window, pose, blurredBy(sigma));
        double worst = 0.0;
        for (int y = 0; y < window.height; ++y) {
            for (int x = 0; x < window.width; ++x) {
                worst = std::fmax(worst, std::abs(part.at(x, y) - whole.at(x + 200, y + 150)));
            }
        }
        EXPECT_LT(worst, 1e-8) << sigma;  // rounding of the sums along the rows
    }
}

TEST(RenderAccuracy, TheEdgeOfThePlateIsTheIntegratedErrorFunction) {
    // A plate edge along the pixel columns, far from dots and corners: its profile has a closed form.
    const Camera camera = smallCamera();
    const Plate plate = singleDotPlate(9.0);
    const Optics optics = blurredBy(0.9);
    Aim aim;
    aim.point = {plateBounds(plate).left, 0.0};
    aim.pixel = {40.3, 40.0};
    aim.scale = 1.0;
    const LevelImage image = renderLevels(plate, camera, aimedPose(camera, aim), optics);
    for (int x = 30; x < 50; ++x) {
        EXPECT_NEAR(image.at(x, 40), 190.0 - 170.0 * squareLeftOf(40.3 - x, 0.9),
                    1e-6);  // the quadrature's 4e-10 of 170
    }
}

TEST(RenderAccuracy, ExchangedLevelsGiveTheNegative) {
    const Camera camera = smallCamera();
    const Plate plate = singleDotPlate(9.0);
    const Pose pose = poseAt(camera, 47.37, 40.61, 35.0, 20.0);
    Optics dark = blurredBy(0.7), light = blurredBy(0.7);
    light.levels = {190.0, 20.0, 190.0};
    const LevelImage a = renderLevels(plate, camera, pose, dark);
    const LevelImage b = renderLevels(plate, camera, pose, light);
    for (std::size_t i = 0; i < a.levels.size(); ++i) {
        EXPECT_NEAR(a.levels[i] + b.levels[i], 210.0, 1e-9);
    }
}

TEST(RenderAccuracy, ASymmetricPlateGivesASymmetricImage) {
    Plate plate;
    plate.shrunkMarkers = {{0, 0}, {3, 0}, {0, 3}};
    Camera camera;
    camera.width = 401;
    camera.height = 301;
    camera.cx = 200.0;
    camera.cy = 150.0;
    camera.k1 = -0.4;
    Aim aim;
    aim.pixel = {200.0, 150.0};
    aim.scale = 1.7;
    aim.rollDegrees = 27.0;
    const LevelImage image = renderLevels(plate, camera, aimedPose(camera, aim), blurredBy(0.7));
    double worst = 0.0;
    for (int y = 0; y < camera.height; ++y) {
        for (int x = 0; x < camera.width; ++x) {
            worst = std::fmax(worst, std::abs(image.at(x, y) - image.at(400 - x, 300 - y)));
        }
    }
    EXPECT_LT(worst, 1e-6);  // the quadrature of the plate's edge
}

TEST(RenderAccuracy, AWholePixelShiftMovesTheImage) {
    const Plate plate;
    Camera camera;
    camera.width = 400;
    camera.height = 320;
    camera.cx = 199.25;
    camera.cy = 160.5;
    Aim aim;
    aim.pixel = {199.25, 160.5};
    aim.scale = 1.7;
    aim.tiltDegrees = 25.0;
    const Pose pose = aimedPose(camera, aim);
    const LevelImage a = renderLevels(plate, camera, pose, blurredBy(0.6));
    camera.cx += 3.0;
    camera.cy -= 2.0;
    const LevelImage b = renderLevels(plate, camera, pose, blurredBy(0.6));
    for (int y = 2; y < camera.height; ++y) {
        for (int x = 0; x + 3 < camera.width; ++x) {
            ASSERT_NEAR(a.at(x, y), b.at(x + 3, y - 2), 1e-8);
        }
    }
}

TEST(RenderAccuracy, LightMultipliesTheImage) {
    const Camera camera = smallCamera();
    const Plate plate = singleDotPlate(9.0);
    const Pose pose = poseAt(camera, 47.37, 40.61);
    Optics optics = blurredBy(0.7);
    const LevelImage plain = renderLevels(plate, camera, pose, optics);
    optics.light = {0.2, -0.1, 0.4};
    const LevelImage lit = renderLevels(plate, camera, pose, optics);
    for (int y = 0; y < camera.height; ++y) {
        for (int x = 0; x < camera.width; ++x) {
            ASSERT_NEAR(lit.at(x, y), plain.at(x, y) * optics.light.at(camera, x, y), 1e-9);
        }
    }
    EXPECT_NEAR(optics.light.at(camera, 47.5, 39.5), 1.0, 1e-12);                // the centre
    EXPECT_NEAR(optics.light.at(camera, -0.5, -0.5), 0.9 * 0.6, 1e-12);          // the outer corner of the first pixel
    EXPECT_NEAR(optics.light.at(camera, 95.5, 39.5), 1.2 * (1.0 - 0.2), 1e-12);  // the middle of the right edge
}

TEST(RenderAccuracy, APlateSeenFromBehindIsMirrored) {
    const Camera camera = smallCamera();
    const Plate plate = singleDotPlate(9.0);
    Pose behind = poseAt(camera, 47.0, 40.0);
    for (const std::size_t column : {1U, 2U}) {
        for (std::size_t row = 0; row < 3; ++row) {
            behind.R[3 * row + column] = -behind.R[3 * row + column];
        }
    }
    const LevelImage image = renderLevels(plate, camera, behind, blurredBy(0.6));
    EXPECT_NEAR(image.at(47, 40), 20.0, 1e-6);   // the dot
    EXPECT_NEAR(image.at(47, 55), 190.0, 1e-6);  // the plate around it
}

}  // namespace
