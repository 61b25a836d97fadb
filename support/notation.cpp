#include "support/notation.h"

#include <charconv>
#include <cstdio>

namespace support {
namespace {

constexpr char kEscapes[][2] = {{'\n', 'n'}, {'\r', 'r'}, {'\t', 't'}, {'\\', '\\'}, {'"', '"'}};

void append_escaped(std::string& text, char c) {
    for (const auto& [byte, letter] : kEscapes) {
        if (byte == c && c != '"') {
            text += {'\\', letter};
            return;
        }
    }
    if (c >= ' ' && c <= '~') {
        text += c;
        return;
    }
    char hex[5];
    std::snprintf(hex, sizeof(hex), "\\x%02X",
                  static_cast<unsigned>(static_cast<unsigned char>(c)));
    text += hex;
}

/// The byte that an escape stands for; moves at to the escape's last character.
char unescape(std::string_view text, std::size_t& at) {
    const char letter = text.at(++at);
    if (letter == 'x') {
        unsigned byte = 0;
        std::from_chars(text.data() + at + 1, text.data() + at + 3, byte, 16);
        at += 2;
        return static_cast<char>(byte);
    }
    for (const auto& [byte, known] : kEscapes) {
        if (known == letter) {
            return byte;
        }
    }
    return letter;
}

void append_unless(int usual, const char* name, int value, std::string& line) {
    if (value != usual) {
        line += std::string(" ") + name + "=" + std::to_string(value);
    }
}

}  // namespace

std::string escape(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        append_escaped(text, c);
    }
    if (!text.empty() && text.back() == ' ') {
        text.replace(text.size() - 1, 1, "\\x20");
    }
    return text;
}

std::string quote(std::string_view bytes) {
    std::string text = "\"";
    for (const char c : bytes) {
        if (c == '"') {
            text += '\\';
        }
        append_escaped(text, c);
    }
    return text + '"';
}

std::string unquote(std::string_view text) {
    std::string bytes;
    bool inside = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '"') {
            inside = !inside;
        } else if (inside) {
            bytes += text[at] == '\\' ? unescape(text, at) : text[at];
        }
    }
    return bytes;
}

std::string number(double value) {
    char digits[32];
    return {digits, std::to_chars(digits, digits + sizeof(digits), value).ptr};
}

std::string describe(const CueRecord& cue) {
    std::string line = "cue " + number(cue.start) + " " + number(cue.end) + " ";
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

}  // namespace support
