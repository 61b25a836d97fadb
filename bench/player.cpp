#include "bench/player.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace bench {

Player::Player(const WebvttModuleMethods& methods) : m_methods(methods) {
    if (m_methods.pfnCreate(&m_handle) != WEBVTT_RESULT_OK) {
        std::fprintf(stderr, "the module made no parser\n");
        std::exit(2);
    }
    m_methods.pfnSetEventNty(m_handle, this, &Player::on_event);
}

Player::~Player() {
    m_methods.pfnRelease(m_handle);
}

void Player::feed(std::string_view chunk) {
    ++m_call_count;
    try {
        m_methods.pfnParse(m_handle, chunk.data(), static_cast<unsigned int>(chunk.size()));
    } catch (const std::out_of_range&) {
        // A "line" setting without a number, or half a timestamp map. The next chunk may be fed.
    }
}

void Player::deliver() {
    ++m_call_count;
    m_methods.pfnGetParseResult(m_handle);
}

void Player::feed_in_chunks(std::string_view text, std::size_t chunk_size) {
    for (; !text.empty(); text.remove_prefix(std::min(chunk_size, text.size()))) {
        feed(text.substr(0, chunk_size));
        deliver();
    }
}

void Player::on_event(WEBVTT_EVENT_T /*event*/, void* tag, void* info) {
    static_cast<Player*>(tag)->m_cue_count += static_cast<const WebvttDataInfo*>(info)->u4CueCount;
}

std::FILE* silence_standard_output() {
    std::fflush(stdout);
    std::FILE* const report = fdopen(dup(STDOUT_FILENO), "w");
    const int null_device = open("/dev/null", O_WRONLY);
    if (report == nullptr || null_device < 0 || dup2(null_device, STDOUT_FILENO) < 0) {
        std::perror("cannot silence standard output");
        std::exit(2);
    }
    close(null_device);
    return report;
}

}  // namespace bench
