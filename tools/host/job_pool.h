// Shares jobs out to processes, so that all cores work and what a module does costs one job.
#ifndef TOOLS_HOST_JOB_POOL_H_
#define TOOLS_HOST_JOB_POOL_H_

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/console/descriptor.h"
#include "tools/host/call_note.h"

namespace quill::host {

// What a process has to say of its job while it works on it.
class JobOutput {
  public:
    virtual ~JobOutput() = default;
    virtual void Write(std::string_view bytes) = 0;
    // How far it has come; an empty line is wiped away.
    virtual void Show(std::string_view line) = 0;
};

// Lives in a process of its own and does one job after the other.
class JobWorker {
  public:
    virtual ~JobWorker() = default;
    // Returns what the job comes to. What it throws ends the process.
    virtual std::string Do(const std::string& job, JobOutput& output) = 0;
};

// Hears of the jobs in the order in which they were given out, but for Show.
class JobSink : public JobOutput {
  public:
    virtual void End(const std::string& job, const std::string& result) = 0;
    // The process ended before the job did, or a call into the module did not return; `why` says
    // it.
    virtual void Die(const std::string& job, const std::string& why) = 0;
};

class JobPool {
  public:
    using MakeWorker = std::function<std::unique_ptr<JobWorker>()>;
    using NextJob = std::function<std::optional<std::string>()>;

    // `make` is called in each process when that begins, as a copy of this one. `limit` is for one
    // call into the module.
    JobPool(std::size_t most_processes, std::chrono::seconds limit, MakeWorker make);
    JobPool(const JobPool&) = delete;
    JobPool& operator=(const JobPool&) = delete;
    // Ends the processes.
    ~JobPool();

    // Does all jobs and ends the processes. What comes of those behind the first unfinished one is
    // held back, a bounded amount of it. Throws Failure when the system makes no process, when one
    // cannot begin its work or does not end as it should, and what `next` and the sink throw.
    void Run(const NextJob& next, JobSink& sink);

  private:
    struct Job {
        std::string name;
        std::string output{};
        std::string result{};
        std::string death{};
        bool has_ended = false;
    };
    struct Process {
        pid_t number;
        console::Descriptor requests;
        console::Descriptor replies;
        SharedNote note;
        CallWatch watch;
        bool has_hung = false;
        std::string received{};
        Job* job = nullptr;
    };

    Process* FindIdle();
    Process& Start();
    void GiveOut(const std::string& name);
    void Wait(JobSink& sink);
    void Receive(Process& process, JobSink& sink);
    void LookForHangs();
    void Bury(Process& process);
    void EndAll();
    void HandOn(JobSink& sink);

    using Clock = std::chrono::steady_clock;

    std::size_t most_processes_;
    std::chrono::seconds limit_;
    MakeWorker make_;
    Clock::time_point last_look_ = Clock::now();
    std::list<Process> processes_;
    std::list<Job> jobs_;  // given out and not yet handed on
};

}  // namespace quill::host

#endif  // TOOLS_HOST_JOB_POOL_H_
