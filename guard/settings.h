// What the environment says of the guard. Read once, when the guard is loaded.
#pragma once

#include <string>

namespace guard {

struct Settings {
    /// QUILLCAPTION_GUARD_ON_MISTAKE=abort: ends the process where a mistake is found.
    bool aborts = false;
    /// QUILLCAPTION_GUARD_SLOW_MS: longest time of a call, in milliseconds; 0 for any.
    unsigned slow_ms = 0;
    /// QUILLCAPTION_GUARD_SUMMARY=always: the sum is told when there were no mistakes too.
    bool always_sums_up = false;
};

/// What to record. Needed only while the log is opened.
struct LogSettings {
    /// QUILLCAPTION_GUARD_LOG: where to record the session; empty for nowhere.
    std::string file;
    /// QUILLCAPTION_GUARD_LOG_MAX: bytes at which the record ends; 0 for never.
    unsigned most = 0;
    /// QUILLCAPTION_GUARD_LOG_TEXT=hidden: what is recorded can't be read.
    bool hides_text = false;
};

/// Says on standard error which variable has a value that it can't have, and goes on without it.
Settings read_settings();
LogSettings read_log_settings();

/// QUILLCAPTION_GUARD_MODULE: the module to load in place of the one beside the guard; or empty.
std::string read_module_path();

}  // namespace guard
