// The guard itself: what stands between the host's calls and the module.
#pragma once

#include <array>
#include <mutex>

#include "guard/calls_in_progress.h"
#include "guard/delivery_pages.h"
#include "guard/loaded_module.h"
#include "guard/parser_table.h"
#include "guard/printed_capture.h"
#include "guard/recorder.h"
#include "guard/settings.h"
#include "guard/uncaught.h"

namespace guard {

/// There is one, from the guard's loading to its unloading. May be called by any thread: a lock
/// keeps its own state, and is never held while the module, the host's callback or standard error
/// is busy.
class Guard {
  public:
    static Guard& instance();

    void load();
    void unload();

    /// Makes the host's call: looks at it, passes it on if that is safe, and looks at what came of
    /// it. What the module throws passes through.
    /// @param pass_on makes the call of the module's functions that it is given
    template <typename PassOn>
    void make(Call& call, PassOn pass_on) {
        begin(call);
        if (call.is_passed_on) {
            try {
                const PrintedCapture capture(m_recorder.printed_of(call));
                pass_on(m_module.methods());
            } catch (...) {
                call.has_thrown = true;
                UncaughtWatch::note_leaving(call);
                end(call);
                throw;
            }
        }
        end(call);
    }

    /// Gives the host a handle for a parser that the module made.
    void adopt(Call& call, unsigned inner);

    /// Registers the host's callback, in whose place the module gets the guard's.
    void register_callback(Call& call, const WebvttModuleMethods& module);

    // A process that forks: the child has the thread that forked and no other.
    void before_fork();
    void after_fork();
    void after_fork_in_child();

  private:
    static void on_event(WEBVTT_EVENT_T event, void* tag, void* info);
    void deliver(WEBVTT_EVENT_T event, Parser& parser, void* info);

    void begin(Call& call);
    void end(Call& call);
    /// Releases the module's parser, when no call on it is in progress any more.
    void release(Call& call);
    /// The number of cues that nobody took from a parser which is about to go.
    unsigned count_waiting(Parser& parser);

    /// Tells what was found so far.
    void tell(Call& call);
    void sum_up();

    Settings m_settings;
    LoadedModule m_module;
    DeliveryPages m_pages;  ///< has a lock of its own
    Recorder m_recorder;    ///< and so has this

    std::mutex m_mutex;  ///< for all below
    ParserTable m_parsers;
    CallsInProgress m_in_progress;
    unsigned long m_calls = 0;
    unsigned long m_cues = 0;
    std::array<unsigned long, kMistakes> m_mistakes = {};
};

}  // namespace guard
