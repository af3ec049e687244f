#include "exchangeFormat.h"

#include <array>
#include <utility>

#include "failure.h"

namespace zelm::tool {
namespace {

const std::vector<ExchangeFormat>& formats() {
    static const std::vector<ExchangeFormat> kFormats{
        {"opencv", "OpenCV", ZELM_MEASURE_FILE_OPENCV, {"stereo.yml"}, false},
        {"ros", "ROS", ZELM_MEASURE_FILE_ROS, {"left.yaml", "right.yaml"}, true},
        {"kalibr", "Kalibr", ZELM_MEASURE_FILE_KALIBR, {"camchain.yaml"}, true},
        {"matlab", "MATLAB", ZELM_MEASURE_FILE_MATLAB, {"stereo.mat"}, false},
        {"mrcal", "mrcal", ZELM_MEASURE_FILE_MRCAL, {"left.cameramodel", "right.cameramodel"}, true},
        {"numpy", "NumPy", ZELM_MEASURE_FILE_NUMPY, {"stereo.npz"}, false}};
    return kFormats;
}

}  // namespace

const ExchangeFormat& exchangeFormat(const std::string& word, const std::string& option) {
    for (const ExchangeFormat& format : formats()) {
        if (format.word == word) {
            return format;
        }
    }
    failUsage("{} {}: expected opencv, ros, kalibr, matlab, mrcal or numpy", option, word);
}

std::vector<std::string> exchangeWords() {
    std::vector<std::string> words;
    words.reserve(formats().size());
    for (const ExchangeFormat& format : formats()) {
        words.push_back(format.word);
    }
    return words;
}

std::optional<double> knownMetres(const std::string& unit) {
    constexpr std::array<std::pair<const char*, double>, 7> kUnits{
        {{"mm", 0.001}, {"cm", 0.01}, {"m", 1.0}, {"um", 1e-6}, {"in", 0.0254}, {"inch", 0.0254}, {"mil", 0.0000254}}};
    for (const auto& [name, metres] : kUnits) {
        if (unit == name) {
            return metres;
        }
    }
    return std::nullopt;
}

double metresOfUnit(const std::string& unit) {
    const std::optional<double> metres = knownMetres(unit);
    if (!metres) {
        failUsage("--unit {}: expected um, mm, cm, m, mil or inch", unit);
    }
    return *metres;
}

}  // namespace zelm::tool
