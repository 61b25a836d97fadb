// Tokens as one line of text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "payload/tokenizer.h"
#include "support/exact_block.h"

namespace webvtt {

/// "text[abc]3 start[v|Bob]7 end[v]4": kind, result, buffer where it matters and is not empty, and
/// how many characters the token consumed.
inline std::string dump_token(Cue::Token_Type eType, const Cue::Tokenizer_Data& token) {
    static constexpr const char* kKinds[] = {"none", "text", "start", "end", "time"};
    std::string dump = std::string(kKinds[eType]) + "[" + token.strResult.text;
    if (eType != Cue::TOKEN_STRING && !token.strBuffer.is_empty()) {
        dump += "|" + token.strBuffer.text;
    }
    return dump + "]" + std::to_string(token.iPosition);
}

/// All tokens of a payload and the class names that they recorded.
struct Cut {
    explicit Cut(std::string_view payload) {
        support::ExactBlock block(payload);  // without a terminating zero
        const char* rest = block.data();
        const char* const end = rest + block.size();
        Cue cue;
        while (rest < end) {
            Cue::Tokenizer_Data token(rest, static_cast<int>(end - rest));
            const Cue::Token_Type eType = cue.eTokenizer(token);
            tokens += (tokens.empty() ? "" : " ") + dump_token(eType, token);
            consumed.push_back(token.iPosition);
            if (token.iPosition <= 0 || token.iPosition > end - rest) {
                tokens += " STUCK";
                break;
            }
            rest += token.iPosition;
        }
        for (const WebvttString& name : cue.vecApplicableClasses) {
            classes.push_back(name.text);
        }
    }

    std::string tokens;
    std::vector<int> consumed;
    std::vector<std::string> classes;
};

}  // namespace webvtt
