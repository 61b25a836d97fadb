// The mistakes of hosts: their codes, and what is said of them.
#pragma once

#include <array>
#include <cstddef>

#include "guard/text.h"

namespace guard {

/// In the order of their codes, which begin with H101 and never change.
enum class Mistake : unsigned char {
    kNoCallback,
    kUnknownHandle,
    kReleasedHandle,
    kGivenAgain,
    kReleaseInCallback,
    kParseInCallback,
    kResultInCallback,
    kOverlapOnParser,
    kOverlapWithLife,
    kNoChunk,
    kCutFirstLine,
    kFedAfterRejection,
    kNeverTaken,
    kCuesWaiting,
    kUnfinishedBlock,
    kVideoTimeLate,
    kVideoTimeWrapped,
    kNeverReleased,
    kUnloadedInCall,
    kUncaughtException,
    kSlowCall,
    kRecordChanged,
    kRecordKept,
};

constexpr std::size_t kMistakes = 23;

struct MistakeText {
    const char* code;
    const char* sentence;  ///< what is wrong, without a full stop: details may follow
    const char* way_out;   ///< what to do
};

const MistakeText& text_of(Mistake mistake);

/// A mistake that was found in a call.
struct Finding {
    Mistake mistake;
    Detail detail;
};

/// Those of one call.
class Findings {
  public:
    /// Adds one, and gives its detail to be filled in. More than there is room for replace the
    /// last.
    Detail& add(Mistake mistake) {
        if (m_count < m_found.size()) {
            ++m_count;
        }
        Finding& finding = m_found[m_count - 1];
        finding = {mistake, Detail()};
        return finding.detail;
    }
    bool empty() const { return m_count == 0; }
    const Finding* begin() const { return m_found.data(); }
    const Finding* end() const { return m_found.data() + m_count; }

  private:
    std::array<Finding, 4> m_found;
    std::size_t m_count = 0;
};

}  // namespace guard
