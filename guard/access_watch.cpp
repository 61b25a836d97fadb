#include "guard/access_watch.h"

#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>

#include "guard/delivery_layout.h"
#include "guard/report.h"

namespace guard {
namespace {

std::atomic<const DeliveryPages*> watched{nullptr};
struct sigaction before = {};
std::atomic<unsigned long> changed{0};
std::atomic<unsigned long> kept{0};

void tell(const DeliveredPages& pages, const char* address) {
    const bool is_open = pages.is_open;
    Detail detail;
    if (pages.content != nullptr) {
        // Where there is but one view it has to be readable for the moment that this takes.
        const bool is_hidden = pages.content == pages.begin && !is_open;
        if (is_hidden) {
            mprotect(pages.begin, pages.size, PROT_READ);
        }
        describe_place(pages.content, pages.begin, address, detail);
        if (is_hidden) {
            mprotect(pages.begin, pages.size, PROT_NONE);
        }
    }
    const MistakeText& text = text_of(is_open ? Mistake::kRecordChanged : Mistake::kRecordKept);
    ++(is_open ? changed : kept);
    Line line;
    line << text.code << " at call " << pages.call << ", pfnGetParseResult, parser " << pages.parser
         << ", thread " << syscall(SYS_gettid) << ": " << text.sentence;
    if (!detail.empty()) {
        line << " (" << detail.c_str() << ")";
    }
    line << ". What to do: " << text.way_out << ".";
    report_mistake(text, pages.call, line);
}

void on_signal(int number, siginfo_t* info, void* /*context*/) {
    const int error = errno;
    const DeliveryPages* const pages = watched;
    // Signals that somebody sent have no address.
    const bool is_access = info->si_code > 0;
    const DeliveredPages* const found =
        pages != nullptr && is_access ? pages->find(info->si_addr) : nullptr;
    if (found != nullptr) {
        tell(*found, static_cast<const char*>(info->si_addr));
    }
    sigaction(number, &before, nullptr);
    if (!is_access) {
        raise(number);
    }
    errno = error;
}

}  // namespace

void AccessWatch::keep(const DeliveryPages& pages) {
    watched = &pages;
    renew();
}

void AccessWatch::renew() {
    struct sigaction now = {};
    sigaction(SIGSEGV, nullptr, &now);
    if ((now.sa_flags & SA_SIGINFO) != 0 && now.sa_sigaction == on_signal) {
        return;
    }
    before = now;
    struct sigaction ours = {};
    ours.sa_sigaction = on_signal;
    ours.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&ours.sa_mask);
    sigaction(SIGSEGV, &ours, nullptr);
}

void AccessWatch::end() {
    struct sigaction now = {};
    sigaction(SIGSEGV, nullptr, &now);
    if ((now.sa_flags & SA_SIGINFO) != 0 && now.sa_sigaction == on_signal) {
        sigaction(SIGSEGV, &before, nullptr);
    }
    watched = nullptr;
}

unsigned long AccessWatch::found(Mistake mistake) {
    return mistake == Mistake::kRecordChanged ? changed.load()
           : mistake == Mistake::kRecordKept  ? kept.load()
                                              : 0;
}

}  // namespace guard
