#include "support/notation.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>

namespace support {
namespace {

constexpr std::string_view kErrorPrefix = "[WEBVTT] ERR:: ";
// Repetitions multiply; a case must not ask for more than a board has.
constexpr std::size_t kMostBytes = 16u << 20;

constexpr struct {
    char byte;
    char letter;
} kEscapes[] = {{'\n', 'n'}, {'\r', 'r'}, {'\t', 't'}, {'\\', '\\'}, {'"', '"'}};

void append_escaped(char byte, std::string& text) {
    for (const auto& one : kEscapes) {
        if (one.byte == byte && byte != '"') {
            text += {'\\', one.letter};
            return;
        }
    }
    if (byte >= ' ' && byte <= '~') {
        text += byte;
        return;
    }
    std::array<char, 5> hex;
    std::snprintf(hex.data(), hex.size(), "\\x%02X",
                  static_cast<unsigned>(static_cast<unsigned char>(byte)));
    text += hex.data();
}

// Takes quoted texts apart from the front.
class QuoteReader {
  public:
    explicit QuoteReader(std::string_view text) : m_text(text) {}

    std::optional<std::string> read() {
        std::string bytes;
        for (skip_spaces(); !m_text.empty(); skip_spaces()) {
            std::string piece;
            std::uint32_t times = 1;
            if (!read_quoted(piece) || !read_times(times) ||
                piece.size() * std::uint64_t{times} > kMostBytes - bytes.size()) {
                return std::nullopt;
            }
            for (; times > 0; --times) {
                bytes += piece;
            }
        }
        return bytes;
    }

  private:
    void skip_spaces() {
        m_text.remove_prefix(std::min(m_text.find_first_not_of(' '), m_text.size()));
    }

    bool take(char wanted) {
        const bool found = !m_text.empty() && m_text.front() == wanted;
        m_text.remove_prefix(found ? 1 : 0);
        return found;
    }

    bool read_quoted(std::string& piece) {
        if (!take('"')) {
            return false;
        }
        while (!take('"')) {
            if (m_text.empty()) {
                return false;
            }
            if (m_text.front() != '\\') {
                piece += m_text.front();
                m_text.remove_prefix(1);
            } else if (!read_escape(piece)) {
                return false;
            }
        }
        return true;
    }

    bool read_escape(std::string& piece) {
        m_text.remove_prefix(1);
        for (const auto& one : kEscapes) {
            if (take(one.letter)) {
                piece += one.byte;
                return true;
            }
        }
        unsigned byte = 0;
        if (!take('x') || m_text.size() < 2 ||
            std::from_chars(m_text.data(), m_text.data() + 2, byte, 16).ptr != m_text.data() + 2) {
            return false;
        }
        piece += static_cast<char>(byte);
        m_text.remove_prefix(2);
        return true;
    }

    bool read_times(std::uint32_t& times) {
        if (!take('*')) {
            return true;
        }
        const std::string_view digits = m_text.substr(0, m_text.find(' '));
        const std::optional<std::uint32_t> number = parse_number(digits);
        times = number.value_or(0);
        m_text.remove_prefix(digits.size());
        return number.has_value();
    }

    std::string_view m_text;
};

void append_unless(int usual, const char* name, int value, std::string& line) {
    if (value != usual) {
        line += std::string(" ") + name + "=" + std::to_string(value);
    }
}

}  // namespace

std::string escape(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        append_escaped(byte, text);
    }
    if (!text.empty() && text.back() == ' ') {
        text.replace(text.size() - 1, 1, "\\x20");
    }
    return text;
}

std::string quote(std::string_view bytes) {
    std::string text = "\"";
    for (const char byte : bytes) {
        if (byte == '"') {
            text += '\\';
        }
        append_escaped(byte, text);
    }
    return text + '"';
}

std::optional<std::string> unquote(std::string_view text) {
    return QuoteReader(text).read();
}

std::optional<std::uint32_t> parse_number(std::string_view text) {
    const bool is_hex = text.substr(0, 2) == "0x";
    text.remove_prefix(is_hex ? 2 : 0);
    std::uint32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [parsed, error] = std::from_chars(text.data(), end, number, is_hex ? 16 : 10);
    if (text.empty() || parsed != end || error != std::errc()) {
        return std::nullopt;
    }
    return number;
}

std::string format(double value) {
    std::array<char, 32> digits;
    // 15 digits are enough for whatever was written with so many; 17 are enough for any double.
    for (int precision = 15; precision <= 17; ++precision) {
        std::snprintf(digits.data(), digits.size(), "%.*g", precision, value);
        if (std::strtod(digits.data(), nullptr) == value) {
            break;
        }
    }
    return digits.data();
}

std::string describe(const CueRecord& cue) {
    std::string line = "cue " + format(cue.start) + " " + format(cue.end) + " ";
    line += cue.has_text ? quote(cue.text) : "no text";
    append_unless(100, "line", cue.line, line);
    append_unless(1, "snap", static_cast<int>(cue.snap_to_lines), line);
    append_unless(50, "position", static_cast<int>(cue.position), line);
    append_unless(100, "size", static_cast<int>(cue.size), line);
    append_unless(1, "align", cue.text_align, line);
    append_unless(0, "vertical", cue.vertical, line);
    append_unless(0, "reserved", static_cast<int>(cue.reserved), line);
    append_unless(0, "aux", cue.has_aux_text ? 1 : 0, line);
    return line;
}

std::vector<std::string> describe_printed(std::string_view bytes) {
    std::vector<std::string> lines;
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\n');
        const std::string_view line = bytes.substr(0, end);
        if (end == std::string_view::npos) {
            lines.push_back("unfinished | " + escape(line));
            break;
        }
        if (line.substr(0, kErrorPrefix.size()) == kErrorPrefix) {
            lines.push_back("! " + escape(line.substr(kErrorPrefix.size())));
        } else {
            lines.push_back(line.empty() ? "|" : "| " + escape(line));
        }
        bytes.remove_prefix(end + 1);
    }
    return lines;
}

}  // namespace support
