#include "tools/replay/session_player.h"

#include <cmath>
#include <limits>
#include <utility>

#include "support/cue_record.h"
#include "support/exact_block.h"
#include "tools/host/exception_text.h"

namespace quill::replay {
namespace {

// What is no finite number is not told apart by a log.
void Unify(double& time) {
    if (!std::isfinite(time)) {
        time = std::numeric_limits<double>::quiet_NaN();
    }
}

Delivery CopyOf(support::Delivery delivered) {
    for (support::CueRecord& cue : delivered.cues) {
        Unify(cue.start);
        Unify(cue.end);
    }
    return {std::move(delivered.cues), delivered.count, delivered.reserved};
}

}  // namespace

SessionPlayer::SessionPlayer(const Session& session, const support::Methods& methods,
                             Printed printed, PlaySink& sink)
    : session_(session), methods_(methods), printed_(std::move(printed)), sink_(sink) {}

SessionPlayer::~SessionPlayer() {
    for (const auto& [number, parser] : parsers_) {
        methods_.release(parser.handle);
    }
}

void SessionPlayer::Play() {
    for (const Call& call : session_.calls) {
        if (!call.within) {
            PlayCall(call);
        }
    }
}

void SessionPlayer::PlayCall(const Call& call) {
    Parser* const parser = call.function == Function::kCreate ? nullptr : Find(call.parser);
    if (!goes_on_ || !CanBeMade(call, parser)) {
        return;
    }
    // What was printed up to now is the outer call's.
    if (!frames_.empty()) {
        frames_.back()->outcome.printed += printed_();
    }
    Frame frame = {call, {}};
    frames_.push_back(&frame);
    sink_.Begin(call);
    if (parser != nullptr) {
        ++parser->calls;
    }
    try {
        Make(call, parser, frame.outcome);
    } catch (...) {
        frame.outcome.exception = host::DescribeCurrentException();
    }
    if (parser != nullptr) {
        End(call, *parser);
    }
    frame.outcome.printed += printed_();
    frames_.pop_back();
    goes_on_ = goes_on_ && sink_.End(call, frame.outcome);
}

// A parser that is to go does so when the last call on it is over.
void SessionPlayer::End(const Call& call, Parser& parser) {
    parser.is_released = parser.is_released || call.ends_parser;
    if (--parser.calls == 0 && parser.is_released) {
        methods_.release(parser.handle);
        parsers_.erase(call.parser);
    }
}

bool SessionPlayer::CanBeMade(const Call& call, const Parser* parser) const {
    const bool would_crash = call.function == Function::kGetParseResult && parser != nullptr &&
                             (!parser->has_callback || parser->deliveries != 0);
    return call.was_passed_on && !would_crash;
}

void SessionPlayer::Make(const Call& call, Parser* parser, Outcome& outcome) {
    // The module refuses 0, as it refuses any handle that is not live.
    const support::Handle handle = parser != nullptr ? parser->handle : 0;
    switch (call.function) {
        case Function::kCreate:
            Create(call, outcome);
            break;
        case Function::kRelease:
            if (parser != nullptr) {
                parser->is_released = true;
            } else {
                methods_.release(handle);
            }
            break;
        case Function::kParse:
            outcome.result = Parse(call, handle);
            break;
        case Function::kSetEventNty:
            if (parser != nullptr) {
                parser->has_callback = parser->has_callback || call.has_pointer;
            }
            methods_.set_callback(handle, parser, call.has_pointer ? &OnEvent : nullptr);
            break;
        case Function::kGetParseResult:
            if (parser != nullptr) {
                ++parser->deliveries;
            }
            methods_.get_result(handle);
            if (parser != nullptr) {
                --parser->deliveries;
            }
            break;
        case Function::kSetVideoPts:
            methods_.set_video_time(handle, call.ticks);
            break;
    }
}

void SessionPlayer::Create(const Call& call, Outcome& outcome) {
    if (!call.has_pointer) {
        outcome.result = methods_.create(nullptr);
        return;
    }
    support::Handle handle = 0;
    outcome.result = methods_.create(&handle);
    if (outcome.result != 0) {
        return;
    }
    // No later call can be for a parser that the recording does not have.
    if (call.parser == 0) {
        methods_.release(handle);
    } else {
        parsers_[call.parser] = {this, handle};
    }
}

int SessionPlayer::Parse(const Call& call, support::Handle handle) const {
    if (!call.has_pointer) {
        return methods_.parse(handle, nullptr, call.size);
    }
    support::ExactBlock block(call.bytes);
    return methods_.parse(handle, block.data(), block.size());
}

SessionPlayer::Parser* SessionPlayer::Find(std::uint32_t number) {
    const auto found = parsers_.find(number);
    return found != parsers_.end() && !found->second.is_released ? &found->second : nullptr;
}

void SessionPlayer::OnEvent(int /*event*/, void* tag, void* info) {
    static_cast<Parser*>(tag)->player->PlayNested(info);
}

void SessionPlayer::PlayNested(const void* info) {
    Frame& frame = *frames_.back();
    frame.outcome.deliveries.push_back(CopyOf(support::Delivery(info)));
    const std::size_t delivery = frame.outcome.deliveries.size();
    for (const Nested& nested : frame.call.nested) {
        if (nested.delivery == delivery) {
            PlayCall(session_.calls[nested.call]);
        }
    }
}

}  // namespace quill::replay
