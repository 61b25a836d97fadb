// Turns the report of an inspection into lines to read.
#ifndef TOOLS_INSPECT_INSPECT_PRINTER_H_
#define TOOLS_INSPECT_INSPECT_PRINTER_H_

#include <string>

#include "tools/console/json.h"

namespace quill::inspect {

// The report of InspectModule as text, with every byte of the module's made safe to show.
std::string FormatInspectionAsText(const console::Json& report);

}  // namespace quill::inspect

#endif  // TOOLS_INSPECT_INSPECT_PRINTER_H_
