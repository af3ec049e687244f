// A printed plate as pixels: dots and bars measured in millimetres, and what a camera sees of the sheet.
#ifndef ZELM_TEST_PLATE_BITMAP_H
#define ZELM_TEST_PLATE_BITMAP_H

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

#include "imageFile.h"

namespace zelmtest {

// Black ink on a page: pixel (x, y) covers x to x + 1 and y to y + 1, in pixels of 25.4 / dpi millimetres.
class PlateBitmap {
public:
    PlateBitmap(zelm::tool::Picture pixels, double dotsPerInch)
        : picture(std::move(pixels)), perMillimetre(dotsPerInch / 25.4) {}

    double width() const { return picture.width / perMillimetre; }
    double height() const { return picture.height / perMillimetre; }

    struct Blob {
        double x = 0.0, y = 0.0;  // centroid, millimetres
        double area = 0.0;        // square millimetres
        double diameter() const { return std::sqrt(4.0 * area / std::numbers::pi); }
    };

    // The ink in a box, or what is left white of it; millimetres.
    Blob blob(double x, double y, double halfWidth, double halfHeight, bool white) const {
        const auto column = [this](double mm) { return static_cast<int>(std::lround(mm * perMillimetre)); };
        double sum = 0.0;
        double sumX = 0.0;
        double sumY = 0.0;
        for (int j = column(y - halfHeight); j < column(y + halfHeight); ++j) {
            for (int i = column(x - halfWidth); i < column(x + halfWidth); ++i) {
                const double level = at(i, j) / 255.0;
                const double ink = white ? level : 1.0 - level;
                sum += ink;
                sumX += ink * (i + 0.5);
                sumY += ink * (j + 0.5);
            }
        }
        return {sumX / sum / perMillimetre, sumY / sum / perMillimetre, sum / (perMillimetre * perMillimetre)};
    }

    // Where a row's ink begins and ends, to a part of a pixel; millimetres.
    std::array<double, 2> extentOfRow(double y) const {
        const int j = static_cast<int>(y * perMillimetre);
        int first = 0;
        int last = picture.width - 1;
        while (first < last && at(first, j) > 250) {
            ++first;
        }
        while (last > first && at(last, j) > 250) {
            --last;
        }
        return {(first + at(first, j) / 255.0) / perMillimetre, (last + 1 - at(last, j) / 255.0) / perMillimetre};
    }

    // The level at a place of the page, between pixels; `beyond` outside of it.
    double levelAt(double x, double y, double beyond) const {
        const double u = x * perMillimetre - 0.5;
        const double v = y * perMillimetre - 0.5;
        const int i = static_cast<int>(std::floor(u));
        const int j = static_cast<int>(std::floor(v));
        if (i < 0 || j < 0 || i + 1 >= picture.width || j + 1 >= picture.height) {
            return beyond;
        }
        const double a = u - i;
        const double b = v - j;
        return (1.0 - b) * ((1.0 - a) * at(i, j) + a * at(i + 1, j)) +
               b * ((1.0 - a) * at(i, j + 1) + a * at(i + 1, j + 1));
    }

private:
    double at(int x, int y) const {
        return picture.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                              static_cast<std::size_t>(x)];
    }

    zelm::tool::Picture picture;
    double perMillimetre;
};

// A dot of a sheet: where it is on the page, and how wide, in millimetres.
struct SheetCircle {
    double x = 0.0, y = 0.0, diameter = 0.0;
};

// The circles of an SVG whose unit is the millimetre, in their order.
inline std::vector<SheetCircle> circlesOfSvg(const std::string& svg) {
    std::vector<SheetCircle> circles;
    for (std::size_t at = svg.find("<circle"); at != std::string::npos; at = svg.find("<circle", at + 1)) {
        SheetCircle c;
        if (std::sscanf(svg.c_str() + svg.find("cx=", at), "cx=\"%lf\" cy=\"%lf\" r=\"%lf\"", &c.x, &c.y,
                        &c.diameter) == 3) {
            c.diameter *= 2.0;
            circles.push_back(c);
        }
    }
    return circles;
}

