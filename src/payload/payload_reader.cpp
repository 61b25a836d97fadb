#include "payload/payload_reader.h"

#include "base/diagnostics.h"
#include "base/errors.h"
#include "base/value_parsers.h"
#include "payload/tokenizer.h"

namespace webvtt {
namespace {

struct Tag {
    std::string_view name;
    Node_Type eType;
};

constexpr Tag kTags[] = {
    {"c", NODE_CLASS},   {"i", NODE_ITALIC},     {"b", NODE_BOLD},  {"u", NODE_UNDERLINE},
    {"ruby", NODE_RUBY}, {"rt", NODE_RUBY_TEXT}, {"v", NODE_VOICE}, {"lang", NODE_LANGUAGE},
};

/// NODE_ROOT when no tag has this name.
Node_Type find_tag(std::string_view name) {
    for (const Tag& tag : kTags) {
        if (tag.name == name) {
            return tag.eType;
        }
    }
    return NODE_ROOT;
}

/// Where the ordinary text at the front ends.
std::size_t find_run_end(std::string_view payload) {
    std::size_t end = 0;
    while (end < payload.size() && payload[end] != '<' && payload[end] != '&') {
        ++end;
    }
    return end;
}

void read_start_tag(const std::string& name, PayloadSink& sink) {
    const Node_Type eType = find_tag(name);
    if (eType == NODE_ROOT) {
        // "Ignored" is what it prints, but the rest of the payload is given up: hosts count on
        // the result code 2 that this ends in.
        print_error("unexcepted start tag <%s> detected. Ignored", name.c_str());
        throw BadAllocException("create new Node Failed\n", nullptr);
    }
    sink.vOpenTag(eType);
}

void read_end_tag(const std::string& name, PayloadSink& sink) {
    const Node_Type eType = find_tag(name);
    if (eType == NODE_ROOT) {
        print_error("unexcepted end tag <%s> detected. Ignored", name.c_str());
        return;
    }
    sink.vCloseTag(eType);
}

void read_timestamp(const std::string& text, PayloadSink& sink) {
    double checked = 0.0;
    if (!parse_timestamp(text, checked)) {
        print_error("Invalid time stamp tag <%s> detected. Ignored", text.c_str());
        return;
    }
    sink.vTimestamp();
}

}  // namespace

void read_payload(Cue& cue, std::string_view payload, PayloadSink& sink) {
    while (!payload.empty()) {
        // Text that ends at a tag, or at the end, is a token as it lies there.
        const std::size_t run = find_run_end(payload);
        if (run == payload.size() || (run != 0 && payload[run] == '<')) {
            sink.vText(payload.substr(0, run));
            payload.remove_prefix(run);
            continue;
        }
        Cue::Tokenizer_Data token(payload.data(), static_cast<int>(payload.size()));
        switch (cue.eTokenizer(token)) {
            case Cue::TOKEN_STRING:
                sink.vText(token.strResult.text);
                break;
            case Cue::TOKEN_START_TAG:
                read_start_tag(token.strResult.text, sink);
                break;
            case Cue::TOKEN_END_TAG:
                read_end_tag(token.strResult.text, sink);
                break;
            case Cue::TOKEN_TIMESTAMP:
                read_timestamp(token.strResult.text, sink);
                break;
            case Cue::TOKEN_NONE:  // a list of classes that a line feed ended
                break;
        }
        payload.remove_prefix(static_cast<std::size_t>(token.iPosition));
    }
}

}  // namespace webvtt
