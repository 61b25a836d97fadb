// Makes the calls of a case, in the child process that the case has for itself.
#ifndef TOOLS_CONFORM_CASE_PLAYER_H_
#define TOOLS_CONFORM_CASE_PLAYER_H_

#include <array>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "quillcaption/quillcaption.h"
#include "tools/conform/case.h"
#include "tools/conform/printed_text.h"

namespace quill::conform {

class CasePlayer {
  public:
    // Both must outlive the player. Its parsers are not released: a case does that.
    CasePlayer(const WebvttModuleMethods& methods, PrintedText& printed);
    CasePlayer(const CasePlayer&) = delete;
    CasePlayer& operator=(const CasePlayer&) = delete;

    // Makes a call. Returns all that came of it, in the words of case files.
    std::vector<std::string> Play(const CaseCall& call);

  private:
    using Lines = std::vector<std::string>;

    // What a callback's tag points at.
    struct Tag {
        CasePlayer* player;
    };

    // One for each verb that is more than one call of the module.
    void Create(const CaseCall& call);
    void Start(const CaseCall& call);
    void Open(const CaseCall& call);
    void Use(const CaseCall& call);
    void FeedPieces(const CaseCall& call);
    void Show(const std::string& bytes);
    void Take();
    void Register(std::uint32_t tag, WebvttEventNotify notify);

    Lines Parse(const void* data, unsigned int size);
    Lines FeedBytes(std::string_view bytes);
    void Add(const Lines& lines);
    static void OnEvent(WEBVTT_EVENT_T event, void* tag, void* info);
    void NoteEvent(WEBVTT_EVENT_T event, std::size_t tag, const WebvttDataInfo& info);

    const WebvttModuleMethods& methods_;
    PrintedText& printed_;
    std::map<std::string, unsigned int> handles_;  // by the name that the case gave
    unsigned int handle_ = 0;                      // what the calls are made with
    std::array<Tag, 10> tags_;
    Lines delivered_;
    Lines lines_;  // what has come of the call so far
};

}  // namespace quill::conform

#endif  // TOOLS_CONFORM_CASE_PLAYER_H_
