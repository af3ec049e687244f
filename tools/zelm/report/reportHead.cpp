#include "reportHead.h"

#include <fmt/format.h>

#include <sstream>

#include "htmlText.h"

namespace zelm::tool {

std::string verdictHtml(const ReportVerdict& verdict) {
    std::string html = fmt::format(
        "<section class=\"verdict {}\" aria-label=\"Verdict\">\n<p class=\"word\">{}</p>\n<p class=\"sentence\">{}</p>"
        "\n<ul>",
        verdict.kind, escaped(verdict.word), escaped(verdict.sentence));
    for (const std::string& step : verdict.next) {
        html += "<li>" + escaped(step) + "</li>";
    }
    return html + "</ul>\n</section>\n";
}

std::string warningsHtml(const Calibration& c) {
    if (c.skipped.empty() && c.verdict.doubts.empty()) {
        return {};
    }
    std::string html = "<section id=\"warnings\">\n<h2>Warnings</h2>\n<ul class=\"warnings\">\n";
    for (const Doubt& doubt : c.verdict.doubts) {
        html += fmt::format("<li{}>{}</li>\n", doubt.isFatal ? " class=\"fatal\"" : "", escaped(doubt.text));
    }
    for (const SkippedView& view : c.skipped) {
        // Of views that were set aside a warning above tells why, once for all of them.
        html += view.isSetAside ? "" : fmt::format("<li>Skipped: {}</li>\n", escaped(view.reason));
    }
    return html + "</ul>\n</section>\n";
}

std::string tile(const std::string& value, const std::string& name) {
    return fmt::format("<div><dt>{}</dt><dd>{}</dd></div>", name, value);
}

std::string notesHtml(const Calibration& c) {
    std::string html;
    const auto add = [&html](const std::string& line) {
        html += fmt::format("<p class=\"note\">{}</p>\n", escaped(line));
    };
    for (const std::string& line : qualityLines(c)) {
        add(line);
    }
    std::istringstream plate(plateText(c.plate));
    for (std::string line; std::getline(plate, line);) {
        add(line);
    }
    return html;
}

}  // namespace zelm::tool
