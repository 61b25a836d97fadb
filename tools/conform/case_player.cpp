#include "tools/conform/case_player.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>

#include "tools/conform/case_notation.h"
#include "tools/host/exception_text.h"

namespace quill::conform {
namespace {

// More than any case delivers. A list that is linked in a circle must not fill the memory.
constexpr std::uint32_t kMostCues = 10000;
constexpr char kOrdinaryStart[] = "! Buffer Exhausted";
constexpr char kOrdinaryEnd[] = "! FINISHED";
constexpr char kOrdinaryResult[] = "= 0";
constexpr char kOpening[] = "WEBVTT\n\n";
constexpr char kTimes[] = "00:01.000 --> 00:02.000";

// Takes the lines away that nearly every chunk ends in, when they are all there.
void DropOrdinaryFrame(std::vector<std::string>& lines) {
    const std::size_t size = lines.size();
    if (size >= 3 && lines[0] == kOrdinaryStart && lines[size - 2] == kOrdinaryEnd &&
        lines[size - 1] == kOrdinaryResult) {
        lines.erase(lines.end() - 2, lines.end());
        lines.erase(lines.begin());
    }
}

// "= 1*3 0*12" for a result 1 three times and then a result 0 twelve times.
std::string CountRuns(const std::vector<std::string>& results) {
    std::string text = "=";
    for (std::size_t i = 0; i < results.size();) {
        std::size_t end = i;
        while (end < results.size() && results[end] == results[i]) {
            ++end;
        }
        text += " " + results[i] + "*" + std::to_string(end - i);
        i = end;
    }
    return text;
}

}  // namespace

CasePlayer::CasePlayer(const WebvttModuleMethods& methods, PrintedText& printed)
    : methods_(methods), printed_(printed) {
    tags_.fill({this});
}

std::vector<std::string> CasePlayer::Play(const CaseCall& call) {
    static const std::map<std::string, std::function<void(CasePlayer&, const CaseCall&)>> kVerbs = {
        {"create", &CasePlayer::Create},
        {"start", &CasePlayer::Start},
        {"open", &CasePlayer::Open},
        {"use", &CasePlayer::Use},
        {"pieces", &CasePlayer::FeedPieces},
        {"create-null",
         [](CasePlayer& self, const CaseCall&) {
             const int result = self.methods_.pfnCreate(nullptr);
             self.Add(DescribePrinted(self.printed_.Take()));
             self.Add({"= " + std::to_string(result)});
         }},
        {"register", [](CasePlayer& self,
                        const CaseCall& one) { self.Register(one.number, &CasePlayer::OnEvent); }},
        {"register-null",
         [](CasePlayer& self, const CaseCall& one) { self.Register(one.number, nullptr); }},
        {"feed",
         [](CasePlayer& self, const CaseCall& one) { self.Add(self.FeedBytes(one.bytes)); }},
        {"feed-null",
         [](CasePlayer& self, const CaseCall& one) { self.Add(self.Parse(nullptr, one.number)); }},
        {"feed-empty",
         [](CasePlayer& self, const CaseCall&) { self.Add(self.Parse("not read", 0)); }},
        {"show", [](CasePlayer& self, const CaseCall& one) { self.Show(one.bytes); }},
        {"settings",
         [](CasePlayer& self, const CaseCall& one) {
             self.Show(std::string(kTimes) + " " + one.bytes + "\nx\n\n");
         }},
        {"payload",
         [](CasePlayer& self, const CaseCall& one) {
             self.Show(std::string(kTimes) + "\n" + one.bytes + "\n\n");
         }},
        {"payload-exact",
         [](CasePlayer& self, const CaseCall& one) {
             self.Show(std::string(kTimes) + "\n" + one.bytes + '\0' + "\n\n");
         }},
        {"take", [](CasePlayer& self, const CaseCall&) { self.Take(); }},
        {"pts",
         [](CasePlayer& self, const CaseCall& one) {
             self.methods_.pfnSetVideoPTS(self.handle_, one.number);
         }},
        {"release",
         [](CasePlayer& self, const CaseCall&) { self.methods_.pfnRelease(self.handle_); }},
    };
    lines_.clear();
    try {
        kVerbs.at(call.verb)(*this, call);
    } catch (...) {
        Add(DescribePrinted(printed_.Take()));
        Add({"throws " + host::DescribeCurrentException()});
    }
    Add(DescribePrinted(printed_.Take()));
    return lines_;
}

void CasePlayer::Add(const Lines& lines) {
    lines_.insert(lines_.end(), lines.begin(), lines.end());
}

void CasePlayer::Create(const CaseCall& call) {
    unsigned int handle = 0;
    const int result = methods_.pfnCreate(&handle);
    if (result != WEBVTT_RESULT_OK) {
        Add({"= " + std::to_string(result)});
    }
    if (handle == 0) {
        Add({"the handle is 0"});
    }
    handles_[call.name] = handle;
    handle_ = handle;
}

void CasePlayer::Start(const CaseCall& call) {
    Create(call);
    Register(0, &CasePlayer::OnEvent);
}

void CasePlayer::Open(const CaseCall& call) {
    Start(call);
    Lines lines = FeedBytes(kOpening);
    DropOrdinaryFrame(lines);
    Add(lines);
}

void CasePlayer::Use(const CaseCall& call) {
    const auto known = handles_.find(call.name);
    if (known != handles_.end()) {
        handle_ = known->second;
    } else if (const std::optional<std::uint32_t> number = ParseNumber(call.name)) {
        handle_ = *number;
    } else {
        Add({"the case has no parser of that name"});
    }
}

void CasePlayer::Register(std::uint32_t tag, WebvttEventNotify notify) {
    methods_.pfnSetEventNty(handle_, &tags_.at(tag), notify);
}

// What a call of pfnParse prints, and how it ends.
std::vector<std::string> CasePlayer::Parse(const void* data, unsigned int size) {
    std::string ending;
    try {
        ending = "= " + std::to_string(methods_.pfnParse(handle_, data, size));
    } catch (...) {
        ending = "throws " + host::DescribeCurrentException();
    }
    Lines lines = DescribePrinted(printed_.Take());
    lines.push_back(ending);
    return lines;
}

// The chunk lies in a block of its own, which is overwritten when the call is over: a module that
// keeps a pointer into it is found out.
std::vector<std::string> CasePlayer::FeedBytes(std::string_view bytes) {
    const auto block = std::make_unique<char[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), block.get());
    Lines lines = Parse(block.get(), static_cast<unsigned int>(bytes.size()));
    std::memset(block.get(), 0xDD, bytes.size());
    return lines;
}

