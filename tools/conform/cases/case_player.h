// Makes the calls of a case.
#ifndef TOOLS_CONFORM_CASES_CASE_PLAYER_H_
#define TOOLS_CONFORM_CASES_CASE_PLAYER_H_

#include <array>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "support/methods.h"
#include "tools/conform/cases/case.h"

namespace quill::conform {

// One case's parsers, and what comes of each call, in the words of case files.
class CasePlayer {
  public:
    // Gives what the module has printed since it was asked last.
    using Printed = std::function<std::string()>;

    // The module must outlive the player.
    CasePlayer(const support::Methods& methods, Printed printed);
    CasePlayer(const CasePlayer&) = delete;
    CasePlayer& operator=(const CasePlayer&) = delete;
    // Releases the parsers that the case has left.
    ~CasePlayer();

    // Makes a call. Returns all that came of it. A first call that names no parser is made with
    // one that "open" makes.
    std::vector<std::string> Play(const CaseCall& call);

  private:
    friend struct Verb;
    using Lines = std::vector<std::string>;

    // What a callback's tag points at.
    struct Tag {
        CasePlayer* player;
    };

    void Create(const CaseCall& call);
    void CreateNull(const CaseCall& call);
    void Start(const CaseCall& call);
    void Open(const CaseCall& call);
    void Use(const CaseCall& call);
    void Register(const CaseCall& call);
    void RegisterNull(const CaseCall& call);
    void Feed(const CaseCall& call);
    void FeedNull(const CaseCall& call);
    void FeedEmpty(const CaseCall& call);
    void FeedPieces(const CaseCall& call);
    void Send(const CaseCall& call);
    void Show(const CaseCall& call);
    void Take(const CaseCall& call);
    void TakeFeeding(const CaseCall& call);
    void SetVideoTime(const CaseCall& call);
    void Release(const CaseCall& call);

    Lines Parse(const void* data, unsigned int size);
    Lines FeedBytes(std::string_view bytes);
    void SendBytes(std::string_view bytes);
    void Add(const Lines& lines);
    static void OnEvent(int event, void* tag, void* info);
    void NoteEvent(int event, std::size_t tag, const void* info);

    const support::Methods methods_;
    const Printed printed_;
    std::map<std::string, support::Handle> handles_;  // by the name that the case gave
    std::set<support::Handle> live_;
    support::Handle handle_ = 0;  // what the calls are made with
    bool is_begun_ = false;
    std::array<Tag, 10> tags_;
    std::string fed_in_callback_;
    Lines delivered_;
    Lines lines_;  // what has come of the call so far
};

// What stands behind a verb.
enum class Arguments { kNone, kOptionalName, kName, kNumber, kTag, kBytes, kNumberAndBytes };

// A call that a case can make.
struct Verb {
    std::string_view name;
    Arguments arguments;
    void (CasePlayer::*act)(const CaseCall& call);
    std::string_view front = {};  // stands before the bytes that are fed
    std::string_view back = {};   // and behind them

    bool names_parser() const {
        return arguments == Arguments::kName || arguments == Arguments::kOptionalName;
    }

    // The bytes of a call, as they are fed.
    std::string Whole(std::string_view bytes) const;

    // Null when there is none of that name.
    static const Verb* Find(std::string_view name);
};

}  // namespace quill::conform

#endif  // TOOLS_CONFORM_CASES_CASE_PLAYER_H_
