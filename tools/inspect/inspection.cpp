#include "tools/inspect/inspection.h"

#include <elf.h>

#include <algorithm>
#include <cstring>

#include "tools/host/elf_check.h"
#include "tools/host/elf_dynamic.h"
#include "tools/host/elf_reader.h"
#include "tools/host/module_contract.h"
#include "tools/inspect/board_check.h"
#include "tools/inspect/loaded_module.h"
#include "tools/inspect/processor.h"

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

Json NullOr(bool is_known, const Json& value) {
    return is_known ? value : Json(nullptr);
}

Json DescribeLoading(const host::ElfDynamic& file) {
    Json tables = Json::array();
    if (file.has_gnu_hash) {
        tables.push_back("GNU");
    }
    if (file.has_hash) {
        tables.push_back("System V");
    }
    const bool is_executable = file.stack == host::ElfStack::kExecutable;
    return {{"memory", file.memory},
            {"executable_stack", NullOr(file.stack != host::ElfStack::kUnsaid, is_executable)},
            {"relocates_code", file.relocates_code},
            {"hash_tables", tables},
            {"thread_local", file.thread_local_bytes},
            {"interpreter", NullOr(!file.interpreter.empty(), file.interpreter)},
            {"run_path", NullOr(!file.run_path.empty(), file.run_path)}};
}

// Collects what is found out, in the order in which it is told.
class Inspector {
  public:
    Inspector(const std::string& path, const std::string& sysroot)
        : path_(path),
          sysroot_(sysroot),
          bytes_(host::ReadModuleFile(path)),
          target_(host::ElfTargetOf(bytes_, path)) {}

    Json Inspect();

  private:
    bool ReadFile();
    void CheckLoading();
    void AskBoard();
    void Load();

    void Complain(const std::string& line) { report_["problems"].push_back(line); }
    void Note(const std::string& line) { report_["notes"].push_back(line); }
    // For what no loader takes.
    void Refuse(const std::string& line) {
        report_["loaded"] = false;
        Complain(line);
    }

    std::string path_;
    std::string sysroot_;  // empty: no board is asked about
    std::string bytes_;
    host::ElfTarget target_;
    host::ElfDynamic file_;
    Processor processor_;
    Json report_ = {{"module", path_},          {"file", DescribeTarget(target_)},
                    {"processor", nullptr},     {"loading", nullptr},
                    {"needed", nullptr},        {"versions", nullptr},
                    {"exports", nullptr},       {"sysroot", nullptr},
                    {"loaded", nullptr},        {"descriptor", nullptr},
                    {"table", nullptr},         {"notes", Json::array()},
                    {"problems", Json::array()}};
};

// Whether all that a loader looks at is in the file.
bool Inspector::ReadFile() {
    try {
        file_ = host::ReadElfDynamic(bytes_, target_);
        processor_ = ReadProcessor(bytes_, target_);
    } catch (const host::DamagedElf& error) {
        Refuse(std::string("file: damaged: ") + error.what());
        return false;
    }
    report_["processor"] = processor_.words;
    report_["loading"] = DescribeLoading(file_);
    DescribeDynamic(file_, report_);
    return true;
}

void Inspector::CheckLoading() {
    if (file_.type != ET_DYN && file_.type != ET_EXEC) {
        Refuse("load: no loader takes a file of its type (" + TypeName(file_.type) + ")");
    } else if (file_.is_program) {
        Note("a program, no caption module: only what starting it needs is looked at");
    } else if (!file_.has_dynamic_section) {
        Refuse("load: it has no dynamic section, without which no loader takes a library");
    } else if (file_.refuses_dlopen) {
        Refuse("load: it is marked to refuse dlopen; link without -Wl,-z,nodlopen");
    } else if (!file_.has_gnu_hash && !file_.has_hash) {
        Refuse(
            "load: it has no hash table, without which no symbol of it is found; link with "
            "-Wl,--hash-style=both");
    }
    if (file_.relocates_code) {
        Complain(
            "relocations: the loader has to write into its code; compile with -fPIC, link "
            "with -Wl,-z,text");
    }
    if (file_.stack == host::ElfStack::kExecutable && target_.machine == EM_MIPS) {
        Note(
            "it wants an executable stack, as compilers for MIPS say by default; "
            "-Wl,-z,noexecstack takes that away");
    } else if (file_.stack == host::ElfStack::kExecutable) {
        Complain("stack: it wants an executable stack; link with -Wl,-z,noexecstack");
    }
}

void Inspector::AskBoard() {
    const Json board = CheckBoard({path_, target_, file_, processor_}, sysroot_);
    report_["sysroot"] = board["sysroot"];
    for (const Json& problem : board["problems"]) {
        Refuse(problem.get<std::string>());
    }
    for (const Json& note : board["notes"]) {
        Note(note.get<std::string>());
    }
}

void Inspector::Load() {
    Json live = DescribeLoadedModule(path_);
    for (const char* part : {"loaded", "descriptor", "table"}) {
        report_[part] = live[part];
    }
    for (const Json& problem : live["problems"]) {
        report_["problems"].push_back(problem);
    }
}

Json Inspector::Inspect() {
    if (!ReadFile()) {
        return report_;
    }
    CheckLoading();
    if (!file_.is_program) {
        CheckExports(file_, report_["problems"]);
        if (target_.bits_class == ELFCLASS64) {
            Complain("machine: it is a 64-bit file, and a module's hosts are 32-bit programs");
        }
    }
    const bool is_own = target_ == host::OwnTarget();
    if (!sysroot_.empty()) {
        AskBoard();
        Note("not loaded: with --sysroot the board is asked about, not this machine");
    } else if (!is_own && !file_.is_program) {
        Note("not loaded: it is a " + host::TargetName(target_) + " file, this quill a " +
             host::TargetName(host::OwnTarget()) +
             " program; quill inspect on the board shows descriptor and table");
    }
    if (sysroot_.empty() && is_own && !file_.is_program && report_["loaded"].is_null()) {
        Load();
    }
    return report_;
}

}  // namespace

Json InspectModule(const std::string& path, const std::string& sysroot) {
    return Inspector(path, sysroot).Inspect();
}

}  // namespace quill::inspect
