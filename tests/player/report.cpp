#include "report.h"

#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <map>

std::string quote(const std::string& bytes) {
    std::string text = "\"";
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        static const std::map<char, const char*> kShort = {
            {'\n', "\\n"}, {'\r', "\\r"}, {'\t', "\\t"}, {'"', "\\\""}, {'\\', "\\\\"}};
        const auto found = kShort.find(c);
        if (found != kShort.end()) {
            text += found->second;
        } else if (byte >= 0x20 && byte < 0x7F) {
            text += c;
        } else {
            char escape[5];
            std::snprintf(escape, sizeof escape, "\\x%02x", static_cast<unsigned>(byte));
            text += escape;
        }
    }
    return text + '"';
}

std::string unquote(const std::string& text) {
    std::string bytes;
    for (size_t i = 1; i + 1 < text.size(); ++i) {
        if (text[i] != '\\') {
            bytes += text[i];
            continue;
        }
        const char code = text[++i];
        if (code == 'x') {
            bytes += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            bytes += code == 'n' ? '\n' : code == 'r' ? '\r' : code == 't' ? '\t' : code;
        }
    }
    return bytes;
}

[[noreturn]] void give_up(const std::string& reason) {
    std::fprintf(stderr, "script_player: %s\n", reason.c_str());
    std::exit(2);
}

Report::Report() : report_(fdopen(dup(STDOUT_FILENO), "w")), captured_(std::tmpfile()) {
    if (report_ == nullptr || captured_ == nullptr || dup2(fileno(captured_), STDOUT_FILENO) < 0) {
        give_up("standard output cannot be redirected");
    }
}

void Report::line(const std::string& text) {
    std::fprintf(report_, "%s\n", text.c_str());
}

void Report::take_output() {
    const std::string text = read_captured();
    if (!text.empty()) {
        line("out " + quote(text));
    }
}

void Report::drop_output() {
    read_captured();
}

void Report::flush() {
    if (std::fflush(report_) != 0) {
        give_up("the report cannot be written");
    }
}

std::string Report::read_captured() {
    std::cout.flush();
    std::fflush(stdout);
    const off_t size = lseek(STDOUT_FILENO, 0, SEEK_CUR);
    std::string text(static_cast<size_t>(size), '\0');
    if (size != 0 && (pread(STDOUT_FILENO, text.data(), text.size(), 0) != size ||
                      ftruncate(STDOUT_FILENO, 0) != 0 || lseek(STDOUT_FILENO, 0, SEEK_SET) != 0)) {
        give_up("the module's output cannot be read back");
    }
    return text;
}

Report& report() {
    static Report instance;
    return instance;
}
