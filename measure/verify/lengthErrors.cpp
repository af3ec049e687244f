#include "lengthErrors.h"

#include <algorithm>
#include <cmath>

namespace zelm::measure {
namespace {

constexpr int kThirds = 3;

std::size_t thirdOf(double part) {
    return part >= 0.0 ? static_cast<std::size_t>(std::min(kThirds * part, kThirds - 1.0)) : 0;
}

// The third of the left image in which a point lies, those outside taken to the nearest.
std::size_t regionOf(const Rig& rig, const Vector3& X) {
    const Point3d point{X[0], X[1], X[2]};
    Point2d pixel{};
    zelm2ViewChange3Dto2D(rig.calib.get(), 'L', &point, &pixel);
    return kThirds * thirdOf(pixel.y / rig.left.height) + thirdOf(pixel.x / rig.left.width);
}

MeasuredLength measuredOf(const Rig& rig, const KnownLength& known) {
    MeasuredLength length;
    length.measured = std::hypot(known.to[0] - known.from[0], known.to[1] - known.from[1], known.to[2] - known.from[2]);
    for (std::size_t i = 0; i < 3; ++i) {
        length.middle[i] = 0.5 * known.from[i] + 0.5 * known.to[i];
    }
    length.depth = rig.left.depthOf({length.middle[0], length.middle[1], length.middle[2]});
    length.region = regionOf(rig, length.middle);
    return length;
}

void add(double error, ZelmMeasureLengthFigures& f) {
    f.count += 1;
    f.mean += error;
    f.rms += error * error;
    f.worst = std::fabs(error) > std::fabs(f.worst) ? error : f.worst;
}

void finish(ZelmMeasureLengthFigures& f) {
    if (f.count > 0) {
        f.mean /= static_cast<double>(f.count);
        f.rms = std::sqrt(f.rms / static_cast<double>(f.count));
    }
}

// Thirds of what the lengths' middles span.
void findSlabs(LengthErrors& e) {
    const auto [near, far] = std::minmax_element(e.lengths.begin(), e.lengths.end(),
                                                 [](const auto& a, const auto& b) { return a.depth < b.depth; });
    const double first = near->depth;
    const double span = far->depth - first;
    for (std::size_t i = 0; i <= kSlabs; ++i) {
        e.summary.depths[i] = first + span * static_cast<double>(i) / kSlabs;
    }
    for (MeasuredLength& length : e.lengths) {
        length.slab = span > 0.0 ? thirdOf((length.depth - first) / span) : 0;
    }
}

// measured = (1 + scale) nominal with least squares.
void findScale(const std::vector<KnownLength>& known, LengthErrors& e) {
    ZelmMeasureLengthSummary& s = e.summary;
    double squares = 0.0;
    double products = 0.0;
    for (std::size_t i = 0; i < known.size(); ++i) {
        squares += known[i].nominal * known[i].nominal;
        products += known[i].nominal * (e.lengths[i].measured - known[i].nominal);
    }
    s.scale = products / squares;
    double left = 0.0;
    for (std::size_t i = 0; i < known.size(); ++i) {
        const double error = e.lengths[i].measured - (1.0 + s.scale) * known[i].nominal;
        left += error * error;
    }
    const double n = static_cast<double>(known.size());
    s.rmsWithoutScale = s.scale > -1.0 ? std::sqrt(left / n) / (1.0 + s.scale) : s.all.rms;
    s.scaleDeviation = known.size() > 1 ? std::sqrt(left / (n - 1.0) / squares) : 0.0;
}

}  // namespace

LengthErrors lengthErrors(const Rig& rig, const std::vector<KnownLength>& known) {
    LengthErrors e;
    for (const KnownLength& length : known) {
        e.lengths.push_back(measuredOf(rig, length));
    }
    findSlabs(e);
    ZelmMeasureLengthSummary& s = e.summary;
    s.minNominal = s.maxNominal = known.front().nominal;
    for (std::size_t i = 0; i < known.size(); ++i) {
        const MeasuredLength& length = e.lengths[i];
        const double error = length.measured - known[i].nominal;
        s.worst = std::fabs(error) > std::fabs(s.all.worst) ? static_cast<std::int64_t>(i) : s.worst;
        add(error, s.all);
        add(error, s.regions[length.region]);
        add(error, s.slabs[length.slab]);
        s.minNominal = std::min(s.minNominal, known[i].nominal);
        s.maxNominal = std::max(s.maxNominal, known[i].nominal);
    }
    finish(s.all);
    std::for_each(std::begin(s.regions), std::end(s.regions), finish);
    std::for_each(std::begin(s.slabs), std::end(s.slabs), finish);
    findScale(known, e);
    return e;
}

}  // namespace zelm::measure
