#include "guard/rules.h"

#include <algorithm>
#include <string_view>

namespace guard {
namespace {

constexpr unsigned long kHalfOf32Bits = 0x80000000UL;

bool is_chunk(const Call& call) {
    return call.data != nullptr && call.size != 0;
}

std::string_view chunk_of(const Call& call) {
    return {static_cast<const char*>(call.data), call.size};
}

bool has_whole_line(std::string_view chunk) {
    return chunk.find_first_of("\r\n") != std::string_view::npos;
}

/// Whether the module takes the chunk's first line for a track's.
bool has_signature(std::string_view chunk) {
    constexpr std::string_view kSignature = "WEBVTT";
    return has_whole_line(chunk) && chunk.substr(0, kSignature.size()) == kSignature &&
           std::string_view("\r\n\t ").find(chunk[kSignature.size()]) != std::string_view::npos;
}

bool begins_or_ends_parsers(Function function) {
    return function == Function::kCreate || function == Function::kRelease;
}

Detail& operator<<(Detail& detail, const CallInProgress& other) {
    return detail << "call " << other.number << ", " << name_of(other.function) << ", on thread "
                  << other.thread;
}

void check_chunk(Call& call) {
    const Parser& parser = *call.parser;
    if (!is_chunk(call)) {
        call.found.add(Mistake::kNoChunk)
            << (call.data == nullptr ? "null, " : "") << call.size << " bytes";
    } else if (parser.is_rejected) {
        call.found.add(Mistake::kFedAfterRejection) << call.size << " bytes";
    } else if (!parser.is_begun && !has_whole_line(chunk_of(call))) {
        call.found.add(Mistake::kCutFirstLine) << call.size << " bytes without a line end";
    }
}

void check_video_time(Call& call) {
    const Parser& parser = *call.parser;
    if (call.ticks == parser.video_time) {
        return;
    }
    if (parser.blocks.has_cues()) {
        call.found.add(Mistake::kVideoTimeLate) << "cues wait to be taken";
    } else if (!parser.has_video_time && parser.has_cues) {
        call.found.add(Mistake::kVideoTimeLate)
            << "it is the first one, and cues have been taken before";
    }
    if (call.ticks < parser.video_time && parser.video_time - call.ticks > kHalfOf32Bits) {
        call.found.add(Mistake::kVideoTimeWrapped)
            << "from " << parser.video_time << " to " << call.ticks;
    }
}

void follow_chunk(const Call& call, Parser& parser) {
    const std::string_view chunk = chunk_of(call);
    const bool is_lost = call.has_thrown || call.result == WEBVTT_RESULT_ERROR;
    if (is_lost && !call.has_thrown && !parser.is_begun && !has_signature(chunk)) {
        parser.is_rejected = true;
    }
    parser.is_begun = true;
    parser.has_fed_since = true;
    if (is_lost) {
        parser.blocks.lose_rest();
        return;
    }
    parser.is_in_header = !parser.is_rejected && call.result == WEBVTT_RESULT_HEADER;
    if (!parser.is_rejected && !parser.is_in_header) {
        parser.blocks.feed(chunk);
        parser.has_cues = parser.has_cues || parser.blocks.has_cues();
    }
}

}  // namespace

void find_parser(Call& call, ParserTable& parsers) {
    call.parser = parsers.find(call.handle);
    if (call.parser != nullptr) {
        call.inner = call.parser->inner;
        return;
    }
    if (!parsers.was_given(call.handle)) {
        call.found.add(Mistake::kUnknownHandle);
        return;
    }
    const ReleasedHandle* const released = parsers.find_released(call.handle);
    const Parser* const now = released != nullptr ? parsers.find_inner(released->inner) : nullptr;
    Detail& detail =
        call.found.add(now != nullptr ? Mistake::kGivenAgain : Mistake::kReleasedHandle);
    if (released != nullptr) {
        detail << "it was parser " << released->parser << "'s, released by call " << released->call;
    }
    if (now != nullptr) {
        detail << "; now it is parser " << now->number << "'s";
    }
}

void check_overlaps(Call& call, const CallsInProgress& calls) {
    for (const CallInProgress& other : calls) {
        if (other.thread == call.thread) {
            continue;
        }
        if (begins_or_ends_parsers(call.function) || begins_or_ends_parsers(other.function)) {
            call.found.add(Mistake::kOverlapWithLife) << "with " << other;
            return;
        }
        if (call.parser != nullptr && other.parser == call.parser) {
            call.found.add(Mistake::kOverlapOnParser) << "with " << other;
            return;
        }
    }
}

void check_callback(Call& call, const CallsInProgress& calls) {
    const auto* const outer =
        std::find_if(calls.begin(), calls.end(), [&call](const CallInProgress& one) {
            return one.is_in_callback && one.thread == call.thread && one.parser == call.parser;
        });
    if (call.parser == nullptr || outer == calls.end()) {
        return;
    }
    if (call.function == Function::kRelease) {
        call.found.add(Mistake::kReleaseInCallback) << "of call " << outer->number;
    } else if (call.function == Function::kParse) {
        call.found.add(Mistake::kParseInCallback) << "of call " << outer->number;
    } else if (call.function == Function::kGetParseResult) {
        call.found.add(Mistake::kResultInCallback) << "of call " << outer->number;
        call.is_passed_on = false;
    }
}

void check_arguments(Call& call) {
    if (call.parser == nullptr) {
        return;
    }
    if (call.function == Function::kParse) {
        check_chunk(call);
    } else if (call.function == Function::kSetVideoPts) {
        check_video_time(call);
    } else if (call.function == Function::kGetParseResult && call.parser->notify == nullptr) {
        call.found.add(Mistake::kNoCallback);
        call.is_passed_on = false;
    }
}

void follow(const Call& call) {
    if (call.parser == nullptr || !call.is_passed_on) {
        return;
    }
    Parser& parser = *call.parser;
    if (call.function == Function::kParse && is_chunk(call)) {
        follow_chunk(call, parser);
    } else if (call.function == Function::kGetParseResult) {
        parser.was_taken = true;
        parser.has_fed_since = false;
        parser.blocks.take();
    } else if (call.function == Function::kSetVideoPts) {
        parser.has_video_time = true;
        parser.video_time = call.ticks;
    }
}

void check_release(Call& call, unsigned waiting) {
    const Parser& parser = *call.parser;
    if (waiting != 0) {
        call.found.add(parser.was_taken ? Mistake::kCuesWaiting : Mistake::kNeverTaken)
            << waiting << (waiting == 1 ? " cue" : " cues");
    }
    if (parser.blocks.is_unfinished()) {
        call.found.add(Mistake::kUnfinishedBlock);
    }
}

void check_time(Call& call, unsigned slow_ms, unsigned long took_ms) {
    if (slow_ms != 0 && took_ms > slow_ms) {
        call.found.add(Mistake::kSlowCall) << took_ms << " ms";
    }
}

}  // namespace guard
