// Prints a digest of the bits of many results, so that builds by different compilers and at different optimisation
// levels can be compared. With --families: one digest a family, to see where builds part.
// With --plain: of the plain kernels. With --threads: whether threads that run at the same time compute what one alone
// computes.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "corrAlongPoints.h"
#include "correlation.h"
#include "cpuFeatures.h"
#include "random.h"
#include "zelmLib.h"

namespace {

using zelmtest::Random;

// FNV-1a over bytes.
class Digest {
public:
    void add(const void* data, std::size_t bytes) {
        const auto* const p = static_cast<const unsigned char*>(data);
        for (std::size_t i = 0; i < bytes; ++i) {
            hash = (hash ^ p[i]) * 0x100000001B3ULL;
        }
    }
    void add(double value) { add(&value, sizeof value); }
    void add(std::int32_t value) { add(&value, sizeof value); }
    void add(const Point2d& point) { add(&point, sizeof point); }
    void add(const Line2d& line) { add(&line, sizeof line); }
    void add(const std::vector<double>& values) { add(values.data(), values.size() * sizeof(double)); }
    [[nodiscard]] std::uint64_t value() const { return hash; }

private:
    std::uint64_t hash = 0xCBF29CE484222325ULL;
};

std::vector<double> randomValues(Random& random, int count, double low, double high) {
    std::vector<double> values(static_cast<std::size_t>(count));
    for (double& value : values) {
        value = random.uniform(low, high);
    }
    return values;
}

void digestMat(Digest& digest) {
    Random random(1);
    for (int round = 0; round < 400; ++round) {
        const int n = random.integer(1, 9);
        const int m = n + random.integer(0, 20);
        const auto count = [](int rows, int cols) { return static_cast<std::size_t>(rows * cols); };
        const auto a = randomValues(random, m * n, -10.0, 10.0);
        std::vector<double> normal(count(n, n));
        zelmMatMulTransposed(1, m, n, a.data(), normal.data());
        digest.add(normal);
        std::vector<double> out(count(n, n));
        digest.add(zelmMatInvert(n, normal.data(), out.data()));
        digest.add(out);
        digest.add(zelmMatCholeskyDecomp(n, normal.data(), out.data()));
        digest.add(out);
        std::vector<double> values(count(n, 1));
        digest.add(zelmMatJacobiEigen(n, normal.data(), values.data(), out.data()));
        digest.add(values);
        digest.add(out);
        std::vector<double> u(count(m, n));
        digest.add(zelmMatSVD(m, n, a.data(), u.data(), values.data(), out.data()));
        digest.add(u);
        digest.add(values);
        digest.add(out);
        const auto b = randomValues(random, m, -1.0, 1.0);
        digest.add(zelmMatSolveSVD(m, n, a.data(), b.data(), values.data()));
        digest.add(values);
    }
}

void digestMath(Digest& digest) {
    Random random(2);
    for (int round = 0; round < 2000; ++round) {
        const auto v = randomValues(random, 9, -5.0, 5.0);
        std::vector<double> out(9);
        zelmMathInvMatrixOfSyn3X3(v.data(), out.data());
        digest.add(out);
        digest.add(zelmMathCalcAngle(3, v.data(), v.data() + 3, out.data()));
        zelmMathComposeCoord(v[0], v[1], v[2], v[3], v[4], v[5], &out[0], &out[1], &out[2]);
        digest.add(zelmMathCrossPoint(v[0], v[1], v[2], v[3], v[4], v[5], &out[3], &out[4]));
        zelmMathTransAbcToRq(v[0], v[1], v[2], &out[5], &out[6]);
        digest.add(zelmMathAddAngle(1, 0, v[7] * 3.0, v[8] * 3.0));
        digest.add(out);
    }
}

// Four roots, then two beside a complex pair: both within what the methods keep.
std::vector<double> randomQuartic(Random& random, int round) {
    const auto r = randomValues(random, 4, -5.0, 5.0);
    const double p1 = r[0] * r[1];
    const double p2 = round % 2 == 0 ? r[2] * r[3] : r[2] * r[2] / 4.0 + 1.0 + r[3] * r[3];
    const double s1 = r[0] + r[1];
    const double s2 = round % 2 == 0 ? r[2] + r[3] : r[2];
    return {1.0, -(s1 + s2), p1 + p2 + s1 * s2, -(p1 * s2 + p2 * s1), p1 * p2};
}

void digestRoots(Digest& digest) {
    Random random(6);
    for (int round = 0; round < 2000; ++round) {
        const auto quartic = randomQuartic(random, round);
        std::vector<double> out(4);
        digest.add(zelmMathQuadraticRoots(quartic.data(), out.data()));
        digest.add(zelmMathCubicRoots(quartic.data(), out.data()));
        digest.add(out);
        digest.add(zelmMathQuarticRoots(quartic.data(), out.data()));
        digest.add(out);
        const auto e = randomValues(random, 5, -5.0, 5.0);
        digest.add(
            zelmMathGetDistFromPointToEllipse(e[0], e[1], 4.0, 2.5, e[2], e[3], e[4], &out[0], &out[1], &out[2]));
        digest.add(out);
    }
}

void digestCorrelation(Digest& digest) {
    Random random(7);
    for (int round = 0; round < 300; ++round) {
        const int n = random.integer(1, 60);
        const int m = random.integer(1, n);
        const auto signal = randomValues(random, n, -1.0, 1.0);
        std::vector<double> out(static_cast<std::size_t>(m));
        digest.add(zelmMathAutoCorrelation(n, signal.data(), m, out.data()));
        digest.add(out);
        digest.add(zelmMathNormAutoCorrelation(n, signal.data(), m, out.data()));
        digest.add(out);
        std::int32_t index = 0;
        double score = 0.0;
        digest.add(zelmMathSearchOf1DWithNormCorrelation(n, signal.data(), m, out.data(), &index, &score));
        digest.add(index);
        digest.add(score);
        digest.add(zelmMathOtsuThreshold1d(n, signal.data(), &score));
        digest.add(score);
    }
}

void digestClp3d(Digest& digest) {
    Random random(8);
    for (int round = 0; round < 2000; ++round) {
        const auto v = randomValues(random, 14, -5.0, 5.0);
        const Line3d line1{v[0], v[1], v[2], v[3], v[4], v[5]};
        const Line3d line2{v[6], v[7], v[8], v[9], v[10], v[11]};
        const Plane3d plane1{v[0], v[1], v[2], v[12]};
        const Plane3d plane2{v[3], v[4], v[5], v[13]};
        double values[3] = {};
        Point3d point{};
        Line3d line{};
        digest.add(zelmClp3dDistanceTwoLines(&line1, &line2, &values[0]));
        digest.add(zelmClp3dAngleLineAndPlane(&line2, &plane1, &values[1]));
        digest.add(zelmClp3dAngleTwoPlanes(&plane1, &plane2, &values[2]));
        digest.add(values, sizeof values);
        digest.add(zelmClp3dIntersectionLineAndPlane(&line2, &plane1, &point));
        digest.add(&point, sizeof point);
        digest.add(zelmClp3dIntersectionTwoPlanes(&plane1, &plane2, &line));
        digest.add(&line, sizeof line);
    }
}

void digestFit(Digest& digest) {
    Random random(3);
    for (int round = 0; round < 300; ++round) {
        const int n = random.integer(8, 60);
        std::vector<Point2d> points(static_cast<std::size_t>(n));
        std::vector<Point3d> spatial(points.size());
        for (std::size_t i = 0; i < points.size(); ++i) {
            const double angle = random.uniform(0.0, 6.28);
            points[i] = {100.0 + 12.0 * std::cos(angle) + 0.1 * random.normal(),
                         80.0 + 9.0 * std::sin(angle) + 0.1 * random.normal()};
            spatial[i] = {points[i].x, points[i].y, 0.3 * points[i].x - points[i].y + 0.2 * random.normal()};
        }
        const int robust = round % 2;
        Ellipse2d ellipse{};
        digest.add(zelmFitEllipse(n, points.data(), robust, 3.0, &ellipse));
        digest.add(&ellipse, sizeof ellipse);
        Circle2d circle{};
        digest.add(zelmFitCircle(n, points.data(), robust, 3.0, &circle));
        digest.add(&circle, sizeof circle);
        Line2d line{};
        digest.add(zelmFitLine(n, points.data(), robust, 3.0, &line));
        digest.add(&line, sizeof line);
        std::vector<double> out(6);
        digest.add(zelmFitPlane(n, spatial.data(), robust, 3.0, out.data()));
        digest.add(zelmFitConics(n, points.data(), robust, 3.0, out.data()));
        digest.add(out);
    }
}

void digestQuadrics(Digest& digest) {
    Random random(6);
    for (int round = 0; round < 300; ++round) {
        const int n = random.integer(12, 60);
        std::vector<Point3d> points(static_cast<std::size_t>(n));
        std::vector<Point3d> cone(points.size());
        for (std::size_t i = 0; i < points.size(); ++i) {
            const double azimuth = random.uniform(0.0, 6.28);
            const double z = random.uniform(-1.0, 1.0);
            const double r = std::sqrt(1.0 - z * z);
            points[i] = {10.0 + 9.0 * r * std::cos(azimuth) + 0.1 * random.normal(), 7.0 * r * std::sin(azimuth),
                         5.0 * z - 3.0 + 0.1 * random.normal()};
            cone[i] = {0.5 * z * std::cos(azimuth) + 0.01 * random.normal(), 0.5 * z * std::sin(azimuth), z - 2.0};
        }
        const int robust = round % 2;
        Ellipsoid3d ellipsoid{};
        digest.add(zelmFitEllipsoid(n, points.data(), robust, 3.0, &ellipsoid));
        digest.add(&ellipsoid, sizeof ellipsoid);
        std::vector<double> out(10);
        digest.add(zelmFitCone(n, cone.data(), robust, 3.0, out.data()));
        digest.add(out);
        digest.add(zelmFitCone(n, points.data(), robust, 3.0, out.data()));
        digest.add(out);
    }
}

void digestMatch(Digest& digest) {
    Random random(7);
    for (int round = 0; round < 60; ++round) {
        const int n = random.integer(2, 20);
        std::vector<Point2d> model(static_cast<std::size_t>(n));
        std::vector<Point2d> ref(model.size());
        const double angle = random.uniform(-3.1, 3.1);
        for (std::size_t i = 0; i < model.size(); ++i) {
            const double x = random.uniform(-50.0, 50.0);
            const double y = random.uniform(-50.0, 50.0);
            model[i] = {x, y};
            ref[i] = {x * std::cos(angle) - y * std::sin(angle) + 0.2 * random.normal(),
                      x * std::sin(angle) + y * std::cos(angle) + 0.2 * random.normal()};
        }
        const ZelmMatchPose modelPose{1.0, 2.0, 0.3, 1.0};
        for (int mode = 0; mode <= 5; ++mode) {
            ZelmMatchPose result{};
            digest.add(zelmMatchBasic(n, ref.data(), model.data(), &modelPose, mode, 3.0, &result));
            digest.add(&result, sizeof result);
            std::vector<Point2d> moved(model.size());
            std::vector<double> distances(model.size());
            zelmMatchPoints(n, ref.data(), model.data(), &modelPose, &result, moved.data(), distances.data());
            digest.add(distances);
        }
    }
}

void digestImages(Digest& digest) {
    Random random(4);
    constexpr std::int32_t kSize = 96;
    std::vector<std::uint8_t> pixels(kSize * kSize);
    for (int round = 0; round < 40; ++round) {
        const double cx = random.uniform(40.0, 56.0);
        const double cy = random.uniform(40.0, 56.0);
        for (std::int32_t y = 0; y < kSize; ++y) {
            for (std::int32_t x = 0; x < kSize; ++x) {
                const double d = 20.0 - std::sqrt((x - cx) * (x - cx) + (y - cy) * (y - cy));
                const double gray = 60.0 + 120.0 / (1.0 + std::exp(-2.0 * d)) + 1.5 * random.normal();
                pixels[static_cast<std::size_t>(y * kSize + x)] = static_cast<std::uint8_t>(gray);
            }
        }
        const ZelmImage image{pixels.data(), kSize, kSize};
        const ZelmRect region{0, 0, kSize, kSize};
        const std::int32_t threshold = zelmBinOtsuThresholdImage(&image, &region);
        digest.add(threshold);
        ZelmBlob* blobs = nullptr;
        std::int32_t count = 0;
        digest.add(zelmBinBlob(&image, &region, threshold, 1, 1, 1, &blobs, &count));
        for (std::int32_t i = 0; i < count; ++i) {
            digest.add(blobs[i].area);
            digest.add(blobs[i].cx);
            digest.add(blobs[i].angle);
        }
        zelmBinFree(&blobs);
        for (int ray = 0; ray < 20; ++ray) {
            const double angle = 0.314 * ray;
            const Point2d from{cx, cy};
            const Point2d to{cx + 38.0 * std::cos(angle), cy + 38.0 * std::sin(angle)};
            Point2d edge{};
            double strength = 0.0;
            digest.add(zelmEdge1dGenDiffMax(&image, &from, &to, 0, &edge, &strength));
            digest.add(edge.x);
            digest.add(edge.y);
            digest.add(strength);
        }
    }
}

struct SyntheticView {
    std::vector<Point2d> plane;
    std::vector<Point2d> image;
};

SyntheticView makeView(Random& random, const ZelmCameraIntrinsics& camera, std::int32_t model, double tilt) {
    ZelmCameraExtrinsics pose{};
    pose.r[0] = tilt * random.uniform(-1.0, 1.0);
    pose.r[1] = tilt * random.uniform(-1.0, 1.0);
    pose.r[2] = random.uniform(-0.3, 0.3);
    zelmCalibRodrigues(0, pose.r, pose.R);
    pose.t[0] = random.uniform(-5.0, 5.0);
    pose.t[1] = random.uniform(-5.0, 5.0);
    pose.t[2] = 450.0;
    SyntheticView view;
    for (int y = -5; y <= 5; ++y) {
        for (int x = -6; x <= 6; ++x) {
            const Point3d dot{10.0 * x, 10.0 * y, 0.0};
            Point2d pixel{};
            zelmCalibChange3Dto2D(&dot, &camera, &pose, &pixel, model);
            view.plane.push_back({dot.x, dot.y});
            view.image.push_back({pixel.x + 0.05 * random.normal(), pixel.y + 0.05 * random.normal()});
        }
    }
    return view;
}

void digestCalib(Digest& digest) {
    Random random(5);
    ZelmCameraIntrinsics camera{{1690.0, 0.0, 640.0, 0.0, 1688.0, 480.0, 0.0, 0.0, 1.0},
                                1690.0,
                                1688.0,
                                0.0,
                                640.0,
                                480.0,
                                0.0,
                                -0.12,
                                0.05,
                                {}};
    for (int round = 0; round < 6; ++round) {
        std::vector<SyntheticView> views;
        std::vector<Zelm2ViewPtnEntry> entries;
        for (int i = 0; i < 6; ++i) {
            views.push_back(makeView(random, camera, 0, 0.5));
        }
        for (SyntheticView& view : views) {
            entries.push_back({static_cast<std::int32_t>(view.plane.size()), view.plane.data(), view.image.data()});
        }
        ZelmCameraIntrinsics found{};
        std::vector<ZelmCameraExtrinsics> poses(views.size());
        double error = 0.0;
        digest.add(
            zelmCalibCameraParam(6, entries.data(), round % 2 == 0 ? 3.5 : -1.0, &found, poses.data(), &error, 0));
        digest.add(&found, sizeof found);
        digest.add(poses.data(), poses.size() * sizeof(ZelmCameraExtrinsics));
        digest.add(error);
        for (int i = 0; i < 200; ++i) {
            double x = 0.0;
            double y = 0.0;
            // Drawn one by one: compilers may evaluate arguments in any order.
            const double xd = random.uniform(0.0, 1280.0);
            const double yd = random.uniform(0.0, 960.0);
            digest.add(zelmCalibUnDistortPoint(&found, xd, yd, &x, &y));
            digest.add(x);
            digest.add(y);
        }
    }
}

void digestWindowScores(Digest& digest) {
    Random random(11);
    constexpr std::int32_t kWidth = 120;
    constexpr std::int32_t kHeight = 60;
    std::vector<std::uint8_t> img(kWidth * kHeight);
    std::vector<std::uint8_t> mask(img.size());
    for (std::size_t k = 0; k < img.size(); ++k) {
        img[k] = static_cast<std::uint8_t>(random.integer(0, 255));
        mask[k] = static_cast<std::uint8_t>(random.integer(0, 3));
    }
    for (int round = 0; round < 60; ++round) {
        const std::int32_t w = random.integer(1, 50);
        const std::int32_t h = random.integer(1, 40);
        std::vector<Point2i> positions;
        for (int k = 0; k < 100; ++k) {
            const std::int32_t x = random.integer(0, kWidth - 1);
            positions.push_back({x, random.integer(0, kHeight - 1)});
        }
        const std::uint8_t* const tmplMask = round % 2 == 0 ? nullptr : mask.data();
        const std::uint8_t* const imgMask = round % 4 < 2 ? nullptr : mask.data();
        const double mean = random.uniform(100.0, 150.0);
        const double sigma = random.uniform(1.0, 80.0);
        for (const auto routine :
             {zelm::innerCorrAlongPointsFull, zelm::innerCorrAlongPointsQuarter, zelm::innerCorrAlongPointsChecker}) {
            std::vector<zelm::CorrScore> scores(positions.size(), zelm::CorrScore{-1, 0, -2.0});
            digest.add(routine(w, h, img.data() + 7, kWidth, tmplMask, kWidth, kWidth, kHeight, img.data(), kWidth,
                               imgMask, kWidth, positions.data(), 0, 99, scores.data(), mean, sigma, w * 0.5, h * 0.5));
            digest.add(scores.data(), scores.size() * sizeof scores[0]);
        }
    }
}

// Block of a pair of perspective cameras, in its documented layout.
std::vector<unsigned char> pairBlock(Random& random) {
    constexpr std::size_t kViews = 3;
    std::vector<unsigned char> block(kViews * 240 + 812);
    const auto put = [&](std::size_t offset, const void* data, std::size_t bytes) {
        std::memcpy(block.data() + offset, data, bytes);
    };
    const std::int32_t head[7] = {kViews, 0, 1280, 960, 1, 1280, 960};
    put(0, head, sizeof head);
    for (std::size_t i = 0; i < 2; ++i) {
        const double alpha = random.uniform(1600.0, 1800.0);
        ZelmCameraIntrinsics camera{{alpha, 0.1, 640.0, 0.0, 1690.0, 480.0, 0.0, 0.0, 1.0},
                                    alpha,
                                    1690.0,
                                    0.0,
                                    640.0,
                                    480.0,
                                    0.001,
                                    -0.1,
                                    0.04,
                                    {}};
        ZelmCameraExtrinsics pose{};
        pose.r[0] = random.uniform(-0.1, 0.1);
        pose.r[1] = i == 0 ? 0.17 : -0.17;
        zelmCalibRodrigues(0, pose.r, pose.R);
        pose.t[0] = random.uniform(-9.0, 9.0);
        pose.t[2] = 450.0;
        double P[12];
        zelmCalibCameraMatrix(camera.A, &pose, P, 0);
        const double M[9] = {P[0], P[1], P[2], P[4], P[5], P[6], P[8], P[9], P[10]};
        put(28 + i * 144, M, sizeof M);
        put(460 + i * 176, &camera, sizeof camera);
        put(812 + i * kViews * 120, &pose, sizeof pose);
    }
    return block;
}

void digestExpanded(Digest& digest) {
    Random random(6);
    std::vector<std::uint8_t> source(1280 * 960);
    for (std::uint8_t& pixel : source) {
        pixel = static_cast<std::uint8_t>(random.integer(0, 255));
    }
    for (int round = 0; round < 20; ++round) {
        const std::vector<unsigned char> block = pairBlock(random);
        Zelm2ViewCalib* pair = nullptr;
        digest.add(zelm2ViewLoadCalibData(static_cast<std::int32_t>(block.size()), block.data(), &pair));
        const std::int32_t camera = round % 2 == 0 ? 'L' : 'R';
        ZelmCstmExpPrm target{120, 90, 0.0, 0.0, 0.1};
        target.dX = random.uniform(500.0, 700.0);
        target.dY = random.uniform(400.0, 600.0);
        const ZelmCstmExpPrm expansion{120, 90, target.dX, target.dY, random.uniform(1.0, 6.0)};
        const ZelmRect roi{random.integer(0, 900), random.integer(0, 600), random.integer(1, 200), 77};
        std::int32_t size[2] = {0, 0};
        std::vector<Point2d> points(3);
        digest.add(zelmCstmDrovnCalcHomImgMemSize(pair, camera, &roi, &expansion, &size[0], &size[1], &points[0],
                                                  target.dVal));
        digest.add(size, sizeof size);
        digest.add(zelmCstmDrovnChangeOrg2DtoHom2DExp(pair, camera, &target, &expansion, &points[0], &points[1]));
        digest.add(zelmCstmDrovnInvHomImgPointExp(pair, camera, &points[1], &target, &expansion, &points[2]));
        digest.add(points.data(), points.size() * sizeof(Point2d));
        const Line2d line{0.6, -0.8, 0.8 * target.dY - 0.6 * target.dX};
        Zelm2ViewEpiLine carried{};
        digest.add(zelmCstmDrovnChangeHomEpiLineExp(pair, camera, &target, &expansion, &line, &carried));
        digest.add(&carried, sizeof carried);
        double scales[2] = {0.0, 0.0};
        digest.add(zelmCstmDrovnCalcMagnification(pair, -5000.0, 20000.0, &scales[0], &scales[1]));
        digest.add(scales, sizeof scales);
        std::vector<std::uint8_t> expanded(120 * 90);
        digest.add(zelmCstmDrovnExpandImage(pair, camera, source.data(), &expansion, expanded.data()));
        digest.add(expanded.data(), expanded.size());
        zelm2ViewCalibClose(&pair);
    }
}

void digestSearch(Digest& digest) {
    Random random(6);
    constexpr std::int32_t kSize = 60;
    constexpr std::int32_t kTemplate = 9;
    for (std::int32_t round = 0; round < 60; ++round) {
        std::vector<std::uint8_t> pixels(kSize * kSize);
        std::vector<std::uint8_t> mask(pixels.size());
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            const std::int32_t before = i >= kSize + 1 ? pixels[i - 1] + pixels[i - kSize] : 256;
            pixels[i] = static_cast<std::uint8_t>((before + random.integer(0, 255)) / 3);
            mask[i] = random.integer(0, 9) == 0 ? 0 : 1;
        }
        std::vector<std::uint8_t> tmpl;
        for (std::int32_t i = 0; i < kTemplate * kTemplate; ++i) {
            tmpl.push_back(pixels[static_cast<std::size_t>((25 + i / kTemplate) * kSize + 25 + i % kTemplate)]);
        }
        ZelmCstmRefImg ref{};
        ref.width = ref.height = kTemplate;
        ref.pixels = tmpl.data();
        ref.anchorX = ref.anchorY = 4.0;
        digest.add(zelmCstmDrovnCalcBasicStatisticsOfRefImg(&ref));
        for (int pattern = 0; pattern < 3; ++pattern) {
            digest.add(ref.mean[pattern]);
            digest.add(ref.sigma[pattern]);
        }
        ZelmCstmSearchPrm prm{};
        prm.width = prm.height = prm.roiWidth = prm.roiHeight = kSize;
        prm.pixels = pixels.data();
        prm.mask = round % 2 == 0 ? nullptr : mask.data();
        const double slope = random.uniform(-1.0, 1.0);
        prm.epiLine = {slope, 1.0, -29.0 * (1.0 + slope)};
        prm.maxResults = 10;
        prm.minDistance = 3;
        prm.mode = round % 3;
        std::int32_t count = 0;
        ZelmCstmMatch matches[10] = {};
        digest.add(zelmCstmDrovnSearchOnEpiLine(&ref, &prm, &count, matches));
        digest.add(count);
        for (const ZelmCstmMatch& match : matches) {
            digest.add(match.score);
            digest.add(match.x);
            digest.add(match.y);
        }
    }
}

