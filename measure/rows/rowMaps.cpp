#include "rowMaps.h"

#include <cstddef>
#include <vector>

namespace zelm::measure {
namespace {

// The largest rectangle under a row of columns, each so many pixels high (a stack of rising columns).
PixelRectangle underColumns(const std::vector<int>& heights, int bottom, std::vector<int>& open) {
    PixelRectangle best;
    open.clear();
    const int width = static_cast<int>(heights.size());
    const auto heightAt = [&](int x) { return x < width ? heights[static_cast<std::size_t>(x)] : 0; };
    for (int x = 0; x <= width; ++x) {
        while (!open.empty() && heightAt(open.back()) >= heightAt(x)) {
            const int height = heightAt(open.back());
            open.pop_back();
            const int left = open.empty() ? 0 : open.back() + 1;
            if (static_cast<std::int64_t>(x - left) * height > static_cast<std::int64_t>(best.width) * best.height) {
                best = {left, bottom - height + 1, x - left, height};
            }
        }
        open.push_back(x);
    }
    return best;
}

}  // namespace

void fillRowMap(const RigCamera& camera, const RowAlignment& a, char side, std::span<float> map) {
    const RowMapper mapper(camera, a, side);
    std::size_t i = 0;
    for (int y = 0; y < a.height; ++y) {
        for (int x = 0; x < a.width; ++x) {
            Point2d raw{};
            const bool isSeen = mapper.rawOf({static_cast<double>(x), static_cast<double>(y)}, raw);
            map[i++] = isSeen ? static_cast<float>(raw.x) : kNowhere;
            map[i++] = isSeen ? static_cast<float>(raw.y) : kNowhere;
        }
    }
}

PixelRectangle seenRectangle(const RigCamera& camera, const RowAlignment& a, char side) {
    const RowMapper mapper(camera, a, side);
    std::vector<int> heights(static_cast<std::size_t>(a.width));
    std::vector<int> open;
    open.reserve(heights.size() + 1);
    PixelRectangle best;
    for (int y = 0; y < a.height; ++y) {
        for (std::size_t x = 0; x < heights.size(); ++x) {
            Point2d raw{};
            const bool isSeen = mapper.rawOf({static_cast<double>(x), static_cast<double>(y)}, raw);
            heights[x] = isSeen ? heights[x] + 1 : 0;
        }
        const PixelRectangle found = underColumns(heights, y, open);
        if (static_cast<std::int64_t>(found.width) * found.height >
            static_cast<std::int64_t>(best.width) * best.height) {
            best = found;
        }
    }
    return best;
}

bool alignedOf(const Rig& rig, const RowAlignment& a, char side, Point2d raw, Point2d& aligned) {
    Point2d ideal{};
    if (zelm2ViewUnDistortPoint(rig.calib.get(), side, &raw, &ideal) < 0) {
        return false;
    }
    const CameraParameters p = parametersOf(rig.camera(side).intrinsics);
    const double y = (ideal.y - p[kCy]) / p[kFy];
    const Vector3 v = times(a.rotation(side), {(ideal.x - p[kCx] - p[kSkew] * y) / p[kFx], y, 1.0});
    if (!(v[2] > 0.0)) {
        return false;
    }
    aligned = {a.focal * v[0] / v[2] + a.centreX(side), a.focal * v[1] / v[2] + a.centreY};
    return true;
}

}  // namespace zelm::measure
