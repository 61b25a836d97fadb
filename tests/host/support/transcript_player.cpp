#include "host/support/transcript_player.h"

#include <cstdlib>
#include <map>
#include <new>
#include <sstream>
#include <stdexcept>

#include "support/exact_block.h"
#include "support/notation.h"
#include "support/stdout_capture.h"

namespace support::host {
namespace {

const std::string kErrorPrefix = "[WEBVTT] ERR:: ";
const std::string kExhausted = "  ! Buffer Exhausted\n";
const std::string kFinished = "  ! FINISHED\n  = 0\n";

bool starts_with(const std::string& text, const std::string& front) {
    return text.compare(0, front.size(), front) == 0;
}

bool ends_with(const std::string& text, const std::string& back) {
    return text.size() >= back.size() &&
           text.compare(text.size() - back.size(), std::string::npos, back) == 0;
}

/// Printed bytes, one indented line for each of theirs.
std::string printed_lines(const std::string& bytes) {
    std::string lines;
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t end = bytes.find('\n', at);
        const std::string line = bytes.substr(at, end - at);
        if (end == std::string::npos) {
            return lines + "  without line feed | " + escape(line) + "\n";
        }
        if (starts_with(line, kErrorPrefix)) {
            lines += "  ! " + escape(line.substr(kErrorPrefix.size())) + "\n";
        } else {
            lines += line.empty() ? "  |\n" : "  | " + escape(line) + "\n";
        }
        at = end + 1;
    }
    return lines;
}

std::string thrown(const char* type, const std::exception& error) {
    return std::string("  throws ") + type + " " + quote(error.what()) + "\n";
}

std::size_t count_of(const std::string& text) {
    return std::stoul(text);
}

}  // namespace

TranscriptPlayer::TranscriptPlayer(const Methods& methods) : m_methods(methods) {
    m_tags.fill(Tag{this});
    if (m_methods.create(&m_handle) != 0) {
        std::abort();
    }
    register_callback(0);
}

std::string TranscriptPlayer::call(const std::string& text) {
    using Verb = std::string (TranscriptPlayer::*)(const std::string&);
    static const std::map<std::string, Verb> kVerbs = {
        {"open", &TranscriptPlayer::open},
        {"feed", &TranscriptPlayer::feed},
        {"feed-null", &TranscriptPlayer::feed_null},
        {"feed-empty", &TranscriptPlayer::feed_empty},
        {"show", &TranscriptPlayer::show},
        {"settings", &TranscriptPlayer::show_settings},
        {"payload", &TranscriptPlayer::show_payload},
        {"payload-exact", &TranscriptPlayer::show_exact_payload},
        {"take", &TranscriptPlayer::take},
        {"video-time", &TranscriptPlayer::set_video_time},
        {"register", &TranscriptPlayer::register_tag},
        {"register-null", &TranscriptPlayer::register_null},
    };
    std::istringstream words(text);
    std::string verb;
    std::string rest;
    words >> verb >> std::ws;
    std::getline(words, rest, '\0');
    const auto found = kVerbs.find(verb);
    return found != kVerbs.end() ? (this->*found->second)(rest) : "  no such call\n";
}

/// What a call of parse prints, and how it ends.
std::string TranscriptPlayer::parse(const void* data, unsigned size) {
    StdoutCapture capture;
    std::string ending;
    try {
        ending = "  = " + std::to_string(m_methods.parse(m_handle, data, size)) + "\n";
    } catch (const std::out_of_range& error) {
        ending = thrown("std::out_of_range", error);
    } catch (const std::bad_alloc& error) {
        ending = thrown("std::bad_alloc", error);
    } catch (const std::exception& error) {
        ending = thrown("std::exception", error);
    }
    return printed_lines(capture.take()) + ending;
}

std::string TranscriptPlayer::feed_bytes(const std::string& bytes) {
    ExactBlock block(bytes);
    return parse(block.data(), block.size());
}

std::string TranscriptPlayer::feed(const std::string& quoted) {
    return feed_bytes(unquote(quoted));
}

std::string TranscriptPlayer::feed_null(const std::string& size) {
    return parse(nullptr, static_cast<unsigned>(count_of(size)));
}

std::string TranscriptPlayer::feed_empty(const std::string& /*none*/) {
    ExactBlock block("not read");
    return parse(block.data(), 0);
}

std::string TranscriptPlayer::open(const std::string& /*none*/) {
    const std::string result = feed_bytes("WEBVTT\n\n");
    return result == kExhausted + kFinished ? "" : result;
}

std::string TranscriptPlayer::show_bytes(const std::string& bytes) {
    std::string result = feed_bytes(bytes);
    if (starts_with(result, kExhausted) && ends_with(result, kFinished)) {
        const std::size_t frame = kExhausted.size() + kFinished.size();
        result = result.substr(kExhausted.size(), result.size() - frame);
    }
    return result + take("");
}

std::string TranscriptPlayer::show(const std::string& quoted) {
    return show_bytes(unquote(quoted));
}

std::string TranscriptPlayer::show_settings(const std::string& quoted) {
    return show_bytes("00:01.000 --> 00:02.000 " + unquote(quoted) + "\nx\n\n");
}

std::string TranscriptPlayer::show_payload(const std::string& quoted) {
    return show_bytes("00:01.000 --> 00:02.000\n" + unquote(quoted) + "\n\n");
}

std::string TranscriptPlayer::show_exact_payload(const std::string& quoted) {
    return show_bytes("00:01.000 --> 00:02.000\n" + unquote(quoted) + '\0' + "\n\n");
}

std::string TranscriptPlayer::take(const std::string& /*none*/) {
    m_delivered.clear();
    const std::string printed = output_of([this] { m_methods.get_result(m_handle); });
    return printed_lines(printed) +
           (m_delivered.empty() ? "  the callback was not called\n" : m_delivered);
}

std::string TranscriptPlayer::set_video_time(const std::string& ticks) {
    return printed_lines(output_of([&] { m_methods.set_video_time(m_handle, count_of(ticks)); }));
}

std::string TranscriptPlayer::register_tag(const std::string& tag) {
    return printed_lines(output_of([&] { register_callback(count_of(tag)); }));
}

std::string TranscriptPlayer::register_null(const std::string& tag) {
    return printed_lines(
        output_of([&] { m_methods.set_callback(m_handle, &m_tags.at(count_of(tag)), nullptr); }));
}

void TranscriptPlayer::register_callback(std::size_t tag) {
    m_methods.set_callback(m_handle, &m_tags.at(tag), on_event);
}

void TranscriptPlayer::on_event(int event, void* tag, void* info) {
    const Tag* const place = static_cast<Tag*>(tag);
    TranscriptPlayer& player = *place->player;
    const auto number = static_cast<std::size_t>(place - player.m_tags.data());
    player.write_event(event, number, Delivery(info));
}

void TranscriptPlayer::write_event(int event, std::size_t tag, const Delivery& delivery) {
    if (!m_delivered.empty()) {
        m_delivered += "  the callback was called again\n";
    }
    if (tag != 0) {
        m_delivered += "  tag " + std::to_string(tag) + "\n";
    }
    for (const CueRecord& cue : delivery.cues) {
        m_delivered += "  " + describe(cue) + "\n";
    }
    if (delivery.cues.empty()) {
        m_delivered += "  no cue\n";
    }
    if (event != 0 || delivery.reserved != 0 || delivery.count != delivery.cues.size()) {
        m_delivered += "  event " + std::to_string(event) + ", count " +
                       std::to_string(delivery.count) + ", reserved " +
                       std::to_string(delivery.reserved) + "\n";
    }
}

}  // namespace support::host
