#include "adjustReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "cameraParameters.h"
#include "numberText.h"

namespace zelm::tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kSides[] = {"left", "right"};

// The parameters of a camera in the order of the covariance.
std::array<double, 7> valuesOf(const RigCamera& camera) {
    const ZelmCameraIntrinsics& k = camera.intrinsics;
    return {k.A[0], k.A[1], k.A[4], k.A[2], k.A[5], k.k1, k.k2};
}

double deviation(const Rig& rig, std::size_t parameter) {
    return std::sqrt(rig.covariance->matrix[parameter * ZELM_MEASURE_PARAMETERS + parameter]);
}

std::string movedText(double before, double after, int digits) {
    return fmt::format("{:+.{}f}", after - before, digits);
}

std::string deviationText(double value, int digits) {
    return value > 0.0 ? fmt::format("{:.{}f}", value, digits) : "held";
}

// Angle by which the relative rotation changed, radians.
double turnBetween(const PairGeometry& a, const PairGeometry& b) {
    double squares = 0.0;
    for (std::size_t i = 0; i < 9; ++i) {
        squares += (a.R[i] - b.R[i]) * (a.R[i] - b.R[i]);
    }
    return 2.0 * std::asin(std::min(1.0, std::sqrt(squares / 8.0)));
}

std::string plural(int count, const char* one, const char* many) {
    return fmt::format("{} {}", count, count == 1 ? one : many);
}

}  // namespace

std::vector<MovedParameter> movedParameters(const AdjustReport& report, const Rig& rig, const std::string& units) {
    const bool bothParallel = rig.left.isParallel();
    const std::string scale = scaleWords(bothParallel ? rig.left.model : 0, units).unit;
    const std::array<std::pair<std::string, int>, 7> rows{{{"focal length, x, " + scale, 4},
                                                           {"skew, " + scale, 4},
                                                           {"focal length, y, " + scale, 4},
                                                           {"principal point cx, px", 4},
                                                           {"principal point cy, px", 4},
                                                           {"distortion k1", 6},
                                                           {"distortion k2", 6}}};
    const auto leftBefore = valuesOf(report.before.left);
    const auto leftAfter = valuesOf(rig.left);
    const auto rightBefore = valuesOf(report.before.right);
    const auto rightAfter = valuesOf(rig.right);
    std::vector<MovedParameter> moved;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto& [name, digits] = rows[i];
        moved.push_back({name, movedText(leftBefore[i], leftAfter[i], digits),
                         deviationText(deviation(rig, ZELM_MEASURE_LEFT_FX + i), digits),
                         movedText(rightBefore[i], rightAfter[i], digits),
                         deviationText(deviation(rig, ZELM_MEASURE_RIGHT_FX + i), digits)});
    }
    return moved;
}

double baselineDeviation(const Rig& rig) {
    double variance = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            const std::size_t row = ZELM_MEASURE_RELATIVE_TRANSLATION + i;
            variance += rig.pair->t[i] * rig.pair->t[j] *
                        rig.covariance->matrix[row * ZELM_MEASURE_PARAMETERS + ZELM_MEASURE_RELATIVE_TRANSLATION + j];
        }
    }
    return std::sqrt(variance) / rig.pair->baseline;
}

std::vector<std::string> movedPair(const AdjustReport& report, const Rig& rig, const std::string& units) {
    if (!rig.pair || !report.before.pair) {
        return {};
    }
    const double before = report.before.pair->baseline;
    double turn = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
        const double s = deviation(rig, ZELM_MEASURE_RELATIVE_ROTATION + i);
        turn += s * s;
    }
    return {fmt::format("baseline {:.4f} +- {:.4f} {}, moved by {:+.4f}", rig.pair->baseline, baselineDeviation(rig),
                        units, rig.pair->baseline - before),
            fmt::format("the right camera turned by {:.4f} deg against the left one, +- {:.4f}",
                        turnBetween(*rig.pair, *report.before.pair) * kDegreesPerRadian,
                        std::sqrt(turn) * kDegreesPerRadian)};
}

std::string adjustLine(const AdjustReport& report) {
    if (!report.refusal.empty()) {
        return "not adjusted: " + report.refusal;
    }
    const ZelmMeasureAdjustSummary& s = report.summary;
    return fmt::format(
        "adjusted together: {} {} of {} views, {}; residual RMS of a coordinate left {:.4f} -> {:.4f} px, right "
        "{:.4f} "
        "-> {:.4f} px",
        s.dots, report.ofPoints ? "points" : "dots", s.views - s.viewsLeftOut,
        report.ofPoints      ? "as they are given"
        : s.refinedDots == 1 ? "each measured on its pixels"
                             : "as the reader found them",
        s.leftBefore, s.leftRms, s.rightBefore, s.rightRms);
}