void CasePlayer::FeedPieces(const CaseCall& call) {
    std::string_view rest = call.bytes;
    Lines results;
    while (!rest.empty()) {
        const std::string_view piece = rest.substr(0, std::max<std::size_t>(call.number, 1));
        rest.remove_prefix(piece.size());
        Lines lines = FeedBytes(piece);
        if (lines.back().compare(0, 2, "= ") == 0) {
            results.push_back(lines.back().substr(2));
            lines.pop_back();
        }
        lines.erase(std::remove_if(lines.begin(), lines.end(),
                                   [](const std::string& line) {
                                       return line == kOrdinaryStart || line == kOrdinaryEnd;
                                   }),
                    lines.end());
        Add(lines);
    }
    Add({CountRuns(results)});
}

void CasePlayer::Show(const std::string& bytes) {
    Lines lines = FeedBytes(bytes);
    DropOrdinaryFrame(lines);
    Add(lines);
    Take();
}

void CasePlayer::Take() {
    delivered_.clear();
    methods_.pfnGetParseResult(handle_);
    Add(DescribePrinted(printed_.Take()));
    Add(delivered_);
}

void CasePlayer::OnEvent(WEBVTT_EVENT_T event, void* tag, void* info) {
    const Tag* const place = static_cast<Tag*>(tag);
    CasePlayer& player = *place->player;
    player.NoteEvent(event, static_cast<std::size_t>(place - player.tags_.data()),
                     *static_cast<const WebvttDataInfo*>(info));
}

void CasePlayer::NoteEvent(WEBVTT_EVENT_T event, std::size_t tag, const WebvttDataInfo& info) {
    if (!delivered_.empty()) {
        delivered_.emplace_back("the callback was called again");
    }
    if (tag != 0) {
        delivered_.push_back("tag " + std::to_string(tag));
    }
    std::uint32_t count = 0;
    for (const WebvttCueNode* cue = info.prCueList; cue != nullptr; cue = cue->prNext) {
        if (++count > kMostCues) {
            delivered_ = {"the list of cues does not end"};
            return;
        }
        delivered_.push_back(DescribeCue(*cue));
    }
    if (count == 0) {
        delivered_.emplace_back("no cue");
    }
    if (event != WEBVTT_EVENT_PARSE_RESULT || info.u4CueCount != count || info.u4Reserved != 0) {
        delivered_.push_back("event " + std::to_string(event) + ", count " +
                             std::to_string(info.u4CueCount) + ", reserved " +
                             std::to_string(info.u4Reserved));
    }
}

}  // namespace quill::conform
