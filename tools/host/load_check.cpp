#include "tools/host/load_check.h"

#include <string_view>

#include "tools/console/failure.h"
#include "tools/host/isolated_run.h"
#include "tools/host/module_handle.h"
#include "tools/host/printed_text.h"

namespace quill::host {
namespace {

constexpr std::string_view kLoaded = "loaded";

}  // namespace

void CheckThatItLoads(const std::string& module, std::chrono::milliseconds timeout) {
    const auto load = [&module](Channel& channel) {
        const PrintedText printed;
        try {
            const ModuleHandle handle(module);
            channel.Write(kLoaded);
        } catch (const console::Failure& failure) {
            channel.Write(failure.what());
        }
    };
    const IsolatedEnd end = RunIsolated(load, timeout);
    if (end.written.empty()) {
        throw console::Failure(console::kExitModule,
                               module + " " + DescribeEnd(end) +
                                   " while it was loaded; build it again, or copy it again");
    }
    // What goes wrong later is for those to tell who try it.
    if (end.written != kLoaded) {
        throw console::Failure(console::kExitModule, end.written);
    }
}

}  // namespace quill::host
