#include "payload/payload_reader.h"

#include <algorithm>

#include "base/byte_finder.h"
#include "base/diagnostics.h"
#include "base/fast_paths.h"
#include "base/text.h"
#include "base/value_parsers.h"
#include "payload/references.h"
#include "payload/tokenizer.h"

namespace webvtt {
namespace {

struct Tag {
    std::string_view name;
    Node_Type eType;
};

constexpr Tag kTags[] = {
    {"c", NODE_CLASS},   {"i", NODE_ITALIC},     {"b", NODE_BOLD},  {"u", NODE_UNDERLINE},
    {"ruby", NODE_RUBY}, {"rt", NODE_RUBY_TEXT}, {"v", NODE_VOICE}, {"lang", NODE_LANGUAGE},
};

constexpr std::size_t kLongestTagName = 4;

/// NODE_ROOT when no tag has this name.
Node_Type find_tag(std::string_view name) {
    for (const Tag& tag : kTags) {
        if (same_word(tag.name, name)) {
            return tag.eType;
        }
    }
    return NODE_ROOT;
}

/// Where a tag's name and classes end: at the ">" or at whitespace.
std::size_t find_classes_end(std::string_view text, std::size_t from) {
    while (from < text.size() && text[from] != '>' && !is_tag_space(text[from]) &&
           text[from] != '\n') {
        ++from;
    }
    return from;
}

/// Cuts a payload into tokens. Text and plain tags, with at most classes or an annotation, are read
/// in place. The tokenizer gets the other tags.
class PayloadReader {
  public:
    PayloadReader(Cue& cue, std::string_view payload, PayloadSink& sink)
        : m_cue(cue), m_rest(payload), m_sink(sink) {}

    Outcome read(const char* stop) {
        Outcome outcome = Outcome::kDone;
        do {
            if (kFastPaths && m_rest.front() != '<') {
                read_text();
            } else if (!kFastPaths || !read_plain_tag()) {
                outcome = read_token();
            }
        } while (outcome == Outcome::kDone && m_rest.data() < stop);
        return outcome;
    }

  private:
    void read_text();
    void read_reference();
    bool read_plain_tag();
    void add_classes(std::string_view classes);
    Outcome read_token();
    Outcome read_start_tag(const std::string& name);
    void read_end_tag(const std::string& name);
    void read_timestamp(const std::string& text);

