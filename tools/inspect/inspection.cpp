#include "tools/inspect/inspection.h"

#include <elf.h>

#include <algorithm>
#include <cstring>

#include "tools/host/elf_check.h"
#include "tools/host/elf_dynamic.h"
#include "tools/host/elf_reader.h"
#include "tools/host/module_contract.h"
#include "tools/inspect/loaded_module.h"

namespace quill::inspect {
namespace {

using console::Json;

std::string TypeName(unsigned type) {
    switch (type) {
        case ET_REL:
            return "object file";
        case ET_EXEC:
            return "program";
        case ET_DYN:
            return "shared object";
        case ET_CORE:
            return "core dump";
        default:
            return "type " + std::to_string(type);
    }
}

std::string KindName(unsigned kind) {
    switch (kind) {
        case STT_OBJECT:
            return "object";
        case STT_FUNC:
            return "function";
        case STT_TLS:
            return "thread-local object";
        case STT_GNU_IFUNC:
            return "indirect function";
        case STT_NOTYPE:
            return "symbol";
        default:
            return "kind " + std::to_string(kind);
    }
}

Json DescribeTarget(const host::ElfTarget& target) {
    const bool is_64 = target.bits_class == ELFCLASS64;
    const bool is_known = is_64 || target.bits_class == ELFCLASS32;
    return {{"bits", is_known ? Json(is_64 ? 64 : 32) : Json(nullptr)},
            {"byte_order", target.byte_order == ELFDATA2MSB ? "big-endian" : "little-endian"},
            {"machine", host::MachineName(target)},
            {"type", nullptr}};
}

void CheckExport(const host::ElfDynamic& file, const std::string& name, std::size_t size,
                 Json& problems) {
    const auto found =
        std::find_if(file.exports.begin(), file.exports.end(),
                     [&name](const host::ElfExport& one) { return one.name == name; });
    if (found == file.exports.end()) {
        problems.push_back("exports: " + name + " is missing");
    } else if (size != 0 && found->size != size) {
        problems.push_back("exports: " + name + " has " + std::to_string(found->size) +
                           " bytes, not " + std::to_string(size));
    }
}

bool HasExport(const host::ElfDynamic& file, const std::string& name) {
    return std::any_of(file.exports.begin(), file.exports.end(),
                       [&name](const host::ElfExport& one) { return one.name == name; });
}

void CheckExports(const host::ElfDynamic& file, Json& problems) {
    if (!HasExport(file, host::kDataExports[0].symbol)) {
        problems.push_back(std::string("exports: ") + host::kDataExports[0].symbol +
                           " is missing: this is no caption module");
        return;
    }
    for (const host::DataExport& object : host::kDataExports) {
        CheckExport(file, object.symbol, object.size, problems);
    }
    for (const host::TableSlot& slot : host::kTableSlots) {
        CheckExport(file, slot.symbol, 0, problems);
    }
}

void DescribeDynamic(const host::ElfDynamic& file, Json& report) {
    report["file"]["type"] = TypeName(file.type);
    report["needed"] = file.needed;
    report["versions"] = Json::object();
    for (const auto& [family, version] : file.versions) {
        report["versions"][family] = version;
    }
    report["exports"] = Json::array();
    for (const host::ElfExport& one : file.exports) {
        report["exports"].push_back(
            {{"symbol", one.name}, {"kind", KindName(one.kind)}, {"size", one.size}});
    }
}

// Whether all that a loader looks at is in the file.
bool ReadFile(const std::string& bytes, const host::ElfTarget& target, Json& report) {
    try {
        const host::ElfDynamic file = host::ReadElfDynamic(bytes, target);
        DescribeDynamic(file, report);
        CheckExports(file, report["problems"]);
        return true;
    } catch (const host::DamagedElf& error) {
        report["problems"].push_back(std::string("file: damaged: ") + error.what());
        return false;
    }
}

}  // namespace

Json InspectModule(const std::string& path) {
    const std::string bytes = host::ReadModuleFile(path);
    const host::ElfTarget target = host::ElfTargetOf(bytes, path);
    Json report = {{"module", path},           {"file", DescribeTarget(target)},
                   {"needed", nullptr},        {"versions", nullptr},
                   {"exports", nullptr},       {"loaded", false},
                   {"descriptor", nullptr},    {"table", nullptr},
                   {"problems", Json::array()}};
    if (!(target == host::OwnTarget())) {
        report["problems"].push_back("machine: " + host::DescribeMismatch(path, target));
    }
    const bool is_whole = ReadFile(bytes, target, report);
    if (!is_whole || !(target == host::OwnTarget())) {
        return report;
    }
    Json live = DescribeLoadedModule(path);
    for (const char* part : {"loaded", "descriptor", "table"}) {
        report[part] = live[part];
    }
    for (const Json& problem : live["problems"]) {
        report["problems"].push_back(problem);
    }
    return report;
}

}  // namespace quill::inspect
