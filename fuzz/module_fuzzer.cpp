// The whole module, through its method table.
//
// An input is a track with host calls among its bytes: a plain track is an input too. The byte FF,
// which UTF-8 never has, introduces a call; the bytes before it are first fed to the current
// parser.
//
//     FF |          nothing more: a chunk ends here
//     FF 0 .. FF 3  from here on the current parser is this one; it is created when first used
//     FF r          releases the current parser; using it again makes a new one
//     FF g          asks for the cues
//     FF v abcd     sets the video time to the next four bytes (the lowest first)
//     FF k n        from here on chunks are at most n bytes long (0: any length)
//     FF x abcd     calls everything with this handle, unless it is live
//     FF z          feeds nothing; registers nothing
//     FF f n        the next call that allocates more than n times fails to do so once more
//     FF F n        every call from here on does, and goes on failing to
//     FF n          memory is back
//     FF FF         a byte FF of the track
//
// Any other byte behind FF is as good as "|". At the end the parsers are asked for their cues, some
// with their last block closed and some as they are, and released; nothing may be left in memory.
#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "fuzz/check.h"
#include "fuzz/hosted_parser.h"
#include "fuzz/mutator.h"

namespace {

using fuzz::HostedParser;

constexpr char kEscape = '\xFF';

class Script {
  public:
    Script(std::string_view script, fuzz::Budget& budget) : m_rest(script), m_budget(budget) {}

    void run() {
        current();
        while (!m_rest.empty()) {
            const char byte = take_byte();
            if (byte != kEscape) {
                m_chunk += byte;
            } else if (m_rest.substr(0, 1) == std::string_view(&kEscape, 1)) {
                m_chunk += take_byte();
            } else {
                feed();
                call(take_byte());
            }
        }
        feed();
        finish();
    }

  private:
    /// The next byte of the script; zeros behind its end.
    char take_byte() {
        if (m_rest.empty()) {
            return '\0';
        }
        const char byte = m_rest.front();
        m_rest.remove_prefix(1);
        return byte;
    }

    unsigned take_small() { return static_cast<unsigned char>(take_byte()); }

    unsigned take_word() {
        unsigned word = 0;
        for (unsigned shift = 0; shift < 32; shift += 8) {
            word |= take_small() << shift;
        }
        return word;
    }

    void call(char name) {
        switch (name) {
            case '0':
            case '1':
            case '2':
            case '3':
                m_current = static_cast<std::size_t>(name - '0');
                break;
            case 'r':
                m_parsers[m_current].reset();
                break;
            case 'g':
                current().deliver();
                break;
            case 'v':
                current().set_video_time(take_word());
                break;
            case 'k':
                m_longest = take_small();
                break;
            case 'x':
                call_stray(take_word());
                break;
            case 'z':
                current().feed_nothing();
                current().register_nothing();
                break;
            case 'f':
                plan(take_small(), 1);
                break;
            case 'F':
                plan(take_small(), fuzz::Budget::kForEver);
                break;
            case 'n':
                plan(0, 0);
                break;
            default:
                break;
        }
    }

    void plan(unsigned spared, unsigned times) {
        m_budget.spared = spared;
        m_budget.times = times;
    }

    HostedParser& current() {
        std::unique_ptr<HostedParser>& parser = m_parsers[m_current];
        if (parser == nullptr) {
            parser = std::make_unique<HostedParser>(m_budget);
            check_distinct(*parser);
        }
        return *parser;
    }

    void check_distinct(const HostedParser& made) const {
        for (const auto& parser : m_parsers) {
            FUZZ_CHECK(parser == nullptr || parser.get() == &made || made.handle() == 0 ||
                       parser->handle() != made.handle());
        }
    }

    void call_stray(unsigned handle) const {
        for (const auto& parser : m_parsers) {
            if (parser != nullptr && parser->handle() == handle) {
                return;
            }
        }
        fuzz::call_with_stray_handle(handle);
    }

    void feed() {
        std::string_view rest = m_chunk;
        while (!rest.empty()) {
            const std::string_view chunk = rest.substr(0, m_longest != 0 ? m_longest : rest.size());
            current().feed(chunk);
            rest.remove_prefix(chunk.size());
        }
        m_chunk.clear();
    }

    void finish() {
        for (std::size_t i = 0; i < m_parsers.size(); ++i) {
            if (m_parsers[i] != nullptr && i % 2 == 0) {
                m_parsers[i]->feed("\n\n\n");
                m_parsers[i]->deliver();
            }
            m_parsers[i].reset();  // the others with cues that nobody has asked for
        }
    }

    std::string_view m_rest;
    fuzz::Budget& m_budget;
    std::string m_chunk;  // track bytes not yet fed
    std::array<std::unique_ptr<HostedParser>, 4> m_parsers;
    std::size_t m_current = 0;
    std::size_t m_longest = 0;
};

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t largest, unsigned seed) {
    return fuzz::mutate(fuzz::Format::kScript, data, size, largest, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Budget budget;
    Script({reinterpret_cast<const char*>(data), size}, budget).run();
    FUZZ_CHECK(budget.memory.live_blocks() == 0);
    return 0;
}
