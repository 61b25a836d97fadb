#include "fuzz/hosted_parser.h"

#include <cstring>
#include <string>
#include <vector>

#include "api/entry_points.h"
#include "fuzz/check.h"
#include "support/exact_block.h"

namespace fuzz {
namespace {

/// Whether a track that begins with this chunk is a WebVTT track. A first line counts up to its
/// first zero byte, which hides its line end.
bool is_accepted(std::string_view first_chunk) {
    const std::size_t end = first_chunk.find_first_of("\r\n");
    if (end == std::string_view::npos) {
        return false;
    }
    std::string line(first_chunk.substr(0, end));
    line = line.find('\0') == std::string::npos ? line + '\n' : line.substr(0, line.find('\0'));
    // The last two are what the table of signatures makes of a byte order mark.
    for (const char* signature :
         {"WEBVTT\n", "WEBVTT ", "WEBVTT\t", "\xEF\xBB\xBFWEBVTT \xEF\xBB\xBFWEBVTT\tWEBVTT\n",
          "\xEF\xBB\xBFWEBVTT\tWEBVTT\n"}) {
        if (line.compare(0, std::strlen(signature), signature) == 0) {
            return true;
        }
    }
    return false;
}

void must_not_be_called(int /*event*/, void* /*tag*/, void* /*info*/) {
    fuzz::fail("no callback is registered for a handle that is not live", __FILE__, __LINE__);
}

}  // namespace

const support::Methods& methods() {
    static const support::Methods kMethods = support::methods_at(WEBVTT_MODULE_INFO.prMethods);
    return kMethods;
}

void call_with_stray_handle(support::Handle handle) {
    support::ExactBlock chunk("WEBVTT\n\n");
    methods().set_callback(handle, nullptr, must_not_be_called);
    methods().set_video_time(handle, 1);
    FUZZ_CHECK(methods().parse(handle, chunk.data(), chunk.size()) == WEBVTT_RESULT_ERROR);
    methods().get_result(handle);
    methods().release(handle);
}

HostedParser::HostedParser(Budget& budget)
    : m_budget(with_plan(budget)), m_parser(methods(), budget.memory) {
    end_plan();
    FUZZ_CHECK(m_parser.create_result() == (m_ran_out ? WEBVTT_RESULT_ERROR : WEBVTT_RESULT_OK));
    FUZZ_CHECK((handle() == 0) == m_ran_out);
}

HostedParser::~HostedParser() {
    m_parser.release();
    call_with_stray_handle(handle());
}

/// Until end_plan() allocations fail as planned.
Budget& HostedParser::with_plan(Budget& budget) {
    const unsigned last =
        budget.times == Budget::kForEver ? Budget::kForEver : budget.spared + budget.times;
    budget.memory.fail(budget.spared + 1, last);
    return budget;
}

void HostedParser::end_plan() {
    const unsigned failures = m_budget.memory.failures();
    m_budget.memory.fail_nothing();
    m_ran_out = failures != 0;
    if (m_budget.times != Budget::kForEver) {
        m_budget.times -= failures;
    }
}

void HostedParser::feed(std::string_view chunk) {
    if (handle() == 0) {
        call_with_stray_handle(0);
        return;
    }
    if (chunk.empty()) {
        return;
    }
    m_fed += chunk.size();
    m_fed_bracket |= chunk.find('<') != std::string_view::npos;
    with_plan(m_budget);
    const support::Ending ending = m_parser.feed(chunk);
    end_plan();
    FUZZ_CHECK(ending != support::Ending::kUndocumented);
    if (ending <= support::Ending::kError) {
        check_result(chunk, ending);
    } else if (m_ran_out) {
        m_state = State::kUnclear;
    } else {
        FUZZ_CHECK(ending == support::Ending::kOutOfRange);
        FUZZ_CHECK(m_state != State::kRejected);
        FUZZ_CHECK(m_state != State::kNew || is_accepted(chunk));
        m_state = m_state == State::kNew ? State::kHeader : m_state;
    }
}

void HostedParser::check_result(std::string_view chunk, support::Ending result) {
    using support::Ending;
    // No failure goes unreported, but one: what fails for several lines is tried again for a single
    // one, which may need no memory, and nothing is lost.
    const bool is_made_good = chunk.find_first_of("\r\n") != chunk.find_last_of("\r\n");
    FUZZ_CHECK(result == Ending::kError || !m_ran_out || is_made_good);
    if (m_state == State::kNew && !is_accepted(chunk)) {
        FUZZ_CHECK(result == Ending::kError);
        m_state = State::kRejected;
        return;
    }
    switch (m_state) {
        case State::kNew:
        case State::kHeader:
            m_state = result == Ending::kHeader ? State::kHeader : State::kCues;
            break;
        case State::kCues:
            FUZZ_CHECK(result != Ending::kHeader);
            break;
        case State::kRejected:
            FUZZ_CHECK(result == Ending::kOk);
            break;
        case State::kUnclear:
            return;
    }
    // Besides memory, only a start tag that is not known makes an error of an accepted track.
    FUZZ_CHECK(result != Ending::kError || m_ran_out || m_fed_bracket);
}

void HostedParser::feed_nothing() {
    const int expected = handle() != 0 ? WEBVTT_RESULT_HEADER : WEBVTT_RESULT_ERROR;
    char byte = '\n';
    FUZZ_CHECK(methods().parse(handle(), nullptr, 1) == expected);
    FUZZ_CHECK(methods().parse(handle(), &byte, 0) == expected);
}

void HostedParser::deliver() {
    if (handle() == 0) {
        call_with_stray_handle(0);
        return;
    }
    const std::vector<support::CueRecord> cues = m_parser.take();
    FUZZ_CHECK(m_parser.take().empty());
    FUZZ_CHECK(m_parser.complaint().empty());
    FUZZ_CHECK(cues.empty() || (m_state != State::kNew && m_state != State::kRejected));
    for (const support::CueRecord& cue : cues) {
        m_delivered += cue.text.size();
    }
    // Markup and references only ever get shorter.
    FUZZ_CHECK(m_delivered <= m_fed);
}

void HostedParser::set_video_time(unsigned long ticks) {
    methods().set_video_time(handle(), ticks);
}

void HostedParser::register_nothing() {
    methods().set_callback(handle(), nullptr, nullptr);
}

}  // namespace fuzz