Point2d randomPoint(Random& random, double extent) {
    // One by one: compilers may evaluate arguments in any order.
    const double x = random.uniform(-extent, extent);
    const double y = random.uniform(-extent, extent);
    return {x, y};
}

void digestLines(Digest& digest, Random& random) {
    const Point2d p = randomPoint(random, 100.0);
    const Point2d q = randomPoint(random, 100.0);
    const Point2d r = randomPoint(random, 100.0);
    Line2d lines[4]{};
    digest.add(zelmClp2dLineTwoPoints(&p, &q, &lines[0]));
    digest.add(zelmClp2dMidperpendicularTwoPoints(&q, &r, &lines[1]));
    zelmClp2dLinePointAndSlope(&r, 0.03 * p.x, &lines[2]);
    digest.add(zelmClp2dCenterLineOfTwoLines(&lines[0], &lines[2], &lines[3]));
    double value = 0.0;
    digest.add(zelmClp2dAngleTwoLines(&lines[0], &lines[1], &value));
    digest.add(value);
    Point2d points[4]{};
    digest.add(zelmClp2dIntersectionTwoLines(&lines[0], &lines[1], &points[0]));
    digest.add(zelmClp2dFootOfPerpendicularToLine(&r, &lines[0], &points[1]));
    Circle2d circle{};
    digest.add(zelmClp2dCircleThreePoints(&p, &q, &r, &circle));
    digest.add(&circle, sizeof circle);
    digest.add(zelmClp2dIntersectionLineAndCircle(&lines[3], &circle, &points[2], &points[3]));
    for (const Line2d& line : lines) {
        digest.add(line);
    }
    for (const Point2d& point : points) {
        digest.add(point);
    }
}

