#include "tools/fix/encoding.h"

#include <fcntl.h>
#include <iconv.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <utility>
#include <vector>

#include "tools/console/descriptor.h"
#include "tools/console/escape.h"
#include "tools/console/failure.h"
#include "tools/console/text.h"

namespace quill::fix {
namespace {

using namespace std::string_view_literals;

[[noreturn]] void Fail(const std::string& name, const std::string& words) {
    throw console::Failure(console::kExitUsage, name + ": " + words);
}

// The C library's converter. UTF-16 and UTF-32 are not left to it: on a small board it may know
// none.
class Converter {
  public:
    Converter(const std::string& to, const std::string& from)
        : converter_(iconv_open(to.c_str(), from.c_str())) {}
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    ~Converter() {
        if (valid()) {
            iconv_close(converter_);
        }
    }

    bool valid() const { return converter_ != reinterpret_cast<iconv_t>(-1); }

    // Nothing when some byte has no counterpart.
    std::optional<std::string> Run(std::string_view bytes) {
        std::string text;
        std::vector<char> input(bytes.begin(), bytes.end());
        char* in = input.data();
        std::size_t left = input.size();
        while (left > 0) {
            char buffer[4096];
            char* out = buffer;
            std::size_t room = sizeof(buffer);
            const std::size_t result = iconv(converter_, &in, &left, &out, &room);
            text.append(buffer, sizeof(buffer) - room);
            if (result == static_cast<std::size_t>(-1) && errno != E2BIG) {
                return std::nullopt;
            }
        }
        return text;
    }

  private:
    iconv_t converter_;
};

// The units of a text in UTF-16 or UTF-32 have 2 bytes or 4.
std::optional<std::string> FromUnits(std::string_view bytes, std::size_t size, bool big) {
    if (bytes.size() % size != 0) {
        return std::nullopt;
    }
    const auto unit = [&](std::size_t at) {
        std::uint32_t value = 0;
        for (std::size_t index = 0; index < size; ++index) {
            const char byte = bytes[at + (big ? index : size - 1 - index)];
            value = value << 8 | static_cast<unsigned char>(byte);
        }
        return value;
    };
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); at += size) {
        std::uint32_t code_point = unit(at);
        if (code_point >= 0xD800 && code_point < 0xE000) {
            const std::uint32_t low = size == 2 && at + 2 < bytes.size() ? unit(at + 2) : 0;
            if (code_point >= 0xDC00 || low < 0xDC00 || low >= 0xE000) {
                return std::nullopt;
            }
            code_point = 0x10000 + ((code_point - 0xD800) << 10) + (low - 0xDC00);
            at += 2;
        }
        if (code_point > 0x10FFFF) {
            return std::nullopt;
        }
        if (code_point != 0xFEFF || at > 0) {
            text += console::Utf8(code_point);
        }
    }
    return text;
}

std::optional<std::string> ByLibrary(std::string_view bytes, const std::string& encoding,
                                     const std::string& name) {
    Converter forth("UTF-8", encoding);
    Converter back(encoding, "UTF-8");
    if (!forth.valid() || !back.valid()) {
        Fail(name, "the encoding \"" + encoding + "\" is not known here; iconv -l lists names");
    }
    std::optional<std::string> text = forth.Run(bytes);
    if (!text || back.Run(*text) != bytes) {
        return std::nullopt;
    }
    return text;
}

// Only the child returns from it when gzip cannot be run.
void ExecuteGzip(const console::Descriptor& input, const console::Descriptor& output,
                 std::size_t most) {
    const rlimit limit{most, most};
    const int nowhere = open("/dev/null", O_WRONLY);
    if (setrlimit(RLIMIT_FSIZE, &limit) == 0 && dup2(input.get(), STDIN_FILENO) >= 0 &&
        dup2(output.get(), STDOUT_FILENO) >= 0 && dup2(nowhere, STDERR_FILENO) >= 0) {
        execlp("gzip", "gzip", "-dc", static_cast<char*>(nullptr));
    }
}

std::string ReadFromBegin(const console::Descriptor& file) {
    std::string bytes;
    char buffer[64 << 10];
    lseek(file.get(), 0, SEEK_SET);
    for (int count = 1; count > 0;) {
        count = console::ReadSome(file.get(), buffer, sizeof(buffer));
        bytes.append(buffer, count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    return bytes;
}

}  // namespace

const char* FindUnicode(std::string_view bytes) {
    static constexpr std::pair<std::string_view, const char*> kBeginnings[] = {
        {"\xFF\xFE\0\0"sv, "UTF-32LE"}, {"W\0\0\0"sv, "UTF-32LE"},  {"\0\0\xFE\xFF"sv, "UTF-32BE"},
        {"\0\0\0W"sv, "UTF-32BE"},      {"\xFF\xFE"sv, "UTF-16LE"}, {"W\0E\0"sv, "UTF-16LE"},
        {"\xFE\xFF"sv, "UTF-16BE"},     {"\0W\0E"sv, "UTF-16BE"},
    };
    for (const auto& [beginning, name] : kBeginnings) {
        if (console::BeginsWith(bytes, beginning)) {
            return name;
        }
    }
    return nullptr;
}

std::string ToUtf8(std::string_view bytes, const std::string& encoding, const std::string& name) {
    const bool is_unicode = encoding.size() == 8 && console::BeginsWith(encoding, "UTF-") &&
                            (encoding[4] == '1' || encoding[4] == '3');
    const std::optional<std::string> text =
        is_unicode ? FromUnits(bytes, encoding[4] == '1' ? 2 : 4, encoding[6] == 'B')
                   : ByLibrary(bytes, encoding, name);
    if (!text) {
        Fail(name, "it is not in the encoding " + encoding + "; --from names another one");
    }
    return *text;
}

bool IsGzip(std::string_view bytes) {
    return bytes.substr(0, 3) == "\x1F\x8B\x08"sv;
}

std::string Unpack(std::string_view bytes, std::size_t most, const std::string& name) {
    const console::Descriptor input = console::UnnamedFile();
    const console::Descriptor output = console::UnnamedFile();
    if (!input.valid() || !output.valid() ||
        console::WriteFully(input.get(), bytes) < bytes.size()) {
        Fail(name, console::ErrorText(errno));
    }
    lseek(input.get(), 0, SEEK_SET);
    constexpr int kNotRun = 127;
    const pid_t child = fork();
    if (child == 0) {
        ExecuteGzip(input, output, most);
        _exit(kNotRun);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) < 0) {
        Fail(name, console::ErrorText(errno));
    }
    if (WIFEXITED(status) && WEXITSTATUS(status) == kNotRun) {
        Fail(name, "it is compressed, and the program gzip is not here to unpack it");
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        Fail(name, "it is compressed, and gzip cannot unpack it; a track may have up to " +
                       std::to_string(most) + " bytes");
    }
    return ReadFromBegin(output);
}

}  // namespace quill::fix
