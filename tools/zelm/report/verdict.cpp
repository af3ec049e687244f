#include "verdict.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <utility>

#include "failure.h"
#include "jsonText.h"

namespace zelm::tool {

void Verdict::add(std::vector<Doubt> more) {
    std::move(more.begin(), more.end(), std::back_inserter(doubts));
    std::stable_sort(doubts.begin(), doubts.end(),
                     [](const Doubt& a, const Doubt& b) { return a.isFatal && !b.isFatal; });
    status = doubts.empty()           ? VerdictStatus::good
             : doubts.front().isFatal ? VerdictStatus::refused
                                      : VerdictStatus::doubtful;
}

const Doubt* Verdict::fatal() const {
    return !doubts.empty() && doubts.front().isFatal ? &doubts.front() : nullptr;
}

std::string Verdict::sentence() const {
    const auto more = [&] {
        return doubts.size() > 1
                   ? fmt::format(" ({} more {})", doubts.size() - 1, doubts.size() > 2 ? "warnings" : "warning")
                   : std::string();
    };
    switch (status) {
        case VerdictStatus::good:
            return "Good: nothing speaks against this calibration.";
        case VerdictStatus::doubtful:
            return fmt::format("Doubtful: {}{}", doubts.front().text, more());
        case VerdictStatus::refused:
            return fmt::format("Refused, not to be measured with: {}{}", doubts.front().text, more());
    }
    return {};
}

const char* statusWord(VerdictStatus status) {
    switch (status) {
        case VerdictStatus::good:
            return "good";
        case VerdictStatus::doubtful:
            return "doubtful";
        case VerdictStatus::refused:
            return "refused";
    }
    return "";
}

nlohmann::ordered_json verdictJson(const Verdict& verdict) {
    using Json = nlohmann::ordered_json;
    Json causes = Json::array();
    for (const Doubt& doubt : verdict.doubts) {
        Json images = Json::array();
        for (const auto& image : doubt.images) {
            images.push_back(image.string());
        }
        causes.push_back(
            {{"cause", doubt.cause}, {"fatal", doubt.isFatal}, {"images", std::move(images)}, {"text", doubt.text}});
    }
    return {{"status", statusWord(verdict.status)}, {"sentence", verdict.sentence()}, {"causes", std::move(causes)}};
}

void requireTrust(const Verdict& verdict, bool isForced) {
    const Doubt* doubt = verdict.fatal();
    if (doubt == nullptr || isForced) {
        return;
    }
    FailureCause cause{doubt->cause, {}};
    for (const std::filesystem::path& image : doubt->images) {
        cause.images.push_back(image.string());
    }
    Failure failure(ExitCode::data,
                    fmt::format("{}; nothing was written (--force writes it all the same)", doubt->text), cause);
    failure.result = jsonText(nlohmann::ordered_json{{"verdict", verdictJson(verdict)}});
    throw failure;
}

}  // namespace zelm::tool