    Cue& m_cue;
    std::string_view m_rest;
    PayloadSink& m_sink;
    // They remember what lies ahead, so that a megabyte of either costs no more than any text.
    ByteFinder m_brackets{'<'};
    ByteFinder m_ampersands{'&'};
};

/// Reads a run of text, up to the next tag or the end.
void PayloadReader::read_text() {
    while (!m_rest.empty() && m_rest.front() != '<') {
        if (m_rest.front() == '&') {
            read_reference();
            continue;
        }
        const char* const begin = m_rest.data();
        const char* const end = begin + m_rest.size();
        const auto run = static_cast<std::size_t>(
            std::min(m_brackets.find(begin, end), m_ampersands.find(begin, end)) - begin);
        m_sink.vText(m_rest.substr(0, run));
        m_rest.remove_prefix(run);
    }
    m_sink.vEndText();
}

/// Reads a "&" and the name behind it. A reference that is not known stays as it was written.
void PayloadReader::read_reference() {
    std::size_t end = 1;
    while (end < m_rest.size() && is_ascii_alphanumeric(m_rest[end])) {
        ++end;
    }
    std::string_view text = m_rest.substr(0, end);
    const char behind = end < m_rest.size() ? m_rest[end] : '<';
    if (behind == ';') {
        const Reference* const reference = find_reference(text);
        ++end;
        text = reference != nullptr ? reference->replacement : m_rest.substr(0, end);
    } else if (behind != '<' && behind != '&') {
        text.remove_suffix(end);  // no reference after all: dropped, as the tokenizer says
    }
    m_sink.vText(text);
    m_rest.remove_prefix(end);
}

/// Reads "<name>", "<name.class>", "<name annotation>" or "</name>" with a name that is known.
/// False, with nothing read, when there is no such tag here, or when it ends the payload, where
/// tags read otherwise.
bool PayloadReader::read_plain_tag() {
    const bool closes = m_rest.size() > 1 && m_rest[1] == '/';
    const std::size_t name_at = closes ? 2 : 1;
    std::size_t end = name_at;
    while (end < m_rest.size() && end <= name_at + kLongestTagName && m_rest[end] >= 'a' &&
           m_rest[end] <= 'z') {
        ++end;
    }
    const Node_Type eType = find_tag(m_rest.substr(name_at, end - name_at));
    if (eType == NODE_ROOT) {
        return false;
    }
    const std::size_t classes_at = end;
    if (!closes && end < m_rest.size()) {
        if (m_rest[end] == ' ') {
            end = m_rest.find('>', end);  // an annotation, which nobody is told of
        } else if (m_rest[end] == '.') {
            end = find_classes_end(m_rest, end);
        }
    }
    if (end >= m_rest.size() - 1 || m_rest[end] != '>') {
        return false;
    }
    if (m_rest[classes_at] == '.') {
        add_classes(m_rest.substr(classes_at + 1, end - classes_at - 1));
    }
    m_rest.remove_prefix(end + 1);
    if (closes) {
        m_sink.vCloseTag(eType);
    } else {
        m_sink.vOpenTag(eType);
    }
    return true;
}

void PayloadReader::add_classes(std::string_view classes) {
    Split names{{}, classes, m_cue.fgKeepsClasses()};
    while (names.found) {
        names = split_first(names.tail, '.');
        m_cue.vAddApplicableClass(WebvttString(names.head));
    }
}

Outcome PayloadReader::read_token() {
    Outcome outcome = Outcome::kDone;
    Cue::Tokenizer_Data token(m_rest.data(), static_cast<int>(m_rest.size()));
    // As long as its name: a string that grows needs three times as much for a moment.
    token.strResult.text.reserve(find_classes_end(m_rest, 1));
    switch (m_cue.eTokenizer(token)) {
        case Cue::TOKEN_START_TAG:
            outcome = read_start_tag(token.strResult.text);
            break;
        case Cue::TOKEN_END_TAG:
            read_end_tag(token.strResult.text);
            break;
        case Cue::TOKEN_TIMESTAMP:
            read_timestamp(token.strResult.text);
            break;
        default:  // a list of classes that a line feed ended; text, where it is not read in place
            if constexpr (!kFastPaths) {
                if (m_rest.front() != '<') {
                    m_sink.vText(token.strResult.text);
                    m_sink.vEndText();
                }
            }
            break;
    }
    m_rest.remove_prefix(static_cast<std::size_t>(token.iPosition));
    return outcome;
}

Outcome PayloadReader::read_start_tag(const std::string& name) {
    const Node_Type eType = find_tag(name);
    if (eType == NODE_ROOT) {
        // "Ignored" is what it prints, but the rest of the payload is given up: hosts count on
        // the result code 2 that this ends in.
        print_error("unexcepted start tag <%s> detected. Ignored", name.c_str());
        return Outcome::kNoNode;
    }
    m_sink.vOpenTag(eType);
    return Outcome::kDone;
}

void PayloadReader::read_end_tag(const std::string& name) {
    const Node_Type eType = find_tag(name);
    if (eType == NODE_ROOT) {
        print_error("unexcepted end tag <%s> detected. Ignored", name.c_str());
        return;
    }
    m_sink.vCloseTag(eType);
}

void PayloadReader::read_timestamp(const std::string& text) {
    double checked = 0.0;
    if (!parse_timestamp(text, checked)) {
        print_error("Invalid time stamp tag <%s> detected. Ignored", text.c_str());
        return;
    }
    m_sink.vTimestamp();
}

}  // namespace

Outcome read_payload(Cue& cue, std::string_view payload, std::size_t uStop, PayloadSink& sink) {
    return PayloadReader(cue, payload, sink).read(payload.data() + uStop);
}

}  // namespace webvtt
