#include "guard/delivery_layout.h"

#include <cstdint>
#include <cstring>
#include <new>

namespace guard {
namespace {

constexpr std::size_t kAlignment = 16;

constexpr std::size_t rounded(std::size_t size) {
    return (size + kAlignment - 1) & ~(kAlignment - 1);
}

constexpr std::size_t kHead = kAlignment;
constexpr std::size_t kInfoPlace = kHead + rounded(sizeof(WebvttDataInfo));
constexpr std::size_t kRecordPlace = kHead + rounded(sizeof(WebvttCueNode));

std::size_t text_place(const char* text) {
    return text != nullptr ? kHead + rounded(std::strlen(text) + 1) : 0;
}

/// Of glibc's chunks: this size, which its cache of freed blocks takes on every target, and the bit
/// that says that the block before is in use.
constexpr std::size_t kFreeable = 0x1F0 | 1;

/// Writes a head and gives what lies behind it.
char* behind_head(char* place) {
    std::memcpy(place + kHead - sizeof(kFreeable), &kFreeable, sizeof(kFreeable));
    return place + kHead;
}

/// The same place in another view of the memory.
template <typename T>
T* moved(T* place, std::ptrdiff_t distance) {
    return place == nullptr ? nullptr
                            : reinterpret_cast<T*>(reinterpret_cast<std::uintptr_t>(place) +
                                                   static_cast<std::uintptr_t>(distance));
}

char* copy_text(const char* text, char*& place) {
    if (text == nullptr) {
        return nullptr;
    }
    char* const copy = behind_head(place);
    std::memcpy(copy, text, std::strlen(text) + 1);
    place += text_place(text);
    return copy;
}

std::size_t count(const WebvttDataInfo& info) {
    std::size_t records = 0;
    for (const WebvttCueNode* one = info.prCueList; one != nullptr; one = one->prNext) {
        ++records;
    }
    return records;
}

struct Field {
    std::size_t begin;
    const char* name;
};

constexpr Field make_field(std::size_t begin, const char* name) {
    return {begin, name};
}

#define GUARD_FIELD(type, name) make_field(offsetof(type, name), #name)

constexpr Field kRecordFields[] = {
    GUARD_FIELD(WebvttCueNode, pcAuxText),     GUARD_FIELD(WebvttCueNode, dStartTime),
    GUARD_FIELD(WebvttCueNode, dEndTime),      GUARD_FIELD(WebvttCueNode, pcText),
    GUARD_FIELD(WebvttCueNode, i4Line),        GUARD_FIELD(WebvttCueNode, fgReserved),
    GUARD_FIELD(WebvttCueNode, fgSnapToLines), GUARD_FIELD(WebvttCueNode, u1Position),
    GUARD_FIELD(WebvttCueNode, u1Size),        GUARD_FIELD(WebvttCueNode, eTextAlign),
    GUARD_FIELD(WebvttCueNode, eVertical),     GUARD_FIELD(WebvttCueNode, prNext),
};

constexpr Field kInfoFields[] = {
    GUARD_FIELD(WebvttDataInfo, prCueList),
    GUARD_FIELD(WebvttDataInfo, u4CueCount),
    GUARD_FIELD(WebvttDataInfo, u4Reserved),
};

#undef GUARD_FIELD

/// The field at an offset of a place, whose head counts as the first field.
template <std::size_t kCount>
const char* field_at(const Field (&fields)[kCount], std::size_t offset) {
    const char* name = fields[0].name;
    for (const Field& field : fields) {
        if (offset >= kHead + field.begin) {
            name = field.name;
        }
    }
    return name;
}

bool is_in_text(const char* text, const char* address) {
    return text != nullptr && address >= text - kHead && address < text - kHead + text_place(text);
}

}  // namespace

std::size_t layout_size(const WebvttDataInfo& info) {
    std::size_t size = kInfoPlace;
    for (const WebvttCueNode* one = info.prCueList; one != nullptr; one = one->prNext) {
        size += kRecordPlace + text_place(one->pcAuxText) + text_place(one->pcText);
    }
    return size;
}

WebvttDataInfo* lay_out(const WebvttDataInfo& info, char* memory, char* seen) {
    const std::ptrdiff_t distance = seen - memory;
    auto* const copy = new (behind_head(memory)) WebvttDataInfo(info);
    char* place = memory + kInfoPlace;
    char* text = place + count(info) * kRecordPlace;
    WebvttCueNode** link = &copy->prCueList;
    for (const WebvttCueNode* one = info.prCueList; one != nullptr; one = one->prNext) {
        auto* const record = new (behind_head(place)) WebvttCueNode(*one);
        record->pcAuxText = moved(copy_text(one->pcAuxText, text), distance);
        record->pcText = moved(copy_text(one->pcText, text), distance);
        *link = moved(record, distance);
        link = &record->prNext;
        place += kRecordPlace;
    }
    return moved(copy, distance);
}

void describe_place(const char* memory, const char* seen, const char* address, Detail& detail) {
    const std::ptrdiff_t distance = memory - seen;
    const auto& info = *reinterpret_cast<const WebvttDataInfo*>(memory + kHead);
    const auto offset = static_cast<std::size_t>(address - seen);
    if (offset < kInfoPlace) {
        detail << "info block, field " << field_at(kInfoFields, offset);
        return;
    }
    const std::size_t at = (offset - kInfoPlace) / kRecordPlace;
    std::size_t number = 0;
    const char* field = nullptr;
    std::size_t records = 0;
    const WebvttCueNode* one = moved(info.prCueList, distance);
    for (; one != nullptr; one = moved(one->prNext, distance)) {
        if (records++ == at) {
            number = records;
            field = field_at(kRecordFields, (offset - kInfoPlace) % kRecordPlace);
        }
        if (is_in_text(moved(one->pcText, distance), address + distance)) {
            number = records;
            field = "pcText, the text";
        } else if (is_in_text(moved(one->pcAuxText, distance), address + distance)) {
            number = records;
            field = "pcAuxText, the text";
        }
    }
    if (field == nullptr) {
        detail << "behind the last text";
        return;
    }
    detail << "record " << static_cast<unsigned long>(number) << " of "
           << static_cast<unsigned long>(records) << ", field " << field;
}

}  // namespace guard