void digestPointSets(Digest& digest, Random& random) {
    std::vector<Point2d> points(static_cast<std::size_t>(random.integer(3, 40)));
    for (Point2d& p : points) {
        p = randomPoint(random, 10.0);
    }
    const auto n = static_cast<std::int32_t>(points.size());
    std::vector<Point2d> hull(points.size());
    std::int32_t count = 0;
    digest.add(zelmCgConvexHull(n, points.data(), &count, hull.data()));
    digest.add(hull.data(), static_cast<std::size_t>(count) * sizeof(Point2d));
    Point2d centre{};
    double radius = 0.0;
    digest.add(zelmCgSmallestEnclosingCircle(n, points.data(), &centre, &radius));
    digest.add(centre);
    digest.add(radius);
    const Point2d from = randomPoint(random, 12.0);
    const Point2d to = randomPoint(random, 12.0);
    Line2d line{};
    zelmClp2dLineTwoPoints(&from, &to, &line);
    Point2d cuts[4]{};
    digest.add(zelmCgIntersectionLineAndConvexPolygon(count, hull.data(), &line, cuts));
    digest.add(zelmCgIntersectionSegmentAndConvexPolygon(count, hull.data(), &from, &to, cuts + 2));
    digest.add(cuts, sizeof cuts);
}

