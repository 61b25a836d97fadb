#include "guard/without_signals.h"

#include <ctime>
#include <initializer_list>

namespace guard {

WithoutSignals::WithoutSignals() {
    sigset_t pending;
    sigpending(&pending);
    sigset_t blocked;
    sigemptyset(&blocked);
    sigemptyset(&m_ours);
    for (const int number : {SIGPIPE, SIGXFSZ}) {
        sigaddset(&blocked, number);
        if (sigismember(&pending, number) == 0) {
            sigaddset(&m_ours, number);
        }
    }
    pthread_sigmask(SIG_BLOCK, &blocked, &m_before);
}

WithoutSignals::~WithoutSignals() {
    const timespec at_once = {0, 0};
    while (sigtimedwait(&m_ours, nullptr, &at_once) > 0) {
    }
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

}  // namespace guard
