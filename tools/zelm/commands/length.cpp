// zelm length: distances between points of pixel pairs, with their uncertainty.
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <unordered_map>
#include <utility>

#include "cameraPicture.h"
#include "dotPairs.h"
#include "failure.h"
#include "lengthFile.h"
#include "outputFiles.h"
#include "spacePoints.h"
#include "subcommands.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr std::size_t kMaxPointsOfAll = 100;  // from more not every length is meant

struct LengthOptions {
    std::string rig;
    std::string pairs;
    std::string csv;
    std::vector<std::string> between;
    std::string list;  // file that names lengths
    DotOptions dots;
    std::optional<double> noise;  // of the pixels; that of the calibration's dots
};

enum class LengthStatus : std::int32_t {
    ok = ZELM_MEASURE_LENGTH_OK,
    noPoint = ZELM_MEASURE_LENGTH_NO_POINT,
    tooShort = ZELM_MEASURE_LENGTH_SHORT,
    mismatch,  // an end is a point that is not to be trusted
    outside,
    hidden,
};

// Of a length with an end that is no good point.
LengthStatus statusOf(PointStatus end) {
    switch (end) {
        case PointStatus::mismatch:
            return LengthStatus::mismatch;
        case PointStatus::outside:
            return LengthStatus::outside;
        case PointStatus::hidden:
            return LengthStatus::hidden;
        default:
            return LengthStatus::noPoint;
    }
}

// The word that files have for it.
const char* statusWord(LengthStatus status) {
    constexpr const char* kWords[] = {"ok", "no_point", "short", "mismatch", "outside", "hidden"};
    return kWords[static_cast<std::size_t>(status)];
}

struct MeasuredLength {
    std::size_t from = 0;  // places of its points
    std::size_t to = 0;
    LengthStatus status = LengthStatus::noPoint;
    double length = 0.0;
    double expanded = 0.0;  // half the interval that holds the true length at 95 %
    double deviation = 0.0;
    double byNoise = 0.0;
    double byCalibration = 0.0;

    bool hasLength() const { return status == LengthStatus::ok || status == LengthStatus::tooShort; }
};

void checkNames(const LengthOptions& o) {
    std::vector<std::string> inputs{o.rig, covarianceFile(o.rig).string(), o.pairs, o.list};
    inputs.insert(inputs.end(), o.dots.images.begin(), o.dots.images.end());
    for (const std::string& input : inputs) {
        if (!o.csv.empty() && !input.empty() && isSameFile(o.csv, input)) {
            failUsage("{}: is an input: give the output another name", o.csv);
        }
    }
}

// The places of points by their ids.
class PointNames {
public:
    PointNames(const std::string& pairFile, const std::vector<PixelPair>& pairs) : file(pairFile) {
        for (std::size_t i = 0; i < pairs.size(); ++i) {
            if (!places.emplace(pairs[i].id, i).second) {
                failData("{}: two points have the id \"{}\": give each an id of its own", file, pairs[i].id);
            }
        }
    }

    // The two ids of "A,B", which may hold commas themselves.
    MeasuredLength between(const std::string& text) const {
        std::optional<MeasuredLength> found;
        for (std::size_t comma = text.find(','); comma != std::string::npos; comma = text.find(',', comma + 1)) {
            const auto from = places.find(text.substr(0, comma));
            const auto to = places.find(text.substr(comma + 1));
            if (from != places.end() && to != places.end()) {
                found = MeasuredLength{};
                found->from = from->second;
                found->to = to->second;
            }
        }
        if (!found) {
            refuse(text);
        }
        if (found->from == found->to) {
            failUsage("--between {}: from a point to itself: give two points", text);
        }
        return *found;
    }