void digestGeom(Digest& digest) {
    Random random(6);
    for (int round = 0; round < 2000; ++round) {
        digestLines(digest, random);
        digestPointSets(digest, random);
    }
}

struct PairCamera {
    ZelmCameraIntrinsics intrinsics;
    ZelmCameraExtrinsics pose;
    double rectifying[18];  // M = A R and its inverse
};

PairCamera makePairCamera(double focal, double cx, double cy, double turn, double depth) {
    PairCamera camera{};
    camera.intrinsics = {
        {focal, 0.0, cx, 0.0, focal, cy, 0.0, 0.0, 1.0}, focal, focal, 0.0, cx, cy, 0.0, -0.12, 0.05, {}};
    camera.pose = {{}, {4.0, -3.0, depth}, {0.3 * turn, turn, 0.1 * turn}};
    zelmCalibRodrigues(0, camera.pose.r, camera.pose.R);
    zelmMatMul(3, 3, camera.intrinsics.A, 3, 3, camera.pose.R, camera.rectifying);
    zelmMatInvert(3, camera.rectifying, camera.rectifying + 9);
    return camera;
}

// F with x_left' F x_right = 0, and its transpose.
void makeFundamental(const PairCamera& left, const PairCamera& right, double F[18]) {
    double R[9];
    double t[3];
    double leftInverse[9];
    double rightInverse[9];
    double product[9];
    double essential[9];
    zelmMatMulTransposed2(0, 3, 3, left.pose.R, 3, 3, right.pose.R, R);
    zelmMatMul(3, 3, R, 3, 1, right.pose.t, t);
    const double x = left.pose.t[0] - t[0];
    const double y = left.pose.t[1] - t[1];
    const double z = left.pose.t[2] - t[2];
    const double cross[9] = {0.0, -z, y, z, 0.0, -x, -y, x, 0.0};
    zelmMatMul(3, 3, cross, 3, 3, R, essential);
    zelmMatInvert(3, left.intrinsics.A, leftInverse);
    zelmMatInvert(3, right.intrinsics.A, rightInverse);
    zelmMatMulTransposed2(1, 3, 3, leftInverse, 3, 3, essential, product);
    zelmMatMul(3, 3, product, 3, 3, rightInverse, F);
    zelmMatTranspose(3, 3, F, F + 9);
}

