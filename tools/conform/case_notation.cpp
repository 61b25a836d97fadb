#include "tools/conform/case_notation.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>

namespace quill::conform {
namespace {

constexpr std::string_view kErrorPrefix = "[WEBVTT] ERR:: ";
// Repetitions multiply; a case must not ask for more than a board has.
constexpr std::size_t kMostBytes = 16u << 20;

constexpr struct {
    char byte;
    char letter;
} kEscapes[] = {{'\n', 'n'}, {'\r', 'r'}, {'\t', 't'}, {'\\', '\\'}, {'"', '"'}};

void AppendEscaped(char byte, std::string& text) {
    for (const auto& escape : kEscapes) {
        if (escape.byte == byte && byte != '"') {
            text += {'\\', escape.letter};
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
    explicit QuoteReader(std::string_view text) : text_(text) {}

    std::optional<std::string> Read() {
        std::string bytes;
        for (SkipSpaces(); !text_.empty(); SkipSpaces()) {
            std::string piece;
            std::uint32_t times = 1;
            if (!ReadQuoted(piece) || !ReadTimes(times) ||
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
    void SkipSpaces() { text_.remove_prefix(std::min(text_.find_first_not_of(' '), text_.size())); }

    bool Take(char wanted) {
        const bool found = !text_.empty() && text_.front() == wanted;
        text_.remove_prefix(found ? 1 : 0);
        return found;
    }

    bool ReadQuoted(std::string& piece) {
        if (!Take('"')) {
            return false;
        }
        while (!Take('"')) {
            if (text_.empty()) {
                return false;
            }
            if (text_.front() != '\\') {
                piece += text_.front();
                text_.remove_prefix(1);
            } else if (!ReadEscape(piece)) {
                return false;
            }
        }
        return true;
    }

    bool ReadEscape(std::string& piece) {
        text_.remove_prefix(1);
        for (const auto& escape : kEscapes) {
            if (Take(escape.letter)) {
                piece += escape.byte;
                return true;
            }
        }
        unsigned byte = 0;
        if (!Take('x') || text_.size() < 2 ||
            std::from_chars(text_.data(), text_.data() + 2, byte, 16).ptr != text_.data() + 2) {
            return false;
        }
        piece += static_cast<char>(byte);
        text_.remove_prefix(2);
        return true;
    }

    bool ReadTimes(std::uint32_t& times) {
        if (!Take('*')) {
            return true;
        }
        const std::string_view digits = text_.substr(0, text_.find(' '));
        const std::optional<std::uint32_t> number = ParseNumber(digits);
        times = number.value_or(0);
        text_.remove_prefix(digits.size());
        return number.has_value();
    }

    std::string_view text_;
};

void AppendUnless(int usual, const char* name, int value, std::string& line) {
    if (value != usual) {
        line += std::string(" ") + name + "=" + std::to_string(value);
    }
}

}  // namespace

std::string EscapeBytes(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        AppendEscaped(byte, text);
    }
    if (!text.empty() && text.back() == ' ') {
        text.replace(text.size() - 1, 1, "\\x20");
    }
    return text;
}

std::string Quote(std::string_view bytes) {
    std::string text = "\"";
    for (const char byte : bytes) {
        if (byte == '"') {
            text += '\\';
        }
        AppendEscaped(byte, text);
    }
    return text + '"';
}

std::optional<std::string> Unquote(std::string_view text) {
    return QuoteReader(text).Read();
}

std::optional<std::uint32_t> ParseNumber(std::string_view text) {
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

std::string FormatDouble(double value) {
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

std::string DescribeCue(const WebvttCueNode& cue) {
    std::string line = "cue " + FormatDouble(cue.dStartTime) + " " + FormatDouble(cue.dEndTime);
    line += " " + (cue.pcText != nullptr ? Quote(cue.pcText) : "no text");
    AppendUnless(100, "line", cue.i4Line, line);
    AppendUnless(1, "snap", cue.fgSnapToLines, line);
    AppendUnless(50, "position", cue.u1Position, line);
    AppendUnless(100, "size", cue.u1Size, line);
    AppendUnless(1, "align", cue.eTextAlign, line);
    AppendUnless(0, "vertical", cue.eVertical, line);
    AppendUnless(0, "reserved", cue.fgReserved, line);
    AppendUnless(0, "aux", cue.pcAuxText != nullptr ? 1 : 0, line);
    return line;
}

std::vector<std::string> DescribePrinted(std::string_view bytes) {
    std::vector<std::string> lines;
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\n');
        const std::string_view line = bytes.substr(0, end);
        if (end == std::string_view::npos) {
            lines.push_back("unfinished | " + EscapeBytes(line));
            break;
        }
        if (line.substr(0, kErrorPrefix.size()) == kErrorPrefix) {
            lines.push_back("! " + EscapeBytes(line.substr(kErrorPrefix.size())));
        } else {
            lines.push_back(line.empty() ? "|" : "| " + EscapeBytes(line));
        }
        bytes.remove_prefix(end + 1);
    }
    return lines;
}

}  // namespace quill::conform