std::vector<std::string> adjustRemarks(const AdjustReport& report) {
    std::vector<std::string> remarks;
    for (std::size_t view = 0; view < report.images.size(); ++view) {
        if (!report.leftOut[view].empty()) {
            remarks.push_back(fmt::format("view {} takes no part: {}", view, report.leftOut[view]));
            continue;
        }
        for (std::size_t side = 0; side < 2; ++side) {
            const AdjustedImage& image = report.images[view][side];
            std::string text;
            const auto add = [&text](int count, const std::string& words) {
                if (count > 0) {
                    text += (text.empty() ? "" : ", ") + words;
                }
            };
            add(image.added, plural(image.added, "dot added", "dots added") + " that the reader had missed");
            add(image.notConfirmed,
                plural(image.notConfirmed, "dot", "dots") + " left out that the pixels do not confirm");
            add(image.outliers,
                plural(image.outliers, report.ofPoints ? "point" : "dot", report.ofPoints ? "points" : "dots") +
                    " left out, too far from where all others put them");
            if (!text.empty()) {
                remarks.push_back(report.isPair ? fmt::format("view {} {}: {}", view, kSides[side], text)
                                                : fmt::format("view {}: {}", view, text));
            }
        }
    }
    const ZelmMeasureAdjustSummary& s = report.summary;
    constexpr double kUnusualFactor = 0.1;  // of a diameter: more is no bleeding of ink
    for (const auto& [name, factor, sigma] : {std::tuple("dots", s.dotFactor, s.dotFactorSigma),
                                              std::tuple("markers", s.markerFactor, s.markerFactorSigma)}) {
        if (std::fabs(factor - 1.0) > kUnusualFactor) {
            remarks.push_back(fmt::format(
                "the {} are {:.2f} times as wide as the plate's description says: is it this plate's?", name, factor));
        }
    }
    return remarks;
}

void nameUnits(std::vector<ZelmMeasureCheck>& checks, const std::string& units) {
    const std::string_view general = kUnknownUnits;
    for (ZelmMeasureCheck& check : checks) {
        std::string text = check.text;
        for (std::size_t at = text.find(general); at != std::string::npos; at = text.find(general, at + units.size())) {
            text.replace(at, general.size(), units);
        }
        const std::size_t length = text.copy(check.text, sizeof(check.text) - 1);
        check.text[length] = '\0';
    }
}

const char* verdictWord(std::int32_t verdict) {
    switch (verdict) {
        case ZELM_MEASURE_CHECK_FINE:
            return "fine";
        case ZELM_MEASURE_CHECK_NOTABLE:
            return "notable";
        case ZELM_MEASURE_CHECK_WRONG:
            return "wrong";
        default:
            return "not done";
    }
}

std::vector<std::string> checkLines(const AdjustReport& report) {
    const auto fine = std::count_if(report.checks.begin(), report.checks.end(), [](const ZelmMeasureCheck& check) {
        return check.verdict == ZELM_MEASURE_CHECK_FINE;
    });
    std::vector<std::string> lines{fmt::format("self-checks: {} of {} fine", fine, report.checks.size())};
    for (const ZelmMeasureCheck& check : report.checks) {
        if (check.verdict != ZELM_MEASURE_CHECK_FINE) {
            lines.push_back(fmt::format("{}: {} (p = {:.2g})", verdictWord(check.verdict), check.text, check.p));
        }
    }
    return lines;
}

std::string adjustText(const AdjustReport& report, const Rig& rig, const std::string& units) {
    std::string text = adjustLine(report) + "\n";
    if (!report.refusal.empty()) {
        return text;
    }
    for (const std::string& remark : adjustRemarks(report)) {
        text += remark + "\n";
    }
    const std::vector<MovedParameter> rows = movedParameters(report, rig, units);
    std::size_t width = 28;
    for (const MovedParameter& row : rows) {
        width = std::max(width, row.name.size() + 2);
    }
    text += fmt::format("{:<{}}{:>12}{:>10}{:>16}{:>10}\n", "moved by", width, "left", "+-", "right", "+-");
    for (const MovedParameter& row : rows) {
        text += fmt::format("{:<{}}{:>12}{:>10}{:>16}{:>10}\n", row.name, width, row.leftMoved, row.leftDeviation,
                            row.rightMoved, row.rightDeviation);
    }
    for (const std::string& line : movedPair(report, rig, units)) {
        text += line + "\n";
    }
    for (const std::string& line : checkLines(report)) {
        text += line + "\n";
    }
    return text;
}

Json adjustJson(const AdjustReport& report) {
    if (!report.refusal.empty()) {
        return {{"adjusted", false}, {"reason", report.refusal}};
    }
    const ZelmMeasureAdjustSummary& s = report.summary;
    const auto camera = [&](double before, double after, double noise, const RigCamera& was) {
        return Json{{"residualRmsBefore", before},
                    {"residualRms", after},
                    {"noise", noise},
                    {"before",
                     {{"A", std::vector<double>(was.intrinsics.A, was.intrinsics.A + 9)},
                      {"k1", was.intrinsics.k1},
                      {"k2", was.intrinsics.k2}}}};
    };
    Json json{{"adjusted", true},
              {"dots", report.ofPoints      ? "given"
                       : s.refinedDots == 1 ? "refined"
                                            : "reader"},
              {"views", s.views - s.viewsLeftOut},
              {"observations", s.dots},
              {"outliers", s.outliers},
              {"parameters", s.parameters},
              {"freedom", s.freedom},
              {"chiSquare", s.chiSquare},
              {"dotFactor", s.dotFactor},
              {"markerFactor", s.markerFactor},
              {"bow", std::vector<double>(s.bow, s.bow + 3)},
              {"left", camera(s.leftBefore, s.leftRms, s.leftNoise, report.before.left)},
              {"right", camera(s.rightBefore, s.rightRms, s.rightNoise, report.before.right)}};
    json["remarks"] = adjustRemarks(report);
    Json checks = Json::array();
    for (const ZelmMeasureCheck& check : report.checks) {
        checks.push_back({{"verdict", verdictWord(check.verdict)},
                          {"p", check.p},
                          {"value", check.value},
                          {"deviation", check.deviation},
                          {"text", check.text}});
    }
    json["checks"] = checks;
    return json;
}

}  // namespace zelm::tool
