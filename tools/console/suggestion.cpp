#include "tools/console/suggestion.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace quill::console {

std::size_t Distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> before(b.size() + 1);
    std::vector<std::size_t> last(b.size() + 1);
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::vector<std::size_t> row(b.size() + 1, i);
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t changed = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, changed});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
                row[j] = std::min(row[j], before[j - 2] + 1);
            }
        }
        before.swap(last);
        last.swap(row);
    }
    return last[b.size()];
}

std::string Suggest(std::string_view word, const std::vector<std::string>& known) {
    constexpr std::size_t kShortest = 3;
    constexpr std::size_t kLongest = 40;
    std::string closest;
    if (word.size() >= kShortest && word.size() <= kLongest) {
        std::size_t limit = word.size() / kShortest + 1;
        for (const std::string& one : known) {
            const std::size_t distance = Distance(word, one);
            if (distance < limit) {
                limit = distance;
                closest = one;
            }
        }
    }
    return closest.empty() ? "" : "; did you mean \"" + closest + "\"?";
}

}  // namespace quill::console
