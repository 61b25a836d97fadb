#include "gstreamer/track.h"

#include <algorithm>
#include <new>
#include <utility>

#include "guard/printed_capture.h"
#include "tools/host/exception_text.h"

namespace gstquillcaption {
namespace {

constexpr std::string_view kLineEnds = "\r\n";
// One may be taken for the second half of a carriage return's line end, one ends a line that the
// track left unfinished, one is the blank line that completes the last cue.
constexpr std::string_view kClosingLineFeeds = "\n\n\n";

// The first line as a message can show it.
std::string Quoted(std::string_view line) {
    constexpr std::size_t kMost = 40;
    std::string quoted(line.substr(0, std::min(line.find_first_of(kLineEnds), kMost)));
    std::replace_if(
        quoted.begin(), quoted.end(), [](char byte) { return byte < ' ' || byte > '~'; }, '?');
    return "\"" + quoted + "\"";
}

}  // namespace

Track::Track(const LoadedModule& module, std::uint32_t video_time, bool quiet)
    : methods_(module.methods()), quiet_(quiet) {
    const std::lock_guard<std::mutex> lock(ModuleLock());
    if (methods_.pfnCreate(&parser_) != WEBVTT_RESULT_OK) {
        throw std::bad_alloc();
    }
    methods_.pfnSetEventNty(parser_, this, &Track::OnEvent);
    if (video_time != 0) {
        methods_.pfnSetVideoPTS(parser_, video_time);
    }
}

Track::~Track() {
    const std::lock_guard<std::mutex> lock(ModuleLock());
    methods_.pfnRelease(parser_);
}

void Track::Feed(std::string_view bytes) {
    const std::lock_guard<std::mutex> lock(ModuleLock());
    const guard::PrintedCapture muted({nullptr, quiet_});
    while (!bytes.empty() && !given_up_) {
        // The line feed of a carriage return that ended the line before ends no line of its own.
        const bool may_follow_return = line_.empty() && bytes.front() == '\n' && after_return_;
        const std::size_t end = bytes.find_first_of(kLineEnds, may_follow_return ? 1 : 0);
        line_ += bytes.substr(0, end == std::string_view::npos ? end : end + 1);
        bytes.remove_prefix(std::min(bytes.size(), end == std::string_view::npos ? end : end + 1));
        if (end != std::string_view::npos) {
            FeedLine(std::exchange(line_, {}));
        } else if (line_.size() > kLongestLine) {
            GiveUp("a line has more than " + std::to_string(kLongestLine) + " bytes");
        }
    }
    Deliver();
}

void Track::Break() {
    line_.clear();
    after_return_ = false;
    Feed(kClosingLineFeeds);
}

void Track::Finish() {
    Feed(kClosingLineFeeds);
}

std::vector<Caption> Track::TakeCaptions() {
    return std::exchange(captions_, {});
}

std::vector<std::string> Track::TakeTroubles() {
    return std::exchange(troubles_, {});
}

// Runs inside the module, which must see no exception.
void Track::OnEvent(WEBVTT_EVENT_T event, void* tag, void* info) {
    Track& self = *static_cast<Track*>(tag);
    if (event != WEBVTT_EVENT_PARSE_RESULT) {
        return;
    }
    try {
        const WebvttCueNode* cue = static_cast<const WebvttDataInfo*>(info)->prCueList;
        for (; cue != nullptr; cue = cue->prNext) {
            self.captions_.push_back({*cue, cue->pcText});
            self.captions_.back().record.pcText = nullptr;
            self.captions_.back().record.prNext = nullptr;
        }
    } catch (const std::bad_alloc&) {
        self.given_up_ = true;
    }
}

void Track::FeedLine(std::string_view line) {
    const bool is_first = !std::exchange(began_, true);
    after_return_ = line.back() == '\r';
    const int result = Parse(line);
    if (is_first && result != WEBVTT_RESULT_HEADER) {
        GiveUp("the first line is " + Quoted(line) +
               ", not WEBVTT; quill check says more, and quill fix corrects it if it can");
    } else if (result == WEBVTT_RESULT_ERROR) {
        troubles_.emplace_back("a cue is lost: a start tag that is not known, or memory ran out");
    }
}

// No result of the module's after an exception.
int Track::Parse(std::string_view line) {
    try {
        return methods_.pfnParse(parser_, line.data(), static_cast<unsigned int>(line.size()));
    } catch (...) {
        // The text is copied here: the exception's code is the module's.
        troubles_.push_back("a cue or header is lost: the module threw " +
                            quill::host::DescribeCurrentException());
    }
    return -1;
}

void Track::Deliver() {
    if (began_) {
        methods_.pfnGetParseResult(parser_);
    }
}

void Track::GiveUp(const std::string& trouble) {
    troubles_.push_back("the rest of the track is ignored: " + trouble);
    given_up_ = true;
    line_ = {};
}

}  // namespace gstquillcaption
