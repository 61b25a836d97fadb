// The session log that the guard writes: every call, and what came of it.
#pragma once

#include <mutex>
#include <string>

#include "guard/call.h"
#include "guard/log_file.h"
#include "guard/log_line.h"
#include "guard/settings.h"
#include "quillcaption/quillcaption.h"

namespace guard {

/// What a session came to.
struct Sum {
    unsigned long calls;
    unsigned long parsers;
    unsigned long cues;
    unsigned long mistakes;
};

/// Writes nothing unless a log was asked for. Any thread may call it; none of its functions changes
/// errno.
class Recorder {
  public:
    /// @param module the file name of the module that is recorded
    /// @param captures whether what it prints can be captured
    void open(const LogSettings& settings, const std::string& module, bool captures);

    bool is_recording() const { return m_file.is_open(); }

    /// Where to keep what the call prints; null when that is not recorded.
    Bytes* printed_of(Call& call) const {
        return is_recording() && m_captures ? &call.printed : nullptr;
    }

    void note_call(const Call& call);
    /// @param info null when there is no telling what was delivered
    void note_delivery(const WebvttDataInfo* info, unsigned long call, unsigned long parser);
    /// When the module has made the call. The parser must be live still.
    void note_fed(Call& call);

    enum class Release { kNone, kPutOff, kMadeUpFor };
    /// In the handler of what the call has thrown, if it has.
    void note_return(const Call& call, Release release);
    /// The session is over, and so is the log.
    void note_end(const Sum& sum);

    // A process that forks: the log is the parent's.
    void before_fork() { m_mutex.lock(); }
    void after_fork() { m_mutex.unlock(); }
    void after_fork_in_child();

  private:
    unsigned long long microseconds() const;
    void add_chunk(const Call& call, LogLine& line);
    void add_cue(const WebvttCueNode& cue, LogLine& line);
    void add_text(const char* name, const char* text, LogLine& line);

    LogFile m_file;
    bool m_captures = false;
    bool m_hides_text = false;
    long long m_started_ns = 0;
    std::mutex m_mutex;  ///< for what is known of hidden tracks
    std::atomic<unsigned long> m_deliveries{0};
};

}  // namespace guard
