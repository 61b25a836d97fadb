// A line of a session log while it is put together.
#pragma once

#include <string_view>

#include "guard/bytes.h"

namespace guard {

/// An object of JSON. Needs neither the host's operator new nor the locale that the host has set.
class LogLine {
  public:
    LogLine() { m_line << '{'; }

    LogLine& add(const char* name, unsigned long long number);
    LogLine& add(const char* name, unsigned long number) {
        return add(name, static_cast<unsigned long long>(number));
    }
    LogLine& add(const char* name, unsigned number) {
        return add(name, static_cast<unsigned long long>(number));
    }
    LogLine& add(const char* name, int number);
    LogLine& add(const char* name, bool value);
    /// Null for what is no finite number.
    LogLine& add(const char* name, double number);
    /// As a byte string.
    LogLine& add(const char* name, std::string_view bytes);
    LogLine& add(const char* name, const char* text) { return add(name, std::string_view(text)); }
    LogLine& add_null(const char* name);

    // An object within the object, and a list of them.
    LogLine& open(const char* name);
    LogLine& open_list(const char* name);
    LogLine& open_item();
    LogLine& close();
    LogLine& close_list();

    /// Ends the line; empty when memory ran out.
    std::string_view end();

  private:
    void separate();
    void name(const char* name);

    Bytes m_line;
};

}  // namespace guard
