#include "tools/host/run_apart.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <optional>

#include "tools/console/descriptor.h"
#include "tools/console/message.h"
#include "tools/console/program.h"
#include "tools/host/diagnostics_capture.h"
#include "tools/host/module_contract.h"
#include "tools/host/module_handle.h"
#include "tools/host/parser_handle.h"
#include "tools/host/track_reader.h"

namespace quill::host {
namespace {

// A call that never returns has been waited for before it is looked for.
constexpr std::chrono::seconds kSearchLimit(2);

// The function of the method table that is called; null when it is none.
const char* FunctionOf(ModuleCall call) {
    const std::size_t slot =
        static_cast<std::size_t>(call) - static_cast<std::size_t>(ModuleCall::kCreate);
    return slot < kTableSlots.size() ? kTableSlots[slot].field : nullptr;
}

std::string Doing(ModuleCall call) {
    switch (call) {
        case ModuleCall::kNone:
            return "before any call";
        case ModuleCall::kLoad:
            return "while it was loaded";
        case ModuleCall::kUnload:
            return "while it was unloaded";
        default:  // a module that writes where it may not may have left any number
            const char* const function = FunctionOf(call);
            return function != nullptr ? std::string("in ") + function
                                       : "at the end of the process";
    }
}

class Nobody : public CueSink {
  public:
    void Add(const WebvttCueNode& /*cue*/) override {}
    void Flush() override {}
};

// The first line of those bytes with its end.
std::string_view FirstLine(std::string_view bytes) {
    std::size_t end = std::min(bytes.find_first_of("\r\n"), bytes.size());
    end += bytes.substr(end, 2) == "\r\n" ? 2 : 1;
    return bytes.substr(0, end);
}

// Feeds line by line and notes each line that begins a block before the module has it.
void PlayBlocks(const std::string& path, const std::string& track) {
    DiagnosticsCapture capture(DiagnosticsCapture::Mode::kDrop);
    // What was said when the module broke is not said again.
    dup2(STDOUT_FILENO, STDERR_FILENO);
    const ModuleHandle module(path);
    ParserHandle parser(module, capture);
    Nobody nobody;
    const std::string bytes = TrackReader(track, std::nullopt).ReadAll(UINT32_MAX, [] {});
    std::string_view left = bytes;
    const auto play = [&](std::string_view piece) {
        const Chunk chunk(piece.data(), static_cast<unsigned int>(piece.size()), 0);
        try {
            parser.Feed(chunk.data.get(), chunk.size);
            parser.Deliver(nobody);
        } catch (const ModuleThrew&) {
            // A player would go on.
        }
    };
    bool is_between = true;
    for (std::uint32_t number = 1; !left.empty(); ++number) {
        const std::string_view line = FirstLine(left);
        const bool is_blank = line.find_first_not_of("\r\n") == std::string_view::npos;
        if (is_between && !is_blank) {
            CallNote::Own().line = number;
        }
        is_between = is_blank;
        play(line);
        left.remove_prefix(line.size());
    }
    play(kClosingLineFeeds);
}

// Whether a block is what the call is about.
bool IsAboutBlocks(const CallNote& note) {
    return note.call == ModuleCall::kParse || note.call == ModuleCall::kGetParseResult;
}

// The line at which the block begins that alone brings about the same end, 0 when none does.
std::uint32_t FindBlock(const CallNote& broken, const IsolatedEnd& end) {
    const std::string track = broken.track.Get();
    struct stat status = {};
    // A pipe cannot be read a second time.
    if (stat(track.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return 0;
    }
    const SharedNote note;
    const pid_t child = StartChild(note, [&] { PlayBlocks(broken.module.Get(), track); });
    const IsolatedEnd again = WaitFor(child, *note, kSearchLimit);
    const bool is_alike = again.kind == end.kind && again.number == end.number;
    return is_alike && note->is_in_call() && IsAboutBlocks(*note) ? note->line : 0;
}

std::string DescribePlace(const CallNote& note, const IsolatedEnd& end) {
    const std::string track = note.track.Get();
    if (track.empty() || FunctionOf(note.call) == nullptr) {
        return "";
    }
    if (!IsAboutBlocks(note)) {
        return " for " + track;
    }
    const std::uint32_t line = FindBlock(note, end);
    if (line != 0) {
        return " on the block at line " + std::to_string(line) + " of " + track;
    }
    if (note.end != 0) {
        return " on bytes " + std::to_string(note.begin) + " to " + std::to_string(note.end - 1) +
               " of " + track;
    }
    return " on " + track;
}

// Which a user sends, or the end of his session.
bool IsOfTheUser(const IsolatedEnd& end) {
    constexpr int kOfUsers[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};
    return end.kind == IsolatedEnd::Kind::kSignal &&
           std::find(std::begin(kOfUsers), std::end(kOfUsers), end.number) != std::end(kOfUsers);
}

}  // namespace

void AddLimitOption(console::CommandLine& line, std::chrono::seconds& limit) {
    line.AddNumber(
        "--timeout", "SECONDS", console::kSeconds,
        [&limit](std::uint32_t seconds) { limit = std::chrono::seconds(seconds); },
        "How long one call into the module may take before it counts\n"
        "as hung (default: 10, and one more for each MiB it is fed)");
}

console::ExitCode RunApart(std::chrono::seconds limit,
                           const std::function<console::ExitCode()>& work) {
    const SharedNote note;
    const pid_t child = StartChild(note, [&work] {
        CallNote& own = CallNote::Own();
        own.code = console::RunToEnd(work);
        own.has_ended = true;
        own.Begin(ModuleCall::kEnd);
        // As main() does, so that nothing that runs at the end of a program is left out.
        std::exit(own.code);
    });
    const IsolatedEnd end = WaitFor(child, *note, limit);
    EndOrphans();
    const bool has_exited =
        end.kind == IsolatedEnd::Kind::kDone || end.kind == IsolatedEnd::Kind::kExit;
    if (note->has_ended && has_exited && end.number == note->code) {
        return static_cast<console::ExitCode>(note->code);
    }
    if (IsOfTheUser(end)) {
        std::signal(end.number, SIG_DFL);
        std::raise(end.number);
    }
    console::Say(DescribeBreak(*note, end));
    return console::kExitModule;
}

std::string DescribeBreak(const CallNote& note, const IsolatedEnd& end) {
    const std::string module = note.module.Get();
    const bool has_hung = end.kind == IsolatedEnd::Kind::kTimedOut;
    const auto call = note.call.load();
    const std::string doing = Doing(call);
    const std::string done = has_hung ? "hung" : DescribeEnd(end);
    std::string text = note.is_in_call() ? module + " " + done + " " + doing
                                         : "the process that drives " + module + " " + done +
                                               " after a call that returned (" + doing + ")";
    text += DescribePlace(note, end) + "; build the module again, or copy it again";
    if (call != ModuleCall::kLoad) {
        text += ", and try it with quill conform";
    }
    return text + (has_hung ? "; --timeout gives a call more time" : "");
}

}  // namespace quill::host
