// What the script player writes: its report, in the spelling of tests/model/model/report.py.
#pragma once

#include <cstdio>
#include <string>

// Bytes in double quotes: printable ASCII as it is, the rest escaped; and back again.
std::string quote(const std::string& bytes);
std::string unquote(const std::string& text);

// Ends the player with a sentence on standard error and the exit code 2.
[[noreturn]] void give_up(const std::string& reason);

// The report goes where standard output led at the start. Descriptor 1 leads to a file meanwhile,
// out of which the module's own output is taken.
class Report {
  public:
    Report();

    void line(const std::string& text);

    // Reports what the module has written since the last time.
    void take_output();

    // Forgets what the module has written since the last time.
    void drop_output();

    // After every call, so that a crash loses nothing of what came before it.
    void flush();

  private:
    std::string read_captured();

    std::FILE* report_;
    std::FILE* captured_;
};

// The one report there is; the callback needs it too. The first use redirects descriptor 1.
Report& report();
