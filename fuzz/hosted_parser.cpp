#include "fuzz/hosted_parser.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>

#include "api/entry_points.h"
#include "fuzz/check.h"
#include "support/cue_record.h"
#include "support/exact_block.h"
#include "support/failing_new.h"

namespace fuzz {
namespace {

/// A block has at most ten lines, and its timing line is one of them.
constexpr std::ptrdiff_t kMostTextLines = 9;

/// Times wrap at 2^32 seconds; the map and the video time move them by less than that again.
constexpr double kTimeLimit = 8589934592.0;

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

void check_cue(const support::CueRecord& cue) {
    FUZZ_CHECK(!cue.has_aux_text);
    FUZZ_CHECK(cue.has_text);
    FUZZ_CHECK(std::fabs(cue.start) < kTimeLimit);  // false for NaN
    FUZZ_CHECK(std::fabs(cue.end) < kTimeLimit);
    FUZZ_CHECK(cue.reserved == 0);
    FUZZ_CHECK(cue.snap_to_lines <= 1);
    FUZZ_CHECK(cue.snap_to_lines == 1 || (cue.line >= 0 && cue.line <= 100));
    FUZZ_CHECK(cue.position <= 100);
    FUZZ_CHECK(cue.text_align >= WEBVTT_TEXT_ALIGN_START &&
               cue.text_align <= WEBVTT_TEXT_ALIGN_RIGHT);
    FUZZ_CHECK(cue.vertical >= WEBVTT_VERTICAL_NONE &&
               cue.vertical <= WEBVTT_VERTICAL_GROWING_RIGHT);
    FUZZ_CHECK(cue.text.find('\r') == std::string::npos);
    FUZZ_CHECK(std::count(cue.text.begin(), cue.text.end(), '\n') <= kMostTextLines);
}

void must_not_be_called(WEBVTT_EVENT_T /*event*/, void* /*tag*/, void* /*info*/) {
    fuzz::fail("no callback is registered for a handle that is not live", __FILE__, __LINE__);
}

}  // namespace

const WebvttModuleMethods& methods() {
    return *WEBVTT_MODULE_INFO.prMethods;
}

void call_with_stray_handle(unsigned int handle) {
    support::ExactBlock chunk("WEBVTT\n\n");
    methods().pfnSetEventNty(handle, nullptr, must_not_be_called);
    methods().pfnSetVideoPTS(handle, 1);
    FUZZ_CHECK(methods().pfnParse(handle, chunk.data(), chunk.size()) == WEBVTT_RESULT_ERROR);
    methods().pfnGetParseResult(handle);
    methods().pfnRelease(handle);
}

HostedParser::HostedParser(MemoryPlan* memory) : m_memory(memory), m_handle(1) {
    const support::FailingNew failing(0, m_memory->spared, m_memory->times);
    const int result = methods().pfnCreate(&m_handle);
    note_failures(failing.failures());
    FUZZ_CHECK(result == (m_ran_out ? WEBVTT_RESULT_ERROR : WEBVTT_RESULT_OK));
    FUZZ_CHECK((m_handle == 0) == m_ran_out);
    methods().pfnSetEventNty(m_handle, this, on_event);
}

HostedParser::~HostedParser() {
    methods().pfnRelease(m_handle);
    call_with_stray_handle(m_handle);
}

void HostedParser::feed(std::string_view chunk) {
    if (m_handle == 0) {
        call_with_stray_handle(0);
        return;
    }
    if (chunk.empty()) {
        return;
    }
    m_fed += chunk.size();
    m_fed_bracket |= chunk.find('<') != std::string_view::npos;
    int result = 0;
    const Outcome outcome = parse(chunk, &result);
    if (outcome == Outcome::kResult) {
        check_result(chunk, result);
    } else if (m_ran_out) {
        m_state = State::kUnclear;
    } else {
        FUZZ_CHECK(outcome == Outcome::kOutOfRange);
        FUZZ_CHECK(m_state != State::kRejected);
        FUZZ_CHECK(m_state != State::kNew || is_accepted(chunk));
        m_state = m_state == State::kNew ? State::kHeader : m_state;
    }
}

HostedParser::Outcome HostedParser::parse(std::string_view chunk, int* result) {
    support::ExactBlock block(chunk);
    const support::FailingNew failing(0, m_memory->spared, m_memory->times);
    Outcome outcome = Outcome::kResult;
    try {
        *result = methods().pfnParse(m_handle, block.data(), block.size());
    } catch (const std::out_of_range& error) {
        outcome = Outcome::kOutOfRange;
        const std::string_view text = error.what();
        FUZZ_CHECK(text == "basic_string::at" || text == "basic_string::substr");
    } catch (const std::bad_alloc&) {
        outcome = Outcome::kBadAlloc;
        FUZZ_CHECK(failing.failures() != 0);
    }
    note_failures(failing.failures());
    return outcome;
}

void HostedParser::note_failures(unsigned failures) {
    m_ran_out = failures != 0;
    if (m_memory->times != MemoryPlan::kForEver) {
        m_memory->times -= failures;
    }
}

void HostedParser::check_result(std::string_view chunk, int result) {
    FUZZ_CHECK(result >= WEBVTT_RESULT_OK && result <= WEBVTT_RESULT_ERROR);
    FUZZ_CHECK(result == WEBVTT_RESULT_ERROR || !m_ran_out);  // no failure goes unreported
    if (m_state == State::kNew && !is_accepted(chunk)) {
        FUZZ_CHECK(result == WEBVTT_RESULT_ERROR);
        m_state = State::kRejected;
        return;
    }
    switch (m_state) {
        case State::kNew:
        case State::kHeader:
            m_state = result == WEBVTT_RESULT_HEADER ? State::kHeader : State::kCues;
            break;
        case State::kCues:
            FUZZ_CHECK(result != WEBVTT_RESULT_HEADER);
            break;
        case State::kRejected:
            FUZZ_CHECK(result == WEBVTT_RESULT_OK);
            break;
        case State::kUnclear:
            return;
    }
    // Besides memory, only a start tag that is not known makes an error of an accepted track.
    FUZZ_CHECK(result != WEBVTT_RESULT_ERROR || m_ran_out || m_fed_bracket);
}

void HostedParser::feed_nothing() {
    const int expected = m_handle != 0 ? WEBVTT_RESULT_HEADER : WEBVTT_RESULT_ERROR;
    char byte = '\n';
    FUZZ_CHECK(methods().pfnParse(m_handle, nullptr, 1) == expected);
    FUZZ_CHECK(methods().pfnParse(m_handle, &byte, 0) == expected);
}

void HostedParser::deliver() {
    const unsigned expected = m_handle != 0 ? 1 : 0;
    for (const bool is_second : {false, true}) {
        m_deliveries = 0;
        m_last_count = 0;
        methods().pfnGetParseResult(m_handle);
        FUZZ_CHECK(m_deliveries == expected);
        FUZZ_CHECK(!is_second || m_last_count == 0);
    }
}

void HostedParser::on_event(WEBVTT_EVENT_T event, void* tag, void* info) {
    FUZZ_CHECK(event == WEBVTT_EVENT_PARSE_RESULT);
    FUZZ_CHECK(info != nullptr);
    static_cast<HostedParser*>(tag)->check_delivery(info);
}

void HostedParser::check_delivery(const void* info) {
    ++m_deliveries;
    const support::Delivery delivery(info);
    FUZZ_CHECK(delivery.count == delivery.cues.size());
    FUZZ_CHECK(delivery.reserved == 0);
    FUZZ_CHECK(delivery.cues.empty() || (m_state != State::kNew && m_state != State::kRejected));
    for (const support::CueRecord& cue : delivery.cues) {
        check_cue(cue);
        m_delivered += cue.text.size();
    }
    // Markup and references only ever get shorter.
    FUZZ_CHECK(m_delivered <= m_fed);
    m_last_count = delivery.cues.size();
}

void HostedParser::set_video_time(unsigned long ticks) {
    methods().pfnSetVideoPTS(m_handle, ticks);
}

void HostedParser::register_nothing() {
    methods().pfnSetEventNty(m_handle, nullptr, nullptr);
}

}  // namespace fuzz
