// Makes the calls of a recorded session again.
#ifndef TOOLS_REPLAY_SESSION_PLAYER_H_
#define TOOLS_REPLAY_SESSION_PLAYER_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "support/methods.h"
#include "tools/replay/session.h"

namespace quill::replay {

// Hears of each call that is made, in the order of the log; of one that is made in a callback while
// the outer one is in progress.
class PlaySink {
  public:
    virtual ~PlaySink() = default;
    virtual void Begin(const Call& call) = 0;
    // False when no further call is to be made.
    virtual bool End(const Call& call, const Outcome& outcome) = 0;
};

// Plays on one thread: what overlapped comes one after the other, in the order in which it began;
// what was called in a callback is called there. What would crash any module is left out: a call
// for cues without a callback, or within the callback of the same parser.
class SessionPlayer {
  public:
    // Gives what the module has printed since it was asked last.
    using Printed = std::function<std::string()>;

    // All that is given must outlive the player.
    SessionPlayer(const Session& session, const support::Methods& methods, Printed printed,
                  PlaySink& sink);
    SessionPlayer(const SessionPlayer&) = delete;
    SessionPlayer& operator=(const SessionPlayer&) = delete;
    // Releases the parsers that the session has left.
    ~SessionPlayer();

    void Play();

  private:
    // A parser of this run.
    struct Parser {
        SessionPlayer* player;
        support::Handle handle;
        unsigned calls = 0;        // in progress
        unsigned deliveries = 0;   // the same, of calls for cues
        bool is_released = false;  // by the host; the module's is when no call is in progress
        bool has_callback = false;
    };
    // A call in progress.
    struct Frame {
        const Call& call;
        Outcome outcome;
    };

    void PlayCall(const Call& call);
    bool CanBeMade(const Call& call, const Parser* parser) const;
    void Make(const Call& call, Parser* parser, Outcome& outcome);
    void Create(const Call& call, Outcome& outcome);
    int Parse(const Call& call, support::Handle handle) const;
    // Null for one that is not live.
    Parser* Find(std::uint32_t number);
    void End(const Call& call, Parser& parser);

    static void OnEvent(int event, void* tag, void* info);
    void PlayNested(const void* info);

    const Session& session_;
    const support::Methods& methods_;
    const Printed printed_;
    PlaySink& sink_;
    std::map<std::uint32_t, Parser> parsers_;  // by the recorded number
    std::vector<Frame*> frames_;
    bool goes_on_ = true;
};

}  // namespace quill::replay

#endif  // TOOLS_REPLAY_SESSION_PLAYER_H_
