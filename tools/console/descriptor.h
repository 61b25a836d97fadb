// File descriptors that close themselves, and reads and writes that never stop half-way.
#ifndef TOOLS_CONSOLE_DESCRIPTOR_H_
#define TOOLS_CONSOLE_DESCRIPTOR_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace quill::console {

// Owns one file descriptor; -1 means none.
class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(other.Take()) {}
    Descriptor& operator=(Descriptor&& other) noexcept;
    ~Descriptor();

    int get() const { return number_; }
    bool valid() const { return number_ >= 0; }

  private:
    int Take();

    int number_ = -1;
};

// A duplicate that is none of the three standard descriptors, even when one of those is closed,
// and that no child inherits. Invalid, with errno set, when there can be none.
Descriptor DuplicatePrivately(int number);

// A file without a name, empty, to be read and written; gone when it is closed. Not one of the
// three standard descriptors. Invalid, with errno set, when the system gives none.
Descriptor UnnamedFile();

// One read(2) of at most `capacity` bytes, which waits for the first of them. Returns how many
// came, 0 at the end of the input, -1 with errno set on failure.
int ReadSome(int number, char* buffer, std::size_t capacity);

// Writes all bytes, however many calls that takes. Returns how many were written: fewer than
// given only on failure, with errno set.
std::size_t WriteFully(int number, std::string_view bytes);

// The system's words for an errno value.
std::string ErrorText(int error_number);

}  // namespace quill::console

#endif  // TOOLS_CONSOLE_DESCRIPTOR_H_
