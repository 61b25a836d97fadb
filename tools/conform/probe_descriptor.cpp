// The descriptor and the table, byte by byte.
#include <dlfcn.h>
#include <link.h>

#include <cstdint>
#include <set>

#include "tools/conform/probes.h"
#include "tools/host/module_contract.h"

namespace quill::conform {
namespace {

const void* Descriptor(ProbeBench& bench) {
    return bench.library().Symbol(QUILLCAPTION_DESCRIPTOR_SYMBOL);
}

const void* Table(ProbeBench& bench) {
    return support::value_at<const void*>(Descriptor(bench), 8);
}

std::string DescriptorBytes(ProbeBench& bench) {
    return {static_cast<const char*>(Descriptor(bench)), host::kDescriptorSize};
}

void CheckWord(ProbeBench& bench) {
    bench.ExpectEqual("the 32-bit word at offset 0", host::kDescriptorWord,
                      support::value_at<std::uint32_t>(Descriptor(bench), 0));
}

void CheckName(ProbeBench& bench) {
    const char* const name = support::value_at<const char*>(Descriptor(bench), 4);
    if (name == nullptr) {
        bench.Complain("the pointer at offset 4 is null");
        return;
    }
    bench.ExpectEqual("the text at offset 4", std::string(host::kDescriptorName),
                      std::string(name));
}

void CheckTable(ProbeBench& bench) {
    const void* const exported = bench.library().Symbol(QUILLCAPTION_METHODS_SYMBOL);
    bench.Expect(exported != nullptr, "WebVtt_Module_Methods is not exported");
    bench.Expect(Table(bench) == exported,
                 "the pointer at offset 8 does not point at WebVtt_Module_Methods");
}

void CheckTail(ProbeBench& bench) {
    for (std::size_t at = host::kDescriptorTail; at < host::kDescriptorSize; ++at) {
        bench.ExpectEqual("the byte at offset " + std::to_string(at), 0u,
                          unsigned{support::value_at<std::uint8_t>(Descriptor(bench), at)});
    }
}

void CheckSize(ProbeBench& bench, const char* symbol, std::size_t wanted) {
    Dl_info info = {};
    void* entry = nullptr;
    const void* const object = bench.library().Symbol(symbol);
    if (dladdr1(object, &info, &entry, RTLD_DL_SYMENT) == 0 || entry == nullptr) {
        bench.Complain(std::string(symbol) + " has no symbol");
        return;
    }
    bench.ExpectEqual(std::string("the size of ") + symbol, wanted,
                      std::size_t{static_cast<const ElfW(Sym)*>(entry)->st_size});
}

void CheckSizes(ProbeBench& bench) {
    for (const host::DataExport& object : host::kDataExports) {
        CheckSize(bench, object.symbol, object.size);
    }
}

void CheckExportedFunctions(ProbeBench& bench) {
    for (const host::TableSlot& slot : host::kTableSlots) {
        bench.Expect(bench.library().Symbol(slot.symbol) != nullptr,
                     std::string(slot.symbol) + " is not exported");
    }
}

void CheckSlots(ProbeBench& bench) {
    for (std::size_t number = 0; number < host::kTableSlots.size(); ++number) {
        const host::TableSlot& slot = host::kTableSlots[number];
        bench.Expect(support::value_at<const void*>(Table(bench), number * host::kSlotSize) ==
                         bench.library().Symbol(slot.symbol),
                     "the pointer at offset " + std::to_string(number * host::kSlotSize) +
                         " of the table does not point at " + slot.symbol);
    }
}

void CheckThatSlotsDiffer(ProbeBench& bench) {
    std::set<const void*> functions;
    for (std::size_t number = 0; number < host::kTableSlots.size(); ++number) {
        functions.insert(support::value_at<const void*>(Table(bench), number * host::kSlotSize));
    }
    bench.Expect(functions.count(nullptr) == 0, "a slot of the table is empty");
    bench.ExpectEqual("the number of different functions", host::kTableSlots.size(),
                      functions.size());
}

void CheckThatUseChangesNothing(ProbeBench& bench) {
    const std::string before = DescriptorBytes(bench);
    const std::string table(static_cast<const char*>(Table(bench)), host::kTableSize);
    const unsigned int handle = bench.Open(nullptr, [](WEBVTT_EVENT_T, void*, void*) {});
    bench.Feed(handle, "00:01.000 --> 00:02.000 align:end\n<b>x</b>\n\n");
    bench.methods().pfnGetParseResult(handle);
    bench.methods().pfnRelease(handle);
    bench.Expect(before == DescriptorBytes(bench), "the descriptor has changed");
    bench.Expect(table == std::string(static_cast<const char*>(Table(bench)), host::kTableSize),
                 "the table has changed");
}

void CheckSecondLoad(ProbeBench& bench) {
    const host::ModuleHandle again(bench.path());
    bench.Expect(again.library().Symbol(QUILLCAPTION_DESCRIPTOR_SYMBOL) == Descriptor(bench),
                 "a second load gives another descriptor");
    unsigned int handle = 0;
    bench.ExpectEqual("the result of Create", 0, again.methods().pfnCreate(&handle));
    bench.Printed();
    bench.methods().pfnRelease(handle);
    bench.ExpectEqual("what Release printed", std::string(), bench.Printed());
}

}  // namespace

std::vector<Case> DescriptorProbes() {
    constexpr ProbesOf kProbe{"descriptor"};
    return {
        kProbe("first-word", "The word at offset 0 is 1.", CheckWord),
        kProbe("name", "The pointer at offset 4 leads to \"quillcaption.so\".", CheckName),
        kProbe("table", "The pointer at offset 8 leads to the exported table.", CheckTable),
        kProbe("zero-tail", "The 132 bytes from offset 12 are zero.", CheckTail),
        kProbe("object-sizes", "The exported objects have 144 and 24 bytes.", CheckSizes),
        kProbe("exported-functions", "The six entry points are exported by their mangled names.",
               CheckExportedFunctions),
        kProbe("slots", "The six slots hold the entry points in their order.", CheckSlots),
        kProbe("slots-differ", "No slot is empty and no two hold the same function.",
               CheckThatSlotsDiffer),
        kProbe("unchanged-by-use", "Parsing changes neither descriptor nor table.",
               CheckThatUseChangesNothing),
        kProbe("loaded-twice", "Whoever loads the module once more gets the same objects.",
               CheckSecondLoad),
    };
}

}  // namespace quill::conform
