#include "guard/recorder.h"

#include <cxxabi.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <exception>
#include <new>
#include <type_traits>

#include "guard/hidden_output.h"
#include "guard/hidden_text.h"
#include "guard/hidden_track.h"
#include "guard/kept_errno.h"
#include "guard/parser_table.h"
#include "guard/report.h"
#include "support/session_log.h"

namespace guard {
namespace {

namespace session_log = support::session_log;
namespace field = session_log::field;

std::atomic<unsigned> threads{0};
thread_local unsigned own_number = 0;

/// Threads are counted as they appear.
unsigned own_thread() {
    if (own_number == 0) {
        own_number = ++threads;
    }
    return own_number;
}

/// In UTC, with milliseconds.
Text<32> time_of_day() {
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    tm parts = {};
    gmtime_r(&now.tv_sec, &parts);
    Text<32> text;
    const auto two = [&text](int number) -> Text<32>& {
        return text << (number < 10 ? "0" : "") << static_cast<long>(number);
    };
    text << static_cast<long>(parts.tm_year) + 1900 << "-";
    two(parts.tm_mon + 1) << "-";
    two(parts.tm_mday) << "T";
    two(parts.tm_hour) << ":";
    two(parts.tm_min) << ":";
    two(parts.tm_sec) << ".";
    const long milliseconds = now.tv_nsec / 1000000;
    text << (milliseconds < 10 ? "00" : milliseconds < 100 ? "0" : "") << milliseconds << "Z";
    return text;
}

void add_exception(LogLine& line) {
    line.open(field::kException);
    const std::type_info* const type = abi::__cxa_current_exception_type();
    if (type != nullptr) {
        char* const name = abi::__cxa_demangle(type->name(), nullptr, nullptr, nullptr);
        line.add(field::kType, name != nullptr ? name : type->name());
        std::free(name);
    }
    try {
        throw;
    } catch (const std::exception& exception) {
        line.add(field::kWhat, exception.what());
    } catch (...) {
    }
    line.close();
}

/// Null when memory ran out.
TrackHider* hider_of(Parser& parser) {
    static_assert(std::is_trivially_destructible_v<TrackHider>);
    if (parser.hider == nullptr) {
        if (void* const memory = std::malloc(sizeof(TrackHider))) {
            parser.hider.reset(new (memory) TrackHider);
        }
    }
    return parser.hider.get();
}

}  // namespace

void Recorder::open(const LogSettings& settings, const std::string& module, bool captures) {
    if (settings.file.empty()) {
        return;
    }
    m_started_ns = now_ns();
    m_captures = captures;
    m_hides_text = settings.hides_text;
    m_file.open(settings.file, settings.most);
    LogLine line;
    const std::string_view name = session_log::kName;
    line.add(field::kLog, name)
        .add(field::kVersion, session_log::kVersion)
        .add(field::kGuard, QUILLCAPTION_VERSION)
        .add(field::kModule, module)
        .add(field::kText, m_hides_text ? session_log::kHidden : session_log::kShown)
        .add(field::kStarted, time_of_day().c_str());
    m_file.write(line.end());
    report_to(&m_file);
}

unsigned long long Recorder::microseconds() const {
    return static_cast<unsigned long long>((now_ns() - m_started_ns) / 1000);
}

void Recorder::note_call(const Call& call) {
    if (!is_recording()) {
        return;
    }
    const KeptErrno kept;
    const auto verb = static_cast<std::size_t>(call.function);
    LogLine line;
    line.add(field::kCall, call.number)
        .add(field::kMicroseconds, microseconds())
        .add(field::kThread, own_thread())
        .add(field::kDo, session_log::kVerbs[verb]);
    if (call.function != Function::kCreate) {
        line.add(field::kHandle, call.handle);
    } else if (call.new_handle == nullptr) {
        line.add(field::kPointer, false);
    }
    if (call.parser != nullptr) {
        line.add(field::kParser, call.parser_number);
    }
    if (call.function == Function::kParse) {
        add_chunk(call, line);
    } else if (call.function == Function::kSetEventNty && call.notify == nullptr) {
        line.add(field::kCallback, false);
    } else if (call.function == Function::kSetVideoPts) {
        line.add(field::kTicks, call.ticks);
    }
    m_file.write(line.end());
}

void Recorder::add_chunk(const Call& call, LogLine& line) {
    // Without a parser the module looks at nothing, so the chunk may not be there.
    if (call.parser == nullptr || call.data == nullptr) {
        line.add_null(field::kBytes).add(field::kLength, call.size);
        return;
    }
    const std::string_view chunk(static_cast<const char*>(call.data), call.size);
    if (!m_hides_text) {
        line.add(field::kBytes, chunk);
        return;
    }
    Bytes hidden;
    hidden << chunk;
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (TrackHider* const hider = hider_of(*call.parser)) {
        hider->hide(hidden.data(), hidden.size());
        line.add(field::kBytes, hidden.view());
    } else {
        line.add_null(field::kBytes).add(field::kLength, call.size);
    }
}

void Recorder::note_delivery(const WebvttDataInfo* info, unsigned long call, unsigned long parser) {
    if (!is_recording()) {
        return;
    }
    const KeptErrno kept;
    LogLine line;
    line.add(field::kDelivery, ++m_deliveries)
        .add(field::kCall, call)
        .add(field::kMicroseconds, microseconds())
        .add(field::kParser, parser)
        .open_list(field::kCues);
    unsigned long cues = 0;
    for (const WebvttCueNode* cue = info != nullptr ? info->prCueList : nullptr; cue != nullptr;
         cue = cue->prNext) {
        add_cue(*cue, line.open_item());
        line.close();
        ++cues;
    }
    line.close_list();
    // The list says it all, unless the module contradicts it.
    if (info != nullptr && info->u4CueCount != cues) {
        line.add("u4CueCount", info->u4CueCount);
    }
    if (info != nullptr && info->u4Reserved != 0) {
        line.add("u4Reserved", info->u4Reserved);
    }
    m_file.write(line.end());
}

void Recorder::add_cue(const WebvttCueNode& cue, LogLine& line) {
    if (cue.pcAuxText != nullptr) {
        add_text("pcAuxText", cue.pcAuxText, line);
    }
    line.add("dStartTime", cue.dStartTime).add("dEndTime", cue.dEndTime);
    add_text("pcText", cue.pcText, line);
    line.add("i4Line", cue.i4Line)
        .add("fgReserved", static_cast<unsigned>(cue.fgReserved))
        .add("fgSnapToLines", static_cast<unsigned>(cue.fgSnapToLines))
        .add("u1Position", static_cast<unsigned>(cue.u1Position))
        .add("u1Size", static_cast<unsigned>(cue.u1Size))
        .add("eTextAlign", cue.eTextAlign)
        .add("eVertical", cue.eVertical);
}

void Recorder::add_text(const char* name, const char* text, LogLine& line) {
    if (text == nullptr) {
        line.add_null(name);
    } else if (!m_hides_text) {
        line.add(name, text);
    } else {
        Bytes hidden;
        TextHider hider;
        for (const char* byte = text; *byte != '\0'; ++byte) {
            hidden << hider.hide(*byte);
        }
        line.add(name, hidden.view());
    }
}

void Recorder::note_fed(Call& call) {
    if (!m_hides_text || !is_recording() || call.function != Function::kParse ||
        call.parser == nullptr || call.data == nullptr) {
        return;
    }
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (TrackHider* const hider = hider_of(*call.parser)) {
            hider->end_chunk(call.has_thrown || call.result == WEBVTT_RESULT_ERROR,
                             call.printed.view());
        }
    }
    hide_printed(call.printed.data(), call.printed.size());
}

