#include "tools/inspect/board_check.h"

#include <elf.h>

#include <algorithm>
#include <map>
#include <memory>
#include <set>

#include "tools/inspect/board_library.h"
#include "tools/inspect/sysroot.h"

namespace quill::inspect {
namespace {

using console::Json;
using Member = BoardLibrary;

constexpr std::size_t kMostLibraries = 500;
constexpr std::size_t kMostSymbols = 3;

class BoardChecker {
  public:
    BoardChecker(const BoardFile& file, const std::string& folder)
        : target_(file.target), root_(folder), finder_(root_, target_) {
        auto first = std::make_unique<Member>();
        first->path = root_.NameOf(file.path).value_or("");
        first->called = "the file";
        first->dynamic = file.dynamic;
        first->processor = file.processor;
        members_.push_back(std::move(first));
    }

    Json Check();

  private:
    void AddNeeded(const Member& member);
    const Member* Called(const std::string& name) const;
    void CheckInterpreter();
    void CheckProcessor(const Member& library);
    void CheckVersions(const Member& asker);
    void ReportVersion(const Member& library, const host::ElfVersion& highest, bool fits);
    void CheckSymbols();
    void CheckCLibrary();

    const Member& file() const { return *members_.front(); }
    void Complain(const std::string& line) { problems_.push_back(line); }

