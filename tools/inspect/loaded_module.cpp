#include "tools/inspect/loaded_module.h"

#include <dlfcn.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstring>
#include <optional>

#include "support/value_at.h"
#include "tools/console/descriptor.h"
#include "tools/console/failure.h"
#include "tools/host/exception_text.h"
#include "tools/host/isolated_run.h"
#include "tools/host/module_contract.h"
#include "tools/host/module_handle.h"

namespace quill::inspect {
namespace {

using console::Json;
using console::JsonText;

// A module that hangs gets its verdict within ten seconds.
constexpr std::chrono::seconds kPatience(5);
constexpr std::size_t kLongestName = 256;

// The exported name at that very address.
std::optional<std::string> SymbolAt(const void* address) {
    Dl_info info = {};
    if (dladdr(address, &info) == 0 || info.dli_sname == nullptr || info.dli_saddr != address) {
        return std::nullopt;
    }
    return info.dli_sname;
}

std::string Quoted(const std::string& text) {
    return "\"" + text + "\"";
}

class ModuleReader {
  public:
    explicit ModuleReader(const host::Library& library) : library_(library) {}

    Json Read();

  private:
    void ReadDescriptor(const void* descriptor);
    void ReadTail(const void* descriptor, Json& found);
    void ReadTable(const void* table);
    void ReadSlot(const void* table, std::size_t number);

    void Complain(const std::string& line) { report_["problems"].push_back(line); }

    const host::Library& library_;
    Json report_ = {
        {"loaded", true}, {"descriptor", nullptr}, {"table", nullptr}, {"problems", Json::array()}};
};

void ModuleReader::ReadTail(const void* descriptor, Json& found) {
    found["zero_tail"] = true;
    for (std::size_t at = host::kDescriptorTail; at < host::kDescriptorSize; ++at) {
        const unsigned byte = support::value_at<std::uint8_t>(descriptor, at);
        if (byte != 0) {
            found["zero_tail"] = false;
            Complain("descriptor: the byte at offset " + std::to_string(at) + " is " +
                     std::to_string(byte) + ", not 0");
            return;
        }
    }
}

void ModuleReader::ReadDescriptor(const void* descriptor) {
    Json& found = report_["descriptor"];
    const auto word = support::value_at<std::uint32_t>(descriptor, 0);
    found["word"] = word;
    if (word != host::kDescriptorWord) {
        Complain("descriptor: the word at offset 0 is " + std::to_string(word) + ", not " +
                 std::to_string(host::kDescriptorWord));
    }
    const char* const name = support::value_at<const char*>(descriptor, 4);
    found["name"] = nullptr;
    if (name == nullptr) {
        Complain("descriptor: the name at offset 4 is null, not " + Quoted(host::kDescriptorName));
    } else {
        const std::string text(name, strnlen(name, kLongestName));
        found["name"] = text;
        if (text != host::kDescriptorName) {
            Complain("descriptor: the name at offset 4 is " + Quoted(text) + ", not " +
                     Quoted(host::kDescriptorName));
        }
    }
    const void* const table = support::value_at<const void*>(descriptor, 8);
    const std::optional<std::string> symbol = SymbolAt(table);
    found["table"] = symbol ? Json(*symbol) : Json(nullptr);
    const char* const wanted = host::kDataExports[1].symbol;
    if (table == nullptr || table != library_.Symbol(wanted)) {
        Complain("descriptor: the pointer at offset 8 " +
                 (table == nullptr ? "is null, not "
                  : symbol         ? "points at " + *symbol + ", not "
                                   : std::string("does not point at ")) +
                 wanted);
    }
    ReadTail(descriptor, found);
    if (table != nullptr) {
        ReadTable(table);
    }
}

void ModuleReader::ReadTable(const void* table) {
    report_["table"] = Json::array();
    for (std::size_t number = 0; number < host::kTableSlots.size(); ++number) {
        ReadSlot(table, number);
    }
}

void ModuleReader::ReadSlot(const void* table, std::size_t number) {
    const host::TableSlot& slot = host::kTableSlots[number];
    const std::size_t offset = number * host::kSlotSize;
    const void* const function = support::value_at<const void*>(table, offset);
    const std::optional<std::string> symbol = SymbolAt(function);
    report_["table"].push_back(
        {{"slot", slot.field},
         {"offset", offset},
         {"symbol", symbol ? Json(*symbol) : Json(nullptr)},
         {"function", symbol ? Json(host::Demangle(symbol->c_str())) : Json(nullptr)}});
    const std::string where =
        "table: " + std::string(slot.field) + " at offset " + std::to_string(offset);
    if (function == nullptr) {
        Complain(where + " is empty");
    } else if (function != library_.Symbol(slot.symbol)) {
        Complain(where +
                 (symbol ? " points at " + host::Demangle(symbol->c_str()) + ", not at "
                         : " does not point at ") +
                 host::Demangle(slot.symbol));
    }
}

Json ModuleReader::Read() {
    const void* const descriptor = library_.Symbol(host::kDataExports[0].symbol);
    if (descriptor != nullptr) {  // else its absence among the exports has been told
        ReadDescriptor(descriptor);
    }
    return report_;
}

Json NotLoaded(const std::string& why) {
    return {{"loaded", false},
            {"descriptor", nullptr},
            {"table", nullptr},
            {"problems", Json::array({"load: " + why})}};
}

// In the child. What the module prints while it is loaded is of no interest here.
void Describe(const std::string& path, host::Channel& channel) {
    const console::Descriptor nowhere = console::UnnamedFile();
    dup2(nowhere.get(), STDOUT_FILENO);
    try {
        const host::Library library(path);
        channel.Write(JsonText(ModuleReader(library).Read()));
    } catch (const console::Failure& failure) {
        channel.Write(JsonText(NotLoaded(failure.what())));
    }
}

}  // namespace

Json DescribeLoadedModule(const std::string& path) {
    const host::IsolatedEnd end =
        host::RunIsolated([&path](host::Channel& channel) { Describe(path, channel); }, kPatience);
    Json report = console::ParseJson(end.written);
    if (report.is_discarded()) {
        return NotLoaded("the module " + host::DescribeEnd(end) +
                         " while it was loaded and its descriptor was read");
    }
    if (end.kind != host::IsolatedEnd::Kind::kDone) {
        report["problems"].push_back("unload: the module " + host::DescribeEnd(end) +
                                     " while it was unloaded");
    }
    return report;
}

}  // namespace quill::inspect
