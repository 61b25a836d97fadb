// Changes inputs the way somebody would who knows tracks.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fuzz {

/// What the inputs of a target are.
enum class Format {
    kScript,   ///< tracks with host calls among their bytes, as module_fuzzer.cpp reads them
    kBlocks,   ///< what follows a header section, with chunk borders, as chunks_fuzzer.cpp reads it
    kPayload,  ///< texts of cues
    kValue     ///< values, as values_fuzzer.cpp reads them
};

/// For LLVMFuzzerCustomMutator: half of the changes are the format's, the others are libFuzzer's
/// own, which knows nothing of it. The same seed makes the same change of the same input.
///
/// @param data holds the input, and has room for `largest` bytes
/// @return the new size
std::size_t mutate(Format format, std::uint8_t* data, std::size_t size, std::size_t largest,
                   unsigned seed);

}  // namespace fuzz
