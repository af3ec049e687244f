#include "reportVerdict.h"

#include <fmt/format.h>

#include <algorithm>

namespace zelm::tool {
namespace {

// "±0.021 mm for lengths of 78 to 156 mm".
std::string lengthsText(const LengthForecast& f, const std::string& units) {
    return fmt::format(
        "±{:.2g} {} (95 %) for lengths of {:.3g} to {:.3g} {}, and ±{:.2g} {} for the least certain of them", f.rms,
        units, f.shortest, f.longest, units, f.worst, units);
}

std::string whyUnknown(const Calibration& c) {
    if (!c.adjustment) {
        return "the cameras were calibrated one by one (--no-adjust)";
    }
    return "the cameras could not be adjusted together: " + c.adjustment->refusal;
}

ReportVerdict unknown(const Calibration& c) {
    const double rms = std::max(c.figures.left.distances.rms, c.figures.right.distances.rms);
    return {"unknown",
            "Uncertainty unknown",
            fmt::format("How far off lengths will be is not known, as {}; the dots lie {:.3f} px RMS from where this "
                        "calibration puts them.",
                        whyUnknown(c), rms),
            {"Measure known lengths with zelm verify before you rely on it."}};
}

// "One finding speaks against this calibration".
std::string findingsText(const Calibration& c) {
    const std::size_t count = c.verdict.doubts.size();
    return count == 1 ? "One finding speaks against this calibration"
                      : fmt::format("{} findings speak against this calibration", count);
}

ReportVerdict doubtful(const Calibration& c) {
    return {"doubtful",
            "Doubtful",
            fmt::format("{}, so that lengths may be further off than {}.", findingsText(c),
                        c.forecast ? "the expected " + lengthsText(*c.forecast, c.plate.units) : "its residuals tell"),
            {"Read the warnings below: each names what is wrong and the remedy. Then calibrate again.",
             "Until then measure with it only what known lengths of about the same size and place have confirmed (zelm "
             "verify)."}};
}

// It was written because that was insisted on.
ReportVerdict refused(const Calibration& c) {
    return {"refused",
            "Refused",
            fmt::format("Do not measure with this calibration: {}.", c.verdict.fatal()->text),
            {"It was written only because of --force.",
             "Remove the cause, which the warnings below name, and calibrate "
             "again."}};
}

ReportVerdict good(const Calibration& c) {
    return {"good",
            "Good",
            fmt::format("Expected error of a length where the plates were shown: {}.",
                        lengthsText(*c.forecast, c.plate.units)),
            {"Keep rig.zcal and rig.zcov together and measure with them.",
             "Check the pair with a few new images of the plate before each job and after every knock: zelm verify.",
             "An error of the plate's own dimensions passes on to every length in proportion and is not counted here.",
             "If it has to be better, zelm plan --rig names the image that helps most."}};
}

}  // namespace

ReportVerdict reportVerdict(const Calibration& c) {
    switch (c.verdict.status) {
        case VerdictStatus::refused:
            return refused(c);
        case VerdictStatus::doubtful:
            return doubtful(c);
        case VerdictStatus::good:
            return c.forecast ? good(c) : unknown(c);
    }
    return unknown(c);
}

}  // namespace zelm::tool
