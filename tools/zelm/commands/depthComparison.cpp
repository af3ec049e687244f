#include "depthComparison.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cameraPicture.h"
#include "failure.h"
#include "jsonText.h"
#include "numberText.h"
#include "outputFiles.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr double kSameSurface = 0.004;  // of the depth: what lies so little behind the nearest point is seen as well

// A line of the CSV of matched points.
struct MatchRow {
    Point2d left{};
    double depth = 0.0;
    std::string status;
};

std::vector<std::string_view> fieldsOf(std::string_view line) {
    std::vector<std::string_view> fields;
    for (;;) {
        const std::size_t end = line.find(',');
        fields.push_back(line.substr(0, end));
        if (end == std::string_view::npos) {
            return fields;
        }
        line.remove_prefix(end + 1);
    }
}

std::vector<MatchRow> readMatches(const fs::path& path) {
    const std::string text = readWholeFile(path, "the points of zelm match");
    std::vector<MatchRow> rows;
    // From the back: an id, the first field, may hold commas.
    constexpr std::array<std::string_view, 4> kNames{"xL", "yL", "depth", "status"};
    std::array<std::size_t, 4> fromBack{};
    std::string_view rest = text;
    for (std::size_t number = 1; !rest.empty(); ++number) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        const std::vector<std::string_view> fields = fieldsOf(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (number == 1) {
            for (std::size_t k = 0; k < kNames.size(); ++k) {
                const auto found = std::find(fields.begin(), fields.end(), kNames[k]);
                if (found == fields.end()) {
                    failData("{}: line 1: no column {}: is this a CSV of zelm match?", path.string(), kNames[k]);
                }
                fromBack[k] = static_cast<std::size_t>(fields.end() - found);
            }
            continue;
        }
        const auto field = [&](std::size_t k) {
            return fromBack[k] <= fields.size() ? fields[fields.size() - fromBack[k]] : std::string_view();
        };
        const auto x = numberOf(field(0));
        const auto y = numberOf(field(1));
        const auto depth = numberOf(field(2));
        const bool isFound = field(3) == "ok";
        if (!x || !y || (isFound && !depth)) {
            failData("{}: line {}: not a line of zelm match", path.string(), number);
        }
        rows.push_back({{*x, *y}, isFound ? *depth : 0.0, std::string(field(3))});
    }
    if (rows.empty()) {
        failData("{}: holds no points", path.string());
    }
    return rows;
}

// The true depths of the left image's pixels, and which of them the right camera sees too.
class TrueDepths {
public:
    TrueDepths(const LoadedRig& loaded, const nlohmann::json& truth, const fs::path& truthPath) : rig(loaded) {
        const auto map = truth.find("depth_map");
        if (map == truth.end() || !map->is_object() || !map->contains("file") || !(*map)["file"].is_string() ||
            !map->contains("unit_mm") || !(*map)["unit_mm"].is_number()) {
            failUsage("{}: no object \"depth_map\" with \"file\" and \"unit_mm\": points need the truth of depths",
                      truthPath.string());
        }
        const fs::path path = truthPath.parent_path() / (*map)["file"].get<std::string>();
        picture = readDeepPicture(path);
        unit = (*map)["unit_mm"].get<double>();
        const RigCamera& left = rig.rig.left;
        if (picture.width != left.width || picture.height != left.height) {
            failData("{}: {} x {} pixels, but the left camera was calibrated with {} x {}", path.string(),
                     picture.width, picture.height, left.width, left.height);
        }
        if (left.model == 2 || rig.rig.right.model == 2) {
            failUsage("{}: true depths are compared for perspective cameras alone", path.string());
        }
        nearest.assign(static_cast<std::size_t>(rig.rig.right.width) * static_cast<std::size_t>(rig.rig.right.height),
                       std::numeric_limits<float>::infinity());
        for (int y = 0; y < picture.height; ++y) {
            for (int x = 0; x < picture.width; ++x) {
                if (const auto seen = inRightImage({static_cast<double>(x), static_cast<double>(y)})) {
                    splat(*seen);
                }
            }
        }
    }