constexpr std::int32_t kPairWidth = 320;
constexpr std::int32_t kPairHeight = 240;

// A calibration block of three views as a user might have stored it.
std::vector<unsigned char> makePairBlock() {
    const PairCamera left = makePairCamera(420.0, 161.3, 118.4, 0.18, 455.0);
    const PairCamera right = makePairCamera(424.0, 158.2, 121.9, -0.17, 448.0);
    std::vector<unsigned char> block(3 * 240 + 812);
    unsigned char* at = block.data();
    const auto put = [&at](const void* bytes, std::size_t count) {
        std::memcpy(at, bytes, count);
        at += count;
    };
    const std::int32_t head[7] = {3, 0, kPairWidth, kPairHeight, 0, kPairWidth, kPairHeight};
    double F[18];
    makeFundamental(left, right, F);
    put(head, sizeof head);
    put(left.rectifying, sizeof left.rectifying);
    put(right.rectifying, sizeof right.rectifying);
    put(F, sizeof F);
    put(&left.intrinsics, sizeof left.intrinsics);
    put(&right.intrinsics, sizeof right.intrinsics);
    for (const PairCamera* camera : {&left, &right}) {
        for (int view = 0; view < 3; ++view) {
            put(&camera->pose, sizeof camera->pose);
        }
    }
    return block;
}