    // The length that a line of the file names.
    MeasuredLength named(const NamedLength& name, const std::string& list) const {
        const auto placeOf = [&](const std::string& id) {
            const auto place = places.find(id);
            if (place == places.end()) {
                failData("{}: line {}: {} has no point of the id \"{}\"", list, name.line, file, id);
            }
            return place->second;
        };
        MeasuredLength length;
        length.from = placeOf(name.from);
        length.to = placeOf(name.to);
        if (length.from == length.to) {
            failData("{}: line {}: from the point \"{}\" to itself: give two points", list, name.line, name.from);
        }
        return length;
    }

private:
    [[noreturn]] void refuse(const std::string& text) const {
        const std::size_t comma = text.find(',');
        if (comma == std::string::npos) {
            failUsage("--between {}: expected FROM,TO: the ids of two points", text);
        }
        const bool isFirst = places.find(text.substr(0, comma)) == places.end();
        failData("{}: no point has the id \"{}\" of --between {}", file,
                 isFirst ? text.substr(0, comma) : text.substr(comma + 1), text);
    }

    std::string file;
    std::unordered_map<std::string, std::size_t> places;
};

// Those asked for; else all there are between the points.
std::vector<MeasuredLength> lengthsOf(const LengthOptions& o, const std::vector<PixelPair>& pairs) {
    const PointNames names(o.pairs, pairs);
    std::vector<MeasuredLength> lengths;
    for (const std::string& text : o.between) {
        lengths.push_back(names.between(text));
    }
    if (!o.list.empty()) {
        for (const NamedLength& name : readLengthFile(o.list, false)) {
            lengths.push_back(names.named(name, o.list));
        }
    }
    if (!lengths.empty()) {
        return lengths;
    }
    if (pairs.size() < 2) {
        failData("{}: holds one point: a length takes two", o.pairs);
    }
    if (pairs.size() > kMaxPointsOfAll) {
        failUsage(
            "{}: {} points have too many distances to show them all: name those you want with --between FROM,TO "
            "or in a file, with --lengths",
            o.pairs, pairs.size());
    }
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        for (std::size_t k = i + 1; k < pairs.size(); ++k) {
            lengths.emplace_back();
            lengths.back().from = i;
            lengths.back().to = k;
        }
    }
    return lengths;
}

// Fills in the numbers of the lengths.
void measure(std::vector<MeasuredLength>& lengths, const std::vector<PixelPair>& pairs,
             const std::vector<SpacePoint>& points, const LengthOptions& o, const LoadedRig& rig) {
    const PairArrays pixels(pairs);
    std::vector<std::int64_t> ends;
    for (const MeasuredLength& length : lengths) {
        ends.insert(ends.end(), {static_cast<std::int64_t>(length.from), static_cast<std::int64_t>(length.to)});
    }
    std::vector<std::int32_t> statuses(lengths.size());
    std::vector<double> numbers(5 * lengths.size());
    double* const n = numbers.data();
    const std::size_t count = lengths.size();
    const ImageNoise noise = imageNoiseOf(points, o.noise);
    const ZelmMeasurePixelNoise record = noise.record();
    const ZelmMeasureLengths out{sizeof(out),  0, statuses.data(), n, n + count, n + 2 * count, n + 3 * count,
                                 n + 4 * count};
    rig.require(zelmMeasureLengths(rig.handle.get(), pixels.count, pixels.left.data(), pixels.right.data(), &record,
                                   static_cast<std::int64_t>(count), ends.data(), &out),
                o.rig);
    const auto isFound = [&](std::size_t i) { return points[i].status == PointStatus::ok; };
    for (std::size_t i = 0; i < count; ++i) {
        MeasuredLength& l = lengths[i];
        if (!isFound(l.from) || !isFound(l.to)) {
            l.status = statusOf(points[isFound(l.from) ? l.to : l.from].status);
            continue;
        }
        l.status = static_cast<LengthStatus>(statuses[i]);
        l.length = out.lengths[i];
        l.byNoise = out.image[i];
        l.byCalibration = out.calibration[i];
        l.deviation = out.deviations[i];
        l.expanded = out.expanded[i];
    }
}

