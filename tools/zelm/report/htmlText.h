// Pieces of HTML.
#ifndef ZELM_TOOL_HTML_TEXT_H
#define ZELM_TOOL_HTML_TEXT_H

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace zelm::tool {

// Text for elements and for attributes in either quotes: no character of it is taken for markup, and bytes that are no
// UTF-8, which file names may hold, become replacement characters.
std::string escaped(std::string_view text);

std::string base64(std::string_view bytes);

// <script type="application/json" id="..."> with the data, which a script of the page reads.
std::string jsonElement(std::string_view id, const nlohmann::ordered_json& data);

// A figure of an image or drawing with the words below it, which may hold markup.
std::string figureElement(const std::string& drawing, const std::string& caption);

// What a page is made of. Styles and scripts are names for pageFile().
struct HtmlPage {
    std::string title;
    std::string body;
    std::vector<std::string_view> styles;
    std::vector<std::string_view> scripts;
};

// The whole page, which fetches nothing: browsers are told to refuse it.
std::string htmlOf(const HtmlPage& page);

}  // namespace zelm::tool

#endif
