// Every allocation of a run fails, once and for ever: in create, registration, parse, result and
// release, over all sample tracks, whole and in small chunks.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "host/support/tracks.h"
#include "support/module.h"
#include "support/notation.h"
#include "support/parser.h"
#include "support/stdout_capture.h"

namespace support::host {
namespace {

using Lines = std::vector<std::string>;
using Chunks = std::vector<std::string_view>;

/// What came of one run.
struct Outcome {
    int create_result = 0;
    Handle handle = 0;
    std::vector<Ending> endings;
    Lines cues;
    std::string last_text;  // of the cue that is fed when memory is there again
    std::string complaint;

    bool has(Ending ending) const {
        return std::find(endings.begin(), endings.end(), ending) != endings.end();
    }
};

/// Whether all lines of a part occur in the whole, in its order.
bool is_subsequence(const Lines& part, const Lines& whole) {
    auto at = whole.begin();
    for (const std::string& line : part) {
        at = std::find(at, whole.end(), line);
        if (at == whole.end()) {
            return false;
        }
        ++at;
    }
    return true;
}

/// Plays chunks again and again, and makes another allocation fail each time. The first thing that
/// goes wrong ends it.
class Series {
  public:
    /// @param is_whole  the track comes in one chunk, so no cue can be torn by what is lost
    /// @param may_throw the track throws with all memory there
    Series(const Methods& methods, Chunks chunks, bool is_whole, bool may_throw)
        : m_methods(methods),
          m_chunks(std::move(chunks)),
          m_is_whole(is_whole),
          m_may_throw(may_throw) {}

    /// What went wrong, and where; empty when nothing did.
    std::string run() {
        const Quiet quiet;
        m_memory.fail_nothing();
        m_untouched = play();
        const unsigned wanted = m_allocations;
        for (const bool for_ever : {false, true}) {
            unsigned number = 0;
            do {
                ++number;
                for_ever ? m_memory.fail_from(number) : m_memory.fail_once(number);
                const std::string complaint = complaint_about(play_beside_another());
                if (!complaint.empty()) {
                    return complaint +
                           (for_ever ? ", all allocations failing from "
                                     : ", one allocation failing: ") +
                           std::to_string(number);
                }
            } while (m_failures != 0);
            if (number != wanted + 1) {
                return "the untouched run asks for another number of blocks";
            }
        }
        return "";
    }

    unsigned runs() const { return m_runs; }
    /// Runs in which memory that ran out was told to the host.
    unsigned reported() const { return m_reported; }

  private:
    /// Plays the chunks under a plan, and then a cue with all memory there.
    Outcome play() {
        Outcome outcome;
        Parser parser(m_methods, m_memory);
        outcome.create_result = parser.create_result();
        outcome.handle = parser.handle();
        if (outcome.create_result == 0) {
            for (const std::string_view chunk : m_chunks) {
                outcome.endings.push_back(parser.feed(chunk));
                for (const CueRecord& cue : parser.take()) {
                    outcome.cues.push_back(describe(cue));
                }
            }
        }
        m_allocations = m_memory.allocations();
        m_failures = m_memory.failures();
        m_memory.fail_nothing();
        if (outcome.create_result == 0) {
            outcome.last_text = play_on(parser);
        }
        parser.release();
        outcome.complaint = parser.complaint();
        return outcome;
    }

    /// Feeds on as a player would. The first line serves a parser that has not seen one, the blank
    /// lines end a header section or a block that was left open, and may take an error with them.
    static std::string play_on(Parser& parser) {
        std::string last_text;
        parser.feed("WEBVTT\n");
        parser.feed("\n\n\n");
        parser.feed("00:00:01.000 --> 00:00:02.000\nstill here\n\n");
        for (const CueRecord& cue : parser.take()) {
            last_text = cue.text;
        }
        return last_text;
    }