void digestStereoPoints(Digest& digest, Random& random, const Zelm2ViewCalib* calib) {
    for (int round = 0; round < 2000; ++round) {
        Point3d X{random.uniform(-60.0, 60.0), 0.0, 0.0};
        X.y = random.uniform(-45.0, 45.0);
        X.z = random.uniform(-30.0, 30.0);
        Point2d pixels[2]{};
        const Zelm2ViewHomParam params{160.0 + 0.1 * X.x, 120.0, 0.0};
        for (const int i : {0, 1}) {
            const std::int32_t camera = i == 0 ? 'L' : 'R';
            digest.add(zelm2ViewChange3Dto2D(calib, camera, &X, &pixels[i]));
            digest.add(pixels[i]);
            pixels[i].x += 0.3 * random.normal();
            pixels[i].y += 0.3 * random.normal();
            Zelm2ViewEpiLine lines[2]{};
            digest.add(zelm2ViewCalcEpiLine(calib, camera == 'L' ? 'R' : 'L', &pixels[i], &lines[0]));
            digest.add(zelm2ViewChangeHomEpiLine(calib, camera == 'L' ? 'R' : 'L', &params, &lines[0].a, &lines[1]));
            digest.add(lines, sizeof lines);
            Point2d mapped[2]{};
            digest.add(zelm2ViewCalcHomImgPoint(calib, camera, &pixels[i], &params, &mapped[0]));
            digest.add(zelm2ViewInvHomImgPoint(calib, camera, &mapped[0], &params, &mapped[1]));
            digest.add(mapped, sizeof mapped);
        }
        Point3d found{};
        digest.add(zelm2ViewChange2Dto3D(calib, &pixels[0], &pixels[1], &found));
        digest.add(&found, sizeof found);
    }
}

