#include "htmlText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <nlohmann/json.hpp>

#include "console.h"
#include "pageFiles.h"

namespace zelm::tool {
namespace {

using Json = nlohmann::ordered_json;

// As a browser may not guess: bytes that are no UTF-8 are replaced.
std::string validUtf8(std::string_view text) {
    return Json::parse(Json(text).dump(-1, ' ', false, Json::error_handler_t::replace)).get<std::string>();
}

}  // namespace

std::string escaped(std::string_view text) {
    std::string html;
    for (const char c : oneLine(validUtf8(text))) {
        switch (c) {
            case '<':
                html += "&lt;";
                break;
            case '>':
                html += "&gt;";
                break;
            case '&':
                html += "&amp;";
                break;
            case '"':
                html += "&quot;";
                break;
            case '\'':
                html += "&#39;";
                break;
            default:
                html += c;
        }
    }
    return html;
}

std::string base64(std::string_view bytes) {
    constexpr const char* kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t group = 0;
        for (std::size_t j = 0; j < 3; ++j) {
            group = group << 8U | (i + j < bytes.size() ? static_cast<unsigned char>(bytes[i + j]) : 0U);
        }
        for (std::size_t j = 0; j < 4; ++j) {
            text += i + j <= bytes.size() ? kDigits[group >> (18U - 6U * j) & 63U] : '=';
        }
    }
    return text;
}

std::string jsonElement(std::string_view id, const Json& data) {
    const std::string json = data.dump(-1, ' ', false, Json::error_handler_t::replace);
    std::string safe;  // no string in it may end the element
    safe.reserve(json.size());
    for (const char c : json) {
        safe += c == '<' ? "\\u003c" : std::string(1, c);
    }
    return fmt::format("<script type=\"application/json\" id=\"{}\">{}</script>\n", id, safe);
}

std::string figureElement(const std::string& drawing, const std::string& caption) {
    return fmt::format("<figure>{}<figcaption>{}</figcaption></figure>\n", drawing, caption);
}

std::string htmlOf(const HtmlPage& page) {
    std::string html =
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; img-src data: blob:; "
        "style-src 'unsafe-inline'; script-src 'unsafe-inline'\">\n"
        "<meta name=\"generator\" content=\"zelm " ZELM_VERSION "\">\n<link rel=\"icon\" href=\"data:,\">\n";
    html += fmt::format("<title>{}</title>\n<style>\n", escaped(page.title));
    for (const std::string_view style : page.styles) {
        html += pageFile(style);
    }
    html += "</style>\n</head>\n<body>\n" + page.body;
    for (const std::string_view script : page.scripts) {
        html += "<script>\n";
        html += pageFile(script);
        html += "</script>\n";
    }
    return html + "</body>\n</html>\n";
}

}  // namespace zelm::tool
