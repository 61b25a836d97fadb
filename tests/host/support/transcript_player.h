// Makes the calls of a transcript.
#pragma once

#include <array>
#include <string>

#include "support/cue_record.h"
#include "support/module.h"

namespace support::host {

/// One parser, and what came of each call, in the notation of transcripts.
class TranscriptPlayer {
  public:
    explicit TranscriptPlayer(const Methods& methods);
    TranscriptPlayer(const TranscriptPlayer&) = delete;
    TranscriptPlayer& operator=(const TranscriptPlayer&) = delete;
    ~TranscriptPlayer() { m_methods.release(m_handle); }

    /// Makes a call. Returns the lines that are indented below it, empty when nothing came of it.
    /// @param text the call with all its lines
    std::string call(const std::string& text);

  private:
    // One for each verb; the argument is the rest of the call.
    std::string open(const std::string& none);
    std::string feed(const std::string& quoted);
    std::string feed_null(const std::string& size);
    std::string feed_empty(const std::string& none);
    std::string show(const std::string& quoted);
    std::string show_settings(const std::string& quoted);
    std::string show_payload(const std::string& quoted);
    std::string show_exact_payload(const std::string& quoted);
    std::string take(const std::string& none);
    std::string set_video_time(const std::string& ticks);
    std::string register_tag(const std::string& tag);
    std::string register_null(const std::string& tag);

    std::string parse(const void* data, unsigned size);
    std::string feed_bytes(const std::string& bytes);
    std::string show_bytes(const std::string& bytes);
    void register_callback(std::size_t tag);
    static void on_event(int event, void* tag, void* info);
    void write_event(int event, std::size_t tag, const Delivery& delivery);

    /// What the callback's tag points at.
    struct Tag {
        TranscriptPlayer* player;
    };

    const Methods m_methods;
    Handle m_handle = 0;
    std::array<Tag, 10> m_tags;
    std::string m_delivered;
};

}  // namespace support::host
