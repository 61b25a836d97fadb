#include "fuzz/mutator.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "fuzz/pieces.h"
#include "support/random_source.h"

/// libFuzzer's own changes; replay_main.cpp has some for builds without it.
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t largest);

namespace fuzz {
namespace {

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kLineEndBytes = "\r\n";

/// An input that is being changed.
class Draft {
  public:
    Draft(std::string text, unsigned seed) : m_text(std::move(text)), m_random(seed) {}

    const std::string& text() const { return m_text; }
    support::RandomSource& random() { return m_random; }

    // ---- What a change may be ----

    void insert_block() { m_text.insert(line_start(), m_pieces.block()); }
    void insert_header() { m_text.insert(line_start(), m_pieces.header_line() + '\n'); }
    void insert_setting() { insert_behind_arrow(' ' + m_pieces.setting()); }
    void insert_tag() { m_text.insert(anywhere(), m_pieces.tag()); }
    void insert_text() { m_text.insert(anywhere(), m_pieces.text()); }
    void insert_call() { m_text.insert(anywhere(), m_pieces.host_call()); }

    /// A tag around a part of the text.
    void insert_span() {
        const std::string span = m_pieces.span();
        const std::size_t end = span.rfind("</");
        const auto [first, last] = part(24);
        m_text.insert(last, span.substr(end));
        m_text.insert(first, span.substr(0, span.find('>') + 1));
    }

    void replace_number() {
        const std::size_t first = m_text.find_first_of(kDigits, anywhere());
        if (first != std::string::npos) {
            const std::size_t last = m_text.find_first_not_of("0123456789.", first);
            m_text.replace(first, last - first, m_pieces.number());
        }
    }

    void replace_timing_line() {
        const std::size_t arrow = find_arrow();
        if (arrow != std::string::npos) {
            const auto [first, last] = line_around(arrow);
            m_text.replace(first, last - first, m_pieces.timing_line());
        }
    }

    void replace_line_end() {
        const std::size_t first = m_text.find_first_of(kLineEndBytes, anywhere());
        if (first != std::string::npos) {
            m_text.replace(first, 1, m_random.one_in(4) ? "" : m_pieces.line_end());
        }
    }

    void drop_part() {
        const auto [first, last] = part(24);
        m_text.erase(first, last - first);
    }

    void copy_part() {
        const auto [first, last] = part(64);
        const std::string copy = m_text.substr(first, last - first);
        m_text.insert(anywhere(), copy);
    }

    void copy_line() {
        const auto [first, last] = line_around(anywhere());
        const std::string copy = m_text.substr(first, last - first) + '\n';
        m_text.insert(line_start(), copy);
    }

    /// Each of them is read as one of these, and none of them as two.
    void replace_value() {
        const std::array<std::string (Pieces::*)(), 6> kinds = {
            &Pieces::number,      &Pieces::percentage,  &Pieces::time,
            &Pieces::timing_line, &Pieces::header_line, &Pieces::setting};
        m_text = (m_pieces.*kinds[m_random.between(0, kinds.size() - 1)])();
    }
    void append_item() { m_text += ' ' + m_pieces.setting(); }

    /// Cuts the text elsewhere: at a few places, or beside what is read as a whole.
    void replace_borders() {
        m_text.erase(std::remove(m_text.begin(), m_text.end(), kBorder), m_text.end());
        const bool is_sharp = m_random.one_in(2);
        std::size_t at = 0;
        for (unsigned left = m_random.between(1, 8); left > 0 && at < m_text.size(); --left) {
            at += m_random.between(0, 16);
            if (is_sharp) {
                at = m_text.find_first_of("\r\n<>&:,", std::min(at, m_text.size()));
                at = std::min(at, m_text.size()) + m_random.between(0, 1);
            }
            at = std::min(at, m_text.size());
            m_text.insert(at++, 1, kBorder);
        }
    }

  private:
    static constexpr char kBorder = '\xFF';

    std::size_t anywhere() { return m_random.between(0, static_cast<unsigned>(m_text.size())); }

    /// Where a line begins, or the end.
    std::size_t line_start() {
        const std::size_t end = m_text.find_first_of(kLineEndBytes, anywhere());
        const std::size_t start = m_text.find_first_not_of('\r', end);
        return start == std::string::npos ? m_text.size() : start + (m_text[start] == '\n' ? 1 : 0);
    }

    /// From its first byte up to its end, which is left out.
    std::pair<std::size_t, std::size_t> line_around(std::size_t at) const {
        const std::size_t before =
            at == 0 ? std::string::npos : m_text.find_last_of(kLineEndBytes, at - 1);
        const std::size_t end = m_text.find_first_of(kLineEndBytes, at);
        return {before == std::string::npos ? 0 : before + 1, std::min(end, m_text.size())};
    }

    std::pair<std::size_t, std::size_t> part(unsigned longest) {
        const std::size_t first = anywhere();
        return {first, std::min<std::size_t>(first + m_random.between(1, longest), m_text.size())};
    }

    /// One of the arrows.
    std::size_t find_arrow() {
        const std::size_t found = m_text.find("-->", anywhere());
        return found != std::string::npos ? found : m_text.rfind("-->");
    }

    void insert_behind_arrow(const std::string& piece) {
        const std::size_t arrow = find_arrow();
        if (arrow != std::string::npos) {
            m_text.insert(line_around(arrow).second, piece);
        }
    }

    std::string m_text;
    support::RandomSource m_random;
    Pieces m_pieces{m_random};
};

struct Change {
    void (Draft::*apply)();
    std::string_view formats;  // s, b, p, v: those of Format
};

constexpr Change kChanges[] = {
    {&Draft::insert_block, "sb"},     {&Draft::insert_header, "s"},
    {&Draft::insert_setting, "sb"},   {&Draft::insert_tag, "sbp"},
    {&Draft::insert_text, "sbp"},     {&Draft::insert_call, "s"},
    {&Draft::insert_call, "s"},       {&Draft::insert_span, "sbp"},
    {&Draft::replace_number, "sbv"},  {&Draft::replace_timing_line, "sb"},
    {&Draft::replace_line_end, "sb"}, {&Draft::drop_part, "sbpv"},
    {&Draft::copy_part, "sbpv"},      {&Draft::copy_line, "sb"},
    {&Draft::replace_value, "v"},     {&Draft::append_item, "v"},
    {&Draft::replace_borders, "b"},   {&Draft::replace_borders, "b"},
};

void change(Draft& draft, Format format) {
    const char letter = "sbpv"[static_cast<int>(format)];
    for (;;) {
        const Change& change = draft.random().pick(kChanges);
        if (change.formats.find(letter) != std::string_view::npos) {
            (draft.*change.apply)();
            return;
        }
    }
}

}  // namespace

std::size_t mutate(Format format, std::uint8_t* data, std::size_t size, std::size_t largest,
                   unsigned seed) {
    if (seed % 2 == 0) {
        return LLVMFuzzerMutate(data, size, largest);
    }
    Draft draft({reinterpret_cast<const char*>(data), size}, seed);
    do {
        change(draft, format);
    } while (draft.random().one_in(2));
    const std::string_view text = std::string_view(draft.text()).substr(0, largest);
    if (text.empty()) {
        return LLVMFuzzerMutate(data, size, largest);
    }
    std::copy(text.begin(), text.end(), data);
    return text.size();
}

}  // namespace fuzz
