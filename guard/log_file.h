// The file of a session log.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <string>
#include <string_view>

#include "guard/text.h"

namespace guard {

/// Takes whole lines, each in one write, so that a crash loses at most the one in progress. What it
/// can't write never disturbs the host: one line on standard error says so, and the log ends there.
/// Any thread may write, and a signal handler too, as long as it interrupts no write of its own
/// thread's.
class LogFile {
  public:
    /// @param path where "%p" stands for the number of the process; a file of that name is replaced
    /// @param most bytes, of which the last line tells that there are no more; 0 for any number
    void open(const std::string& path, unsigned most);
    bool is_open() const { return m_file >= 0; }

    void write(std::string_view line);

    /// Ends the log without a word.
    void close();

    /// In a child after a fork, whose parent goes on with the log.
    void leave();

  private:
    /// A host that closes whatever is open may have got the same number for a file of its own.
    bool is_ours() const;
    void fail(int error);

    std::atomic<int> m_file{-1};
    std::atomic_flag m_is_busy = ATOMIC_FLAG_INIT;
    Text<300> m_path;  ///< fit to be shown
    dev_t m_device = 0;
    ino64_t m_inode = 0;
    unsigned long long m_left = 0;  ///< bytes until the limit
};

}  // namespace guard
