// Whether texts are read in place where they are as usual.
#pragma once

namespace webvtt {

/// What is usual may be read by a fast way of its own, which must leave the same behind as the
/// thorough one. A build for tests has none of them, so that each way can be held to the model.
#ifdef QUILLCAPTION_THOROUGH
inline constexpr bool kFastPaths = false;
#else
inline constexpr bool kFastPaths = true;
#endif

}  // namespace webvtt
