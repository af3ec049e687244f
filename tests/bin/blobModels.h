// Two models of blob labelling that share no code with the library: the labelling rule written out over label rows, and
// a flood fill, which knows what is connected.
#ifndef ZELM_TEST_BLOB_MODELS_H
#define ZELM_TEST_BLOB_MODELS_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "testImage.h"

namespace zelmtest {

struct BlobRequest {
    ZelmRect region;
    std::int32_t threshold = 128;
    std::int32_t polarity = 1;
    std::int32_t clearEdge = 0;
    std::int32_t minArea = 1;
};

// The region as a mask, with the ring painted when the edge is cleared.
inline TestImage foreground(TestImage image, const BlobRequest& q) {
    const ZelmRect& r = q.region;
    TestImage mask(r.width, r.height);
    const std::uint8_t background = q.polarity == 1 ? 0 : 255;
    for (std::int32_t y = 0; y < r.height; ++y) {
        for (std::int32_t x = 0; x < r.width; ++x) {
            const bool ring = x == 0 || y == 0 || x == r.width - 1 || y == r.height - 1;
            const int pixel = q.clearEdge == 1 && ring ? background : image.at(r.x + x, r.y + y);
            mask.at(x, y) = (q.polarity == 1 ? pixel >= q.threshold : pixel < q.threshold) ? 1 : 0;
        }
    }
    return mask;
}

// Sums over the pixels of one blob, relative box.
struct BlobSums {
    std::int32_t area = 0;
    double x = 0.0, y = 0.0, xx = 0.0, yy = 0.0, xy = 0.0;
    std::int32_t minX = INT32_MAX, minY = INT32_MAX, maxX = 0, maxY = 0;

    void addPixel(const ZelmRect& region, std::int32_t px, std::int32_t py) {
        const double X = region.x + px;
        const double Y = region.y + py;
        area += 1;
        x += X;
        y += Y;
        xx += X * X;
        yy += Y * Y;
        xy += X * Y;
        widen(px, py, px, py);
    }
    void add(const BlobSums& other) {
        area += other.area;
        x += other.x;
        y += other.y;
        xx += other.xx;
        yy += other.yy;
        xy += other.xy;
        widen(other.minX, other.minY, other.maxX, other.maxY);
    }
    void widen(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) {
        minX = std::min(minX, left);
        minY = std::min(minY, top);
        maxX = std::max(maxX, right);
        maxY = std::max(maxY, bottom);
    }
    ZelmBlob blob(const ZelmRect& region) const {
        const double cx = x / area;
        const double cy = y / area;
        const double mu20 = xx - 2.0 * cx * x + cx * cx * area;
        const double mu02 = yy - 2.0 * cy * y + cy * cy * area;
        const double mu11 = xy - cy * x - cx * y + cx * cy * area;
        ZelmBlob b = {};
        b.area = area;
        b.cx = cx;
        b.cy = cy;
        b.left = region.x + minX;
        b.top = region.y + minY;
        b.right = region.x + maxX;
        b.bottom = region.y + maxY;
        b.width = maxX - minX + 1;
        b.height = maxY - minY + 1;
        b.angle = 0.5 * std::atan2(2.0 * mu11, mu20 - mu02);
        return b;
    }
};

// The rule, column by column over label rows with sentinels at both ends.
inline std::vector<ZelmBlob> blobsByRule(const TestImage& image, const BlobRequest& q) {
    const TestImage mask = foreground(image, q);
    const auto w = static_cast<std::size_t>(mask.width);
    std::vector<std::int32_t> above(w + 2, -1);
    std::vector<std::int32_t> T = {0, 1};
    std::vector<BlobSums> sums(2);
    std::int32_t next = 1;
    const auto at = [](std::int32_t label) { return static_cast<std::size_t>(label); };
    for (std::int32_t r = 0; r < mask.height; ++r) {
        std::vector<std::int32_t> row(w + 2, 0);
        row.front() = row.back() = -1;
        for (std::int32_t x0 = 0; x0 < mask.width; ++x0) {
            if (mask.at(x0, r) == 0) {
                continue;
            }
            std::int32_t x1 = x0;
            while (x1 + 1 < mask.width && mask.at(x1 + 1, r) != 0) {
                ++x1;
            }
            std::int32_t L = next;
            std::vector<std::int32_t> neighbours;
            for (std::int32_t x = x0 - 1; x <= x1 + 1; ++x) {
                const std::int32_t label = above[at(x + 1)];
                if (label == -1) {
                    L = -1;
                } else if (label > 0) {
                    L = std::min(L, T[at(label)]);
                    neighbours.push_back(label);
                }
            }
            for (const std::int32_t label : neighbours) {
                T[at(label)] = L;
            }
            for (std::int32_t x = x0; x <= x1; ++x) {
                row[at(x + 1)] = L;
                if (L != -1) {
                    sums[at(L)].addPixel(q.region, x, r);
                }
            }
            for (const std::int32_t label : neighbours) {
                if (L != -1 && label != L && sums[at(label)].area != 0) {
                    sums[at(L)].add(sums[at(label)]);
                    sums[at(label)] = BlobSums();
                }
            }
            if (L == next) {
                ++next;
                T.push_back(next);
                sums.emplace_back();
            }
            x0 = x1;
        }
        above = row;
    }
    for (std::size_t x = 1; x <= w; ++x) {
        if (above[x] > 0) {
            T[at(above[x])] = -1;
        }
    }
    std::vector<ZelmBlob> blobs;
    for (std::int32_t label = 1; label < next; ++label) {
        if (T[at(label)] == label && sums[at(label)].area >= q.minArea) {
            blobs.push_back(sums[at(label)].blob(q.region));
        }
    }
    return blobs;
}

// Eight-connected components that do not touch the region's edge, in the order of their first pixel.
inline std::vector<ZelmBlob> blobsByFloodFill(const TestImage& image, const BlobRequest& q) {
    TestImage mask = foreground(image, q);
    std::vector<ZelmBlob> blobs;
    std::vector<Point2d> stack;
    for (std::int32_t y0 = 0; y0 < mask.height; ++y0) {
        for (std::int32_t x0 = 0; x0 < mask.width; ++x0) {
            if (mask.at(x0, y0) == 0) {
                continue;
            }
            BlobSums sums;
            bool edge = false;
            mask.at(x0, y0) = 0;
            stack.push_back({static_cast<double>(x0), static_cast<double>(y0)});
            while (!stack.empty()) {
                const auto x = static_cast<std::int32_t>(stack.back().x);
                const auto y = static_cast<std::int32_t>(stack.back().y);
                stack.pop_back();
                sums.addPixel(q.region, x, y);
                edge = edge || x == 0 || y == 0 || x == mask.width - 1 || y == mask.height - 1;
                for (std::int32_t v = std::max(y - 1, 0); v <= std::min(y + 1, mask.height - 1); ++v) {
                    for (std::int32_t u = std::max(x - 1, 0); u <= std::min(x + 1, mask.width - 1); ++u) {
                        if (mask.at(u, v) != 0) {
                            mask.at(u, v) = 0;
                            stack.push_back({static_cast<double>(u), static_cast<double>(v)});
                        }
                    }
                }
            }
            if (!edge && sums.area >= q.minArea) {
                blobs.push_back(sums.blob(q.region));
            }
        }
    }
    return blobs;
}

}  // namespace zelmtest

#endif
