#include "verifyLengths.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <utility>

#include "failure.h"
#include "spacePoints.h"

namespace zelm::tool {
namespace {

// Ends of lengths, as the library takes them, with the words for them.
struct LengthEnds {
    std::vector<double> positions;  // 3 a point
    std::vector<std::int64_t> ends;
    std::vector<double> nominal;
    LengthCheck check;
};

// Where dots stand on the plate, as measured where the plate's file tells it.
class DotPlaces {
public:
    explicit DotPlaces(const Plate& described) : plate(described) {
        for (std::size_t i = 0; 2 * i < plate.positions.grid.size(); ++i) {
            measured[{plate.positions.grid[2 * i], plate.positions.grid[2 * i + 1]}] = i;
        }
    }

    bool areMeasured() const { return !measured.empty(); }
    double distance(const std::int32_t* from, const std::int32_t* to) const {
        const auto a = placeOf(from);
        const auto b = placeOf(to);
        return std::hypot(b[0] - a[0], b[1] - a[1], b[2] - a[2]);
    }

private:
    std::array<double, 3> placeOf(const std::int32_t* index) const {
        const auto known = measured.find({index[0], index[1]});
        if (known == measured.end()) {
            return {index[0] * plate.pattern.d4, index[1] * plate.pattern.d5, 0.0};
        }
        const double* const place = plate.positions.places.data() + 3 * known->second;
        return {place[0], place[1], place[2]};
    }

    const Plate& plate;
    std::map<std::pair<std::int32_t, std::int32_t>, std::size_t> measured;
};

// The dots of one view in space.
class ViewPoints {
public:
    ViewPoints(const LoadedRig& rig, const Plate& plate, const ViewDots& dots)
        : view(dots),
          statuses(dots.count()),
          positions(3 * dots.count()),
          left(2 * dots.count()),
          right(2 * dots.count()) {
        const ZelmMeasurePlatePoints out{sizeof(out), 0, statuses.data(), positions.data(), left.data(), right.data()};
        fit.size = sizeof(fit);
        rig.require(
            zelmMeasurePlatePoints(rig.handle.get(), &plate.pattern, static_cast<std::int64_t>(view.count()),
                                   view.grid.data(), view.leftPixels.data(), view.rightPixels.data(), &out, &fit),
            view.left.string());
    }

    void addTo(const Plate& plate, LengthEnds& all, PointPixels& pixels) const {
        std::vector<std::int32_t> grid;
        const auto firstPoint = static_cast<std::int64_t>(all.positions.size() / 3);
        const auto add = [](const std::vector<double>& from, std::size_t i, std::size_t n, std::vector<double>& to) {
            const auto begin = from.begin() + static_cast<std::ptrdiff_t>(n * i);
            to.insert(to.end(), begin, begin + static_cast<std::ptrdiff_t>(n));
        };
        for (std::size_t i = 0; i < view.count(); ++i) {
            if (statuses[i] == ZELM_MEASURE_POINT_OK) {
                grid.insert(grid.end(), {view.grid[2 * i], view.grid[2 * i + 1]});
                add(positions, i, 3, all.positions);
                add(left, i, 2, pixels.left);
                add(right, i, 2, pixels.right);
            }
        }
        addLengths(plate, grid, firstPoint, all);
        all.check.plates.push_back({view.left.filename().string(), fit});
    }

private:
    void addLengths(const Plate& plate, const std::vector<std::int32_t>& grid, std::int64_t firstPoint,
                    LengthEnds& all) const {
        const auto count = static_cast<std::int64_t>(grid.size() / 2);
        std::int64_t chosen = 0;
        std::vector<std::int64_t> ends;
        std::vector<double> nominal;
        for (int pass = 0; pass < 2; ++pass) {  // the first one counts
            ends.resize(2 * static_cast<std::size_t>(chosen));
            nominal.resize(static_cast<std::size_t>(chosen));
            if (zelmMeasurePlateLengths(&plate.pattern, count, grid.data(), chosen, ends.data(), nominal.data(),
                                        &chosen) < 0) {
                failData("{}: out of memory: give fewer views", view.left.string());
            }
        }
        if (const DotPlaces places(plate); places.areMeasured()) {
            for (std::size_t i = 0; i < nominal.size(); ++i) {
                nominal[i] = places.distance(grid.data() + 2 * ends[2 * i], grid.data() + 2 * ends[2 * i + 1]);
            }
        }
        const auto nameOf = [&](std::int64_t dot) {
            const auto i = 2 * static_cast<std::size_t>(dot);
            return fmt::format("{}/{}", grid[i], grid[i + 1]);
        };
        for (std::size_t i = 0; i < nominal.size(); ++i) {
            all.ends.insert(all.ends.end(), {firstPoint + ends[2 * i], firstPoint + ends[2 * i + 1]});
            all.nominal.push_back(nominal[i]);
            CheckedLength& length = all.check.lengths.emplace_back();
            length.view = view.left.filename().string();
            length.from = nameOf(ends[2 * i]);
            length.to = nameOf(ends[2 * i + 1]);
            length.nominal = nominal[i];
        }
    }

