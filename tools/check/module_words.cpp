#include "tools/check/module_words.h"

#include <algorithm>
#include <cstddef>

namespace quill::check {

std::optional<std::string_view> Between(std::string_view printed, std::string_view before,
                                        std::string_view behind) {
    const std::size_t at = printed.find(before);
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view rest = printed.substr(at + before.size());
    return rest.substr(0, std::min(rest.find(behind), rest.size()));
}

}  // namespace quill::check
