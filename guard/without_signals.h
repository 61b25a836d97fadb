// Writing where a failed write would be told by a signal as well.
#pragma once

#include <csignal>

namespace guard {

/// While it lives, neither a pipe that nobody reads nor a file that reaches its limit ends the
/// process: a write fails, and that is all.
class WithoutSignals {
  public:
    WithoutSignals();
    WithoutSignals(const WithoutSignals&) = delete;
    WithoutSignals& operator=(const WithoutSignals&) = delete;
    ~WithoutSignals();

  private:
    sigset_t m_ours;  ///< those that were not waiting already
    sigset_t m_before;
};

}  // namespace guard
