#include "support/player.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "support/value_at.h"

namespace support {

Player::Player(const Methods& methods) : m_methods(methods) {
    if (m_methods.create(&m_handle) != 0) {
        std::fprintf(stderr, "the module made no parser\n");
        std::exit(2);
    }
    m_methods.set_callback(m_handle, this, &Player::on_event);
}

Player::~Player() {
    m_methods.release(m_handle);
}

void Player::feed(std::string_view chunk) {
    ++m_call_count;
    try {
        m_methods.parse(m_handle, chunk.data(), static_cast<unsigned int>(chunk.size()));
    } catch (const std::out_of_range&) {
        // A "line" setting without a number, or half a timestamp map. The next chunk may be fed.
    }
}

void Player::deliver() {
    ++m_call_count;
    m_methods.get_result(m_handle);
}

void Player::feed_in_chunks(std::string_view text, std::size_t chunk_size) {
    for (; !text.empty(); text.remove_prefix(std::min(chunk_size, text.size()))) {
        feed(text.substr(0, chunk_size));
        deliver();
    }
}

void Player::on_event(int /*event*/, void* tag, void* info) {
    static_cast<Player*>(tag)->m_cue_count += value_at<std::uint32_t>(info, 4);
}

}  // namespace support
