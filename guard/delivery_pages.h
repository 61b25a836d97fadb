// Memory for what is delivered, which a host can use only as it may.
#pragma once

#include <array>
#include <cstddef>
#include <mutex>

#include "quillcaption/quillcaption.h"

namespace guard {

/// Where a delivery came from, and where it lies or lay.
struct DeliveredPages {
    char* begin;
    std::size_t size;
    const char* content;  ///< where the guard reads it; null when the memory is gone
    unsigned long call;
    unsigned long parser;
    bool is_open;  ///< the callback runs
};

/// Copies of deliveries, in pages that can be read while the callback runs and not at all after it.
///
/// The pages come from a ring, so that the latest deliveries keep their addresses and it can be
/// told what a late access was meant for. The ring is seen twice: by the host, who can't write, and
/// by the guard, who so has to change the pages' protection only once for a delivery, when it is
/// over. A system that gives no such memory is done with a single view. What is too large for the
/// ring gets pages of its own, which are unmapped. A delivery without cues has nothing to protect
/// but its three words: one block that nobody can write to does for all of them.
class DeliveryPages {
  public:
    /// Reserves the ring. In a child after a fork: another one, for it is shared.
    void open();
    void close();

    /// A copy that can be read and not written to; null when there is no memory, and for a list
    /// that never ends.
    WebvttDataInfo* hand_out(const WebvttDataInfo& info, unsigned long call, unsigned long parser);

    /// What was handed out can be used no more.
    void withdraw(const WebvttDataInfo* copy);

    /// The delivery that an address belongs to; null when there is none. For a signal handler:
    /// takes no lock.
    const DeliveredPages* find(const void* address) const;

    /// For a fork, which must not find it locked.
    std::mutex& mutex() { return m_mutex; }

  private:
    static constexpr std::size_t kSegments = 4;
    static constexpr std::size_t kSegmentPages = 64;
    static constexpr std::size_t kPages = kSegments * kSegmentPages;

    void map_ring();
    DeliveredPages* take(std::size_t size);
    char* take_from_ring(std::size_t size);
    /// Goes to the next segment and forgets what was delivered there. False when a callback still
    /// uses it.
    bool enter_next_segment();
    bool drop_oldest();
    bool is_in_ring(const char* address) const;

    std::mutex m_mutex;
    std::size_t m_page = 0;
    char* m_ring = nullptr;     ///< as the host sees it
    char* m_written = nullptr;  ///< as the guard does
    char* m_next = nullptr;
    char* m_segment_end = nullptr;
    char* m_nothing_page = nullptr;
    WebvttDataInfo* m_nothing = nullptr;                   ///< of a delivery without cues
    std::array<DeliveredPages, kPages> m_deliveries = {};  ///< a ring too, from the oldest on
    std::size_t m_oldest = 0;
    std::size_t m_count = 0;
};

/// A delivery that is handed out as long as the object lives.
class HandedOut {
  public:
    HandedOut(DeliveryPages& pages, const WebvttDataInfo& info, unsigned long call,
              unsigned long parser)
        : m_pages(pages), m_info(pages.hand_out(info, call, parser)) {}
    HandedOut(const HandedOut&) = delete;
    HandedOut& operator=(const HandedOut&) = delete;
    ~HandedOut() {
        if (m_info != nullptr) {
            m_pages.withdraw(m_info);
        }
    }

    /// Null when there is no memory for a copy.
    WebvttDataInfo* info() const { return m_info; }

  private:
    DeliveryPages& m_pages;
    WebvttDataInfo* const m_info;
};

}  // namespace guard
