#include "tools/host/isolated_run.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>
#include <thread>
#include <vector>

#include "tools/console/descriptor.h"
#include "tools/console/failure.h"

namespace quill::host {
namespace {

using Clock = std::chrono::steady_clock;

// What a module that prints without end may write before it is stopped by SIGXFSZ.
constexpr rlim_t kLargestFile = 64u << 20;

constexpr long long kLongestWait = 3'600'000;  // milliseconds

constexpr struct {
    int number;
    const char* name;
} kSignals[] = {
    {SIGSEGV, "SIGSEGV"}, {SIGABRT, "SIGABRT"}, {SIGBUS, "SIGBUS"},   {SIGFPE, "SIGFPE"},
    {SIGILL, "SIGILL"},   {SIGTRAP, "SIGTRAP"}, {SIGTERM, "SIGTERM"}, {SIGKILL, "SIGKILL"},
    {SIGXFSZ, "SIGXFSZ"}, {SIGXCPU, "SIGXCPU"}, {SIGPIPE, "SIGPIPE"},
};

[[noreturn]] void FailToStart() {
    throw console::Failure(console::kExitUsage,
                           "cannot start a process: " + console::ErrorText(errno));
}

[[noreturn]] void RunChild(const SharedNote& note, const std::function<void()>& work) {
    const rlimit no_core = {0, 0};
    setrlimit(RLIMIT_CORE, &no_core);
    note.BecomeOwn();
    try {
        work();
    } catch (const console::Failure& failure) {
        note->code = failure.code();
        note->failure.Set(failure.what());
        _exit(kThrown);
    } catch (...) {
        _exit(kThrown);
    }
    note->has_ended = true;
    // Past exit handlers, which are the parent's.
    _exit(0);
}

void LimitPrinting() {
    const rlimit small_files = {kLargestFile, kLargestFile};
    setrlimit(RLIMIT_FSIZE, &small_files);
    std::signal(SIGXFSZ, SIG_DFL);
}

int LeftMilliseconds(Clock::time_point deadline) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return static_cast<int>(std::clamp<long long>(left, 0, kLongestWait));
}

// Reads until the other end is closed. False when the time is over before that.
bool ReadAll(int descriptor, Clock::time_point deadline, std::string& written) {
    std::array<char, 4096> buffer;
    for (;;) {
        pollfd waiting = {descriptor, POLLIN, 0};
        const int ready = poll(&waiting, 1, LeftMilliseconds(deadline));
        if (ready < 0 && errno == EINTR) {
            continue;
        }
        if (ready <= 0) {
            return false;
        }
        const int count = console::ReadSome(descriptor, buffer.data(), buffer.size());
        if (count <= 0) {
            return true;
        }
        written.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

// Whether the child has ended by the deadline. A module may have closed the pipe long before.
bool Reap(pid_t child, Clock::time_point deadline, int& status) {
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (Clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

// While an object of this class lives the end of a child is waited for, and does not get lost.
class WithoutChildSignal {
  public:
    WithoutChildSignal() {
        sigemptyset(&ended_);
        sigaddset(&ended_, SIGCHLD);
        sigprocmask(SIG_BLOCK, &ended_, &before_);
    }
    WithoutChildSignal(const WithoutChildSignal&) = delete;
    WithoutChildSignal& operator=(const WithoutChildSignal&) = delete;
    ~WithoutChildSignal() { sigprocmask(SIG_SETMASK, &before_, nullptr); }

    // False as soon as a child has ended.
    bool IsOneSecondQuiet() const {
        const timespec second = {1, 0};
        return sigtimedwait(&ended_, nullptr, &second) < 0 && errno == EAGAIN;
    }

  private:
    sigset_t ended_;
    sigset_t before_;
};

// The parent of a process, by what the system tells of it.
pid_t ParentOf(const std::string& process) {
    std::ifstream file("/proc/" + process + "/stat");
    std::string stat;
    std::getline(file, stat);
    // The program's name, which may hold anything, stands in brackets.
    std::istringstream rest(stat.substr(std::min(stat.rfind(')') + 1, stat.size())));
    char state = 0;
    pid_t parent = 0;
    rest >> state >> parent;
    return parent;
}

std::vector<pid_t> ChildrenOfThisProcess() {
    std::vector<pid_t> children;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", ignored)) {
        const std::string name = entry.path().filename().string();
        if (name.find_first_not_of("0123456789") == std::string::npos &&
            ParentOf(name) == getpid()) {
            children.push_back(std::stoi(name));
        }
    }
    return children;
}

}  // namespace

pid_t StartChild(const SharedNote& note, const std::function<void()>& work) {
    // What a child leaves behind becomes a child of this process, which can end it then.
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    // Or both processes would write what is still in the buffers.
    std::fflush(nullptr);
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child < 0) {
        FailToStart();
    }
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent) {
            _exit(kThrown);
        }
        RunChild(note, work);
    }
    return child;
}

