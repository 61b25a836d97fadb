#include "tools/host/job_pool.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <utility>

#include "tools/console/failure.h"
#include "tools/host/isolated_run.h"
#include "tools/host/run_apart.h"

namespace quill::host {
namespace {

// Of one job that is not yet the first; its process waits beyond that.
constexpr std::size_t kMostHeld = 1 << 20;
// Jobs a process that may be ahead of the first one.
constexpr std::size_t kMostAhead = 16;

// What is sent: a kind, the size as four bytes, the bytes. Both ends are this program.
enum Kind : char { kOutput = 'o', kLine = 'l', kResult = 'r', kRequest = 'q' };
constexpr std::size_t kHeadSize = 1 + sizeof(std::uint32_t);

void Send(int descriptor, Kind kind, std::string_view bytes) {
    const auto size = static_cast<std::uint32_t>(bytes.size());
    std::string message(kHeadSize, kind);
    std::memcpy(&message[1], &size, sizeof size);
    message += bytes;
    console::WriteFully(descriptor, message);
}

struct Message {
    Kind kind;
    std::string_view bytes;
};

// The first message of those bytes; nothing when it is not complete.
std::optional<Message> FirstMessage(std::string_view bytes) {
    std::uint32_t size = 0;
    if (bytes.size() < kHeadSize) {
        return std::nullopt;
    }
    std::memcpy(&size, &bytes[1], sizeof size);
    if (bytes.size() - kHeadSize < size) {
        return std::nullopt;
    }
    return Message{static_cast<Kind>(bytes[0]), bytes.substr(kHeadSize, size)};
}

class Sender : public JobOutput {
  public:
    explicit Sender(int descriptor) : descriptor_(descriptor) {}
    void Write(std::string_view bytes) override { Send(descriptor_, kOutput, bytes); }
    void Show(std::string_view line) override { Send(descriptor_, kLine, line); }