    // The depth at a pixel; nothing where there is no surface, or an edge.
    std::optional<double> at(Point2d p) const {
        const double x0 = std::clamp(std::floor(p.x), 0.0, picture.width - 1.0);
        const double y0 = std::clamp(std::floor(p.y), 0.0, picture.height - 1.0);
        const double fx = p.x - x0;
        const double fy = p.y - y0;
        double sum = 0.0;
        double least = std::numeric_limits<double>::infinity();
        double largest = 0.0;
        for (int i = 0; i < 4; ++i) {
            const double weight = (i % 2 == 0 ? 1.0 - fx : fx) * (i / 2 == 0 ? 1.0 - fy : fy);
            if (weight > 0.0) {
                const double depth = pixelDepth(static_cast<int>(x0) + i % 2, static_cast<int>(y0) + i / 2);
                sum += weight * depth;
                least = std::min(least, depth);
                largest = std::max(largest, depth);
            }
        }
        const bool isSurface = least > 0.0 && largest - least <= kSameSurface * largest;
        return isSurface ? std::optional(sum) : std::nullopt;
    }

    // Whether the right camera sees the point of a pixel.
    bool isSeenByBoth(Point2d p) const {
        const auto seen = inRightImage(p);
        return seen && seen->depth <= (1.0 + kSameSurface) * static_cast<double>(nearest[indexOf(*seen)]);
    }

private:
    struct Seen {
        int x = 0;
        int y = 0;
        double depth = 0.0;
    };

    double pixelDepth(int x, int y) const {
        if (x < 0 || y < 0 || x >= picture.width || y >= picture.height) {
            return 0.0;
        }
        return unit * picture.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                                     static_cast<std::size_t>(x)];
    }

    std::size_t indexOf(const Seen& seen) const {
        return static_cast<std::size_t>(seen.y) * static_cast<std::size_t>(rig.rig.right.width) +
               static_cast<std::size_t>(seen.x);
    }

    // Where and how far away the right camera has the point of a left pixel; nothing when it is not in its image.
    std::optional<Seen> inRightImage(Point2d p) const {
        const auto depth = at(p);
        Point2d ideal{};
        if (!depth || zelm2ViewUnDistortPoint(rig.handle.get(), 'L', &p, &ideal) < 0) {
            return std::nullopt;
        }
        const RigCamera& left = rig.rig.left;
        const ZelmCameraIntrinsics& k = left.intrinsics;
        const double y = (ideal.y - k.A[5]) / k.A[4];
        const double x = (ideal.x - k.A[2] - k.A[1] * y) / k.A[0];
        const ZelmCameraExtrinsics& pose = left.poses.front();
        const std::array<double, 3> c{x * *depth - pose.t[0], y * *depth - pose.t[1], *depth - pose.t[2]};
        const double* const R = pose.R;
        const Point3d X{R[0] * c[0] + R[3] * c[1] + R[6] * c[2], R[1] * c[0] + R[4] * c[1] + R[7] * c[2],
                        R[2] * c[0] + R[5] * c[1] + R[8] * c[2]};
        Point2d pixel{};
        zelm2ViewChange3Dto2D(rig.handle.get(), 'R', &X, &pixel);
        if (!isInside(rig.rig.right, pixel)) {
            return std::nullopt;
        }
        const ZelmCameraExtrinsics& other = rig.rig.right.poses.front();
        return Seen{static_cast<int>(pixel.x + 0.5), static_cast<int>(pixel.y + 0.5),
                    other.R[6] * X.x + other.R[7] * X.y + other.R[8] * X.z + other.t[2]};
    }

    // Covers the neighbours too, so that the pixels of a near surface leave no gaps.
    void splat(const Seen& seen) {
        for (int y = std::max(seen.y - 1, 0); y <= std::min(seen.y + 1, rig.rig.right.height - 1); ++y) {
            for (int x = std::max(seen.x - 1, 0); x <= std::min(seen.x + 1, rig.rig.right.width - 1); ++x) {
                float& depth = nearest[indexOf({x, y, 0.0})];
                depth = std::min(depth, static_cast<float>(seen.depth));
            }
        }
    }

    const LoadedRig& rig;
    DeepPicture picture;
    double unit = 1.0;
    std::vector<float> nearest;  // depths that the right camera sees, a pixel each
};

