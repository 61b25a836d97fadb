#include "guard/settings.h"

#include <cstdlib>
#include <string_view>

#include "guard/report.h"

namespace guard {
namespace {

/// A program with its user's rights raised takes nothing from that user's environment.
std::string variable(const char* name) {
    const char* const value = secure_getenv(name);
    return value != nullptr ? value : "";
}

void complain(const char* name, const std::string& value, const char* possible) {
    Line line;
    line << name << " is \"";
    line.foreign(value.c_str()) << "\", which counts as not set: it can be " << possible;
    write_line(line);
}

/// Whether the variable has the second of its two values; the first is what it is when not set.
bool is_second(const char* name, const char* first, const char* second, const char* possible) {
    const std::string value = variable(name);
    if (!value.empty() && value != first && value != second) {
        complain(name, value, possible);
    }
    return value == second;
}

/// A number of at most nine digits; 0 when there is none.
unsigned number(const char* name, unsigned least, const char* possible) {
    constexpr std::size_t kMostDigits = 9;
    const std::string value = variable(name);
    const bool is_number =
        value.size() <= kMostDigits && value.find_first_not_of("0123456789") == std::string::npos;
    const auto found =
        static_cast<unsigned>(is_number ? std::strtoul(value.c_str(), nullptr, 10) : 0);
    if (!value.empty() && (!is_number || found < least)) {
        complain(name, value, possible);
        return 0;
    }
    return found;
}

}  // namespace

Settings read_settings() {
    Settings settings;
    settings.aborts =
        is_second("QUILLCAPTION_GUARD_ON_MISTAKE", "report", "abort", "report or abort");
    settings.slow_ms = number("QUILLCAPTION_GUARD_SLOW_MS", 0, "a number of milliseconds");
    settings.always_sums_up =
        is_second("QUILLCAPTION_GUARD_SUMMARY", "mistakes", "always", "mistakes or always");
    return settings;
}

LogSettings read_log_settings() {
    LogSettings settings;
    settings.file = variable("QUILLCAPTION_GUARD_LOG");
    settings.most =
        number("QUILLCAPTION_GUARD_LOG_MAX", 4096, "a number of bytes from 4096 to 999999999");
    settings.hides_text =
        is_second("QUILLCAPTION_GUARD_LOG_TEXT", "shown", "hidden", "shown or hidden");
    return settings;
}

std::string read_module_path() {
    return variable("QUILLCAPTION_GUARD_MODULE");
}

}  // namespace guard
