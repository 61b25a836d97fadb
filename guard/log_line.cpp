#include "guard/log_line.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "guard/text.h"

namespace guard {
namespace {

void put_byte(Bytes& line, char byte) {
    const unsigned code = static_cast<unsigned char>(byte);
    if (byte == '"' || byte == '\\') {
        line << '\\' << byte;
    } else if (byte == '\n') {
        line << "\\n";
    } else if (code < 0x20 || (code >= 0x7F && code < 0xA0)) {  // a terminal may obey it
        line << "\\u00"
             << "0123456789abcdef"[code >> 4U] << "0123456789abcdef"[code & 0xFU];
    } else if (code < 0x80) {
        line << byte;
    } else {  // U+0080 to U+00FF
        line << static_cast<char>(0xC0U | (code >> 6U))
             << static_cast<char>(0x80U | (code & 0x3FU));
    }
}

/// Most bytes are what they are in JSON too.
std::size_t plain_bytes(std::string_view bytes) {
    std::size_t count = 0;
    while (count < bytes.size() && bytes[count] >= ' ' && bytes[count] < 0x7F &&
           bytes[count] != '"' && bytes[count] != '\\') {
        ++count;
    }
    return count;
}

}  // namespace

LogLine& LogLine::add(const char* name, unsigned long long number) {
    char digits[24];
    char* digit = digits + sizeof digits;
    do {
        *--digit = static_cast<char>('0' + number % 10);
        number /= 10;
    } while (number != 0);
    this->name(name);
    m_line << std::string_view(digit, static_cast<std::size_t>(digits + sizeof digits - digit));
    return *this;
}

LogLine& LogLine::add(const char* name, int number) {
    this->name(name);
    m_line << (Text<16>() << static_cast<long>(number)).c_str();
    return *this;
}

LogLine& LogLine::add(const char* name, bool value) {
    this->name(name);
    m_line << (value ? "true" : "false");
    return *this;
}

LogLine& LogLine::add(const char* name, double number) {
    if (!std::isfinite(number)) {
        return add_null(name);
    }
    char digits[32];
    // 15 digits are enough for whatever was written with so many; 17 are enough for any double.
    for (int precision = 15; precision <= 17; ++precision) {
        std::snprintf(digits, sizeof digits, "%.*g", precision, number);
        if (std::strtod(digits, nullptr) == number) {
            break;
        }
    }
    this->name(name);
    bool is_in_point = false;
    for (const char* digit = digits; *digit != '\0'; ++digit) {
        // What is no part of a number is the decimal point of the host's locale.
        const bool is_number = std::strchr("0123456789+-e", *digit) != nullptr;
        if (is_number || !is_in_point) {
            m_line << (is_number ? *digit : '.');
        }
        is_in_point = !is_number;
    }
    return *this;
}

LogLine& LogLine::add(const char* name, std::string_view bytes) {
    this->name(name);
    m_line << '"';
    while (!bytes.empty()) {
        const std::size_t plain = plain_bytes(bytes);
        m_line << bytes.substr(0, plain);
        bytes.remove_prefix(plain);
        if (!bytes.empty()) {
            put_byte(m_line, bytes.front());
            bytes.remove_prefix(1);
        }
    }
    m_line << '"';
    return *this;
}

LogLine& LogLine::add_null(const char* name) {
    this->name(name);
    m_line << "null";
    return *this;
}

LogLine& LogLine::open(const char* name) {
    this->name(name);
    m_line << '{';
    return *this;
}

LogLine& LogLine::open_list(const char* name) {
    this->name(name);
    m_line << '[';
    return *this;
}

LogLine& LogLine::open_item() {
    separate();
    m_line << '{';
    return *this;
}

LogLine& LogLine::close() {
    m_line << '}';
    return *this;
}

LogLine& LogLine::close_list() {
    m_line << ']';
    return *this;
}

std::string_view LogLine::end() {
    m_line << "}\n";
    return m_line.view();
}

void LogLine::separate() {
    const std::string_view line = m_line.view();
    if (!line.empty() && line.back() != '{' && line.back() != '[') {
        m_line << ',';
    }
}

void LogLine::name(const char* name) {
    separate();
    m_line << '"' << name << "\":";
}

}  // namespace guard
