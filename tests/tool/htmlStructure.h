// A page taken apart as far as tests need it: elements in their order, and whether they close one another.
#ifndef ZELM_TEST_HTML_STRUCTURE_H
#define ZELM_TEST_HTML_STRUCTURE_H

#include <map>
#include <set>
#include <string>
#include <vector>

namespace zelmtest {

struct HtmlElement {
    std::string name;
    std::map<std::string, std::string> attributes;
    std::size_t begin = 0;  // of what it holds, in the page
};

struct HtmlStructure {
    std::vector<HtmlElement> elements;
    std::string text;   // between tags, but for styles and scripts
    std::string fault;  // the first that was found: an element that is not closed, or closed by another one's end
};

// The attributes of a tag whose name ends at `at`; moves on to its `>`. Values are all in double quotes.
inline std::map<std::string, std::string> htmlAttributes(const std::string& page, std::size_t& at) {
    std::map<std::string, std::string> attributes;
    while (at < page.size() && page[at] != '>') {
        const std::size_t end = page.find_first_of(" =/>\n", at);
        const std::string name = page.substr(at, end - at);
        at = end;
        if (at < page.size() && page[at] == '=' && page[at + 1] == '"') {
            const std::size_t close = page.find('"', at + 2);
            attributes[name] = page.substr(at + 2, close - at - 2);
            at = close + 1;
        } else if (!name.empty()) {
            attributes[name] = "";
        }
        at += at < page.size() && page[at] != '>' ? 1U : 0U;
    }
    return attributes;
}

inline HtmlStructure htmlStructure(const std::string& page) {
    const std::set<std::string> empty{"meta", "link", "input", "img", "br"};
    HtmlStructure found;
    std::vector<std::string> open;
    std::size_t at = page.find("<html");
    while (at < page.size()) {
        const std::size_t tag = page.find('<', at);
        found.text += page.substr(at, tag - at);
        if (tag == std::string::npos) {
            break;
        }
        const bool isEnd = page[tag + 1] == '/';
        const std::size_t start = tag + (isEnd ? 2 : 1);
        at = page.find_first_of(" />\n", start);
        const std::string name = page.substr(start, at - start);
        HtmlElement element{name, htmlAttributes(page, at), 0};
        const bool closesItself = page[at - 1] == '/';
        element.begin = ++at;
        if (isEnd) {
            if (open.empty() || open.back() != name) {
                found.fault = found.fault.empty() ? "</" + name + "> ends " + (open.empty() ? "nothing" : open.back())
                                                  : found.fault;
                return found;
            }
            open.pop_back();
            continue;
        }
        found.elements.push_back(element);
        if (name == "script" || name == "style") {
            at = page.find("</" + name + ">", at) + name.size() + 3;
        } else if (!closesItself && empty.count(name) == 0) {
            open.push_back(name);
        }
    }
    found.fault = open.empty() ? "" : "<" + open.back() + "> is not closed";
    return found;
}

}  // namespace zelmtest

#endif