// Errors of depths, as magnitudes.
struct DepthErrors {
    std::size_t asked = 0;     // points of this kind
    std::size_t textured = 0;  // of them, with a window and texture
    std::vector<double> errors;

    void finish() { std::sort(errors.begin(), errors.end()); }
    double quantile(double part) const {
        return errors.empty() ? 0.0
                              : errors[std::min(static_cast<std::size_t>(part * static_cast<double>(errors.size())),
                                                errors.size() - 1)];
    }
    double partWithin(double limit) const {
        const auto count = std::upper_bound(errors.begin(), errors.end(), limit) - errors.begin();
        return errors.empty() ? 0.0 : static_cast<double>(count) / static_cast<double>(errors.size());
    }
    double rms() const {
        double sum = 0.0;
        for (const double e : errors) {
            sum += e * e;
        }
        return errors.empty() ? 0.0 : std::sqrt(sum / static_cast<double>(errors.size()));
    }
    double partFound() const {
        return textured == 0 ? 0.0 : static_cast<double>(errors.size()) / static_cast<double>(textured);
    }
};

Json errorsJson(const DepthErrors& e, double within) {
    return {{"points", e.asked},
            {"textured", e.textured},
            {"found", e.errors.size()},
            {"partFound", e.partFound()},
            {"within", within},
            {"partWithin", e.partWithin(within)},
            {"median", e.quantile(0.5)},
            {"quantile95", e.quantile(0.95)},
            {"rms", e.rms()}};
}

std::string errorsText(const char* name, const DepthErrors& e, double within) {
    return fmt::format("\n{:<28}{:>9}{:>9}{:>9}{:>8.1f} %{:>9.1f} %{:>10.4f}{:>10.4f}", name, e.asked, e.textured,
                       e.errors.size(), 100.0 * e.partFound(), 100.0 * e.partWithin(within), e.quantile(0.5),
                       e.quantile(0.95));
}

}  // namespace

void compareDepths(const LoadedRig& rig, const nlohmann::json& truth, const fs::path& truthPath,
                   const fs::path& pointsPath, double within, const Console& console) {
    const std::vector<MatchRow> rows = readMatches(pointsPath);
    const TrueDepths depths(rig, truth, truthPath);
    DepthErrors both;
    DepthErrors leftOnly;
    std::size_t elsewhere = 0;
    for (const MatchRow& row : rows) {
        const auto depth = depths.at(row.left);
        if (!depth) {
            elsewhere += row.status == "ok" ? 1U : 0U;
            continue;
        }
        DepthErrors& errors = depths.isSeenByBoth(row.left) ? both : leftOnly;
        errors.asked += 1;
        errors.textured += row.status == "no_texture" || row.status == "outside" ? 0U : 1U;
        if (row.status == "ok") {
            errors.errors.push_back(std::fabs(row.depth - *depth));
        }
    }
    both.finish();
    leftOnly.finish();
    std::string text = fmt::format("{:<28}{:>9}{:>9}{:>9}{:>10}{:>11}{:>10}{:>10}", "depths, plane units", "points",
                                   "textured", "found", "found", fmt::format("in {:g}", within), "median", "95 %");
    text += errorsText("seen by both cameras", both, within);
    text += errorsText("seen by the left one alone", leftOnly, within);
    text += fmt::format("\n{} points found where no true depth is known", elsewhere);
    console.say(text);
    console.result(jsonText({{"seenByBoth", errorsJson(both, within)},
                             {"seenByLeftAlone", errorsJson(leftOnly, within)},
                             {"withoutTruth", elsewhere}}));
}

}  // namespace zelm::tool