std::string table(const std::vector<MeasuredLength>& lengths, const std::vector<PixelPair>& pairs) {
    std::size_t width = 4;
    for (const MeasuredLength& l : lengths) {
        width = std::max({width, pairs[l.from].id.size(), pairs[l.to].id.size()});
    }
    std::string text = fmt::format("{:<{}}  {:<{}}  {:>12}  {:>10}  {:>10}  {:>10}  {:>11}", "from", width, "to", width,
                                   "length", "U95", "sigma", "by noise", "calibration");
    for (const MeasuredLength& l : lengths) {
        text += fmt::format("\n{:<{}}  {:<{}}", pairs[l.from].id, width, pairs[l.to].id, width);
        if (l.status == LengthStatus::ok) {
            text += fmt::format("  {:>12.6f}  {:>10.6f}  {:>10.6f}  {:>10.6f}  {:>11.6f}", l.length, l.expanded,
                                l.deviation, l.byNoise, l.byCalibration);
        } else if (l.status == LengthStatus::tooShort) {
            text += fmt::format("  {:>12.6f}  short", l.length);
        } else {
            text += fmt::format("  {}", l.status == LengthStatus::noPoint ? "no point" : statusWord(l.status));
        }
    }
    return text;
}

std::string csvOf(const std::vector<MeasuredLength>& lengths, const std::vector<PixelPair>& pairs) {
    std::string csv = "from,to,length,U95,sigma,noise_sigma,calibration_sigma,status\n";
    for (const MeasuredLength& l : lengths) {
        csv += csvField(pairs[l.from].id) + "," + csvField(pairs[l.to].id) + ",";
        csv += l.hasLength() ? fmt::format("{:.10g}", l.length) : "";
        csv += l.status != LengthStatus::ok
                   ? ",,,,"
                   : fmt::format(",{:.6g},{:.6g},{:.6g},{:.6g}", l.expanded, l.deviation, l.byNoise, l.byCalibration);
        csv += fmt::format(",{}\n", statusWord(l.status));
    }
    return csv;
}

Json jsonOf(const std::vector<MeasuredLength>& lengths, const std::vector<PixelPair>& pairs, const LengthOptions& o,
            const LoadedRig& rig) {
    Json list = Json::array();
    for (const MeasuredLength& l : lengths) {
        Json json{{"from", pairs[l.from].id}, {"to", pairs[l.to].id}, {"status", statusWord(l.status)}};
        if (l.hasLength()) {
            json["length"] = l.length;
        }
        if (l.status == LengthStatus::ok) {
            json["U95"] = l.expanded;
            json["sigma"] = l.deviation;
            json["noiseSigma"] = l.byNoise;
            json["calibrationSigma"] = l.byCalibration;
        }
        list.push_back(json);
    }
    Json json{{"units", rig.units}, {"lengths", list}};
    if (!o.dots.areGiven() || o.noise) {
        json["noise"] = o.noise.value_or(rig.rig.covariance->noise);
    }
    if (!o.csv.empty()) {
        json["csv"] = o.csv;
    }
    return json;
}

// "2 no_point, 1 hidden" of the lengths without a number.
std::string lostText(const std::vector<MeasuredLength>& lengths) {
    std::string text;
    for (const LengthStatus status :
         {LengthStatus::noPoint, LengthStatus::mismatch, LengthStatus::outside, LengthStatus::hidden}) {
        const auto count =
            std::count_if(lengths.begin(), lengths.end(), [=](const MeasuredLength& l) { return l.status == status; });
        text += count > 0 ? fmt::format("{}{} {}", text.empty() ? "" : ", ", count, statusWord(status)) : "";
    }
    return text;
}

