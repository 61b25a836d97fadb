#include "tools/conform/cases/case_player.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

#include "support/cue_record.h"
#include "support/exact_block.h"
#include "support/notation.h"
#include "tools/host/exception_text.h"

namespace quill::conform {
namespace {

using namespace std::string_view_literals;

constexpr char kOrdinaryStart[] = "! Buffer Exhausted";
constexpr char kOrdinaryEnd[] = "! FINISHED";
constexpr char kOrdinaryResult[] = "= 0";
constexpr char kOpening[] = "WEBVTT\n\n";
constexpr std::string_view kTimes = "00:01.000 --> 00:02.000 ";
constexpr std::string_view kTimesLine = "00:01.000 --> 00:02.000\n";

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

const Verb* Verb::Find(std::string_view name) {
    static constexpr Verb kVerbs[] = {
        {"create", Arguments::kOptionalName, &CasePlayer::Create},
        {"start", Arguments::kOptionalName, &CasePlayer::Start},
        {"open", Arguments::kOptionalName, &CasePlayer::Open},
        {"create-null", Arguments::kNone, &CasePlayer::CreateNull},
        {"use", Arguments::kName, &CasePlayer::Use},
        {"register", Arguments::kTag, &CasePlayer::Register},
        {"register-null", Arguments::kTag, &CasePlayer::RegisterNull},
        {"feed", Arguments::kBytes, &CasePlayer::Feed},
        {"feed-null", Arguments::kNumber, &CasePlayer::FeedNull},
        {"feed-empty", Arguments::kNone, &CasePlayer::FeedEmpty},
        {"pieces", Arguments::kNumberAndBytes, &CasePlayer::FeedPieces},
        {"send", Arguments::kBytes, &CasePlayer::Send},
        {"show", Arguments::kBytes, &CasePlayer::Show},
        {"settings", Arguments::kBytes, &CasePlayer::Show, kTimes, "\nx\n\n"},
        {"payload", Arguments::kBytes, &CasePlayer::Show, kTimesLine, "\n\n"},
        {"payload-exact", Arguments::kBytes, &CasePlayer::Show, kTimesLine, "\0\n\n"sv},
        {"take", Arguments::kNone, &CasePlayer::Take},
        {"take-feeding", Arguments::kBytes, &CasePlayer::TakeFeeding},
        {"pts", Arguments::kNumber, &CasePlayer::SetVideoTime},
        {"release", Arguments::kNone, &CasePlayer::Release},
    };
    const auto* const found = std::find_if(std::begin(kVerbs), std::end(kVerbs),
                                           [name](const Verb& one) { return one.name == name; });
    return found != std::end(kVerbs) ? found : nullptr;
}

std::string Verb::Whole(std::string_view bytes) const {
    return std::string(front).append(bytes).append(back);
}

CasePlayer::CasePlayer(const support::Methods& methods, Printed printed)
    : methods_(methods), printed_(std::move(printed)) {
    tags_.fill({this});
}

CasePlayer::~CasePlayer() {
    for (const support::Handle handle : live_) {
        methods_.release(handle);
    }
}

std::vector<std::string> CasePlayer::Play(const CaseCall& call) {
    lines_.clear();
    try {
        if (!std::exchange(is_begun_, true) && !call.verb->names_parser()) {
            Open({});
        }
        (this->*call.verb->act)(call);
    } catch (...) {
        Add(support::describe_printed(printed_()));
        Add({"throws " + host::DescribeCurrentException()});
    }
    Add(support::describe_printed(printed_()));
    return lines_;
}

void CasePlayer::Add(const Lines& lines) {
    lines_.insert(lines_.end(), lines.begin(), lines.end());
}

void CasePlayer::Create(const CaseCall& call) {
    support::Handle handle = 0;
    const int result = methods_.create(&handle);
    if (result != 0) {
        Add({"= " + std::to_string(result)});
    }
    if (handle == 0) {
        Add({"the handle is 0"});
    } else {
        live_.insert(handle);
    }
    handles_[call.name] = handle;
    handle_ = handle;
}

void CasePlayer::CreateNull(const CaseCall& /*call*/) {
    const int result = methods_.create(nullptr);
    Add(support::describe_printed(printed_()));
    Add({"= " + std::to_string(result)});
}

void CasePlayer::Start(const CaseCall& call) {
    Create(call);
    Register(call);  // whose number is 0
}

void CasePlayer::Open(const CaseCall& call) {
    Start(call);
    SendBytes(kOpening);
}

void CasePlayer::Use(const CaseCall& call) {
    const auto known = handles_.find(call.name);
    if (known != handles_.end()) {
        handle_ = known->second;
    } else if (const std::optional<std::uint32_t> number = support::parse_number(call.name)) {
        handle_ = *number;
    } else {
        Add({"the case has no parser of that name"});
    }
}

void CasePlayer::Register(const CaseCall& call) {
    methods_.set_callback(handle_, &tags_.at(call.number), &CasePlayer::OnEvent);
}

void CasePlayer::RegisterNull(const CaseCall& call) {
    methods_.set_callback(handle_, &tags_.at(call.number), nullptr);
}

// What a call of Parse prints, and how it ends.
std::vector<std::string> CasePlayer::Parse(const void* data, unsigned int size) {
    std::string ending;
    try {
        ending = "= " + std::to_string(methods_.parse(handle_, data, size));
    } catch (...) {
        ending = "throws " + host::DescribeCurrentException();
    }
    Lines lines = support::describe_printed(printed_());
    lines.push_back(ending);
    return lines;
}

std::vector<std::string> CasePlayer::FeedBytes(std::string_view bytes) {
    support::ExactBlock block(bytes);
    return Parse(block.data(), block.size());
}

void CasePlayer::Feed(const CaseCall& call) {
    Add(FeedBytes(call.bytes));
}

void CasePlayer::FeedNull(const CaseCall& call) {
    Add(Parse(nullptr, call.number));
}

void CasePlayer::FeedEmpty(const CaseCall& /*call*/) {
    Add(Parse("not read", 0));
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

void CasePlayer::Send(const CaseCall& call) {
    SendBytes(call.bytes);
}

void CasePlayer::SendBytes(std::string_view bytes) {
    Lines lines = FeedBytes(bytes);
    DropOrdinaryFrame(lines);
    Add(lines);
}

void CasePlayer::Show(const CaseCall& call) {
    SendBytes(call.verb->Whole(call.bytes));
    Take({});
}

void CasePlayer::Take(const CaseCall& /*call*/) {
    delivered_.clear();
    methods_.get_result(handle_);
    Add(support::describe_printed(printed_()));
    Add(delivered_);
}

void CasePlayer::TakeFeeding(const CaseCall& call) {
    fed_in_callback_ = call.bytes;
    Take({});
    fed_in_callback_.clear();
}

void CasePlayer::SetVideoTime(const CaseCall& call) {
    methods_.set_video_time(handle_, call.number);
}

void CasePlayer::Release(const CaseCall& /*call*/) {
    live_.erase(handle_);
    methods_.release(handle_);
}

void CasePlayer::OnEvent(int event, void* tag, void* info) {
    const Tag* const place = static_cast<Tag*>(tag);
    CasePlayer& player = *place->player;
    player.NoteEvent(event, static_cast<std::size_t>(place - player.tags_.data()), info);
    if (!player.fed_in_callback_.empty()) {
        const Lines lines = player.FeedBytes(player.fed_in_callback_);
        player.delivered_.insert(player.delivered_.end(), lines.begin(), lines.end());
    }
}

void CasePlayer::NoteEvent(int event, std::size_t tag, const void* info) {
    const support::Delivery delivery(info);
    if (!delivery.has_end) {
        delivered_ = {"the list of cues does not end"};
        return;
    }
    if (!delivered_.empty()) {
        delivered_.emplace_back("the callback was called again");
    }
    if (tag != 0) {
        delivered_.push_back("tag " + std::to_string(tag));
    }
    for (const support::CueRecord& cue : delivery.cues) {
        delivered_.push_back(support::describe(cue));
    }
    if (delivery.cues.empty()) {
        delivered_.emplace_back("no cue");
    }
    if (event != 0 || delivery.count != delivery.cues.size() || delivery.reserved != 0) {
        delivered_.push_back("event " + std::to_string(event) + ", count " +
                             std::to_string(delivery.count) + ", reserved " +
                             std::to_string(delivery.reserved));
    }
}

}  // namespace quill::conform
