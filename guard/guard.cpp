#include "guard/guard.h"

#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdlib>
#include <new>
#include <numeric>

#include "guard/access_watch.h"
#include "guard/kept_errno.h"
#include "guard/report.h"
#include "guard/rules.h"

namespace guard {
namespace {

/// Of the same mistake without a parser, as with a stray handle; the sum counts the others.
constexpr unsigned long kMostToldWithoutParser = 8;

thread_local long own_number = 0;

long own_thread() {
    if (own_number == 0) {
        own_number = syscall(SYS_gettid);
    }
    return own_number;
}

void count_cues(WEBVTT_EVENT_T /*event*/, void* tag, void* info) {
    *static_cast<unsigned*>(tag) += static_cast<const WebvttDataInfo*>(info)->u4CueCount;
}

Line line_of(const Call& call, const Finding& finding) {
    const MistakeText& text = text_of(finding.mistake);
    Line line;
    line << text.code << " at call " << call.number << ", " << name_of(call.function);
    if (call.parser != nullptr) {
        line << ", parser " << call.parser->number;
    } else if (call.function != Function::kCreate) {
        line << ", handle ";
        line.hexadecimal(call.handle);
    }
    line << ", thread " << call.thread << ": " << text.sentence;
    if (!finding.detail.empty()) {
        line << " (" << finding.detail.c_str() << ")";
    }
    return line << ". What to do: " << text.way_out << ".";
}

Line& add_count(Line& line, unsigned long count, const char* what) {
    return line << count << " " << what << (count == 1 ? "" : "s");
}

// The host may call to the very end of the process, when the guard's objects are destroyed already.
// So its memory is never given back, and unload() leaves it fit for calls.
alignas(Guard) unsigned char storage[sizeof(Guard)];

struct Lifetime {
    Lifetime() { (new (storage) Guard)->load(); }
    Lifetime(const Lifetime&) = delete;
    Lifetime& operator=(const Lifetime&) = delete;
    ~Lifetime() { Guard::instance().unload(); }
};

const Lifetime lifetime;

}  // namespace

Guard& Guard::instance() {
    return *std::launder(reinterpret_cast<Guard*>(storage));
}

void Guard::load() {
    m_settings = read_settings();
    const std::string name = m_module.load(read_module_path());
    m_recorder.open(read_log_settings(), name, PrintedCapture::is_possible(m_module.library()));
    m_pages.open();
    AccessWatch::keep(m_pages);
    UncaughtWatch::keep();
    pthread_atfork([] { instance().before_fork(); }, [] { instance().after_fork(); },
                   [] { instance().after_fork_in_child(); });
}

void Guard::unload() {
    const bool is_in_call = m_in_progress.begin() != m_in_progress.end();
    Call unloading(Function::kUnloading);
    unloading.number = m_calls + 1;
    unloading.thread = own_thread();
    if (is_in_call) {
        const CallInProgress& other = *m_in_progress.begin();
        unloading.parser = other.parser;
        unloading.found.add(Mistake::kUnloadedInCall)
            << "call " << other.number << ", " << name_of(other.function) << ", on thread "
            << other.thread;
        tell(unloading);
    }
    for (Parser& parser : m_parsers.live()) {
        unloading.parser = &parser;
        unloading.found.add(Mistake::kNeverReleased);
        if (!is_in_call) {
            check_release(unloading, count_waiting(parser));
        }
        tell(unloading);
    }
    sum_up();
    UncaughtWatch::end();
    AccessWatch::end();
    m_pages.close();
    m_parsers.live().clear();
    PrintedCapture::end();
    m_module.unload();
}

void Guard::begin(Call& call) {
    const KeptErrno kept;
    UncaughtWatch::note_caught();
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        call.number = ++m_calls;
        call.thread = own_thread();
        call.frame = __builtin_frame_address(0);
        m_in_progress.drop_left(call.thread, call.frame);
        if (call.function != Function::kCreate) {
            find_parser(call, m_parsers);
        }
        check_overlaps(call, m_in_progress);
        check_callback(call, m_in_progress);
        check_arguments(call);
        if (call.parser != nullptr) {
            ++call.parser->calls;
            call.parser->is_released = call.function == Function::kRelease;
            call.parser_number = call.parser->number;
        }
        m_in_progress.add(call);
    }
    m_recorder.note_call(call);
    tell(call);
    if (m_settings.slow_ms != 0) {
        call.begun_ns = now_ns();
    }
}

void Guard::end(Call& call) {
    const KeptErrno kept;
    if (m_settings.slow_ms != 0) {
        check_time(call, m_settings.slow_ms,
                   static_cast<unsigned long>((now_ns() - call.begun_ns) / 1000000));
    }
    tell(call);  // now: behind the last call on a parser that was released there is no parser
    m_recorder.note_fed(call);
    const bool releases = call.function == Function::kRelease && call.parser != nullptr;
    bool is_last = false;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        follow(call);
        is_last = call.parser != nullptr && --call.parser->calls == 0 && call.parser->is_released;
        if (!is_last) {
            m_in_progress.remove(call);
        }
    }
    if (is_last) {
        release(call);
    }
    using Release = Recorder::Release;
    m_recorder.note_return(call, releases == is_last ? Release::kNone
                                 : releases          ? Release::kPutOff
                                                     : Release::kMadeUpFor);
}

