#include "failureJson.h"

#include <string_view>

#include "console.h"
#include "jsonText.h"

namespace zelm::tool {

bool asksForJson(int argc, const char* const* argv) {
    // The option belongs to a subcommand, whose name comes first.
    for (int i = 2; i < argc && std::string_view(argv[i]) != "--"; ++i) {
        if (std::string_view(argv[i]) == "--json") {
            return true;
        }
    }
    return false;
}

std::string failureJson(const Failure& failure, const std::vector<std::string>& warnings) {
    const char* const general = failure.code == ExitCode::usage ? "usage" : "data";
    nlohmann::ordered_json json{{"status", "failed"},
                                {"exitCode", static_cast<int>(failure.code)},
                                {"message", oneLine(failure.what())},
                                {"cause", failure.cause.word.empty() ? general : failure.cause.word},
                                {"images", failure.cause.images},
                                {"warnings", warnings}};
    if (!failure.result.empty()) {
        json.update(nlohmann::ordered_json::parse(failure.result));
    }
    return jsonText(json);
}

}  // namespace zelm::tool