void digestStereo(Digest& digest) {
    Random random(7);
    const std::vector<unsigned char> block = makePairBlock();
    Zelm2ViewCalib* calib = nullptr;
    digest.add(zelm2ViewLoadCalibData(static_cast<std::int32_t>(block.size()), block.data(), &calib));
    digestStereoPoints(digest, random, calib);
    std::vector<unsigned char> image(static_cast<std::size_t>(kPairWidth) * kPairHeight);
    for (unsigned char& pixel : image) {
        pixel = static_cast<unsigned char>(random.bits());
    }
    std::vector<unsigned char> out(image.size());
    const Zelm2ViewHomParam params{150.0, 125.0, 0.0};
    for (const std::int32_t camera : {'L', 'R'}) {
        digest.add(zelm2ViewUnDistortImage(calib, camera, image.data(), out.data()));
        digest.add(out.data(), out.size());
        digest.add(zelm2ViewMakeHomImage(calib, camera, image.data(), &params, out.data()));
        digest.add(out.data(), out.size());
    }
    zelm2ViewCalibClose(&calib);
}

struct Family {
    const char* name;
    void (*run)(Digest&);
};

constexpr Family kFamilies[] = {
    {"mat", digestMat},       {"math", digestMath},   {"roots", digestRoots},          {"correl", digestCorrelation},
    {"clp3d", digestClp3d},   {"fit", digestFit},     {"quadrics", digestQuadrics},    {"match", digestMatch},
    {"images", digestImages}, {"calib", digestCalib}, {"windows", digestWindowScores}, {"expanded", digestExpanded},
    {"search", digestSearch}, {"geom", digestGeom},   {"stereo", digestStereo}};

