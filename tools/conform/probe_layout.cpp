// What a delivery looks like in memory. Records are read by number, not by their declaration, so
// that a mistake in the public header cannot hide one in the module.
#include <array>
#include <cstdint>

#include "tools/conform/probes.h"

namespace quill::conform {
namespace {

constexpr std::size_t kRecordSize = 48;
constexpr std::size_t kInfoSize = 12;
constexpr std::size_t kNextOffset = 44;
constexpr std::size_t kTextOffset = 24;
constexpr std::size_t kMostRecords = 16;

// Every field of the first record differs from its default.
constexpr std::string_view kTrack =
    "00:01.500 --> 00:03.250 vertical:rl line:-7 size:35% position:40% align:end\nfirst\n\n"
    "00:04.000 --> 00:05.000 line:25%\nsecond\nline\n\n"
    "00:06.000 --> 00:07.000\nthird\n\n";

// A copy of one delivery, taken inside the callback.
struct RawDelivery {
    struct Record {
        std::uintptr_t address;
        std::array<char, kRecordSize> bytes;
        std::string text;
    };

    int calls = 0;
    std::uint32_t event = 0xFFFFFFFFu;
    std::array<char, kInfoSize> info = {};
    std::vector<Record> records;

    static void Copy(WEBVTT_EVENT_T event, void* tag, void* info) {
        RawDelivery& self = *static_cast<RawDelivery*>(tag);
        ++self.calls;
        self.event = static_cast<std::uint32_t>(event);
        std::memcpy(self.info.data(), info, kInfoSize);
        self.records.clear();
        const void* at = support::value_at<const void*>(info, 0);
        while (at != nullptr && self.records.size() < kMostRecords) {
            Record record = {reinterpret_cast<std::uintptr_t>(at), {}, ""};
            std::memcpy(record.bytes.data(), at, kRecordSize);
            const char* const text = support::value_at<const char*>(at, kTextOffset);
            record.text = text != nullptr ? text : "(null)";
            self.records.push_back(record);
            at = support::value_at<const void*>(at, kNextOffset);
        }
    }
};

// The delivery of kTrack, or one without records when it came to less than three.
RawDelivery Deliver(ProbeBench& bench) {
    RawDelivery delivery;
    const unsigned int handle = bench.Open(&delivery, &RawDelivery::Copy);
    bench.ExpectEqual("the result of parsing", 0, bench.Feed(handle, kTrack));
    bench.methods().pfnGetParseResult(handle);
    bench.ExpectEqual("the number of records", std::size_t{3}, delivery.records.size());
    delivery.records.resize(3);
    return delivery;
}

// Compares a field of the first two records, where both are told.
template <typename Value>
void CheckField(ProbeBench& bench, std::size_t offset, Value first, Value second) {
    const RawDelivery delivery = Deliver(bench);
    const std::string what = "the field at offset " + std::to_string(offset) + " of the ";
    bench.ExpectEqual(what + "first record", first,
                      support::value_at<Value>(delivery.records[0].bytes.data(), offset));
    bench.ExpectEqual(what + "second record", second,
                      support::value_at<Value>(delivery.records[1].bytes.data(), offset));
}

void CheckEvent(ProbeBench& bench) {
    const RawDelivery delivery = Deliver(bench);
    bench.ExpectEqual("the number of calls", 1, delivery.calls);
    bench.ExpectEqual("the event", 0u, delivery.event);
}

void CheckInfo(ProbeBench& bench) {
    const RawDelivery delivery = Deliver(bench);
    const void* const info = delivery.info.data();
    bench.ExpectEqual("the pointer at offset 0", delivery.records[0].address,
                      support::value_at<std::uintptr_t>(info, 0));
    bench.ExpectEqual("the count at offset 4", 3u, support::value_at<std::uint32_t>(info, 4));
    bench.ExpectEqual("the word at offset 8", 0u, support::value_at<std::uint32_t>(info, 8));
}

void CheckEmptyInfo(ProbeBench& bench) {
    RawDelivery delivery;
    const unsigned int handle = bench.Open(&delivery, &RawDelivery::Copy);
    bench.methods().pfnGetParseResult(handle);
    bench.ExpectEqual("the number of calls", 1, delivery.calls);
    for (std::size_t offset = 0; offset < kInfoSize; offset += 4) {
        bench.ExpectEqual("the word at offset " + std::to_string(offset), 0u,
                          support::value_at<std::uint32_t>(delivery.info.data(), offset));
    }
}

void CheckTexts(ProbeBench& bench) {
    const RawDelivery delivery = Deliver(bench);
    const std::array<const char*, 3> texts = {"first\n", "second\nline\n", "third\n"};
    for (std::size_t i = 0; i < texts.size(); ++i) {
        bench.ExpectEqual("the text at offset 24 of record " + std::to_string(i),
                          std::string(texts[i]), delivery.records[i].text);
    }
}

void CheckLinks(ProbeBench& bench) {
    const RawDelivery delivery = Deliver(bench);
    for (std::size_t i = 0; i < delivery.records.size(); ++i) {
        const std::uintptr_t next =
            i + 1 < delivery.records.size() ? delivery.records[i + 1].address : 0;
        bench.ExpectEqual(
            "the link at offset 44 of record " + std::to_string(i), next,
            support::value_at<std::uintptr_t>(delivery.records[i].bytes.data(), kNextOffset));
    }
}

void CheckAlignment(ProbeBench& bench) {
    for (const RawDelivery::Record& record : Deliver(bench).records) {
        bench.ExpectEqual("the address of a record modulo 8", std::uintptr_t{0},
                          record.address % 8);
    }
}

void CheckDefaults(ProbeBench& bench) {
    const RawDelivery delivery = Deliver(bench);
    const void* const record = delivery.records[2].bytes.data();
    bench.ExpectEqual("the line", 100, support::value_at<std::int32_t>(record, 28));
    bench.ExpectEqual("the bytes from offset 32", std::string("\0\1\x32\x64", 4),
                      std::string(delivery.records[2].bytes.data() + 32, 4));
    bench.ExpectEqual("the text alignment", 1, support::value_at<std::int32_t>(record, 36));
    bench.ExpectEqual("the direction", 0, support::value_at<std::int32_t>(record, 40));
}

}  // namespace

std::vector<Case> LayoutProbes() {
    constexpr ProbesOf kProbe{"layout"};
    using Bench = ProbeBench;
    using Byte = std::uint8_t;
    return {
        kProbe("event", "The callback is called once, with event 0.", CheckEvent),
        kProbe("info-block", "The info block holds the list at 0, its length at 4, zero at 8.",
               CheckInfo),
        kProbe("empty-info-block", "Without cues the info block is all zero.", CheckEmptyInfo),
        kProbe("auxiliary-text", "The pointer at offset 0 is null.",
               [](Bench& bench) { CheckField<std::uintptr_t>(bench, 0, 0, 0); }),
        kProbe("start-time", "The start lies at offset 8, as a double in seconds.",
               [](Bench& bench) { CheckField<double>(bench, 8, 1.5, 4); }),
        kProbe("end-time", "The end lies at offset 16, as a double in seconds.",
               [](Bench& bench) { CheckField<double>(bench, 16, 3.25, 5); }),
        kProbe("text", "The pointer at offset 24 leads to the zero-terminated text.", CheckTexts),
        kProbe("line", "The line lies at offset 28, signed and 32 bits wide.",
               [](Bench& bench) { CheckField<std::int32_t>(bench, 28, -7, 25); }),
        kProbe("reserved-byte", "The byte at offset 32 is 0.",
               [](Bench& bench) { CheckField<Byte>(bench, 32, 0, 0); }),
        kProbe("snap-to-lines", "The flag at offset 33 is 1 for a line number, 0 for a percentage.",
               [](Bench& bench) { CheckField<Byte>(bench, 33, 1, 0); }),
        kProbe("position", "The position is the byte at offset 34.",
               [](Bench& bench) { CheckField<Byte>(bench, 34, 40, 50); }),
        kProbe("size", "The size is the byte at offset 35.",
               [](Bench& bench) { CheckField<Byte>(bench, 35, 35, 100); }),
        kProbe("text-alignment", "The text alignment lies at offset 36, 32 bits wide.",
               [](Bench& bench) { CheckField<std::int32_t>(bench, 36, 2, 1); }),
        kProbe("direction", "The writing direction lies at offset 40, 32 bits wide.",
               [](Bench& bench) { CheckField<std::int32_t>(bench, 40, 2, 0); }),
        kProbe("links", "The pointer at offset 44 leads to the next record, null in the last.",
               CheckLinks),
        kProbe("alignment", "Every record lies at an address that 8 divides.", CheckAlignment),
        kProbe("defaults", "A cue without settings has the default in every field.", CheckDefaults),
    };
}

}  // namespace quill::conform