// A camera that sees the sheet: pixel = K (R X + t), with the lens's k1; X = (x, y, 0) on the page, millimetres.
struct SheetCamera {
    int width = 960;
    int height = 720;
    double focalLength = 1500.0;  // pixels
    double k1 = -0.08;            // of the lens
    std::array<double, 9> R{};    // row-major
    std::array<double, 3> t{};    //

    std::array<double, 2> pixelOf(double x, double y) const {
        const double X = R[0] * x + R[1] * y + t[0];
        const double Y = R[3] * x + R[4] * y + t[1];
        const double Z = R[6] * x + R[7] * y + t[2];
        const double u = X / Z;
        const double v = Y / Z;
        const double f = focalLength * (1.0 + k1 * (u * u + v * v));
        return {0.5 * (width - 1) + f * u, 0.5 * (height - 1) + f * v};
    }

    // Where the ray through a pixel meets the page.
    std::array<double, 2> placeOf(double px, double py) const {
        const double a = (px - 0.5 * (width - 1)) / focalLength;
        const double b = (py - 0.5 * (height - 1)) / focalLength;
        double u = a;
        double v = b;
        for (int i = 0; i < 8;
             ++i) {  // the lens moves a point by a few hundredths of its radius: each step gains two digits
            const double s = 1.0 + k1 * (u * u + v * v);
            u = a / s;
            v = b / s;
        }
        // (R X + t) = Z (u, v, 1), two equations in x and y.
        const double a11 = R[0] - u * R[6];
        const double a12 = R[1] - u * R[7];
        const double a21 = R[3] - v * R[6];
        const double a22 = R[4] - v * R[7];
        const double b1 = u * t[2] - t[0];
        const double b2 = v * t[2] - t[1];
        const double det = a11 * a22 - a12 * a21;
        return {(b1 * a22 - b2 * a12) / det, (a11 * b2 - a21 * b1) / det};
    }

    // What it sees, on a desk of one gray level: each pixel the mean of 4 rays.
    zelm::tool::Picture view(const PlateBitmap& sheet, double desk) const {
        constexpr int kRays = 2;  // and the bitmap is smooth between its pixels
        zelm::tool::Picture image{width, height, {}};
        image.pixels.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                double sum = 0.0;
                for (int k = 0; k < kRays * kRays; ++k) {
                    const auto place =
                        placeOf(x + (k % kRays + 0.5) / kRays - 0.5, y + (k / kRays + 0.5) / kRays - 0.5);
                    sum += sheet.levelAt(place[0], place[1], desk);
                }
                constexpr double kInk = 40.0;  // gray levels of ink and paper
                constexpr double kPaper = 210.0;
                const double level = kInk + (kPaper - kInk) / 255.0 * sum / (kRays * kRays);
                image.pixels.push_back(static_cast<std::uint8_t>(std::lround(level)));
            }
        }
        return image;
    }
};

// Looks at the middle of a page from a distance, turned about its own axis and tilted about the page's x and y axes.
inline SheetCamera cameraBefore(double middleX, double middleY, double distance, double tiltX, double tiltY,
                                double roll) {
    const double cx = std::cos(tiltX);
    const double sx = std::sin(tiltX);
    const double cy = std::cos(tiltY);
    const double sy = std::sin(tiltY);
    const double cr = std::cos(roll);
    const double sr = std::sin(roll);
    SheetCamera camera;
    // Rz(roll) Rx(tiltX) Ry(tiltY)
    const std::array<double, 9> tilted{cy, 0.0, sy, sx * sy, cx, -sx * cy, -cx * sy, sx, cx * cy};
    for (std::size_t j = 0; j < 3; ++j) {
        camera.R[j] = cr * tilted[j] - sr * tilted[3 + j];
        camera.R[3 + j] = sr * tilted[j] + cr * tilted[3 + j];
        camera.R[6 + j] = tilted[6 + j];
    }
    for (std::size_t i = 0; i < 3; ++i) {
        camera.t[i] = -(camera.R[3 * i] * middleX + camera.R[3 * i + 1] * middleY);
    }
    camera.t[2] += distance;
    return camera;
}

}  // namespace zelmtest

#endif