void Guard::release(Call& call) {
    check_release(call, count_waiting(*call.parser));
    tell(call);
    m_module.methods().pfnRelease(call.parser->inner);
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_parsers.remove(*call.parser, call.number);
    call.parser = nullptr;
    m_in_progress.remove(call);
}

unsigned Guard::count_waiting(Parser& parser) {
    unsigned count = 0;
    if (parser.has_fed_since) {
        // Nobody else asks for them any more, so the guard may.
        m_module.methods().pfnSetEventNty(parser.inner, &count, count_cues);
        m_module.methods().pfnGetParseResult(parser.inner);
    }
    return count;
}

void Guard::adopt(Call& call, unsigned inner) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    call.parser = m_parsers.add(inner);
    if (call.parser == nullptr) {
        m_module.methods().pfnRelease(inner);
        *call.new_handle = 0;
        call.result = WEBVTT_RESULT_ERROR;
        return;
    }
    *call.new_handle = call.handle = call.parser->handle;
    call.parser_number = call.parser->number;
    ++call.parser->calls;
}

void Guard::register_callback(Call& call, const WebvttModuleMethods& module) {
    if (call.parser != nullptr && call.notify != nullptr) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        call.parser->notify = call.notify;
        call.parser->tag = call.tag;
    }
    module.pfnSetEventNty(call.inner, call.parser, call.notify != nullptr ? on_event : nullptr);
}

void Guard::on_event(WEBVTT_EVENT_T event, void* tag, void* info) {
    instance().deliver(event, *static_cast<Parser*>(tag), info);
}

void Guard::deliver(WEBVTT_EVENT_T event, Parser& parser, void* info) {
    const auto* const delivered = static_cast<const WebvttDataInfo*>(info);
    WebvttEventNotify notify = nullptr;
    void* tag = nullptr;
    unsigned long number = 0;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_cues += delivered->u4CueCount;
        if (CallInProgress* const call = m_in_progress.latest_of(own_thread())) {
            call->is_in_callback = true;
            number = call->number;
        }
        notify = parser.notify;
        tag = parser.tag;
    }
    {
        const HandedOut copy(m_pages, *delivered, number, parser.number);
        if (delivered->prCueList != nullptr) {
            AccessWatch::renew();
        }
        m_recorder.note_delivery(copy.info(), number, parser.number);
        const PrintedCapture::Pause pause;
        notify(event, tag, copy.info() != nullptr ? copy.info() : info);
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (CallInProgress* const call = m_in_progress.latest_of(own_thread())) {
        call->is_in_callback = false;
    }
}

void Guard::tell(Call& call) {
    if (call.found.empty()) {
        return;
    }
    Findings told;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        for (const Finding& finding : call.found) {
            const auto number = static_cast<std::size_t>(finding.mistake);
            const unsigned long before = m_mistakes[number]++;
            const std::uint32_t bit = 1U << number;
            const bool is_repeated = call.parser != nullptr ? (call.parser->told & bit) != 0
                                                            : before >= kMostToldWithoutParser;
            if (call.parser != nullptr) {
                call.parser->told |= bit;
            }
            if (!is_repeated) {
                told.add(finding.mistake) = finding.detail;
            }
        }
    }
    call.found = Findings();
    for (const Finding& finding : told) {
        report_mistake(text_of(finding.mistake), call.number, line_of(call, finding));
        if (m_settings.aborts) {
            std::abort();
        }
    }
}

void Guard::sum_up() {
    for (const Mistake mistake : {Mistake::kRecordChanged, Mistake::kRecordKept}) {
        m_mistakes[static_cast<std::size_t>(mistake)] = AccessWatch::found(mistake);
    }
    const unsigned long all = std::accumulate(m_mistakes.begin(), m_mistakes.end(), 0UL);
    m_recorder.note_end({m_calls, m_parsers.created(), m_cues, all});
    if (all == 0 && !m_settings.always_sums_up) {
        return;
    }
    Line line;
    add_count(line, m_calls, "call") << ", ";
    add_count(line, m_parsers.created(), "parser") << ", ";
    add_count(line, m_cues, "cue") << ", ";
    add_count(line, all, "mistake");
    const char* separator = " (";
    for (std::size_t number = 0; number < kMistakes; ++number) {
        if (m_mistakes[number] != 0) {
            line << separator << text_of(static_cast<Mistake>(number)).code << " "
                 << m_mistakes[number];
            separator = ", ";
        }
    }
    write_line(all != 0 ? line << ")" : line);
}

void Guard::before_fork() {
    m_mutex.lock();
    m_pages.mutex().lock();
    m_recorder.before_fork();
    PrintedCapture::before_fork();
}

void Guard::after_fork() {
    PrintedCapture::after_fork();
    m_recorder.after_fork();
    m_pages.mutex().unlock();
    m_mutex.unlock();
}

void Guard::after_fork_in_child() {
    const long forked = own_thread();
    own_number = 0;
    m_in_progress.keep_only(forked, own_thread());
    m_pages.open();
    PrintedCapture::after_fork_in_child();
    m_recorder.after_fork_in_child();
    m_pages.mutex().unlock();
    m_mutex.unlock();
}

}  // namespace guard
