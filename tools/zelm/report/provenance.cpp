#include "provenance.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <cstdlib>
#include <ctime>
#include <optional>

#include "failure.h"
#include "fileHash.h"
#include "htmlText.h"
#include "numberText.h"
#include "outputFiles.h"
#include "parallel.h"

namespace zelm::tool {

void Provenance::addBytes(const std::string& what, const std::string& name, std::string_view bytes) {
    files.push_back({what, name, bytes.size(), sha256(bytes)});
}

std::string timeOfReport() {
    std::time_t time = std::time(nullptr);
    if (const char* const given = std::getenv("SOURCE_DATE_EPOCH"); given != nullptr) {
        constexpr double kEndOf9999 = 253402300799.0;  // seconds
        const std::optional<double> seconds = numberOf(given);
        time = seconds && *seconds >= 0.0 && *seconds <= kEndOf9999 ? static_cast<std::time_t>(*seconds) : time;
    }
    return fmt::format("{:%Y-%m-%d %H:%M:%S} UTC", fmt::gmtime(time));
}

std::vector<HashedFile> hashFiles(const std::vector<NamedFile>& files) {
    std::vector<HashedFile> hashed(files.size());
    onAllCores(files.size(), [&](std::size_t i) {
        hashed[i].what = files[i].what;
        hashed[i].name = files[i].path.string();
        try {
            const std::string bytes = readWholeFile(files[i].path, "a file");
            hashed[i].bytes = bytes.size();
            hashed[i].sha256 = sha256(bytes);
        } catch (const Failure&) {
            hashed[i].sha256.clear();
        }
    });
    return hashed;
}

std::string provenanceHtml(const Provenance& p) {
    std::string html = "<section id=\"origin\">\n<h2>Origin</h2>\n<dl class=\"origin\">";
    html += fmt::format("<dt>Made</dt><dd>{} by zelm {}</dd>", escaped(p.time), ZELM_VERSION);
    html += fmt::format("<dt>Command</dt><dd><code>{}</code></dd></dl>\n", escaped(p.command));
    html +=
        "<details><summary>Files and their SHA-256</summary>\n<div class=\"scroll\" tabindex=\"0\" role=\"region\" "
        "aria-label=\"Files\"><table class=\"files\"><thead><tr><th scope=\"col\">what</th><th scope=\"col\">file</th>"
        "<th scope=\"col\" class=\"number\">bytes</th><th scope=\"col\">SHA-256</th></tr></thead><tbody>\n";
    for (const HashedFile& file : p.files) {
        html += fmt::format("<tr><td>{}</td><td>{}</td><td class=\"number\">{}</td><td><code>{}</code></td></tr>\n",
                            escaped(file.what), escaped(file.name), file.bytes,
                            file.sha256.empty() ? "cannot be read" : file.sha256);
    }
    return html + "</tbody></table></div></details>\n</section>\n";
}

}  // namespace zelm::tool
