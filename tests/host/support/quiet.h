// Tests that look at cues only need not keep what the module prints.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace host {

/// While it lives, standard output leads nowhere.
class Quiet {
  public:
    Quiet() {
        flush();
        m_saved = dup(STDOUT_FILENO);
        const int nowhere = open("/dev/null", O_WRONLY);
        if (m_saved < 0 || nowhere < 0 || dup2(nowhere, STDOUT_FILENO) < 0) {
            std::perror("cannot silence standard output");
            std::abort();
        }
        close(nowhere);
    }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;
    ~Quiet() {
        flush();
        dup2(m_saved, STDOUT_FILENO);
        close(m_saved);
    }

  private:
    static void flush() {
        std::cout.flush();
        std::fflush(stdout);
    }

    int m_saved = -1;
};

}  // namespace host
