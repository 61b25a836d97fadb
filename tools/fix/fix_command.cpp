#include "tools/fix/fix_command.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <map>

#include "tools/console/escape.h"
#include "tools/console/message.h"
#include "tools/fix/diff.h"
#include "tools/fix/reason.h"
#include "tools/host/diagnostics_capture.h"
#include "tools/host/file_writer.h"
#include "tools/host/module_handle.h"

namespace quill::fix {
namespace {

constexpr char kFooter[] =
    R"(Without -o, --in-place, --diff or --dry-run the track is written to standard output. What was
fixed is said on standard error, or with --dry-run on standard output:
  track.vtt:12: fixed: "00:00:01,000" is "00:00:01.000" now [Q102]
What would have to be guessed stays as it is, and is said as quill check says it, with the reason:
  track.vtt:20: left: lost: invalid start time "soon" [Q101]; the time can be read as more than
  one, or as none: write MM:SS.mmm or HH:MM:SS.mmm
Before anything is written the module plays the track as it was and as it would be. Unless each
cue that was not touched is the same, each other one comes with the stated difference, and a second
run would change nothing, nothing is written.

Examples:
  quill fix track.vtt -o fixed.vtt
  quill fix --in-place *.vtt
  quill fix --diff track.vtt
  quill fix --dry-run --only Q1 track.vtt
  quill fix --from ISO-8859-1 old.srt -o track.vtt

Exit codes:
  0  nothing in the track, as it is written, is lost or changed
  1  something is left that is; or, with --diff and --dry-run, there is something to fix; or it
     could not be verified, or is no track, and nothing was written
  2  wrong usage, or something that cannot be read or written
  3  the module cannot be loaded, or it crashed, hung or ended the process)";

// How many of one code are said one by one.
constexpr std::uint32_t kMostOfACode = 3;

// Prints what is alike three times, and then how often it comes.
class FoldedLines {
  public:
    explicit FoldedLines(bool all) : all_(all) {}

    // `line` makes the line; most are never asked for.
    template <typename Line>
    void Add(const char* kind, const check::Code& code, Line line) {
        const std::uint32_t count = ++counts_[{kind, code.number}];
        if (all_ || count <= kMostOfACode) {
            text_ += console::Escape(line(), console::LineFeeds::kEscape) + "\n";
        }
    }

    std::string Take(const std::string& name) {
        for (const auto& [kind, count] : counts_) {
            if (!all_ && count > kMostOfACode) {
                text_ += console::Escape(name, console::LineFeeds::kEscape) + ": and " +
                         std::to_string(count - kMostOfACode) + " more ";
                text_.append(kind.first).append(": [").append(kind.second).append("]\n");
            }
        }
        return text_;
    }

  private:
    bool all_;
    std::map<std::pair<std::string_view, std::string_view>, std::uint32_t> counts_;
    std::string text_;
};

bool IsRejected(const check::Findings& findings) {
    return !findings.empty() && std::string(findings[0].code->number) >= "Q131" &&
           std::string(findings[0].code->number) <= "Q149";
}

bool LosesSomething(const check::Findings& findings) {
    return std::any_of(findings.begin(), findings.end(), [](const check::Finding& finding) {
        return finding.code->severity != check::Severity::kRemark;
    });
}

}  // namespace

FixCommand::FixCommand(CLI::App& app)
    : Command(app, "fix", "Write the track that says the same and arrives whole") {
    console::CommandLine& line = command_line();
    console::AddTrackArguments(line, tracks_, "The tracks to fix");
    line.AddOption("-o,--output", "FILE", output_file_, "Where to write the track");
    line.AddFlag("--in-place", in_place_, "Write each track to its own file");
    line.AddFlag("--diff", diff_, "Print the changes as a unified diff, and write nothing");
    line.AddFlag("--dry-run", dry_run_, "Say what would be fixed, and write nothing");
    line.AddRepeatedOption(
        "--only", "CODES",
        [this](const std::string& text) { check::AddPrefixes("--only", text, filter_.selected); },
        "Fix these codes only: Q408,Q3 is Q408 and all that\nbegin with Q3");
    line.AddRepeatedOption(
        "--skip", "CODES",
        [this](const std::string& text) { check::AddPrefixes("--skip", text, filter_.ignored); },
        "Leave these as they are");
    line.AddOption("--from", "ENCODING", encoding_,
                   "What the track is written in, such as ISO-8859-1 or\n"
                   "WINDOWS-1252; UTF-16, UTF-32 and gzip are seen without");
    line.AddFlag("--all", all_, "Say each thing that was fixed or left, however many");
    line.AddFlag("--quiet", quiet_, "Do not say what was fixed or left");
    host::AddLimitOption(line, limit_);
    console::AddModuleOption(line, module_);
    line.SetFooter(kFooter);
}

