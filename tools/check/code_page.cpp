#include "tools/check/code_page.h"

#include <algorithm>
#include <sstream>
#include <string_view>

namespace quill::check {

std::string Explain(const Code& code) {
    const std::string_view page = kCodePage;
    const std::size_t begin = page.find("\n### " + std::string(code.number) + " ");
    const std::size_t end = page.find("\n##", std::min(begin, page.size() - 1) + 1);
    if (begin == std::string_view::npos) {
        return "";
    }
    constexpr std::string_view kHeading = "\n### ";
    std::istringstream lines(std::string(page.substr(begin, end - begin).substr(kHeading.size())));
    std::string text;
    bool in_example = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.substr(0, 3) == "```") {
            in_example = !in_example;
        } else {
            text += (in_example && !line.empty() ? "    " : "") + line + "\n";
        }
    }
    return text;
}

}  // namespace quill::check
