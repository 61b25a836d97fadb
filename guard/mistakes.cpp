#include "guard/mistakes.h"

namespace guard {

const MistakeText& text_of(Mistake mistake) {
    // docs/guard.md has the same table, which a test holds to this one.
    static constexpr std::array<MistakeText, kMistakes> kTexts = {{
        {"H101", "no callback is registered; the call is not passed on, for it would crash",
         "call pfnSetEventNty before the first pfnGetParseResult"},
        {"H102", "this handle was never given",
         "use the number that pfnCreate stored, after it "
         "returned 0"},
        {"H103", "this handle was released",
         "set a handle to 0 when it is released, and look at "
         "it before each call"},
        {"H104",
         "this handle was released, and another parser has got its number since; without "
         "the guard the call would go to that one",
         "set a handle to 0 when it is released, and look at it before each call"},
        {"H105",
         "pfnRelease within the parser's own callback; it is put off until the callback has "
         "returned, for it would free what the callback still reads",
         "note in the callback that the parser is to go, and release it after pfnGetParseResult"},
        {"H106", "pfnParse within the parser's own callback; cues that it completes are lost",
         "copy the cues in the callback, and feed after pfnGetParseResult"},
        {"H107",
         "pfnGetParseResult within the parser's own callback; it is not passed on, for it "
         "would deliver the same cues again, without end",
         "take nothing in the callback but what it was given"},
        {"H108", "two calls on one parser overlap",
         "make all calls on a parser on one thread, or hold a lock of the parser's around each"},
        {"H109", "pfnCreate or pfnRelease overlaps with another call",
         "hold one lock around every call while parsers are created and released"},
        {"H110", "the chunk is null or has no bytes; nothing is read",
         "leave the call out when there is nothing to feed"},
        {"H111", "the first chunk ends before the first line does, so that the track is refused",
         "keep what arrives until it holds a line feed, and feed that first"},
        {"H112", "the track was refused at its first line, and every later chunk is ignored",
         "release the parser when its first chunk gives 2, and create another for the next track"},
        {"H113", "cues wait in a parser whose results were never taken",
         "call pfnGetParseResult after each pfnParse; the callback runs there"},
        {"H114", "the parser is released with cues waiting, which are lost",
         "call pfnGetParseResult once more after the last pfnParse"},
        {"H115", "the parser is released with a block unfinished, whose cue is lost",
         "feed \"\\n\\n\\n\" at the end of the track, then take the cues; when a track is left "
         "midway, this may be ignored"},
        {"H116", "the video time comes after cues that it was meant for: they keep their times",
         "call pfnSetVideoPTS before the chunks that it shall count for, and take the cues of "
         "those before"},
        {"H117",
         "the video time fell by more than half of its 32 bits: the clock has more bits, "
         "and cue times are off by 47721.859 s until the track's map has wrapped too",
         "add or subtract 47721.859 s where a cue starts more than 23860 s from now"},
        {"H118", "the parser was never released",
         "call pfnRelease for every parser before dlclose "
         "and before the end"},
        {"H119", "the module is unloaded within a call, to whose code it can't return",
         "call dlclose when no call is in progress, and never in the callback"},
        {"H120", "an exception left pfnParse and nobody catches it; the process ends",
         "call pfnParse from C++ within try and catch, as guarded_parse() does"},
        {"H121", "the call took longer than QUILLCAPTION_GUARD_SLOW_MS",
         "feed smaller chunks, and do less in the callback"},
        {"H122", "a record that is being delivered is written to, or freed",
         "copy what is to be changed; the module frees the records itself"},
        {"H123", "a record is used after its callback has returned; it was delivered by this call",
         "copy in the callback what is kept, texts included, and free nothing of it"},
    }};
    return kTexts[static_cast<std::size_t>(mistake)];
}

}  // namespace guard
