#include "tools/check/order_remarks.h"

#include <cstring>
#include <string>

#include "tools/console/cue_time.h"

namespace quill::check {
namespace {

std::uint64_t Identity(const CueCopy& cue) {
    constexpr std::uint64_t kPrime = 0x100000001B3;
    std::uint64_t hash = Fingerprint(cue);
    for (const double time : {cue.start, cue.end}) {
        std::uint64_t bits = 0;
        std::memcpy(&bits, &time, sizeof(bits));
        hash = (hash ^ bits) * kPrime;
        hash ^= hash >> 29;
    }
    return hash;
}

}  // namespace

bool OrderRemarks::IsRepeated(const CueCopy& cue, std::uint32_t line, Findings& findings) {
    const auto [seen, is_new] = lines_.emplace(Identity(cue), line);
    if (!is_new) {
        findings.push_back(
            Finding(line, "repeated", "the same cue as on line " + std::to_string(seen->second))
                .Because(seen->second));
    }
    return !is_new;
}

void OrderRemarks::Examine(const CueCopy& cue, std::uint32_t line, Findings& findings) {
    constexpr double kHour = 3600;
    if (cue.end - cue.start >= kHour) {
        findings.emplace_back(line, "long-cue",
                              "the cue lasts " + console::FormatTime(cue.end - cue.start, '.'));
    }
    const Seen now = {cue.start, cue.end, line, cue.line, cue.position};
    const bool same_place = longest_.place == now.place && longest_.position == now.position;
    if (IsRepeated(cue, line, findings)) {
        return;
    }
    if (last_.line != 0 && cue.start < last_.start) {
        findings.push_back(
            Finding(line, "out-of-order",
                    "the cue starts before the cue above it, on line " + std::to_string(last_.line))
                .Because(last_.line));
    } else if (longest_.line != 0 && same_place && cue.start < longest_.end) {
        findings.push_back(Finding(line, "overlap",
                                   "the cue starts at " + console::FormatTime(cue.start, '.') +
                                       ", and the cue on line " + std::to_string(longest_.line) +
                                       " ends at " + console::FormatTime(longest_.end, '.'))
                               .Because(longest_.line));
    }
    last_ = now;
    if (longest_.line == 0 || now.end >= longest_.end) {
        longest_ = now;
    }
}

}  // namespace quill::check
