// Transcripts: calls of a host, and under each what they print, return, throw and deliver.
// tests/host/transcripts/README.md describes the notation.
#pragma once

#include <string>
#include <vector>

#include "support/module.h"

namespace support::host {

/// One case of a transcript file.
struct Case {
    std::string file;
    int line;           // of the title
    std::string title;  // what the case shows
    std::string text;   // calls and what is expected of them, without comments and blank lines
};

/// The cases of all transcript files in a folder, by file name.
std::vector<Case> read_cases(const std::string& folder);

/// Makes the calls of a case with one parser. Returns the case's text as it should have been.
std::string play(const Methods& methods, const Case& wanted);

}  // namespace support::host