    host::ElfTarget target_;
    Sysroot root_;
    LibraryFinder finder_;
    std::vector<std::unique_ptr<Member>> members_;  // in the order of a loader, the file in front
    std::set<std::string> asked_;
    bool is_complete_ = true;  // else symbols may be missing because a library is
    bool is_processor_told_ = false;
    Json sysroot_;
    Json problems_ = Json::array();
    Json notes_ = Json::array();
};

const Member* BoardChecker::Called(const std::string& name) const {
    const auto found = std::find_if(members_.begin() + 1, members_.end(), [&name](const auto& one) {
        return one->name == name || one->dynamic.own_name == name;
    });
    return found != members_.end() ? found->get() : nullptr;
}

void BoardChecker::AddNeeded(const Member& member) {
    for (const std::string& name : member.dynamic.needed) {
        if (!asked_.insert(name).second || Called(name) != nullptr ||
            asked_.size() > kMostLibraries) {
            continue;
        }
        std::string trouble;
        std::unique_ptr<Member> library = finder_.Find(name, member, trouble);
        sysroot_["libraries"].push_back(
            {{"name", name},
             {"path", library != nullptr ? Json(library->path) : Json(nullptr)},
             {"needed_by", &member == &file() ? Json(nullptr) : Json(member.called)}});
        if (library == nullptr) {
            Complain(trouble);
            is_complete_ = false;
            continue;
        }
        library->name = name;
        library->asked_by = &member;
        CheckProcessor(*library);
        members_.push_back(std::move(library));
    }
}

// One of them is enough.
void BoardChecker::CheckProcessor(const Member& library) {
    const std::string reason = DescribeMismatch(file().processor, library.processor);
    if (!reason.empty() && !is_processor_told_) {
        is_processor_told_ = true;
        Complain("processor: the file does not go with " + library.path + ": " + reason +
                 "; build it with the board's own toolchain");
    }
    const unsigned level = library.processor.arm_level;
    if (level != 0 && file().processor.arm_level > level && notes_.empty()) {
        notes_.push_back("the file is for ARMv" + std::to_string(file().processor.arm_level) +
                         ", " + library.path + " for ARMv" + std::to_string(level) +
                         ": an older processor than the file's cannot run it");
    }
}

void BoardChecker::CheckInterpreter() {
    const std::string& loader = file().dynamic.interpreter;
    if (file().dynamic.is_program && !loader.empty() && !root_.Find(loader)) {
        const std::string& other = root_.other_loader();
        Complain("loader: " + loader + ", which starts the program, is not in " + root_.folder() +
                 (other.empty() ? "" : ", which has " + other) +
                 ": build the program with the board's own toolchain");
    }
}

void BoardChecker::ReportVersion(const Member& library, const host::ElfVersion& highest,
                                 bool fits) {
    const std::string joint = highest.number.empty() ? "" : " " + highest.number;
    const std::string has = library.Highest(highest.family);
    sysroot_["versions"].push_back({{"library", library.name},
                                    {"asks", highest.family + joint},
                                    {"offers", has.empty() ? Json(nullptr) : Json(has)},
                                    {"fits", fits}});
}

void BoardChecker::CheckVersions(const Member& asker) {
    for (const host::ElfVersionNeeds& needs : asker.dynamic.version_needs) {
        const Member* const library = Called(needs.library);
        // A loader asks nothing of a library without versions.
        if (library == nullptr || library->dynamic.version_offers.empty()) {
            continue;
        }
        std::map<std::string, std::string> highest;  // asked for, by family
        std::map<std::string, std::string> missing;  // the names, by family
        for (const host::ElfVersionNeeds::Version& version : needs.versions) {
            const std::string family = host::NoteVersion(version.name, highest);
            if (!version.is_weak && library->dynamic.version_offers.count(version.name) == 0) {
                std::string& names = missing[family];
                names += (names.empty() ? "" : ", ") + version.name;
            }
        }
        for (const auto& [family, number] : highest) {
            if (&asker == &file()) {
                ReportVersion(*library, {family, number}, missing.count(family) == 0);
            }
        }
        for (const auto& [family, names] : missing) {
            const std::string most = library->Highest(family);
            std::string line = "version: " + asker.called + " needs " + names + ", and ";
            line.append(library->path).append(" has ");
            if (most.empty()) {
                line += "none of them";
            } else {
                line.append(family).append(" up to ").append(most);
            }
            line.append("; build ").append(&asker == &file() ? "it" : "that library");
            Complain(line + " with the board's own toolchain");
        }
    }
}

// What the file asks for must be in one of the libraries.
void BoardChecker::CheckSymbols() {
    std::set<std::string> offered;
    for (const auto& member : members_) {
        for (const host::ElfExport& one : member->dynamic.exports) {
            offered.insert(one.name);
        }
    }
    std::string names;
    std::size_t count = 0;
    for (const std::string& name : file().dynamic.imports) {
        if (offered.count(name) == 0 && ++count <= kMostSymbols) {
            names += (names.empty() ? "" : ", ") + name;
        }
    }
    if (count != 0) {
        Complain(
            "symbols: none of its libraries has " + names +
            (count > kMostSymbols ? " and " + std::to_string(count - kMostSymbols) + " more" : "") +
            "; build it with the board's own toolchain");
    }
}

// What a C library cannot do that is too old, or too strict.
void BoardChecker::CheckCLibrary() {
    const Member* const c_library = Called("libc.so.6");
    const std::string version = c_library != nullptr ? c_library->Highest("GLIBC") : "";
    Json& name = sysroot_["c_library"];
    if (version.empty()) {
        name = root_.other_c_library().empty() ? Json(nullptr) : Json(root_.other_c_library());
        if (!name.is_null()) {
            notes_.push_back("the board's C library is " + root_.other_c_library() + " (" +
                             root_.other_loader() + ")");
        }
        return;
    }
    name = "glibc " + version;
    const host::ElfDynamic& dynamic = file().dynamic;
    if (dynamic.has_packed_relocations &&
        c_library->dynamic.version_offers.count("GLIBC_ABI_DT_RELR") == 0) {
        Complain("relocations: they are packed, which glibc " + version +
                 " cannot read (2.36 can); link with -Wl,-z,nopack-relative-relocs");
    }
    if (!dynamic.has_hash && host::IsHigherVersion("2.5", version)) {
        Complain(
            "hash table: glibc " + version +
            " finds no symbol in one of the GNU kind (2.5 does); link with -Wl,--hash-style=both");
    }
    // On MIPS players have such a stack themselves, by the compilers' default.
    if (!dynamic.is_program && target_.machine != EM_MIPS &&
        dynamic.stack == host::ElfStack::kExecutable && !host::IsHigherVersion("2.41", version)) {
        Complain("stack: glibc " + version +
                 " loads no library that wants an executable stack; link with -Wl,-z,noexecstack");
    }
}

Json BoardChecker::Check() {
    sysroot_ = {{"folder", root_.folder()},
                {"c_library", nullptr},
                {"libraries", Json::array()},
                {"versions", Json::array()}};
    CheckInterpreter();
    std::size_t next = 0;
    while (next < members_.size()) {  // which grows
        AddNeeded(*members_[next]);
        ++next;
    }
    for (const auto& member : members_) {
        CheckVersions(*member);
    }
    if (is_complete_) {
        CheckSymbols();
    }
    CheckCLibrary();
    return {{"sysroot", std::move(sysroot_)},
            {"problems", std::move(problems_)},
            {"notes", std::move(notes_)}};
}

}  // namespace

Json CheckBoard(const BoardFile& file, const std::string& folder) {
    return BoardChecker(file, folder).Check();
}

}  // namespace quill::inspect