  private:
    int descriptor_;
};

// Ends when the other process has closed its end.
void Work(JobWorker& worker, int requests, int replies) {
    Sender sender(replies);
    std::string received;
    std::array<char, 4096> buffer;
    for (;;) {
        while (const std::optional<Message> request = FirstMessage(received)) {
            Send(replies, kResult, worker.Do(std::string(request->bytes), sender));
            received.erase(0, kHeadSize + request->bytes.size());
        }
        const int count = console::ReadSome(requests, buffer.data(), buffer.size());
        if (count <= 0) {
            return;
        }
        received.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

std::pair<console::Descriptor, console::Descriptor> MakePipe() {
    std::array<int, 2> ends;
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw console::Failure(console::kExitUsage,
                               "cannot start a process: " + console::ErrorText(errno));
    }
    return {console::Descriptor(ends[0]), console::Descriptor(ends[1])};
}

}  // namespace

JobPool::JobPool(std::size_t most_processes, std::chrono::seconds limit, MakeWorker make)
    : most_processes_(most_processes), limit_(limit), make_(std::move(make)) {}

JobPool::~JobPool() {
    for (Process& process : processes_) {
        if (process.job == nullptr) {
            process.requests = console::Descriptor();  // which it takes for the end of its work
        } else {
            kill(process.number, SIGKILL);
        }
        waitpid(process.number, nullptr, 0);
    }
}

void JobPool::Run(const NextJob& next, JobSink& sink) {
    for (bool more = true; more || !jobs_.empty();) {
        while (more && jobs_.size() < most_processes_ * kMostAhead &&
               (FindIdle() != nullptr || processes_.size() < most_processes_)) {
            if (const std::optional<std::string> name = next()) {
                GiveOut(*name);
            } else {
                more = false;
            }
        }
        if (!jobs_.empty()) {
            Wait(sink);
            LookForHangs();
            HandOn(sink);
        }
    }
    EndAll();
}

JobPool::Process* JobPool::FindIdle() {
    const auto idle = std::find_if(processes_.begin(), processes_.end(),
                                   [](const Process& one) { return one.job == nullptr; });
    return idle == processes_.end() ? nullptr : &*idle;
}

JobPool::Process& JobPool::Start() {
    auto requests = MakePipe();  // (the end to read from, the end to write to)
    auto replies = MakePipe();
    SharedNote note;
    const pid_t number = StartChild(note, [&] {
        // The ends that lead to the other processes, which must see them closed when ours are.
        processes_.clear();
        requests.second = console::Descriptor();
        replies.first = console::Descriptor();
        Work(*make_(), requests.first.get(), replies.second.get());
    });
    const CallWatch watch(*note, limit_);
    processes_.push_back(
        {number, std::move(requests.second), std::move(replies.first), std::move(note), watch});
    return processes_.back();
}

void JobPool::GiveOut(const std::string& name) {
    Process* const idle = FindIdle();
    Process& process = idle != nullptr ? *idle : Start();
    jobs_.push_back({name});
    process.job = &jobs_.back();
    Send(process.requests.get(), kRequest, name);
}

void JobPool::Wait(JobSink& sink) {
    std::vector<pollfd> waiting;
    std::vector<Process*> processes;
    for (Process& process : processes_) {
        if (process.job != nullptr &&
            (process.job == &jobs_.front() || process.job->output.size() < kMostHeld)) {
            waiting.push_back({process.replies.get(), POLLIN, 0});
            processes.push_back(&process);
        }
    }
    constexpr int kSecond = 1000;
    if (waiting.empty() || poll(waiting.data(), waiting.size(), kSecond) <= 0) {
        return;
    }
    for (std::size_t index = 0; index < waiting.size(); ++index) {
        if (waiting[index].revents != 0) {
            Receive(*processes[index], sink);
        }
    }
}

void JobPool::Receive(Process& process, JobSink& sink) {
    std::array<char, 65536> buffer;
    const int count = console::ReadSome(process.replies.get(), buffer.data(), buffer.size());
    if (count <= 0) {
        Bury(process);
        return;
    }
    process.received.append(buffer.data(), static_cast<std::size_t>(count));
    std::string_view left = process.received;
    while (const std::optional<Message> message = FirstMessage(left)) {
        if (message->kind == kOutput) {
            process.job->output += message->bytes;
        } else if (message->kind == kLine) {
            sink.Show(message->bytes);
        } else {
            process.job->result = message->bytes;
            process.job->has_ended = true;
            process.job = nullptr;
        }
        left.remove_prefix(kHeadSize + message->bytes.size());
    }
    process.received.erase(0, process.received.size() - left.size());
}

// What hangs is killed, and then received as any process that has ended.
void JobPool::LookForHangs() {
    const Clock::time_point now = Clock::now();
    if (now - last_look_ < std::chrono::seconds(1)) {
        return;
    }
    last_look_ = now;
    for (Process& process : processes_) {
        if (process.job != nullptr && !process.has_hung && process.watch.HasHung()) {
            process.has_hung = true;
            kill(process.number, SIGKILL);
        }
    }
}

void JobPool::Bury(Process& process) {
    int status = 0;
    kill(process.number, SIGKILL);  // it may have closed its end and go on
    waitpid(process.number, &status, 0);
    const IsolatedEnd end =
        process.has_hung ? IsolatedEnd{IsolatedEnd::Kind::kTimedOut, 0, ""} : EndOf(status);
    const SharedNote note = std::move(process.note);
    Job& job = *process.job;
    processes_.remove_if([&](const Process& one) { return &one == &process; });
    const std::string lack = note->failure.Get();
    if (!lack.empty()) {
        throw console::Failure(static_cast<console::ExitCode>(note->code), lack);
    }
    std::string why = DescribeBreak(*note, end);
    if (note->is_in_call() && note->call == ModuleCall::kLoad) {
        throw console::Failure(console::kExitModule, why);
    }
    job.death = std::move(why);
    job.has_ended = true;
}

// What a module does at the end of a process is its work as well.
void JobPool::EndAll() {
    while (!processes_.empty()) {
        Process process = std::move(processes_.front());
        processes_.pop_front();
        process.requests = console::Descriptor();  // which it takes for the end of its work
        const IsolatedEnd end = WaitFor(process.number, *process.note, limit_);
        if (!process.note->has_ended) {
            throw console::Failure(console::kExitModule, DescribeBreak(*process.note, end));
        }
    }
    EndOrphans();
}

void JobPool::HandOn(JobSink& sink) {
    while (!jobs_.empty()) {
        Job& job = jobs_.front();
        if (!job.output.empty()) {
            sink.Write(std::exchange(job.output, ""));
        }
        if (!job.has_ended) {
            return;
        }
        if (job.death.empty()) {
            sink.End(job.name, job.result);
        } else {
            sink.Die(job.name, job.death);
        }
        jobs_.pop_front();
    }
}

}  // namespace quill::host
