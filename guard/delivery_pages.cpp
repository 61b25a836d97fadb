#include "guard/delivery_pages.h"

#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "guard/delivery_layout.h"

namespace guard {
namespace {

/// More than any track brings about; a list that ends nowhere has more.
constexpr unsigned kMostRecords = 1U << 24;

bool has_end(const WebvttDataInfo& info) {
    unsigned left = kMostRecords;
    const WebvttCueNode* one = info.prCueList;
    while (one != nullptr && left-- > 0) {
        one = one->prNext;
    }
    return one == nullptr;
}

char* map(std::size_t size, int protection, int flags, int file) {
    void* const pages = mmap(nullptr, size, protection, flags, file, 0);
    return pages != MAP_FAILED ? static_cast<char*>(pages) : nullptr;
}

/// Memory that can be mapped twice; negative when the system has none.
int open_shared(std::size_t size) {
    rlimit largest = {};
    // Beyond this limit the process would get a signal.
    if (getrlimit(RLIMIT_FSIZE, &largest) != 0 || largest.rlim_cur < size) {
        return -1;
    }
    constexpr unsigned kCloseOnExec = 1;
    const int file =
        static_cast<int>(syscall(SYS_memfd_create, "quillcaption-guard", kCloseOnExec));
    if (file >= 0 && ftruncate(file, static_cast<off_t>(size)) != 0) {
        close(file);
        return -1;
    }
    return file;
}

}  // namespace

void DeliveryPages::open() {
    m_page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    m_count = 0;
    map_ring();
    m_next = m_segment_end = m_ring;
    m_nothing_page = map(m_page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1);
    if (m_nothing_page != nullptr) {
        m_nothing = lay_out(WebvttDataInfo(), m_nothing_page, m_nothing_page);
        mprotect(m_nothing_page, m_page, PROT_READ);
    }
}

void DeliveryPages::map_ring() {
    const std::size_t size = kPages * m_page;
    const int file = open_shared(size);
    if (file >= 0) {
        m_ring = map(size, PROT_NONE, MAP_SHARED, file);
        m_written = map(size, PROT_READ | PROT_WRITE, MAP_SHARED, file);
        ::close(file);
        if (m_ring != nullptr && m_written != nullptr) {
            return;
        }
    }
    m_ring = m_written = map(size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1);
}

void DeliveryPages::close() {
    if (m_ring != nullptr) {
        munmap(m_ring, kPages * m_page);
    }
    if (m_written != nullptr && m_written != m_ring) {
        munmap(m_written, kPages * m_page);
    }
    if (m_nothing_page != nullptr) {
        munmap(m_nothing_page, m_page);
    }
    m_ring = m_written = nullptr;
    m_nothing_page = nullptr;
    m_nothing = nullptr;
    m_count = 0;
}

WebvttDataInfo* DeliveryPages::hand_out(const WebvttDataInfo& info, unsigned long call,
                                        unsigned long parser) {
    if (info.prCueList == nullptr && info.u4CueCount == 0 && info.u4Reserved == 0) {
        return m_nothing;
    }
    if (m_ring == nullptr || !has_end(info)) {
        return nullptr;
    }
    const std::size_t size = (layout_size(info) + m_page - 1) / m_page * m_page;
    const std::lock_guard<std::mutex> lock(m_mutex);
    DeliveredPages* const pages = take(size);
    if (pages == nullptr) {
        return nullptr;
    }
    char* const memory =
        is_in_ring(pages->begin) ? m_written + (pages->begin - m_ring) : pages->begin;
    WebvttDataInfo* const copy = lay_out(info, memory, pages->begin);
    if (memory == pages->begin) {
        mprotect(pages->begin, size, PROT_READ);
    }
    *pages = {pages->begin, size, memory, call, parser, true};
    return copy;
}

void DeliveryPages::withdraw(const WebvttDataInfo* copy) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto* const address = reinterpret_cast<const char*>(copy);
    for (std::size_t age = m_count; age-- > 0;) {
        DeliveredPages& one = m_deliveries[(m_oldest + age) % kPages];
        if (!one.is_open || address < one.begin || address >= one.begin + one.size) {
            continue;
        }
        one.is_open = false;
        if (is_in_ring(one.begin)) {
            mprotect(one.begin, one.size, PROT_NONE);
        } else {
            one.content = nullptr;
            munmap(one.begin, one.size);
        }
        return;
    }
}

const DeliveredPages* DeliveryPages::find(const void* address) const {
    for (std::size_t age = m_count; age-- > 0;) {
        const DeliveredPages& one = m_deliveries[(m_oldest + age) % kPages];
        if (address >= one.begin && address < one.begin + one.size) {
            return &one;
        }
    }
    return nullptr;
}

DeliveredPages* DeliveryPages::take(std::size_t size) {
    if (m_count == kPages && !drop_oldest()) {
        return nullptr;
    }
    char* place = take_from_ring(size);
    if (place == nullptr) {
        place = map(size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1);
    }
    if (place == nullptr) {
        return nullptr;
    }
    DeliveredPages& one = m_deliveries[(m_oldest + m_count++) % kPages];
    one = {place, size, nullptr, 0, 0, false};
    return &one;
}

char* DeliveryPages::take_from_ring(std::size_t size) {
    const bool fits = size <= static_cast<std::size_t>(m_segment_end - m_next);
    if (!fits && (size > kSegmentPages * m_page || !enter_next_segment())) {
        return nullptr;
    }
    char* const place = m_next;
    m_next += size;
    return place;
}

bool DeliveryPages::enter_next_segment() {
    const std::size_t size = kSegmentPages * m_page;
    char* const begin = m_segment_end == m_ring + kPages * m_page ? m_ring : m_segment_end;
    while (m_count != 0 && m_deliveries[m_oldest].begin >= begin &&
           m_deliveries[m_oldest].begin < begin + size) {
        if (!drop_oldest()) {
            return false;
        }
    }
    // With two views the host's never becomes writable.
    const int protection = m_written != m_ring ? PROT_READ : PROT_READ | PROT_WRITE;
    if (mprotect(begin, size, protection) != 0) {
        return false;
    }
    m_next = begin;
    m_segment_end = begin + size;
    return true;
}

bool DeliveryPages::drop_oldest() {
    if (m_deliveries[m_oldest].is_open) {
        return false;
    }
    m_oldest = (m_oldest + 1) % kPages;
    --m_count;
    return true;
}

bool DeliveryPages::is_in_ring(const char* address) const {
    return address >= m_ring && address < m_ring + kPages * m_page;
}

}  // namespace guard
