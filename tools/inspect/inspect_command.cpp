#include "tools/inspect/inspect_command.h"

#include "tools/console/arguments.h"
#include "tools/host/module_handle.h"
#include "tools/inspect/inspect_printer.h"
#include "tools/inspect/inspection.h"

namespace quill::inspect {
namespace {

constexpr char kFooter[] = R"(Formats:
  text  made for reading; the last lines say what is not as the contract says
  json  one object: module, file, processor, loading, needed, versions, exports, sysroot, loaded,
        descriptor, table, notes, problems

Examples:
  quill inspect
  quill inspect some/folder/quillcaption.so
  quill inspect --format json
  quill inspect --sysroot / some/folder/quillcaption.so

Exit codes:
  0  all that could be asked is as the contract says; a program lacks nothing to start
  1  the module can be loaded, but something is not as the contract says
  2  wrong usage, or an output that cannot be written
  3  the module cannot be read, or cannot be loaded: here, or with --sysroot on the board)";

}  // namespace

InspectCommand::InspectCommand(CLI::App& app)
    : Command(app, "inspect",
              "Say what a module is: machine, libraries, exports, descriptor, table") {
    console::CommandLine& line = command_line();
    line.AddOptional(
        "MODULE", module_,
        "The module to look at\n(default: the quillcaption.so that belongs to this quill)");
    line.AddOption("--sysroot", "DIR", sysroot_,
                   "A board's files, in which its libraries and versions are looked up;\n"
                   "nothing is loaded then");
    console::AddTextOrJson(line, as_json_, "How the report is printed");
    line.SetFooter(kFooter);
}

console::ExitCode InspectCommand::Run(console::Output& output) {
    const console::Json report =
        InspectModule(module_.empty() ? host::FindDefaultModule() : module_, sysroot_);
    output.Write(as_json_ ? console::JsonLine(report) : FormatInspectionAsText(report));
    if (report["loaded"] == false) {
        return console::kExitModule;
    }
    return report["problems"].empty() ? console::kExitDone : console::kExitTrack;
}

}  // namespace quill::inspect