void FixCommand::CheckArguments() const {
    const auto reject = [](const std::string& words) {
        throw console::Failure(console::kExitUsage, "fix: " + words + " (--help says more)");
    };
    if (!tracks_.AreGiven()) {
        reject("TRACK or --files-from is required");
    }
    const int ways =
        (output_file_.empty() ? 0 : 1) + (in_place_ ? 1 : 0) + (diff_ ? 1 : 0) + (dry_run_ ? 1 : 0);
    if (ways > 1) {
        reject("only one of -o, --in-place, --diff and --dry-run can be given");
    }
    const bool is_one = tracks_.names.size() == 1 && tracks_.list.empty() &&
                        !std::filesystem::is_directory(tracks_.names[0]);
    if (!is_one && !in_place_ && !diff_ && !dry_run_) {
        reject("several tracks or a folder need --in-place, --diff or --dry-run");
    }
    if (in_place_ && std::count(tracks_.names.begin(), tracks_.names.end(), "-") > 0) {
        reject("standard input cannot be written in place");
    }
}

console::ExitCode FixCommand::Run(console::Output& output) {
    CheckArguments();
    return host::RunApart(limit_, [&] { return FixTracks(output); });
}

// A track that cannot be fixed does not keep the others from it.
console::ExitCode FixCommand::FixTracks(console::Output& output) {
    const std::string path = module_.empty() ? host::FindDefaultModule() : module_;
    host::DiagnosticsCapture capture(host::DiagnosticsCapture::Mode::kCollect);
    const host::ModuleHandle module(path);
    TrackFixer fixer(module, capture, filter_);
    console::ExitCode code = console::kExitDone;
    console::TrackList tracks(tracks_);
    for (;;) {
        try {
            const std::optional<std::string> track = tracks.Next();
            if (!track) {
                return code;
            }
            code = std::max(code, Fix(*track, fixer, output));
        } catch (const console::OutputError&) {
            throw;
        } catch (const console::Failure& failure) {
            console::Say(failure.what());
            code = std::max(code, failure.code());
        }
    }
}

console::ExitCode FixCommand::Fix(const std::string& track, TrackFixer& fixer,
                                  console::Output& output) const {
    const Source source = ReadSource(track, encoding_, filter_);
    const FixedTrack fixed = fixer.Run(source.text);
    if (fixed.problem) {
        throw console::Failure(console::kExitTrack, source.name +
                                                        ": nothing was written, as the fixes could "
                                                        "not be verified: " +
                                                        *fixed.problem);
    }
    if (IsRejected(fixed.left)) {
        const check::Finding& finding = fixed.left[0];
        throw console::Failure(console::kExitTrack,
                               source.name + ": nothing was written: " + finding.message + " [" +
                                   finding.code->number + "]; " + finding.hint());
    }
    const bool changed = fixed.text != source.bytes;
    const std::string words = Describe(source, fixed);
    if (diff_) {
        output.Write(UnifiedDiff(source.name, source.text, *fixed.document));
    } else if (dry_run_) {
        output.Write(words);
    } else {
        Write(track, fixed.text, changed, output);
        if (!quiet_) {
            console::WriteFully(STDERR_FILENO, words);
        }
    }
    const bool is_to_do = changed && (diff_ || dry_run_);
    return is_to_do || LosesSomething(fixed.left) ? console::kExitTrack : console::kExitDone;
}

void FixCommand::Write(const std::string& track, const std::string& text, bool changed,
                       console::Output& output) const {
    if (in_place_) {
        if (changed) {
            host::WriteWhole(track, text);
        }
    } else if (output_file_.empty() || output_file_ == "-") {
        output.Write(text);
    } else {
        host::WriteWhole(output_file_, text);
    }
}

std::string FixCommand::Describe(const Source& source, const FixedTrack& fixed) const {
    FoldedLines lines(all_);
    const auto add = [&](const Edit& edit) {
        lines.Add("fixed", *edit.code, [&] {
            return source.name + ":" + std::to_string(edit.line) + ": fixed: " + edit.Words() +
                   " [" + edit.code->number + "]";
        });
    };
    std::for_each(source.edits.begin(), source.edits.end(), add);
    std::vector<const Edit*> edits;
    for (const Edit& edit : fixed.document->edits()) {
        edits.push_back(&edit);
    }
    std::stable_sort(edits.begin(), edits.end(),
                     [](const Edit* a, const Edit* b) { return a->line < b->line; });
    for (const Edit* const edit : edits) {
        add(*edit);
    }
    for (const check::Finding& finding : fixed.left) {
        if (IsLeft(finding)) {
            lines.Add("left", *finding.code, [&] {
                return source.name + ":" + std::to_string(finding.line) +
                       ": left: " + check::SeverityName(finding.code->severity) + ": " +
                       finding.message + " [" + finding.code->number + "]; " +
                       WhyLeft(finding, *fixed.document, filter_) + ": " + finding.hint();
            });
        }
    }
    return lines.Take(source.name);
}

}  // namespace quill::fix
