// What is written to standard output: kept, or dropped.
#pragma once

#include <cstdio>
#include <string>
#include <utility>

namespace support {

/// Standard output leads elsewhere while it lives, also that of printf and of std::cout. May be
/// nested.
class Redirection {
  public:
    /// @param descriptor where it leads to
    explicit Redirection(int descriptor);
    Redirection(const Redirection&) = delete;
    Redirection& operator=(const Redirection&) = delete;
    ~Redirection() { end(); }

    /// Standard output leads where it led before.
    void end();

    /// A stream to where standard output led before.
    std::FILE* open_original() const;

  private:
    int m_saved;
};

/// While it lives, standard output leads nowhere.
class Quiet : public Redirection {
  public:
    Quiet();
};

/// Captures from its construction until take() or its destruction. Captures may be nested: the
/// inner one gets the bytes.
class StdoutCapture {
  public:
    StdoutCapture();
    StdoutCapture(const StdoutCapture&) = delete;
    StdoutCapture& operator=(const StdoutCapture&) = delete;
    ~StdoutCapture() { std::fclose(m_file); }

    /// Ends the capture and gives what was written since it began.
    std::string take();

    /// What was written since the last call of this kind.
    std::string more();

    /// What has reached the descriptor by now; what waits in a stream's buffer is not part of it.
    std::string peek() const { return read_from(0); }

  private:
    std::string read_from(std::size_t begin) const;

    std::FILE* m_file;
    Redirection m_redirection;
    std::size_t m_told = 0;
};

/// What a call writes to standard output. What it throws passes through.
template <typename Call>
std::string output_of(Call&& call) {
    StdoutCapture capture;
    std::forward<Call>(call)();
    return capture.take();
}

}  // namespace support
