#include "fuzz/pieces.h"

#include <cstdio>

namespace fuzz {
namespace {

constexpr const char* kNumbers[] = {
    "0",          "1",     "59", "60", "100", "101",   "255",  "256",        "90000",
    "99999",      "1e3",   "-1", "-0", "0.5", ".5",    "5.",   "2147483648", "4294967295",
    "4294967296", "1.2.3", "50", "",   "33",  "100.1", "99.9", "007",        "0.00000001"};
// More digits than 32 bits hold.
constexpr const char* kLongNumbers[] = {"99999999999999999999", "12.500000000000000000001"};
constexpr const char* kTimes[] = {
    "00:60.000", "60:00.000", "00:00:60.000",      "0:00.000",          "00:01.0000", "00:01,000",
    "00:01.00",  "1:2:3.000", "1193046:29:16.000", "4294967296:01.000", "aa:01.000",  ""};
constexpr const char* kRegions[] = {"fred", "", "abcdefghijklmno", "abcdefghijklmnop",
                                    "abcdefghijklmnopqrst"};
constexpr const char* kAligns[] = {"start", "middle", "end", "left", "right", "center", ""};
constexpr const char* kAlignTails[] = {"", "", ",start", ",middle", ",end", ",", ",x"};
constexpr const char* kTags[] = {"c", "i", "b", "u", "ruby", "rt", "v", "lang"};
constexpr const char* kTagTails[] = {"",     "",      "",         ".one",  ".one.two", ".",
                                     " Bob", " a b ", ".one Bob", "\tBob", "\nBob",    " "};
constexpr const char* kBrokenTags[] = {"<",    "<>",    "</>",    "</",         "<x>",
                                       "</x>", "<c.a",  "<v Bob", "< ",         "<.a>",
                                       "<b/>", "<c\n>", ">",      "<00:61.000>"};
constexpr const char* kWords[] = {"a",        "Hello", "two words", "one\ntwo", "-->",   "\xC3\xA9",
                                  "\xE6\x97", "x-->y", " ",         "\t",       "\f",    "&",
                                  "&amp;",    "&lt;",  "&gt;",      "&lrm;",    "&rlm;", "&nbsp;",
                                  "&amp",     "&foo;", "&&lt;",     "& ",       "&;"};
constexpr const char* kRemarks[] = {"NOTE a", "Kind: captions", "Region", "X-TIMESTAMP", " ",
                                    "-->",    "STYLE"};
constexpr const char* kLineEnds[] = {"\n", "\n", "\r\n", "\r", "\n\n", "\r\n\r\n", "\r\r", "\n\r"};

}  // namespace

std::string Pieces::number() {
    if (m_random.one_in(24)) {
        return m_random.pick(kLongNumbers);
    }
    return m_random.one_in(2) ? std::to_string(m_random.between(0, 120)) : m_random.pick(kNumbers);
}

std::string Pieces::percentage() {
    return number() + (m_random.one_in(12) ? "" : "%");
}

std::string Pieces::time() {
    if (m_random.one_in(8)) {
        return m_random.pick(kTimes);
    }
    char text[48];
    std::snprintf(text, sizeof(text), "%02u:%02u:%02u.%03u", m_random.between(0, 120),
                  m_random.between(0, 59), m_random.between(0, 59), m_random.between(0, 999));
    return text + (m_random.one_in(2) ? 0 : text[2] == ':' ? 3 : 4);
}

std::string Pieces::setting() {
    const std::string tail = m_random.pick(kAlignTails);
    switch (m_random.between(0, 8)) {
        case 0:
            return m_random.one_in(2) ? "vertical:rl" : "vertical:lr";
        case 1:
            return "line:" + number() + tail;
        case 2:
            return "line:-" + number() + tail;
        case 3:
            return "line:" + percentage() + tail;
        case 4:
            return "size:" + percentage();
        case 5:
            return "position:" + percentage() + tail;
        case 6:
            return std::string("align:") + m_random.pick(kAligns);
        case 7:
            return std::string("region:") + m_random.pick(kRegions);
        default:
            return header_item();
    }
}

std::string Pieces::timing_line() {
    std::string line = time() + (m_random.one_in(6) ? "-->" : " --> ") + time();
    for (unsigned left = m_random.between(0, 3); left > 0; --left) {
        line += ' ' + setting();
    }
    return line;
}

std::string Pieces::header_item() {
    switch (m_random.between(0, 7)) {
        case 0:
            return std::string("id=") + m_random.pick(kRegions);
        case 1:
            return "width=" + percentage();
        case 2:
            return "lines=" + number();
        case 3:
            return "regionanchor=" + percentage() + ',' + percentage();
        case 4:
            return "viewportanchor=" + percentage() + ',' + percentage();
        case 5:
            return "scroll=up";
        case 6:
            return "MPEGTS:" + number();
        default:
            return "LOCAL:" + time();
    }
}

std::string Pieces::header_line() {
    switch (m_random.between(0, 3)) {
        case 0:
            return m_random.pick(kRemarks);
        case 1:
            return "Region: " + header_item() + ' ' + header_item();
        case 2:
            return "X-TIMESTAMP-MAP=" + header_item() + ',' + header_item();
        default:
            return "X-TIMESTAMP-MAP=MPEGTS:" + number() + ",LOCAL:" + time();
    }
}

std::string Pieces::tag() {
    const std::string name = m_random.pick(kTags);
    switch (m_random.between(0, 7)) {
        case 0:
            return m_random.pick(kBrokenTags);
        case 1:
            return '<' + time() + '>';
        case 2:
        case 3:
            return "</" + name + '>';
        default:
            return '<' + name + m_random.pick(kTagTails) + '>';
    }
}

std::string Pieces::text() {
    std::string text = m_random.pick(kWords);
    while (m_random.one_in(2)) {
        text += m_random.pick(kWords);
    }
    return text;
}

std::string Pieces::span() {
    const std::string name = m_random.pick(kTags);
    return '<' + name + m_random.pick(kTagTails) + '>' + text() + "</" + name + '>';
}

std::string Pieces::block() {
    const std::string end = m_random.one_in(3) ? line_end() : "\n";
    std::string block = m_random.one_in(5) ? "id" + end : "";
    block += timing_line() + end;
    for (unsigned left = m_random.one_in(12) ? 11 : m_random.between(0, 2); left > 0; --left) {
        block += (m_random.one_in(3) ? span() : text()) + end;
    }
    return block + end;
}

std::string Pieces::host_call() {
    constexpr char kCalls[] = "|0123rggvkkxzfFn";
    const char call = kCalls[m_random.between(0, sizeof(kCalls) - 2)];
    std::string bytes = std::string("\xFF") + call;
    const bool is_word = call == 'v' || call == 'x';
    const bool is_small = call == 'k' || call == 'f' || call == 'F';
    for (unsigned left = is_word ? 4 : is_small ? 1 : 0; left > 0; --left) {
        bytes += static_cast<char>(m_random.between(0, is_small ? 20 : 255));
    }
    return bytes;
}

std::string Pieces::line_end() {
    return m_random.pick(kLineEnds);
}

}  // namespace fuzz