IsolatedEnd WaitFor(pid_t child, const CallNote& note, std::chrono::seconds limit) {
    const WithoutChildSignal blocked;
    CallWatch watch(note, limit);
    int status = 0;
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (blocked.IsOneSecondQuiet() && watch.HasHung()) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return {IsolatedEnd::Kind::kTimedOut, 0, ""};
        }
    }
    return EndOf(status);
}

void Channel::Write(std::string_view text) {
    console::WriteFully(descriptor_, text);
}

IsolatedEnd RunIsolated(const std::function<void(Channel&)>& work,
                        std::chrono::milliseconds timeout) {
    std::array<int, 2> pipe_ends;
    if (pipe2(pipe_ends.data(), O_CLOEXEC) != 0) {
        FailToStart();
    }
    const console::Descriptor read_end(pipe_ends[0]);
    console::Descriptor write_end(pipe_ends[1]);
    const SharedNote note;
    const pid_t child = StartChild(note, [&] {
        LimitPrinting();
        Channel channel(write_end.get());
        work(channel);
    });
    write_end = console::Descriptor();
    const Clock::time_point deadline = Clock::now() + timeout;
    IsolatedEnd end = {IsolatedEnd::Kind::kTimedOut, 0, ""};
    int status = 0;
    if (!ReadAll(read_end.get(), deadline, end.written) || !Reap(child, deadline, status)) {
        kill(child, SIGKILL);
        waitpid(child, &status, 0);
        EndOrphans();
        return end;
    }
    EndOrphans();
    if (note->code == console::kExitUsage) {
        throw console::Failure(console::kExitUsage, note->failure.Get());
    }
    const std::string written = std::move(end.written);
    end = EndOf(status);
    end.written = written;
    return end;
}

void EndOrphans() {
    // They may have children of their own, which come to this process when they are gone.
    constexpr int kMostGenerations = 100;
    for (int i = 0; i < kMostGenerations; ++i) {
        pid_t ended = 0;
        do {
            ended = waitpid(-1, nullptr, WNOHANG);
        } while (ended > 0);
        if (ended < 0) {
            return;  // there is none
        }
        for (const pid_t orphan : ChildrenOfThisProcess()) {
            kill(orphan, SIGKILL);
            waitpid(orphan, nullptr, 0);
        }
    }
}

IsolatedEnd EndOf(int status) {
    if (WIFSIGNALED(status)) {
        return {IsolatedEnd::Kind::kSignal, WTERMSIG(status), ""};
    }
    const int number = WEXITSTATUS(status);
    return {number == 0 ? IsolatedEnd::Kind::kDone : IsolatedEnd::Kind::kExit, number, ""};
}

std::string DescribeEnd(const IsolatedEnd& end) {
    switch (end.kind) {
        case IsolatedEnd::Kind::kDone:
            return "ended the process";
        case IsolatedEnd::Kind::kExit:
            return "exited with status " + std::to_string(end.number);
        case IsolatedEnd::Kind::kTimedOut:
            return "did not end in time";
        case IsolatedEnd::Kind::kSignal:
            break;
    }
    const auto* const known =
        std::find_if(std::begin(kSignals), std::end(kSignals),
                     [&end](const auto& one) { return one.number == end.number; });
    return "crashed by " + (known != std::end(kSignals) ? std::string(known->name)
                                                        : "signal " + std::to_string(end.number));
}

}  // namespace quill::host