std::uint64_t digestOf(const Family& family) {
    Digest digest;
    family.run(digest);
    return digest.value();
}

std::uint64_t digestOfAll() {
    Digest all;
    for (const Family& family : kFamilies) {
        const std::uint64_t value = digestOf(family);
        all.add(&value, sizeof value);
    }
    return all.value();
}

void printFamilies() {
    for (const Family& family : kFamilies) {
        std::printf("%-8s %016llx\n", family.name, static_cast<unsigned long long>(digestOf(family)));
    }
}

// Every family at once in so many threads, each with objects of its own: all must get what one alone gets. The threads
// come first, so that they also meet in what is found out on the first call.
bool agreesInThreads(int count) {
    std::vector<std::uint64_t> values(static_cast<std::size_t>(count));
    std::vector<std::thread> threads;
    threads.reserve(values.size());
    for (std::uint64_t& value : values) {
        threads.emplace_back([&value] { value = digestOfAll(); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const std::uint64_t alone = digestOfAll();
    return std::all_of(values.begin(), values.end(), [alone](std::uint64_t value) { return value == alone; });
}

// From now on the processor seems to have no vector instructions.
void usePlainKernels() {
    zelm::cpuFeaturesFill([](std::uint32_t, std::uint32_t, std::uint32_t out[4]) -> std::uint32_t {
        std::memset(out, 0, 4 * sizeof out[0]);
        return 0;
    });
}

}  // namespace

int main(int argc, char** argv) {
    const std::string option = argc > 1 ? argv[1] : "";
    if (option == "--families") {
        printFamilies();
    } else if (option == "--threads") {
        constexpr int kThreads = 4;
        if (!agreesInThreads(kThreads)) {
            std::printf("threads at the same time compute other bits than one alone\n");
            return 1;
        }
    } else {
        if (option == "--plain") {
            usePlainKernels();
        }
        std::printf("%016llx\n", static_cast<unsigned long long>(digestOfAll()));
    }
    return 0;
}