    const ViewDots& view;
    std::vector<std::int32_t> statuses;
    std::vector<double> positions;
    std::vector<double> left;
    std::vector<double> right;
    ZelmMeasurePlateFit fit{};
};

LengthCheck checked(const LoadedRig& rig, const std::string& file, LengthEnds all) {
    std::vector<CheckedLength>& lengths = all.check.lengths;
    std::vector<double> measured(lengths.size());
    std::vector<double> middles(3 * lengths.size());
    std::vector<double> depths(lengths.size());
    std::vector<std::int32_t> regions(lengths.size());
    const ZelmMeasureLengthErrors out{sizeof(out),    0,      measured.data(), middles.data(), depths.data(),
                                      regions.data(), nullptr};
    all.check.summary.size = sizeof(all.check.summary);
    rig.require(zelmMeasureLengthErrors(rig.handle.get(), static_cast<std::int64_t>(all.positions.size() / 3),
                                        all.positions.data(), static_cast<std::int64_t>(lengths.size()),
                                        all.ends.data(), all.nominal.data(), &out, &all.check.summary),
                file);
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        lengths[i].measured = measured[i];
        lengths[i].middle = {middles[3 * i], middles[3 * i + 1], middles[3 * i + 2]};
        lengths[i].depth = depths[i];
        lengths[i].region = regions[i];
    }
    return std::move(all.check);
}

}  // namespace

LengthCheck checkPlateLengths(const LoadedRig& rig, const Plate& plate, const std::vector<ViewDots>& views,
                              const Console& console, PointPixels& pixels) {
    LengthEnds all;
    all.check.units = plate.units;
    std::string reason;
    for (const ViewDots& view : views) {
        try {
            ViewPoints(rig, plate, view).addTo(plate, all, pixels);
        } catch (const Failure& failure) {
            console.warn(fmt::format("skipping a view: {}", failure.what()));
            reason = failure.what();
        }
    }
    if (all.check.lengths.empty()) {
        failData("no view gives lengths: {}",
                 reason.empty() ? "no image pair shows three dots in a row" : reason.c_str());
    }
    return checked(rig, views.front().left.string(), std::move(all));
}

LengthCheck checkNamedLengths(const LoadedRig& rig, const std::string& pairFile, const std::vector<PixelPair>& pairs,
                              const std::string& lengthFile, const std::vector<NamedLength>& lengths) {
    const std::vector<SpacePoint> points = triangulate(rig, pairFile, pairs);
    std::map<std::string, std::size_t> places;
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        if (!places.emplace(pairs[i].id, i).second) {
            failData("{}: the id {} stands twice: lengths name points by their ids", pairFile, pairs[i].id);
        }
    }
    LengthEnds all;
    all.check.units = rig.units;
    for (const SpacePoint& point : points) {
        all.positions.insert(all.positions.end(), {point.position.x, point.position.y, point.position.z});
    }
    for (const NamedLength& length : lengths) {
        for (const std::string& id : {length.from, length.to}) {
            const auto place = places.find(id);
            if (place == places.end()) {
                failData("{}: line {}: {} has no pixel pair of the id {}", lengthFile, length.line, pairFile, id);
            }
            if (points[place->second].status != PointStatus::ok) {
                failData("{}: the pixel pair {} gives no point ({}): correct it, or leave out line {} of {}", pairFile,
                         id, statusWord(points[place->second].status), length.line, lengthFile);
            }
            all.ends.push_back(static_cast<std::int64_t>(place->second));
        }
        all.nominal.push_back(length.nominal);
        CheckedLength& entry = all.check.lengths.emplace_back();
        entry.from = length.from;
        entry.to = length.to;
        entry.nominal = length.nominal;
    }
    return checked(rig, lengthFile, std::move(all));
}

}  // namespace zelm::tool
