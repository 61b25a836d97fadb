#include "tools/inspect/inspect_printer.h"

#include <algorithm>

#include "tools/console/escape.h"
#include "tools/host/module_contract.h"

namespace quill::inspect {
namespace {

using console::Json;
using console::JsonText;

constexpr std::size_t kLabelWidth = 12;
// A library for another machine may export thousands.
constexpr std::size_t kMostExports = 20;

std::string TextOr(const Json& value, const std::string& otherwise) {
    return value.is_null()     ? otherwise
           : value.is_string() ? value.get<std::string>()
                               : JsonText(value);
}

class Page {
  public:
    void Line(const std::string& label, const std::string& text) {
        const std::size_t width = std::max(kLabelWidth, label.size() + 1);
        text_ += label + std::string(width - label.size(), ' ');
        text_ += console::Escape(text, console::LineFeeds::kEscape) + "\n";
    }

    const std::string& text() const { return text_; }

  private:
    std::string text_;
};

std::string DescribeFile(const Json& file) {
    return TextOr(file["bits"], "?") + "-bit " + TextOr(file["byte_order"], "?") + " " +
           TextOr(file["machine"], "?") + ", " + TextOr(file["type"], "of unknown type");
}

std::string Join(const Json& list) {
    std::string text;
    for (const auto& [key, value] : list.items()) {
        const std::string item = value.get<std::string>();
        text += text.empty() ? "" : ", ";
        text += list.is_object() ? key + " " : "";
        text += item;
    }
    return text.empty() ? "none" : text;
}

std::string DescribeLoading(const Json& loading) {
    const Json& stack = loading["executable_stack"];
    const std::string tables = Join(loading["hash_tables"]);
    const std::string thread_local_part =
        loading["thread_local"] == 0
            ? ""
            : ", " + JsonText(loading["thread_local"]) + " bytes for each thread";
    return JsonText(loading["memory"]) + " bytes of memory" + thread_local_part + ", " +
           (stack.is_null()     ? "stack not spoken of"
            : stack.get<bool>() ? "executable stack"
                                : "stack not executable") +
           ", " + (loading["relocates_code"].get<bool>() ? "code relocated" : "code as it is") +
           ", hash table: " + tables;
}

void WriteExports(const Json& exports, Page& page) {
    page.Line("exports", std::to_string(exports.size()));
    for (std::size_t i = 0; i < exports.size() && i < kMostExports; ++i) {
        const Json& one = exports[i];
        const std::string kind = one["kind"].get<std::string>();
        page.Line("", one["symbol"].get<std::string>() + ", " + kind +
                          (kind == "object" ? " of " + JsonText(one["size"]) + " bytes" : ""));
    }
    if (exports.size() > kMostExports) {
        page.Line("", "and " + std::to_string(exports.size() - kMostExports) +
                          " more, which --format json lists");
    }
}

void WriteSysroot(const Json& sysroot, Page& page) {
    page.Line("board", TextOr(sysroot["folder"], "") + ", C library " +
                           TextOr(sysroot["c_library"], "unknown"));
    for (const Json& library : sysroot["libraries"]) {
        const std::string name = library["name"].get<std::string>();
        page.Line(
            "", name + ": " + TextOr(library["path"], "missing") +
                    (library["needed_by"].is_null() ? ""
                                                    : ", for " + TextOr(library["needed_by"], "")));
        for (const Json& version : sysroot["versions"]) {
            if (version["library"] == name) {
                page.Line(
                    "", "  needs " + TextOr(version["asks"], "") + ": board has " +
                            TextOr(version["offers"], version["fits"].get<bool>() ? "it" : "none") +
                            (version["fits"].get<bool>() ? ", fits" : ", does not fit"));
            }
        }
    }
}

void WriteDescriptor(const Json& descriptor, Page& page) {
    page.Line("descriptor", host::kDataExports[0].symbol);
    page.Line("  offset 0", "word " + JsonText(descriptor["word"]));
    page.Line("  offset 4", "name " + TextOr(descriptor["name"], "null"));
    page.Line("  offset 8", "table " + TextOr(descriptor["table"], "without a symbol"));
    const std::string size = std::to_string(host::kDescriptorSize - host::kDescriptorTail);
    page.Line(
        "  offset 12",
        size + " bytes, " + (descriptor["zero_tail"].get<bool>() ? "all zero" : "not all zero"));
}

void WriteTable(const Json& table, Page& page) {
    page.Line("table", host::kDataExports[1].symbol);
    for (const Json& slot : table) {
        page.Line("  offset " + JsonText(slot["offset"]),
                  slot["slot"].get<std::string>() + " = " +
                      TextOr(slot["function"], "a function without a symbol"));
    }
}

}  // namespace

std::string FormatInspectionAsText(const Json& report) {
    Page page;
    page.Line("module", report["module"].get<std::string>());
    page.Line("file", DescribeFile(report["file"]));
    if (!report["needed"].is_null()) {
        if (!report["processor"].empty()) {
            page.Line("processor", Join(report["processor"]));
        }
        page.Line("loading", DescribeLoading(report["loading"]));
        if (!report["loading"]["interpreter"].is_null()) {
            page.Line("loader", TextOr(report["loading"]["interpreter"], ""));
        }
        if (!report["loading"]["run_path"].is_null()) {
            page.Line("run path", TextOr(report["loading"]["run_path"], ""));
        }
        page.Line("needs", Join(report["needed"]));
        page.Line("versions", Join(report["versions"]));
        WriteExports(report["exports"], page);
    }
    if (!report["descriptor"].is_null()) {
        WriteDescriptor(report["descriptor"], page);
    }
    if (!report["table"].is_null()) {
        WriteTable(report["table"], page);
    }
    if (!report["sysroot"].is_null()) {
        WriteSysroot(report["sysroot"], page);
    }
    for (const Json& note : report["notes"]) {
        page.Line("note", note.get<std::string>());
    }
    std::string text = page.text() + "\n";
    for (const Json& problem : report["problems"]) {
        text += console::Escape(problem.get<std::string>(), console::LineFeeds::kEscape) + "\n";
    }
    if (!report["problems"].empty()) {
        return text;
    }
    return text + (report["loaded"].is_null() ? "what the file shows is as it must be\n"
                                              : "all is as the contract says\n");
}

}  // namespace quill::inspect
