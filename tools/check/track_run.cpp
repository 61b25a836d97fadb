#include "tools/check/track_run.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "tools/check/track_worker.h"
#include "tools/console/cue_time.h"
#include "tools/console/message.h"

namespace quill::check {
namespace {

// Nothing when the names come from standard input, which can be read once.
std::optional<std::uint64_t> CountTracks(const console::TrackArguments& arguments) {
    if (arguments.list == "-") {
        return std::nullopt;
    }
    console::TrackList tracks(arguments);
    std::uint64_t count = 0;
    for (bool more = true; more;) {
        try {
            more = tracks.Next().has_value();
            count += more ? 1 : 0;
        } catch (const console::Failure&) {
            // It is said when the tracks are checked.
        }
    }
    return count;
}

}  // namespace

TrackRun::TrackRun(const CheckOptions& options, console::Output& output)
    : options_(options),
      output_(output),
      progress_(options.shows_progress, console::kProgressPause),
      joint_(options.printing.report->Joint().size()) {}

void TrackRun::Run(const std::string& module, std::chrono::seconds limit,
                   const console::TrackArguments& tracks, std::size_t processes) {
    if (progress_.wanted()) {
        count_ = CountTracks(tracks);
    }
    host::JobPool pool(processes, limit,
                       [&] { return std::make_unique<TrackWorker>(module, options_); });
    console::TrackList list(tracks);
    pool.Run([&] { return NextOf(list); }, *this);
    Begin();
    progress_.Wipe();
}

void TrackRun::Begin() {
    if (!std::exchange(has_begun_, true)) {
        output_.Write(options_.printing.report->Beginning());
    }
}

std::optional<std::string> TrackRun::NextOf(console::TrackList& tracks) {
    for (;;) {
        try {
            return tracks.Next();
        } catch (const console::Failure& failure) {
            Fail(failure.code(), "", failure.what());
        }
    }
}

void TrackRun::Write(std::string_view bytes) {
    progress_.Wipe();
    if (!bytes.empty()) {
        Begin();
        bytes.remove_prefix(std::exchange(joint_, 0));
        output_.Write(bytes);
    }
}

void TrackRun::Show(std::string_view line) {
    if (line.empty()) {
        progress_.Wipe();
    } else {
        progress_.Show(std::string(line));
    }
}

void TrackRun::End(const std::string& job, const std::string& result) {
    const Outcome outcome = Outcome::FromBytes(result);
    if (outcome.code == console::kExitDone) {
        total_.Add(outcome.sums);
    } else {
        Fail(outcome.code, job, outcome.failure);
    }
    ShowProgress();
}

void TrackRun::Die(const std::string& job, const std::string& why) {
    Fail(console::kExitModule, job, why);
}

void TrackRun::Fail(console::ExitCode code, const std::string& track, const std::string& message) {
    progress_.Wipe();
    console::Say(message);
    code_ = std::max(code_, code);
    ++total_.failed;
    if (!track.empty()) {
        Write(options_.printing.report->FormatFailure(track, message));
    }
}

// "4711 of 100000 tracks, 2500 a second, 00:00:38 left"
void TrackRun::ShowProgress() {
    if (count_ == 1u || !progress_.IsDue()) {
        return;
    }
    const std::uint64_t done = total_.tracks + total_.failed;
    const double seconds = std::chrono::duration<double>(Clock::now() - start_).count();
    const double rate = static_cast<double>(done) / seconds;
    std::string line = std::to_string(done);
    if (count_) {
        line += " of " + std::to_string(*count_);
    }
    line += " tracks, " + std::to_string(static_cast<std::uint64_t>(rate)) + " a second";
    if (count_ && *count_ >= done) {
        const std::string left =
            console::FormatTime(static_cast<double>(*count_ - done) / rate, '.');
        line += ", " + left.substr(0, left.find('.')) + " left";
    }
    progress_.Show(line);
}

}  // namespace quill::check
