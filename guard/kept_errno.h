// What every file of the guard may need while the host waits: errno kept, and the time.
#pragma once

#include <cerrno>
#include <ctime>

namespace guard {

/// The host finds errno as the module left it.
class KeptErrno {
  public:
    KeptErrno() : m_error(errno) {}
    KeptErrno(const KeptErrno&) = delete;
    KeptErrno& operator=(const KeptErrno&) = delete;
    ~KeptErrno() { errno = m_error; }

  private:
    int m_error;
};

inline long long now_ns() {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000000000LL + now.tv_nsec;
}

}  // namespace guard
