// The text of a cue: tokens, tree and plain text. An input is a payload.
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/errors.h"
#include "cue/cue.h"
#include "fuzz/check.h"
#include "fuzz/mutator.h"
#include "payload/node_walk.h"
#include "payload/tokenizer.h"
#include "support/exact_block.h"

namespace {

using webvtt::Cue;
using webvtt::WebvttNode;

/// Cuts the payload into tokens: each takes something, and together they take everything.
void check_tokens(const char* payload, int size) {
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

/// What a walk over the tree finds.
struct Census {
    std::string text;
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
            text += static_cast<const webvtt::WebvttTextNode*>(node)->strText.text;
        }
    }
};

/// Parses a payload into the cue. False when it was given up at a start tag that is not known.
bool parse(Cue& cue, std::string_view payload) {
    support::ExactBlock block(payload);
    try {
        FUZZ_CHECK(cue.fgParseCuePayload(block.data(), block.size()));
        FUZZ_CHECK(!payload.empty());
        return true;
    } catch (const webvtt::BadAllocException& error) {
        FUZZ_CHECK(error.strGetMessage() == "create new Node Failed\n");
        FUZZ_CHECK(payload.find('<') != std::string_view::npos);
    } catch (const webvtt::InvalidArgumentException& error) {
        FUZZ_CHECK(error.strGetMessage() == "Input pcLine is empty");
        FUZZ_CHECK(payload.empty());
    }
    return false;
}

/// @param payload may hold a zero byte, with which or behind which its last token ends
void check_cue(Cue& cue, std::string_view payload) {
    const std::string content = cue.strGetCueContent().text;
    Census census;
    webvtt::walk_tree(cue.pRootNode, [&census](const WebvttNode* node) { census.visit(node); });
    FUZZ_CHECK(content == census.text);
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
}

/// What comes of a whole block, which the module reads for its text alone, without a tree.
struct Parsed {
    enum class Outcome { kParsed, kEmpty, kUnknownTag } outcome;
    std::string text;
};

Parsed parse_with_tree(std::string_view block) {
    support::ExactText terminated(block);
    try {
        Cue cue;
        FUZZ_CHECK(cue.fgParse(terminated.c_str(), terminated.length()));
        return {Parsed::Outcome::kParsed, cue.strGetCueContent().text};
    } catch (const webvtt::BadAllocException&) {
        return {Parsed::Outcome::kUnknownTag, ""};
    } catch (const webvtt::InvalidArgumentException&) {
        return {Parsed::Outcome::kEmpty, ""};
    }
}

Parsed parse_without_tree(std::string_view text) {
    support::ExactBlock block(text);
    Cue cue;
    const webvtt::Outcome outcome = cue.eParseForText({block.data(), block.size()}, block.data());
    switch (outcome) {
        case webvtt::Outcome::kDone:
            FUZZ_CHECK(cue.pRootNode == nullptr && cue.vecApplicableClasses.empty());
            return {Parsed::Outcome::kParsed, std::string(cue.strPlainText())};
        case webvtt::Outcome::kEmptyInput:
            return {Parsed::Outcome::kEmpty, ""};
        default:
            FUZZ_CHECK(outcome == webvtt::Outcome::kNoNode);
            return {Parsed::Outcome::kUnknownTag, ""};
    }
}

/// With and without a tree the same comes of it.
void check_both_ways(std::string_view payload) {
    const std::string text = std::string("00:00.000 --> 00:01.000\n").append(payload);
    const Parsed with_tree = parse_with_tree(text);
    const Parsed without_tree = parse_without_tree(text);
    FUZZ_CHECK(with_tree.outcome == without_tree.outcome);
    FUZZ_CHECK(with_tree.text == without_tree.text);
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t largest, unsigned seed) {
    return fuzz::mutate(fuzz::Format::kPayload, data, size, largest, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view payload(reinterpret_cast<const char*>(data), size);
    const std::string_view text = payload.substr(0, payload.find('\0'));

    support::ExactBlock block(text);
    check_tokens(block.data(), static_cast<int>(block.size()));

    check_both_ways(text);

    Cue cue;
    const bool is_whole = parse(cue, payload);
    check_cue(cue, payload);
    if (is_whole) {
        // What was read before has no influence: the same again goes under the same root.
        const std::string once = cue.strGetCueContent().text;
        const std::size_t classes = cue.vecApplicableClasses.size();
        FUZZ_CHECK(parse(cue, payload));
        FUZZ_CHECK(cue.strGetCueContent().text == once + once);
        FUZZ_CHECK(cue.vecApplicableClasses.size() == 2 * classes);
    }
    return 0;
}