void Recorder::note_return(const Call& call, Release release) {
    if (!is_recording()) {
        return;
    }
    const KeptErrno kept;
    LogLine line;
    line.add(field::kReturn, call.number).add(field::kMicroseconds, microseconds());
    if (call.has_thrown) {
        add_exception(line);
    } else if (call.function == Function::kCreate || call.function == Function::kParse) {
        line.add(field::kResult, call.result);
    }
    if (call.function == Function::kCreate && call.parser_number != 0) {
        line.add(field::kHandle, call.handle).add(field::kParser, call.parser_number);
    }
    if (m_captures) {
        line.add(field::kPrinted, call.printed.view());
    }
    if (!call.is_passed_on || release == Release::kPutOff) {
        line.add(field::kPassed, false);
    }
    if (release == Release::kMadeUpFor) {
        line.add(field::kReleased, true);
    }
    m_file.write(line.end());
}

void Recorder::note_end(const Sum& sum) {
    if (is_recording()) {
        LogLine line;
        line.open(field::kEnd)
            .add(field::kCalls, sum.calls)
            .add(field::kParsers, sum.parsers)
            .add(field::kCues, sum.cues)
            .add(field::kMistakes, sum.mistakes)
            .close();
        m_file.write(line.end());
    }
    report_to(nullptr);
    m_file.close();
}

void Recorder::after_fork_in_child() {
    report_to(nullptr);
    m_file.leave();
    after_fork();
}

}  // namespace guard