    /// Plays beside another parser, which is fed before and after and must not notice.
    Outcome play_beside_another() {
        Memory memory;
        Parser other(m_methods, memory);
        other.feed("WEBVTT\n\n00:01.000 --> 00:02.000\nbe");
        Outcome outcome = play();
        other.feed("side\n\n");
        const std::vector<CueRecord> cues = other.take();
        other.release();
        if (cues.size() != 1 || cues[0].text != "beside\n" || memory.live_blocks() != 0) {
            outcome.complaint += "the parser beside it was disturbed";
        }
        return outcome;
    }

    std::string complaint_about(const Outcome& outcome) {
        ++m_runs;
        if (m_memory.live_blocks() != 0) {
            return std::to_string(m_memory.live_blocks()) + " blocks leaked";
        }
        if (!outcome.complaint.empty()) {
            return outcome.complaint;
        }
        if (outcome.create_result != 0) {
            ++m_reported;
            const bool good = outcome.create_result == 2 && outcome.handle == 0;
            return good ? "" : "Create's result or handle is wrong";
        }
        if (outcome.has(Ending::kUndocumented) ||
            (outcome.has(Ending::kOutOfRange) && !m_may_throw)) {
            return "a chunk ended in an undocumented way";
        }
        if (outcome.last_text != m_untouched.last_text && !lost_first_line(outcome)) {
            return "the parser did not go on";
        }
        if (m_failures == 0) {
            const bool same =
                outcome.cues == m_untouched.cues && outcome.endings == m_untouched.endings;
            return same ? "" : "no allocation failed, and yet the run differs";
        }
        m_reported += outcome.has(Ending::kError) || outcome.has(Ending::kBadAlloc) ? 1 : 0;
        const bool torn = m_is_whole && !is_subsequence(outcome.cues, m_untouched.cues);
        return torn ? "a cue differs from that of the untouched run" : "";
    }

    /// Whether another chunk was taken for the first line, because that one threw: then a good
    /// track is refused, or a refused one is not.
    bool lost_first_line(const Outcome& outcome) const {
        const bool refused = m_untouched.last_text.empty();
        return outcome.endings.front() == Ending::kBadAlloc && (m_chunks.size() > 1 || refused);
    }

    const Methods m_methods;
    const Chunks m_chunks;
    const bool m_is_whole;
    const bool m_may_throw;
    Memory m_memory;
    Outcome m_untouched;
    unsigned m_allocations = 0;  // of the last run, before all memory was there again
    unsigned m_failures = 0;
    unsigned m_runs = 0;
    unsigned m_reported = 0;
};

class AllocationFailure : public testing::TestWithParam<std::string> {
  protected:
    void fail_everywhere(const Chunks& chunks, bool is_whole) {
        Series series(m_module.methods(), chunks, is_whole, m_may_throw);
        ASSERT_EQ(series.run(), "");
        // Each kind of failure strikes at least at Create. Nobody may hide that memory ran out.
        EXPECT_GE(series.reported(), 2u);
        EXPECT_GE(series.runs(), series.reported() + 2);
        m_runs += series.runs();
    }

    void fail_everywhere_in_chunks(std::size_t size) {
        fail_everywhere(chunks_of(m_track, size, first_line_size(m_track)), false);
    }

    void TearDown() override { RecordProperty("runs", static_cast<int>(m_runs)); }

    const Module m_module;
    const std::string m_track = sample(GetParam());
    const bool m_may_throw = GetParam().rfind("damaged-", 0) == 0;
    unsigned m_runs = 0;
};

TEST_P(AllocationFailure, InOneChunk) {
    fail_everywhere({m_track}, true);
}

TEST_P(AllocationFailure, InChunksOfSevenBytes) {
    fail_everywhere_in_chunks(7);
}

TEST_P(AllocationFailure, ByteByByte) {
    fail_everywhere_in_chunks(1);
}

std::string test_name(const testing::TestParamInfo<std::string>& info) {
    std::string name = info.param;
    const auto is_no_letter = [](char c) { return c == '.' || c == '-'; };
    std::replace_if(name.begin(), name.end(), is_no_letter, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Of, AllocationFailure, testing::ValuesIn(sample_names()), test_name);

}  // namespace
}  // namespace support::host
