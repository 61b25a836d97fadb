// The settings of a cue as one line of text.
#pragma once

#include <cstdio>
#include <cstring>
#include <string>

#include "cue/cue.h"

namespace webvtt {

/// A number as short as %g writes it.
inline std::string short_number(double value) {
    char text[64];
    std::snprintf(text, sizeof(text), "%.12g", value);
    return text;
}

/// What differs from a new cue: "line=50 snap=0 linealign=2"; empty when nothing does.
inline std::string dump_settings(const Cue& cue) {
    std::string dump;
    const auto add = [&dump](const char* name, const std::string& value, const std::string& usual) {
        if (value != usual) {
            dump += (dump.empty() ? "" : " ") + std::string(name) + "=" + value;
        }
    };
    const auto number = [](auto value) { return std::to_string(static_cast<int>(value)); };
    add("vertical", number(cue.eVertical), "0");
    add("line", short_number(cue.dLine), "100");
    add("snap", number(cue.fgSnapToLines), "1");
    add("linealign", number(cue.eLineAlign), "0");
    add("size", short_number(cue.dSize), "100");
    add("pos", short_number(cue.dPosition), "50");
    add("posalign", number(cue.ePositionAlign), "1");
    add("posset", number(cue.fgPositionSet), "0");
    add("posalignset", number(cue.fgPositionAlignSet), "0");
    add("align", number(cue.eTextAlign), "1");
    add("region", std::string(cue.acRegionId, strnlen(cue.acRegionId, sizeof(cue.acRegionId))), "");
    return dump;
}

}  // namespace webvtt
