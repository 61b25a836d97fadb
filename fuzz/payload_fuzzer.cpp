// The text of a cue: tokens, tree and plain text. An input is a payload.
#include <cstdint>
#include <string>
#include <string_view>

#include "base/errors.h"
#include "cue/cue.h"
#include "fuzz/check.h"
#include "fuzz/mutator.h"
#include "fuzz/shown_pieces.h"
#include "payload/node_walk.h"
#include "payload/tokenizer.h"

namespace {

using webvtt::Cue;
using webvtt::Outcome;
using webvtt::WebvttNode;

constexpr std::string_view kHead = "00:00.000 --> 00:01.000\n";

/// Cuts the payload into tokens: each takes something, and together they take everything.
void check_tokens(std::string_view text) {
    const fuzz::ShownText shown(text);
    const char* const payload = shown.text().data();
    const auto size = static_cast<int>(text.size());
    Cue cue;
    for (int position = 0; position < size;) {
        Cue::Tokenizer_Data token(payload + position, size - position);
        const Cue::Token_Type type = cue.eTokenizer(token);
        FUZZ_CHECK(type >= Cue::TOKEN_NONE && type <= Cue::TOKEN_TIMESTAMP);
        FUZZ_CHECK(token.iPosition > 0 && token.iPosition <= size - position);
        FUZZ_CHECK(type != Cue::TOKEN_STRING || !token.strResult.is_empty());
        position += token.iPosition;
    }
}

/// Compares a tree with the text that it is said to have.
struct Census {
    std::string_view text_left;
    std::size_t languages = 0;
    std::size_t nodes = 0;

    void visit(const WebvttNode* node) {
        ++nodes;
        const webvtt::Node_Type type = node->eGetNodeType();
        const bool is_leaf = type == webvtt::NODE_TEXT || type == webvtt::NODE_TIMESTAMP;
        FUZZ_CHECK((node->prGetParent() == nullptr) == (type == webvtt::NODE_ROOT));
        FUZZ_CHECK(!is_leaf || node->vecChildren.empty());
        for (const WebvttNode* child : node->vecChildren) {
            FUZZ_CHECK(child != nullptr && child->prGetParent() == node);
        }
        languages += type == webvtt::NODE_LANGUAGE ? 1 : 0;
        if (type == webvtt::NODE_TEXT) {
            const std::string& part =
                static_cast<const webvtt::WebvttTextNode*>(node)->strText.text;
            FUZZ_CHECK(text_left.substr(0, part.size()) == part);
            text_left.remove_prefix(part.size());
        }
    }
};

/// @param payload may hold a zero byte, with which or behind which its last token ends
/// @return its text
std::string check_cue(Cue& cue, std::string_view payload) {
    std::string content = cue.strGetCueContent().text;
    Census census{content};
    webvtt::walk_tree(cue.pRootNode, [&census](const WebvttNode* node) { census.visit(node); });
    FUZZ_CHECK(census.text_left.empty());
    FUZZ_CHECK(content.size() <= payload.size());
    if (payload.find_first_of("<&") == std::string_view::npos) {
        FUZZ_CHECK(content == payload);
    }
    // Each token takes a byte at least, and makes a node at most.
    FUZZ_CHECK(census.nodes <= payload.size() + 1);
    FUZZ_CHECK(cue.dqApplicableLanguages.size() <= census.languages);
    for (const webvtt::WebvttString& language : cue.dqApplicableLanguages) {
        FUZZ_CHECK(language.text == "lang");
    }
    cue.vPrintCueNodeList();
    return content;
}

/// What comes of a payload: kDone, kEmptyInput, or kNoNode for a start tag that is not known.
template <typename Parse>
Outcome outcome_of(Parse parse, std::string_view payload) {
    try {
        FUZZ_CHECK(parse());
        FUZZ_CHECK(!payload.empty());
        return Outcome::kDone;
    } catch (const webvtt::BadAllocException& error) {
        FUZZ_CHECK(error.strGetMessage() == "create new Node Failed\n");
        FUZZ_CHECK(payload.find('<') != std::string_view::npos);
        return Outcome::kNoNode;
    } catch (const webvtt::InvalidArgumentException& error) {
        FUZZ_CHECK(error.strGetMessage() == "Input pcLine is empty");
        FUZZ_CHECK(payload.empty());
        return Outcome::kEmptyInput;
    }
}

Outcome parse_payload(Cue& cue, std::string_view payload) {
    const fuzz::ShownText shown(payload);
    const auto size = static_cast<unsigned>(payload.size());
    return outcome_of([&] { return cue.fgParseCuePayload(shown.text().data(), size); }, payload);
}

/// Parses a whole block.
Outcome parse_block(Cue& cue, const std::string& block) {
    const fuzz::ShownText terminated({block.c_str(), block.size() + 1});
    const auto size = static_cast<unsigned>(block.size());
    return outcome_of([&] { return cue.fgParse(terminated.text().data(), size); },
                      std::string_view(block).substr(kHead.size()));
}

/// The module reads a block for its text alone, without a tree: the same must come of it.
void check_without_tree(const std::string& block, Outcome outcome, std::string_view text) {
    fuzz::ShownText shown(block);
    Cue cue;
    FUZZ_CHECK(cue.eParseForText(shown.text(), shown.data()) == outcome);
    if (outcome == Outcome::kDone) {
        FUZZ_CHECK(cue.pRootNode == nullptr && cue.vecApplicableClasses.empty());
        FUZZ_CHECK(cue.strPlainText() == text);
    }
}

/// What was read before has no influence: the same again goes under the same root.
void check_once_more(Cue& cue, std::string_view payload, const std::string& text) {
    const std::size_t classes = cue.vecApplicableClasses.size();
    FUZZ_CHECK(parse_payload(cue, payload) == Outcome::kDone);
    FUZZ_CHECK(cue.strGetCueContent().text == text + text);
    FUZZ_CHECK(cue.vecApplicableClasses.size() == 2 * classes);
}

void check_block(std::string_view payload) {
    const std::string block = std::string(kHead).append(payload);
    Cue cue;
    const Outcome outcome = parse_block(cue, block);
    const std::string text = check_cue(cue, payload);
    check_without_tree(block, outcome, text);
    if (outcome == Outcome::kDone) {
        check_once_more(cue, payload, text);
    }
}

/// What is behind a zero byte cannot be part of a block.
void check_payload(std::string_view payload) {
    Cue cue;
    const Outcome outcome = parse_payload(cue, payload);
    const std::string text = check_cue(cue, payload);
    if (outcome == Outcome::kDone) {
        check_once_more(cue, payload, text);
    }
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t largest, unsigned seed) {
    return fuzz::mutate(fuzz::Format::kPayload, data, size, largest, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view payload(reinterpret_cast<const char*>(data), size);
    const std::string_view text = payload.substr(0, payload.find('\0'));
    check_tokens(text);
    check_block(text);
    if (text.size() != payload.size()) {
        check_payload(payload);
    }
    return 0;
}
