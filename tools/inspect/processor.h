// What a file says about the processor that it was compiled for and about how numbers are passed.
#ifndef TOOLS_INSPECT_PROCESSOR_H_
#define TOOLS_INSPECT_PROCESSOR_H_

#include <string>
#include <string_view>
#include <vector>

#include "tools/host/elf_check.h"

namespace quill::inspect {

struct Processor {
    std::vector<std::string> words;  // "ARMv7-A", "hard-float ABI"
    std::string float_abi;           // as among the words; empty: the file says nothing
    unsigned float_modes = 0;  // one bit for each way to pass numbers that it goes with; 0: any
    std::string nan;           // MIPS: how it writes what is no number
    std::string call_abi;      // MIPS: "o32 ABI"
    unsigned arm_level = 0;    // 7 for ARMv7; 0: unknown
};

// Of a file of any machine, of which ARM, MIPS and PowerPC say something. What is damaged or
// missing in the tables for it, which no loader reads, is passed over. Throws DamagedElf for the
// rest.
Processor ReadProcessor(std::string_view bytes, const host::ElfTarget& target);

// Why a file for one and a library for the other cannot work together; empty when they can.
std::string DescribeMismatch(const Processor& file, const Processor& library);

}  // namespace quill::inspect

#endif  // TOOLS_INSPECT_PROCESSOR_H_
