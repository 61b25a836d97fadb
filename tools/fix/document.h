// A track in memory as lines that can be rewritten, with a record of every change.
#ifndef TOOLS_FIX_DOCUMENT_H_
#define TOOLS_FIX_DOCUMENT_H_

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tools/fix/note.h"

namespace quill::fix {

// What a run changed, for the reader.
struct Edit {
    // Safe to print.
    std::string Words() const;

    std::uint32_t line;  // of the track as it was read
    const check::Code* code;
    std::string words;  // empty when the rest says it all
    std::string before;
    std::string after;
};

// A line as it will be, and what that takes.
struct Rewriting {
    std::string text;
    Note note;
    std::vector<Edit> edits;
};

// One byte as the module reads it: a line feed, or whatever stands before a zero byte.
bool EndsHeader(std::string_view text);

struct Line {
    // For the module, which cuts a line at its first zero byte and then counts no line feed.
    bool IsBlank() const {
        return text.empty() || text[0] == '\0' || (text.size() > 1 && text[1] == '\0');
    }

    std::string_view text;      // without line end
    std::string_view original;  // the same as it was read; of an inserted line, nothing
    std::string_view end;       // line end: "\n", "\r\n", "\r", or "" on the last line
    std::uint32_t number;  // in the track as it was read; of an inserted line, that of the next
    int note = -1;         // index of what the fixes state about the line, -1 when it is as read
    int plan = -1;         // index of what it may be rewritten to
    bool inserted = false;
    bool continues = false;  // was a part of the line above, which goes on here
    bool timing = false;     // reads as a timing line, outside of comments
    bool frozen = false;     // no fix may touch it
};

// Owns nothing of the track that it is made of, which must outlive it; owns what it adds.
class Document {
  public:
    // `frozen` holds the numbers of lines that must stay as they are.
    Document(std::string_view track, const std::set<std::uint32_t>& frozen);

    std::vector<Line>& lines() { return lines_; }
    const std::vector<Line>& lines() const { return lines_; }
    const std::vector<Edit>& edits() const { return edits_; }
    // Lines that were removed, as they stood then.
    const std::vector<Line>& gone() const { return gone_; }
    const Note& note(const Line& line) const { return notes_[static_cast<std::size_t>(line.note)]; }

    // What a fixed map adds to every time, in seconds.
    const std::optional<double>& offset() const { return offset_; }
    void StateOffset(double seconds) { offset_ = seconds; }

    // Where the header's blank line stands; the number of lines when there is none.
    std::size_t HeaderEnd() const;

    // Puts another text in the place of a line's, which comes to be as the note states.
    void Replace(std::size_t index, std::string text, Note note);
    // Keeps a rewriting for later, when Rewrite makes it, if there is one.
    void Plan(Line& line, Rewriting rewriting);
    void Rewrite(std::size_t index);
    // The rest takes effect with Commit, so that indices stay as they are until then.
    void Remove(std::size_t index) { removed_.insert(index); }
    // Removes a line of which nothing is to be shown.
    void Drop(std::size_t index);
    void InsertAbove(std::size_t index, std::string text = "", Note note = {});
    // Puts a line below that was read as the end of that one, `original`, or as a part of its
    // middle, nothing.
    void InsertBelow(std::size_t index, std::string text, std::string_view original);
    void Commit();

    void Record(std::uint32_t line, const char* code, const std::string& words);
    void Record(std::uint32_t line, const char* code, std::string_view before,
                std::string_view after);

    // The whole track as it stands now.
    std::string Text() const;

  private:
    struct Insertion {
        std::size_t index;
        Line line;
    };

    std::string_view Keep(std::string text);
    int Keep(Note note);

    std::vector<Line> lines_;
    std::vector<Line> gone_;
    std::vector<Edit> edits_;
    std::deque<Note> notes_;
    std::deque<Rewriting> plans_;
    std::deque<std::string> texts_;
    std::set<std::size_t> removed_;
    std::vector<Insertion> insertions_;
    std::optional<double> offset_;
};

// A stretch of lines between blank ones, behind the header.
struct Range {
    std::size_t begin;
    std::size_t end;

    std::size_t size() const { return end - begin; }
};

// The next block at or behind that line; empty when there is none.
Range NextBlock(const std::vector<Line>& lines, std::size_t from);

// Its timing line: the first line, or the second below one without an arrow. `end` of the block
// when that one does not read as a timing line.
std::size_t TimingOf(const std::vector<Line>& lines, const Range& block);

}  // namespace quill::fix

#endif  // TOOLS_FIX_DOCUMENT_H_