void checkResult(const LengthOptions& o, const std::vector<MeasuredLength>& lengths, const Console& console) {
    const auto count = [&](LengthStatus status) {
        return std::count_if(lengths.begin(), lengths.end(),
                             [=](const MeasuredLength& l) { return l.status == status; });
    };
    const auto lost = std::count_if(lengths.begin(), lengths.end(), [](const auto& l) { return !l.hasLength(); });
    if (lost == static_cast<std::ptrdiff_t>(lengths.size())) {
        failData(
            "{}: none of {} lengths has a good point at both ends ({}): are left and right exchanged, or is this the "
            "calibration of other cameras? zelm triangulate tells more",
            o.pairs, lengths.size(), lostText(lengths));
    }
    if (lost > 0) {
        console.warn(fmt::format("{}: {} of {} lengths lack a good point at an end ({}); zelm triangulate tells why",
                                 o.pairs, lost, lengths.size(), lostText(lengths)));
    }
    if (count(LengthStatus::tooShort) > 0) {
        console.warn(
            fmt::format("{}: {} of {} lengths are no longer than the noise of their ends, and have no "
                        "uncertainty along them",
                        o.pairs, count(LengthStatus::tooShort), lengths.size()));
    }
}

void runLength(const LengthOptions& o, const Console& console) {
    checkNames(o);
    const LoadedRig rig = loadRig(o.rig, console);
    rig.requireCovariance();
    std::vector<PixelPair> pairs = readPairFile(o.pairs);
    std::vector<MeasuredLength> lengths = lengthsOf(o, pairs);
    OutputFiles outputs;
    if (!o.csv.empty()) {
        outputs.prepareFolder(fs::path(o.csv).parent_path());
    }
    const double noise = o.noise.value_or(rig.rig.covariance->noise);
    const std::vector<SpacePoint> points = pointsOf(pairs, o.dots, noise, rig, o.rig);
    measure(lengths, pairs, points, o, rig);
    checkResult(o, lengths, console);
    if (const std::string mismatch = mismatchText(points, maxErrorOf(o.dots, noise), o.rig); !mismatch.empty()) {
        console.warn(fmt::format("{}: {}", o.pairs, mismatch));
    }
    if (o.dots.areGiven()) {
        console.warn(warningOfOneImage(o.dots.images[0], o.dots.images[1]));
    }
    warnOfMisses(o.pairs, pairs, points, {noise, o.dots.areGiven()}, console);
    if (!o.csv.empty()) {
        outputs.add(o.csv, csvOf(lengths, pairs));
    }
    outputs.commit();
    console.say(table(lengths, pairs));
    console.say(fmt::format("lengths in {}; U95: half the interval that holds the true length at 95 %; noise: {}{}{}",
                            rig.units, noiseText(o.dots, o.noise, rig), o.csv.empty() ? "" : "; wrote ", o.csv));
    console.result(jsonOf(lengths, pairs, o, rig));
}

}  // namespace

void addLength(CommandLine& commandLine, Console& console) {
    Subcommand sub = commandLine.subcommand("length", "Measure distances between points, with their uncertainty",
                                            "zelm length out/rig.zcal pairs.csv --between A,B --between A,C");
    const auto o = std::make_shared<LengthOptions>();
    sub.option("rig", o->rig, "The calibration (rig.zcal), with its covariance (rig.zcov) beside it").required();
    sub.option("pairs", o->pairs,
               "CSV of raw pixel pairs: xL,yL,xR,yR or id,xL,yL,xR,yR, or columns that a header names so")
        .required();
    sub.option("--between", o->between,
               "FROM,TO: the ids of two points; may be given several times; default, without --lengths: all pairs");
    sub.option("--lengths", o->list, "CSV of the lengths to measure: from,to, the ids of two points a row");
    sub.option("-o,--output", o->csv, "Also write the lengths as CSV");
    addDotOptions(sub, o->dots);
    sub.option("--noise", o->noise,
               "Standard deviation of the pixels' coordinates, pixels; default: that of the calibration's dots")
        .inRange(1e-6, 1000.0);
    sub.does([o, &console] { runLength(*o, console); });
}

}  // namespace zelm::tool
